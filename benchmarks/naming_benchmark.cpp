// Naming new files on a card whose every file is selected, with preferences in memory: what stays is the library's own
// work and its look whether the folder is there, which is also the floor.
#include <dirent.h>

#include <cstdio>

#include "BenchmarkCard.h"

namespace {

using dcfbench::BenchmarkCard;
using dcfbench::CardOf;

constexpr int kNames = 90;     // a list of 99,900 files takes no more than 99
constexpr int kNameSize = 396; // as the interface asks for

void GetNewFileName(benchmark::State& state) {
    BenchmarkCard& card = CardOf(state);
    card.DropList();
    ISFileList& list = card.SelectedList();
    char path[kNameSize] = {};
    int refused = 0;
    for (auto _ : state) {
        refused += list.GetNewFileName(path, FILE_TYPE_JPG) == 0 ? 0 : 1;
    }
    dcfbench::CountFiles(state, 1);
    const int last = card.shape.files + kNames;
    dcfbench::Check(state, refused == 0, "a name was refused");
    dcfbench::Check(state, path == card.card.Path(card.folders.front().name, dcftest::DcfName(last)),
                    "the last name is a wrong one");
    card.DropList();
}

void Floor(benchmark::State& state) {
    const BenchmarkCard& card = CardOf(state);
    const std::string folder = card.card.Path(card.folders.front().name);
    char path[kNameSize] = {};
    int number = card.shape.files;
    for (auto _ : state) {
        DIR* handle = opendir(folder.c_str());
        closedir(handle);
        (void)std::snprintf(path, sizeof path, "%s/KVR_%04d.JPG", folder.c_str(), ++number);
        benchmark::DoNotOptimize(path);
    }
    dcfbench::CountFiles(state, 1);
    dcfbench::Check(state, path == folder + "/" + dcftest::DcfName(number), "the floor's last name is a wrong one");
}

const bool s_registered =
    dcfbench::Register({{1, 100}, {1, 1000}, {9, 111}, {100, 10}, {100, 100}, {900, 11}, {900, 111}},
                       {{"GetNewFileName", GetNewFileName, kNames}, {"FloorOfNaming", Floor, kNames}});

} // namespace
