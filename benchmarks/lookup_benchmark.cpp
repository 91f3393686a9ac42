// Looking a file up by its path: one call per iteration, the files in list order. There is no call on the card in it,
// so the floor is the reading of the two numbers in the path.
#include <cstdlib>
#include <cstring>

#include "BenchmarkCard.h"

namespace {

using dcfbench::BenchmarkCard;
using dcfbench::CardOf;

/// The paths one behind the other, each in a buffer of a path's size as a client has it.
class Paths {
public:
    explicit Paths(const BenchmarkCard& card) : m_stride(card.paths.front().size() + 1) {
        for (const std::string& path : card.paths) {
            m_text.append(path.c_str(), m_stride);
        }
    }
    char* At(int position) {
        return m_text.data() + static_cast<std::size_t>(position) * m_stride;
    }
    std::size_t Size() const {
        return m_stride;
    }

private:
    std::size_t m_stride; ///< All paths of a card are equally long.
    std::string m_text;
};

/// Calls with the position and the path of one file after the other. @return the last position, to be checked.
template <typename LookUp>
int EveryPath(benchmark::State& state, const BenchmarkCard& card, LookUp lookUp) {
    Paths paths(card);
    const int files = card.shape.Items();
    int position = -1;
    for (auto _ : state) {
        position = position + 1 < files ? position + 1 : 0;
        lookUp(position, paths.At(position));
    }
    return position;
}

void GetFileListIndex(benchmark::State& state) {
    BenchmarkCard& card = CardOf(state);
    ISFileList& list = card.List();
    int wrong = 0;
    EveryPath(state, card, [&](int position, char* path) { wrong += list.GetFileListIndex(path) == position ? 0 : 1; });
    dcfbench::Check(state, wrong == 0, "a path was found at a wrong position");
}

void SetCur(benchmark::State& state) {
    BenchmarkCard& card = CardOf(state);
    ISFileList& list = card.List();
    const int last = EveryPath(state, card, [&](int, char* path) { list.SetCur(path); });
    dcfbench::Check(state, list.GetCurIndex() == last, "the cursor is not on the last path");
}

void GetInfo(benchmark::State& state) {
    BenchmarkCard& card = CardOf(state);
    ISFileList& list = card.List();
    CSFileListItem item;
    const int last = EveryPath(state, card, [&](int, char* path) { list.GetInfo(path, &item); });
    dcfbench::Check(state, item.m_nFileNum == card.shape.files - last % card.shape.files, "the item is another file's");
}

void SetWifiFlag(benchmark::State& state) {
    BenchmarkCard& card = CardOf(state);
    ISFileList& list = card.List();
    list.SetCustomBitAll(0, false);
    CSFileListItem item;
    const int last = EveryPath(state, card, [&](int, char* path) {
        std::strcpy(item.m_strURI, path);
        list.SetWifiFlag(&item, true);
    });
    list.GetAt(last, &item);
    dcfbench::Check(state, item.m_bWifi, "the file is not marked");
}

void Floor(benchmark::State& state) {
    const BenchmarkCard& card = CardOf(state);
    const std::size_t root = card.card.Root().size();
    const int files = card.shape.files;
    int wrong = 0;
    EveryPath(state, card, [&](int position, const char* path) {
        const long dnum = std::strtol(path + root + 6, nullptr, 10);
        const long fnum = std::strtol(path + root + 19, nullptr, 10);
        const long found = (99 + card.shape.folders - dnum) * files + files - fnum;
        wrong += found == position ? 0 : 1;
    });
    dcfbench::Check(state, wrong == 0, "the floor finds a wrong position");
}

const bool s_registered = dcfbench::Register(dcfbench::AllShapes(), {{"GetFileListIndex", GetFileListIndex},
                                                                     {"FloorOfLookingUp", Floor},
                                                                     {"SetCur", SetCur},
                                                                     {"GetInfo", GetInfo},
                                                                     {"SetWifiFlag", SetWifiFlag}});

} // namespace
