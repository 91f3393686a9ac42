// Browsing a listed card from end to end. The floor of a conversion is the one question about protection per file, the
// first time; GetAtSimply makes no call at all.
#include <cstring>

#include "BenchmarkCard.h"

namespace {

/// Walks the whole list once per iteration and checks how many files the walk met.
template <typename Walk>
void Browse(benchmark::State& state, Walk walk) {
    dcftest::Card card;
    const int files = dcfbench::FillCard(card, static_cast<int>(state.range(0)));
    ISFileList* list = dcfbench::NewList(card);
    list->Listup();
    for (auto _ : state) {
        if (walk(*list, files) != files) {
            state.SkipWithError("the walk did not meet every file");
            break;
        }
    }
    dcfbench::ReportCalls(state, files, [&] { walk(*list, files); });
}

void WalkNext(benchmark::State& state) {
    Browse(state, [](ISFileList& list, int) {
        CSFileListItem item;
        int met = list.GetFirst(&item) == 0 ? 1 : 0;
        while (list.GetNext(&item) == 0) {
            ++met;
        }
        return met;
    });
}
BENCHMARK(WalkNext)->Apply(dcfbench::Sizes);

void WalkPrev(benchmark::State& state) {
    Browse(state, [](ISFileList& list, int) {
        CSFileListItem item;
        int met = list.GetLast(&item) == 0 ? 1 : 0;
        while (list.GetPrev(&item) == 0) {
            ++met;
        }
        return met;
    });
}
BENCHMARK(WalkPrev)->Apply(dcfbench::Sizes);

void GetAtEveryPosition(benchmark::State& state) {
    Browse(state, [](ISFileList& list, int files) {
        CSFileListItem item;
        int met = 0;
        for (int position = 0; position < files; ++position) {
            met += list.GetAt(position, &item) == 0 ? 1 : 0;
        }
        return met;
    });
}
BENCHMARK(GetAtEveryPosition)->Apply(dcfbench::Sizes);

void GetAtSimplyEveryPosition(benchmark::State& state) {
    Browse(state, [](ISFileList& list, int files) {
        CSFileListItem item;
        int met = 0;
        for (int position = 0; position < files; ++position) {
            met += list.GetAtSimply(position, &item) == 0 ? 1 : 0;
        }
        return met;
    });
}
BENCHMARK(GetAtSimplyEveryPosition)->Apply(dcfbench::Sizes);

void FindEveryPath(benchmark::State& state) {
    Browse(state, [](ISFileList& list, int files) {
        CSFileListItem item;
        int met = 0;
        for (int position = 0; position < files; ++position) {
            list.GetAtSimply(position, &item);
            met += list.GetFileListIndex(item.m_strURI) == position ? 1 : 0;
        }
        return met;
    });
}
BENCHMARK(FindEveryPath)->Apply(dcfbench::Sizes);

} // namespace
