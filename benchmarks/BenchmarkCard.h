// What the benchmarks share: cards of a given size, a fresh file list on them, and the count of calls on the card.
#ifndef BENCHMARK_CARD_H
#define BENCHMARK_CARD_H

#include <benchmark/benchmark.h>

#include <functional>

#include "Card.h"
#include "ISFileList.h"

namespace dcfbench {

/// Fills a card with about that many files, at most 9,999 to a directory. @return the exact number.
int FillCard(dcftest::Card& card, int files);

/// Makes the process's file list anew, on a card that is not listed yet.
ISFileList* NewList(const dcftest::Card& card);

/// Runs an operation once more, untimed, and reports the calls that it made on the card, per file and in all.
void ReportCalls(benchmark::State& state, int files, const std::function<void()>& operation);

/// The sizes at which operations are measured.
inline void Sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(100)->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
}

} // namespace dcfbench

#endif
