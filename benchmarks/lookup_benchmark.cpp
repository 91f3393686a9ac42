// Looking every file up by its path, in list order. But for GetInfo there is no call on the card in it, so the floor is
// the reading of the two numbers in the path.
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

private:
    std::size_t m_stride; ///< All paths of a card are equally long.
    std::string m_text;
};

/// Calls with the position and the path of every file.
template <typename LookUp>
void EveryPath(benchmark::State& state, const BenchmarkCard& card, LookUp lookUp) {
    Paths paths(card);
    const int files = card.shape.Items();
    for (auto _ : state) {
        for (int position = 0; position < files; ++position) {
            lookUp(position, paths.At(position));
        }
    }
    dcfbench::CountFiles(state, files);
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
    EveryPath(state, card, [&](int, char* path) { list.SetCur(path); });
    dcfbench::Check(state, list.GetCurIndex() == card.shape.Items() - 1, "the cursor is not on the last path");
}

void GetInfo(benchmark::State& state) {
    BenchmarkCard& card = CardOf(state);
    ISFileList& list = card.List();
    CSFileListItem item;
    int wrong = 0;
    EveryPath(state, card, [&](int position, char* path) {
        list.GetInfo(path, &item);
        wrong += item.m_nFileNum == card.shape.files - position % card.shape.files ? 0 : 1;
    });
    dcfbench::Check(state, wrong == 0, "an item is another file's");
}

void SetWifiFlag(benchmark::State& state) {
    BenchmarkCard& card = CardOf(state);
    ISFileList& list = card.List();
    list.SetCustomBitAll(0, false);
    CSFileListItem item;
    EveryPath(state, card, [&](int, char* path) {
        std::strcpy(item.m_strURI, path);
        list.SetWifiFlag(&item, true);
    });
    int marked = 0;
    for (int position = 0; position < card.shape.Items(); ++position) {
        list.GetAt(position, &item);
        marked += item.m_bWifi ? 1 : 0;
    }
    dcfbench::Check(state, marked == card.shape.Items(), "a file is not marked");
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
