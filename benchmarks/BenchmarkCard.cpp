// Cards, lists and call counts of the benchmarks; see the header.
#include "BenchmarkCard.h"

#include <algorithm>
#include <cstdlib>

#include "CBIFileListManager.h"
#include "PosixSeam.h"

namespace dcfbench {

int FillCard(dcftest::Card& card, int files) {
    constexpr int kMostPerDirectory = 9999;
    const int perDirectory = std::min(files, kMostPerDirectory);
    const int directories = std::max(1, files / perDirectory);
    card.Fill(directories, perDirectory);
    return directories * perDirectory;
}

ISFileList* NewList(const dcftest::Card& card) {
    setenv("DCF_PREFERENCES", (card.Root() + "/preferences").c_str(), 1); // goes with the card
    CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT);
    CBIFileListManager::SetBaseURI(card.Root().c_str());
    return CBIFileListManager::GetFileList();
}

void ReportCalls(benchmark::State& state, int files, const std::function<void()>& operation) {
    const dcftest::PosixSeam seam;
    operation();
    const auto calls = static_cast<double>(seam.Calls().size());
    state.counters["files"] = files;
    state.counters["calls"] = calls;
    state.counters["calls_per_file"] = calls / files;
    state.counters["files_per_second"] =
        benchmark::Counter(static_cast<double>(files), benchmark::Counter::kIsIterationInvariantRate);
}

} // namespace dcfbench
