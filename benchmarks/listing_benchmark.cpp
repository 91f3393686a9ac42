// Listing a card. The floor is one scandir per folder and, where the entry carries no time, one look at each file; the
// second benchmark is that floor alone, without the library.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "BenchmarkCard.h"

namespace {

void Listup(benchmark::State& state) {
    dcftest::Card card;
    const int files = dcfbench::FillCard(card, static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        ISFileList* list = dcfbench::NewList(card);
        state.ResumeTiming();
        if (list->Listup() != files) {
            state.SkipWithError("the list does not hold every file");
            break;
        }
    }
    ISFileList* list = dcfbench::NewList(card);
    dcfbench::ReportCalls(state, files, [list] { list->Listup(); });
}
BENCHMARK(Listup)->Apply(dcfbench::Sizes);

int StatEveryEntry(const std::string& folder) {
    dirent** entries = nullptr;
    const int count = scandir(folder.c_str(), &entries, nullptr, nullptr);
    const int handle = open(folder.c_str(), O_RDONLY | O_DIRECTORY);
    int files = 0;
    for (int position = 0; position < count; ++position) {
        struct stat status = {};
        files += fstatat(handle, entries[position]->d_name, &status, 0) == 0 && S_ISREG(status.st_mode) ? 1 : 0;
        std::free(entries[position]);
    }
    std::free(static_cast<void*>(entries));
    close(handle);
    return files;
}

void FloorOfListup(benchmark::State& state) {
    dcftest::Card card;
    const int files = dcfbench::FillCard(card, static_cast<int>(state.range(0)));
    const auto listAll = [&card] {
        int found = 0;
        for (const std::string& dir : card.DirNames()) {
            found += StatEveryEntry(card.Path(dir));
        }
        return found;
    };
    for (auto _ : state) {
        if (listAll() != files) {
            state.SkipWithError("a file is missing");
            break;
        }
    }
    dcfbench::ReportCalls(state, files, [&listAll] { listAll(); });
}
BENCHMARK(FloorOfListup)->Apply(dcfbench::Sizes);

} // namespace
