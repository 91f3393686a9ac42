// Changing a card. The floor of a deletion is one unlink per file and one look at the folder; of a protection, per
// file, one stat, one chmod and the sync that the contract asks for.
#include <unistd.h>

#include "BenchmarkCard.h"

namespace {

/// Each iteration works on a fresh card, listed outside the timed part.
template <typename Change>
void ChangeCard(benchmark::State& state, Change change, int leftPerHundred) {
    int files = 0;
    for (auto _ : state) {
        state.PauseTiming();
        dcftest::Card card;
        files = dcfbench::FillCard(card, static_cast<int>(state.range(0)));
        ISFileList* list = dcfbench::NewList(card);
        list->Listup();
        state.ResumeTiming();
        change(*list, files);
        state.PauseTiming();
        if (list->GetCount() != files * leftPerHundred / 100) {
            state.SkipWithError("the wrong number of files is left");
        }
        state.ResumeTiming();
    }
    dcftest::Card card;
    dcfbench::FillCard(card, static_cast<int>(state.range(0)));
    ISFileList* list = dcfbench::NewList(card);
    list->Listup();
    dcfbench::ReportCalls(state, files, [&] { change(*list, files); });
}

void DeleteEverySecond(benchmark::State& state) {
    const auto change = [](ISFileList& list, int files) {
        for (int position = files - 2; position >= 0; position -= 2) {
            list.SetSel(position, true);
        }
        list.DeleteSel();
    };
    ChangeCard(state, change, 50);
}
BENCHMARK(DeleteEverySecond)->Arg(100)->Arg(1000)->Arg(9998)->Unit(benchmark::kMillisecond)->Iterations(3);

void DeleteAll(benchmark::State& state) {
    ChangeCard(
        state, [](ISFileList& list, int) { list.DeleteAll(); }, 0);
}
BENCHMARK(DeleteAll)->Arg(100)->Arg(1000)->Arg(9998)->Unit(benchmark::kMillisecond)->Iterations(3);

void ProtectAll(benchmark::State& state) {
    ChangeCard(
        state, [](ISFileList& list, int) { list.SetProtectAll(true); }, 100);
}
BENCHMARK(ProtectAll)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond)->Iterations(3);

void NewFileNames(benchmark::State& state) {
    const auto change = [](ISFileList& list, int files) {
        char path[396];
        for (int file = 0; file < files; ++file) {
            list.GetNewFileName(path, FILE_TYPE_JPG);
        }
    };
    ChangeCard(state, change, 200);
}
BENCHMARK(NewFileNames)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace
