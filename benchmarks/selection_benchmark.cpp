// Selecting and counting while every file of the card is selected. There is no call on the card in it; the floor of the
// selection is a look into a table of positions.
#include "BenchmarkCard.h"

namespace {

using dcfbench::BenchmarkCard;
using dcfbench::CardOf;

/// Calls with every position in list order; counts the calls whose answer is wrong.
template <typename Call>
void EveryPosition(benchmark::State& state, Call call) {
    BenchmarkCard& card = CardOf(state);
    ISFileList& list = card.SelectedList();
    const int files = card.shape.Items();
    int wrong = 0;
    for (auto _ : state) {
        for (int position = 0; position < files; ++position) {
            wrong += call(list, card, position) ? 0 : 1;
        }
    }
    dcfbench::CountFiles(state, files);
    dcfbench::Check(state, wrong == 0, "a call gave a wrong answer");
    dcfbench::Check(state, list.GetSelCount() == files, "not every file is selected");
}

/// One call per iteration, whose answer is always the same.
template <typename Call>
void OneCall(benchmark::State& state, int expected, Call call) {
    ISFileList& list = CardOf(state).SelectedList();
    int wrong = 0;
    for (auto _ : state) {
        wrong += call(list) == expected ? 0 : 1;
    }
    dcfbench::CountFiles(state, 1);
    dcfbench::Check(state, wrong == 0, "a call gave a wrong answer");
}

void GetCount(benchmark::State& state) {
    OneCall(state, CardOf(state).shape.Items(), [](ISFileList& list) { return list.GetCount(); });
}

void GetFileCount(benchmark::State& state) {
    const dcfbench::Shape shape = CardOf(state).shape;
    OneCall(state, shape.folders * (shape.files / 4),
            [](ISFileList& list) { return list.GetFileCount(FILE_TYPE_SRW); });
}

void SetSel(benchmark::State& state) {
    EveryPosition(state, [](ISFileList& list, const BenchmarkCard&, int position) {
        list.SetSel(position, true);
        return true; // judged by the number selected in the end
    });
}

void IsSel(benchmark::State& state) {
    EveryPosition(state, [](ISFileList& list, const BenchmarkCard&, int position) { return list.IsSel(position); });
}

void SetCurIndex(benchmark::State& state) {
    EveryPosition(state, [](ISFileList& list, const BenchmarkCard&, int position) {
        list.SetCurIndex(position);
        return true; // judged by the last
    });
    const int last = CardOf(state).shape.Items() - 1;
    dcfbench::Check(state, CardOf(state).List().GetCurIndex() == last, "the cursor is not on the last file");
}

void GetCurIndex(benchmark::State& state) {
    const int last = CardOf(state).shape.Items() - 1;
    CardOf(state).SelectedList().SetCurIndex(last);
    OneCall(state, last, [](ISFileList& list) { return list.GetCurIndex(); });
}

void SelectAll(benchmark::State& state) {
    BenchmarkCard& card = CardOf(state);
    ISFileList& list = card.List();
    for (auto _ : state) {
        list.SelectCancel();
        for (int position = 0; position < card.shape.Items(); ++position) {
            list.SetSel(position, true);
        }
    }
    dcfbench::CountFiles(state, card.shape.Items());
    dcfbench::Check(state, list.GetSelCount() == card.shape.Items(), "not every file is selected");
}

void Floor(benchmark::State& state) {
    const std::vector<bool> selected(static_cast<std::size_t>(CardOf(state).shape.Items()), true);
    EveryPosition(state, [&selected](ISFileList&, const BenchmarkCard&, int position) {
        bool found = selected[static_cast<std::size_t>(position)];
        benchmark::DoNotOptimize(found);
        return found;
    });
}

const bool s_registered = dcfbench::Register(dcfbench::AllShapes(), {{"GetCount", GetCount},
                                                                     {"GetFileCount", GetFileCount},
                                                                     {"SetSel", SetSel},
                                                                     {"IsSel", IsSel},
                                                                     {"FloorOfSelection", Floor},
                                                                     {"SetCurIndex", SetCurIndex},
                                                                     {"GetCurIndex", GetCurIndex},
                                                                     {"SelectAll", SelectAll}});

} // namespace
