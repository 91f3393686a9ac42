// Protecting every file of a card, then taking the protection back, and so on. The floor makes the same calls, a stat
// and a chmod by path for each picture and each companion file. The sync behind each is counted and not made.
#include <sys/stat.h>

#include <algorithm>

#include "BenchmarkCard.h"

namespace {

using dcfbench::BenchmarkCard;
using dcfbench::CardOf;

int EntriesOf(const BenchmarkCard& card) {
    return card.shape.folders * (card.shape.files + card.shape.files / 4);
}

bool AllAre(const BenchmarkCard& card, bool on) {
    return std::all_of(card.paths.begin(), card.paths.end(), [on](const std::string& path) {
        struct stat status = {};
        return stat(path.c_str(), &status) == 0 && ((status.st_mode & S_IWUSR) == 0) == on;
    });
}

void SetProtectAll(benchmark::State& state) {
    BenchmarkCard& card = CardOf(state);
    ISFileList& list = card.List();
    bool on = false;
    const int before = dcfbench::Syncs();
    for (auto _ : state) {
        on = !on;
        list.SetProtectAll(on);
    }
    dcfbench::CountFiles(state, card.shape.Items());
    const double syncs = (dcfbench::Syncs() - before) / static_cast<double>(state.iterations());
    dcfbench::Check(state, syncs == EntriesOf(card), "not every file was synced");
    dcfbench::Check(state, AllAre(card, on), "a file has the wrong protection");
    state.counters["syncs"] = syncs;
}

void SetOne(const char* path, bool on) {
    struct stat status = {};
    if (stat(path, &status) == 0) {
        (void)chmod(path, on ? status.st_mode & ~static_cast<mode_t>(S_IWUSR) : status.st_mode | S_IWUSR);
    }
}

void Floor(benchmark::State& state) {
    const BenchmarkCard& card = CardOf(state);
    bool on = false;
    for (auto _ : state) {
        on = !on;
        for (const dcfbench::Folder& folder : card.folders) {
            for (const dcfbench::Picture& picture : folder.pictures) {
                CSFileListItem item;
                ComposePaths(card, folder, picture, item);
                SetOne(item.m_strURI, on);
                if (item.m_strObject[0] != '\0') {
                    SetOne(item.m_strObject, on);
                }
            }
        }
    }
    dcfbench::CountFiles(state, card.shape.Items());
    dcfbench::Check(state, AllAre(card, on), "the floor left the wrong protection");
}

const bool s_registered =
    dcfbench::Register(dcfbench::AllShapes(), {{"SetProtectAll", SetProtectAll}, {"FloorOfProtection", Floor}});

} // namespace
