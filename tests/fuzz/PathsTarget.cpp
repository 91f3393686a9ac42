// Every operation of the interface that takes a path, a name or a root, and the rules below it, with arbitrary strings:
// an input is a list of calls, one a line. The first character of a line is the operation (see kOperations), the rest
// is its text, in which a '@' stands for the card's root. Results, list and card are compared with the reference of the
// model test. A text lies in memory of its own, not a byte too long, so that a look beyond its end is seen.
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "CBIFileListManager.h"
#include "CSDCFDir.h"
#include "CSDCFList.h"
#include "Card.h"
#include "ComparedSides.h"
#include "Escape.h"
#include "FakePlatform.h"
#include "PCSDCFFSIO.h"
#include "PosixSeam.h"
#include "Target.h"

namespace dcffuzz {
namespace {

using namespace dcftest;

constexpr std::size_t kMostLines = 24;
constexpr std::size_t kPathSize = 99;

/// A text as the library takes it.
class Argument {
public:
    explicit Argument(const std::string& text) : m_text(std::make_unique<char[]>(text.size() + 1)) {
        std::copy(text.begin(), text.end(), m_text.get());
    }
    char* Get() const {
        return m_text.get();
    }

private:
    std::unique_ptr<char[]> m_text;
};

ReferenceCard MakeCard(const std::string& root) {
    ReferenceCard card;
    card.root = root;
    card.folders["101PHOTO"].files = {{"KVR_0003.JPG", {0644, 11}},
                                      {"KVR_0003.SRW", {0644, 12}},
                                      {"KVR_0002.JPG", {0444, 13}},
                                      {"KVR_0001.MP4", {0644, 14}}};
    card.folders["100ABCDE"].files = {{"KVR_0009.JPG", {0644, 15}}, {"KVR_0009.MPO", {0644, 16}}};
    card.folders["Camera"].files = {{"20240131_000002.JPG", {0644, 17}}, {"20240131_000001.JPG", {0644, 18}}};
    return card;
}

Clock FixedClock() {
    Clock clock;
    clock.now = 1700000000;
    clock.local.tm_year = 124;
    clock.local.tm_mon = 11;
    clock.local.tm_mday = 24;
    return clock;
}

std::string Show(int value) {
    return std::to_string(value);
}

// ---- Operations of the interface, on both sides ----

using Code = Operation (*)(const std::string& text);

Operation FileListIndex(const std::string& text) {
    return {"GetFileListIndex", text, [text](Expected& side) { return Show(side.ListIndex(text)); },
            [text](Actual& side) { return Show(side.list.GetFileListIndex(Argument(text).Get())); }};
}

Operation SetCur(const std::string& text) {
    return {"SetCur", text, [text](Expected& side) { return Show(side.SetCur(text)); },
            [text](Actual& side) { return Show(side.list.SetCur(Argument(text).Get())); }};
}

Operation GetInfo(const std::string& text) {
    return {"GetInfo", text, [text](Expected& side) { return Show(side.Info(text, 0)); },
            [text](Actual& side) { return Show(side.list.GetInfo(Argument(text).Get(), side.Item(0))); }};
}

Operation AddPhotoMetadata(const std::string& text) {
    return {"AddPhotoMetadata", text, [text](Expected& side) { return Show(side.AddPhoto(text, 7)); },
            [text](Actual& side) {
                PhotoInfo info = ClientInfo(7);
                return Show(side.list.AddPhotoMetadata(Argument(text).Get(), info));
            }};
}

Operation SetFilePrefix(const std::string& text) {
    return {"SetFilePrefix", text, [text](Expected& side) { return Show(side.Prefix(text)); },
            [text](Actual& side) { return Show(side.list.SetFilePrefix(Argument(text).Get())); }};
}

/// The type is the text's length, so that every one comes.
int TypeOf(const std::string& text) {
    return static_cast<int>(text.size() % 8) - 1;
}

Operation GetNewFileName(const std::string& text) {
    const int type = TypeOf(text);
    return {"GetNewFileName", Show(type), [type](Expected& side) { return Show(side.NewName(type)); },
            [type](Actual& side) {
                const auto out = std::make_unique<NameBuffer>(side.buffer);
                const int result = side.list.GetNewFileName(out->data(), type);
                side.buffer = *out;
                return Show(result);
            }};
}

Operation GetLatestFileName(const std::string& text) {
    const int type = TypeOf(text);
    return {"GetLatestFileName", Show(type), [type](Expected& side) { return Show(side.Latest(false, type)); },
            [type](Actual& side) {
                const auto out = std::make_unique<std::array<char, kPathSize>>();
                std::copy_n(side.buffer.begin(), kPathSize, out->begin());
                const int result = side.list.GetLatestFileName(out->data(), static_cast<eFileType>(type));
                std::copy_n(out->begin(), kPathSize, side.buffer.begin());
                return Show(result);
            }};
}

Operation SetBaseURI(const std::string& text) {
    return {"SetBaseURI", text,
            [text](Expected& side) {
                side.list.effects.log.push_back("CSFileList SetBaseURI start");
                const bool taken = text.size() <= 97;
                side.list.baseURI = taken ? text : side.list.baseURI;
                return Show(taken ? 0 : -1);
            },
            [text](Actual& side) { return Show(side.list.SetBaseURI(Argument(text).Get())); }};
}

/// Puts a path into an item, as if the list had filled it.
void Fill(CSFileListItem& item, const std::string& text) {
    item = CSFileListItem();
    const std::size_t length = std::min(text.size(), sizeof item.m_strURI - 1);
    std::memcpy(item.m_strURI, text.data(), length);
    item.m_strURI[length] = '\0';
}

Operation OnItem(const char* name, const std::string& text, int (*onReference)(Reference&, CSFileListItem*),
                 int (*onLibrary)(CSFileList&, CSFileListItem*)) {
    return {name, text,
            [text, onReference](Expected& side) {
                Fill(side.items[1], text);
                return Show(onReference(side.list, &side.items[1]));
            },
            [text, onLibrary](Actual& side) {
                Fill(side.items[1], text);
                return Show(onLibrary(side.list, &side.items[1]));
            }};
}

#define ON_ITEM(call)                                                                                                  \
    [](Reference& list, CSFileListItem* item) { return static_cast<int>(list.call); },                                 \
        [](CSFileList& list, CSFileListItem* item) { return static_cast<int>(list.call); }

Operation Delete(const std::string& text) {
    return OnItem("Delete", text, ON_ITEM(Delete(item)));
}

Operation Protect(const std::string& text) {
    return OnItem("SetProtect", text, ON_ITEM(SetProtect(item, true)));
}

Operation Unprotect(const std::string& text) {
    return OnItem("SetProtect", text, ON_ITEM(SetProtect(item, false)));
}

Operation SetWifiFlag(const std::string& text) {
    return OnItem("SetWifiFlag", text, ON_ITEM(SetWifiFlag(item, true)));
}

Operation IsLast(const std::string& text) {
    return OnItem("IsLast", text, ON_ITEM(IsLast(item)));
}

struct Entry {
    char key;
    Code code;
};

constexpr Entry kOperations[] = {
    {'i', FileListIndex}, {'c', SetCur},         {'g', GetInfo},           {'m', AddPhotoMetadata},
    {'p', SetFilePrefix}, {'n', GetNewFileName}, {'l', GetLatestFileName}, {'b', SetBaseURI},
    {'d', Delete},        {'+', Protect},        {'-', Unprotect},         {'w', SetWifiFlag},
    {'z', IsLast},
};

// ---- Below the interface ----

long NumberIn(const std::string& text, std::size_t offset, std::size_t length) {
    return offset < text.size() ? std::strtol(text.substr(offset, length).c_str(), nullptr, 10) : 0;
}

void CheckNumbers(const std::string& root, const std::string& path) {
    CSDCFList tree;
    Require(tree.SetBaseURI(root.c_str()) == 0, "the root is refused");
    int dnum = -7;
    int fnum = -7;
    tree.GetNum(Argument(path).Get(), &dnum, &fnum);
    const bool camera = path.find("Camera") != std::string::npos;
    const std::size_t length = root.size();
    Require(dnum == (camera ? 99 : NumberIn(path, length + 6, 3)), Visible(path) + " has another directory number");
    Require(fnum == (camera ? NumberIn(path, length + 22, 6) : NumberIn(path, length + 19, 4)),
            Visible(path) + " has another file number");
    Require(tree.GetDidx(Argument(path).Get()) == -1, Visible(path) + " is found in an empty tree");
}

void CheckDirectoryName(const std::string& name) {
    std::string outcome = "taken";
    CSDCFDir dir(100, Argument("100ABCDE").Get());
    try {
        dir.SetDirName(Argument(name).Get());
        Require(dir.m_strDirName == name, Visible(name) + " is kept otherwise");
    } catch (const Ended&) {
        outcome = "ended";
    }
    Require(outcome == (name.size() < kPathSize ? "taken" : "ended"), Visible(name) + " is " + outcome);
}

/// Calls on the card, all of them below the root.
void CheckCalls(const std::string& root, const std::string& text) {
    const Argument path(root + "/" + text);
    const std::string known = path.Get();
    std::error_code none;
    const bool there = std::filesystem::exists(known, none);
    const bool folder = std::filesystem::is_directory(known, none);
    Require(PCSDCFFSIO::IsExist(path.Get()) == there, Visible(known) + " is there or not");
    Require(PCSDCFFSIO::IsDirExist(path.Get()) == folder, Visible(known) + " is a folder or not");
    Require(PCSDCFFSIO::IsDirEmpty(path.Get()) == (!folder || std::filesystem::is_empty(known, none)),
            Visible(known) + " is empty or not");
    Require(!PCSDCFFSIO::IsProtect(path.Get()) || there, Visible(known) + " is protected and not there");
    for (const bool folders : {false, true}) {
        PCSDCFFSIO listing(path.Get(), folders);
        PCSDCFFSIO::PTFile entry{};
        int entries = 0;
        while (listing.Read(&entry) == 0) {
            Require(std::strlen(entry.szName) < kPathSize && ++entries < 100, "a listing without end");
        }
        Require(folder || entries == 0, Visible(known) + " lists entries");
    }
    const PosixSeam seam; // no sync() that waits for every disk
    Require(PCSDCFFSIO::MakeDirectory(path.Get()) == (there ? -1 : 0) || !there, Visible(known) + " is made twice");
}

/// Lists another root below the card's.
void ListElsewhere(const std::string& root, const std::string& text) {
    const PosixSeam seam;
    (void)CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT);
    const std::string elsewhere = root + text;
    const bool taken = CBIFileListManager::SetBaseURI(Argument(elsewhere).Get()) == 0;
    Require(taken == (elsewhere.size() <= 97), Visible(elsewhere) + " is taken or not");
    try {
        if (taken) {
            Require(CBIFileListManager::GetFileList()->Listup() >= 0, "a listing gives less than none");
        }
    } catch (const Ended& end) { // paths that were cut, and "Camera" in a path
        Require(end.info.compare(0, 7, "cannot ") == 0, "the listing would end by " + end.info);
    }
    (void)CBIFileListManager::Destroy();
}

/// Whether a text keeps to the card.
bool StaysBelow(const std::string& text) {
    return ("/" + text + "/").find("/../") == std::string::npos;
}

// ---- Lines ----

std::string WithRoot(const std::string& text, const std::string& root) {
    std::string whole;
    for (const char c : text) {
        whole += c == '@' ? root : std::string(1, c);
    }
    return whole;
}

void Call(ComparedSides& sides, const std::string& root, const std::string& line) {
    const std::string text = WithRoot(line.substr(1), root);
    CheckNumbers(root, text);
    for (const Entry& entry : kOperations) {
        if (entry.key == line[0]) {
            sides.Do(entry.code(text), FixedClock());
        }
    }
    if (line[0] == 's') {
        CheckDirectoryName(text);
        FakePlatform::Get().ForgetLines();
    }
}

} // namespace
} // namespace dcffuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace dcffuzz;
    SetUpOnce();
    static const Card place;
    FakePlatform::Get().Reset();
    CSDCFList::m_PhotoInfoCollector = nullptr;
    DirPathMapper::getInstance()->clear();
    (void)TakeCollected();
    EscapeAssertions();
    const std::string root = place.Root() + "/r";
    Require(::mkdir(root.c_str(), 0755) == 0, "there is no place for a card");
    std::vector<std::string> lines = Lines(data, size);
    lines.resize(std::min(lines.size(), kMostLines));
    {
        ComparedSides sides(MakeCard(root));
        sides.Do(MakeOperation("Listup", *std::make_unique<Dice>(1U), sides.expected), FixedClock());
        for (const std::string& line : lines) {
            if (!line.empty() && !sides.Over()) {
                Call(sides, root, line);
            }
        }
    }
    for (const std::string& line : lines) {
        if (!line.empty() && StaysBelow(line.substr(1)) && line[0] == 'x') {
            CheckCalls(root, line.substr(1));
        } else if (!line.empty() && StaysBelow(line.substr(1)) && line[0] == 'r') {
            ListElsewhere(root, line.substr(1));
        }
    }
    std::filesystem::remove_all(root);
    return 0;
}
