// Deleting. Each run has a card of its own, listed outside the timed part. The floor makes the same calls on the same
// files: a stat and an unlink by path for each picture, an unlink for its companion file.
#include <sys/stat.h>
#include <unistd.h>

#include "BenchmarkCard.h"

namespace {

using dcfbench::BenchmarkCard;
using dcfbench::CountFiles;
using dcfbench::FreshCardOf;

constexpr int kRuns = 3;

/// Every second file of the card.
int DeletedOf(benchmark::State& state) {
    return static_cast<int>(state.range(0) * state.range(1) / 2);
}

bool IsGone(const std::string& path) {
    return access(path.c_str(), F_OK) != 0;
}

/// Every second picture from the first on is gone, with its companion file, and every other one is there.
bool HalfIsGone(const BenchmarkCard& card) {
    std::size_t position = 0;
    for (const dcfbench::Folder& folder : card.folders) {
        for (const dcfbench::Picture& picture : folder.pictures) {
            const std::string& path = card.paths[position];
            const bool doomed = position++ % 2 == 0;
            const std::string companion = path.substr(0, path.size() - 3) + picture.companion;
            if (IsGone(path) != doomed || (picture.companion[0] != '\0' && IsGone(companion) != doomed)) {
                return false;
            }
        }
    }
    return true;
}

void DeleteSel(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        BenchmarkCard& card = FreshCardOf(state);
        ISFileList& list = card.List();
        const int files = card.shape.Items();
        for (int position = 0; position < files; position += 2) {
            list.SetSel(position, true);
        }
        state.ResumeTiming();
        list.DeleteSel();
        state.PauseTiming();
        dcfbench::Check(state, list.GetCount() == files / 2 && HalfIsGone(card), "the wrong files are left");
        state.ResumeTiming();
    }
    CountFiles(state, DeletedOf(state));
}

void RemovePicture(const BenchmarkCard& card, const dcfbench::Folder& folder, const dcfbench::Picture& picture) {
    CSFileListItem item;
    ComposePaths(card, folder, picture, item);
    struct stat status = {};
    if (stat(item.m_strURI, &status) == 0 && (status.st_mode & S_IWUSR) != 0) {
        (void)unlink(item.m_strURI);
        if (item.m_strObject[0] != '\0') {
            (void)unlink(item.m_strObject);
        }
    }
}

void Floor(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        const BenchmarkCard& card = FreshCardOf(state);
        std::size_t position = 0;
        state.ResumeTiming();
        for (const dcfbench::Folder& folder : card.folders) {
            for (const dcfbench::Picture& picture : folder.pictures) {
                if (position++ % 2 == 0) {
                    RemovePicture(card, folder, picture);
                }
            }
        }
        state.PauseTiming();
        dcfbench::Check(state, HalfIsGone(card), "the floor left the wrong files");
        state.ResumeTiming();
    }
    CountFiles(state, DeletedOf(state));
}

void DeleteAll(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        BenchmarkCard& card = FreshCardOf(state);
        ISFileList& list = card.List();
        state.ResumeTiming();
        list.DeleteAll();
        state.PauseTiming();
        dcfbench::Check(state, list.GetCount() == 0 && card.card.DirNames().empty(), "a file is left");
        state.ResumeTiming();
    }
    CountFiles(state, 2 * DeletedOf(state));
}

// Folders of one picture would be dropped during the walk, which then passes over the next one.
const bool s_registered = dcfbench::Register(
    {{1, 100}, {1, 1000}, {1, 9999}, {100, 10}, {100, 100}, {900, 11}, {100, 1000}},
    {{"DeleteSel", DeleteSel, kRuns}, {"FloorOfDeletion", Floor, kRuns}, {"DeleteAll", DeleteAll, 1}});

} // namespace
