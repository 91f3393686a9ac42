// Browsing a listed card from end to end. The floor composes the paths of every picture with snprintf and, where the
// operation tells whether a picture is protected, asks the card for it with one stat.
#include <sys/stat.h>

#include <algorithm>

#include "BenchmarkCard.h"

namespace {

using dcfbench::BenchmarkCard;
using dcfbench::CardOf;

/// Walks the whole list once per iteration; each walk tells how many files it met.
template <typename Walk>
void Browse(benchmark::State& state, Walk walk) {
    BenchmarkCard& card = CardOf(state);
    ISFileList& list = card.List();
    int met = card.shape.Items();
    for (auto _ : state) {
        met = std::min(met, walk(list, card.shape.Items()));
    }
    dcfbench::CountFiles(state, card.shape.Items());
    dcfbench::Check(state, met == card.shape.Items(), "the walk did not meet every file");
    CheckList(state, card, list);
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

template <int (ISFileList::*get)(int, CSFileListItem*)>
void EveryPosition(benchmark::State& state) {
    Browse(state, [](ISFileList& list, int files) {
        CSFileListItem item;
        int met = 0;
        for (int position = 0; position < files; ++position) {
            met += (list.*get)(position, &item) == 0 ? 1 : 0;
        }
        return met;
    });
}

template <bool ask>
void Floor(benchmark::State& state) {
    const BenchmarkCard& card = CardOf(state);
    int met = 0;
    for (auto _ : state) {
        met = 0;
        CSFileListItem item;
        for (const dcfbench::Folder& folder : card.folders) {
            for (const dcfbench::Picture& picture : folder.pictures) {
                ComposePaths(card, folder, picture, item);
                struct stat status = {};
                item.m_bProtect = ask && stat(item.m_strURI, &status) == 0 && (status.st_mode & S_IWUSR) == 0;
                benchmark::DoNotOptimize(item);
                met += item.m_bProtect ? 0 : 1;
            }
        }
    }
    dcfbench::CountFiles(state, card.shape.Items());
    dcfbench::Check(state, met == card.shape.Items(), "the floor did not meet every file");
}

const bool s_registered =
    dcfbench::Register(dcfbench::AllShapes(), {{"WalkNext", WalkNext},
                                               {"GetAt", EveryPosition<&ISFileList::GetAt>},
                                               {"FloorOfBrowsing", Floor<true>},
                                               {"WalkPrev", WalkPrev},
                                               {"GetAtSimply", EveryPosition<&ISFileList::GetAtSimply>},
                                               {"FloorOfPaths", Floor<false>}});

} // namespace
