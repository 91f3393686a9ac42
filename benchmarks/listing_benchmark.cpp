// Listing a card. The floor reads each folder with getdents64 and a large buffer, keeps the entries with a picture's
// name, asks each for its time in the order of the folder, puts them in list order and merges the companion files. It
// keeps its working memory from folder to folder and makes new what it hands out. The floor of pictures merges first
// and asks for what is left; the floor of names asks for nothing.
#include <fcntl.h>
#include <malloc.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iterator>

#include "BenchmarkCard.h"
#include "CBIFileListManager.h"

namespace {

using dcfbench::BenchmarkCard;
using dcfbench::CardOf;
using dcfbench::CountFiles;

std::size_t HeapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void Listup(benchmark::State& state) {
    BenchmarkCard& card = CardOf(state);
    for (auto _ : state) {
        state.PauseTiming();
        ISFileList& list = card.NewList();
        state.ResumeTiming();
        list.Listup();
    }
    CountFiles(state, card.shape.Items());
    CBIFileListManager::Destroy();
    const std::size_t before = HeapInUse();
    ISFileList& list = card.NewList();
    list.Listup();
    state.counters["bytes_per_file"] = static_cast<double>(HeapInUse() - before) / card.shape.Items();
    CheckList(state, card, list);
}

// ---- The floor ----

struct KernelEntry {
    std::uint64_t inode;
    std::int64_t offset;
    std::uint16_t length;
    std::uint8_t type;
    char name[1];
};

struct Kept {
    std::uint32_t time;
    char name[13];
    char companion[4];
};

enum class Ask { EveryEntry, Pictures, Nothing };

/// Calls for every entry of a folder in the folder's own order.
template <typename Visit>
void ReadFolder(int handle, Visit visit) {
    alignas(KernelEntry) static char buffer[256 * 1024];
    for (long length = 0; (length = syscall(SYS_getdents64, handle, buffer, sizeof buffer)) > 0;) {
        for (long at = 0; at < length;) {
            const auto* entry = reinterpret_cast<const KernelEntry*>(buffer + at);
            visit(entry->name);
            at += entry->length;
        }
    }
}

/// Number and extension of a picture's name as one number that ascends in list order, or 0 for another name.
std::uint64_t OrderOf(const char* name) {
    constexpr const char* kExtensions[] = {".JPG", ".SRW", ".MPO", ".MP4", ".AVI"};
    if (strnlen(name, 13) != 12) {
        return 0;
    }
    unsigned number = 0;
    for (int digit = 4; digit < 8; ++digit) {
        const unsigned value = static_cast<unsigned char>(name[digit]) - unsigned{'0'};
        if (value > 9) {
            return 0;
        }
        number = number * 10 + value;
    }
    for (unsigned type = 0; type < std::size(kExtensions); ++type) {
        if (std::memcmp(name + 8, kExtensions[type], 4) == 0) {
            return (10000 - number) * 8 + type;
        }
    }
    return 0;
}

/// The entries of a folder in list order; a companion file goes into the picture of its number.
std::vector<Kept> InOrder(const std::vector<Kept>& entries, std::vector<std::uint64_t>& order) {
    std::sort(order.begin(), order.end());
    std::vector<Kept> pictures;
    pictures.reserve(entries.size());
    std::uint64_t last = 0;
    for (const std::uint64_t key : order) {
        const Kept& entry = entries[key & 0xffffffffU];
        if (key >> 35U == last) {
            std::memcpy(pictures.back().companion, entry.name + 9, sizeof entry.companion);
        } else {
            pictures.push_back(entry);
            last = key >> 35U;
        }
    }
    return pictures;
}

std::uint32_t TimeOf(int handle, const char* name) {
    struct stat status;
    return fstatat(handle, name, &status, 0) == 0 ? static_cast<std::uint32_t>(status.st_mtime) : 0;
}

std::vector<Kept> ListFolder(const std::string& path, Ask ask) {
    static std::vector<Kept> entries; // kept from folder to folder for their memory alone
    static std::vector<std::uint64_t> order;
    entries.clear();
    order.clear();
    const int handle = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ReadFolder(handle, [&](const char* name) {
        const std::uint64_t place = OrderOf(name);
        if (place == 0) {
            return;
        }
        order.push_back(place << 32U | entries.size());
        Kept& entry = entries.emplace_back();
        entry.time = ask == Ask::EveryEntry ? TimeOf(handle, name) : 0;
        std::memcpy(entry.name, name, sizeof entry.name);
    });
    std::vector<Kept> pictures = InOrder(entries, order);
    if (ask == Ask::Pictures) {
        for (Kept& picture : pictures) {
            picture.time = TimeOf(handle, picture.name);
        }
    }
    close(handle);
    return pictures;
}

using Listing = std::vector<std::vector<Kept>>;

Listing ListCard(const std::string& dcim, Ask ask) {
    std::vector<std::string> folders;
    const int handle = open(dcim.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ReadFolder(handle, [&](const char* name) {
        if (strnlen(name, 9) == 8) {
            folders.emplace_back(name);
        }
    });
    close(handle);
    std::sort(folders.begin(), folders.end(), std::greater<>());
    Listing listing;
    listing.reserve(folders.size());
    for (const std::string& folder : folders) {
        listing.push_back(ListFolder(dcim + "/" + folder, ask));
    }
    return listing;
}

bool Holds(const Listing& listing, const BenchmarkCard& card) {
    const auto samePicture = [](const Kept& kept, const dcfbench::Picture& picture) {
        return std::strcmp(kept.name, picture.name) == 0 && std::strcmp(kept.companion, picture.companion) == 0;
    };
    const auto sameFolder = [&](const std::vector<Kept>& kept, const dcfbench::Folder& folder) {
        return std::equal(kept.begin(), kept.end(), folder.pictures.begin(), folder.pictures.end(), samePicture);
    };
    return std::equal(listing.begin(), listing.end(), card.folders.begin(), card.folders.end(), sameFolder);
}

void Floor(benchmark::State& state, Ask ask) {
    const BenchmarkCard& card = CardOf(state);
    const std::string dcim = card.card.Dcim();
    Listing listing;
    for (auto _ : state) {
        state.PauseTiming();
        listing.clear();
        state.ResumeTiming();
        listing = ListCard(dcim, ask);
    }
    CountFiles(state, card.shape.Items());
    dcfbench::Check(state, Holds(listing, card), "the floor does not list the card");
}

const bool s_registered = dcfbench::Register(
    dcfbench::AllShapes(), {{"Listup", Listup},
                            {"FloorOfListup", [](benchmark::State& state) { Floor(state, Ask::EveryEntry); }},
                            {"FloorOfPictures", [](benchmark::State& state) { Floor(state, Ask::Pictures); }},
                            {"FloorOfNames", [](benchmark::State& state) { Floor(state, Ask::Nothing); }}});

} // namespace
