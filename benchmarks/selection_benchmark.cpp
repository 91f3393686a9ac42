// Selecting and counting while every file of the card is selected: one call per iteration, the positions in list order.
// There is no call on the card in it; the floor of the selection is a look into a table of positions.
#include "BenchmarkCard.h"

namespace {

using dcfbench::BenchmarkCard;
using dcfbench::CardOf;

/// Calls with one position after the other; counts the calls whose answer is wrong.
template <typename Call>
void EveryPosition(benchmark::State& state, Call call) {
    BenchmarkCard& card = CardOf(state);
    ISFileList& list = card.SelectedList();
    const int files = card.shape.Items();
    int wrong = 0;
    int position = -1;
    for (auto _ : state) {
        position = position + 1 < files ? position + 1 : 0;
        wrong += call(list, card, position) ? 0 : 1;
    }
    dcfbench::Check(state, wrong == 0, "a call gave a wrong answer");
    dcfbench::Check(state, list.GetSelCount() == files, "not every file is selected");
}

void GetCount(benchmark::State& state) {
    EveryPosition(
        state, [](ISFileList& list, const BenchmarkCard& card, int) { return list.GetCount() == card.shape.Items(); });
}

void GetFileCount(benchmark::State& state) {
    EveryPosition(state, [](ISFileList& list, const BenchmarkCard& card, int) {
        return list.GetFileCount(FILE_TYPE_SRW) == card.shape.folders * (card.shape.files / 4);
    });
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
        return true; // judged by the next
    });
}

void GetCurIndex(benchmark::State& state) {
    CardOf(state).SelectedList().SetCurIndex(CardOf(state).shape.Items() - 1);
    EveryPosition(state, [](ISFileList& list, const BenchmarkCard& card, int) {
        return list.GetCurIndex() == card.shape.Items() - 1;
    });
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
