#include "Operations.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "RandomCard.h"

namespace dcftest {

namespace {

std::string Show(int value) {
    return std::to_string(value);
}

std::string Show(bool value) {
    return value ? "true" : "false";
}

std::string Show(const std::vector<int>& values) {
    std::string text = "[";
    for (const int value : values) {
        text += " " + std::to_string(value);
    }
    return text + " ]";
}

std::string Show(const Path& path) {
    return path ? *path : "null";
}

const char* const kDone = "done";

/// The choices for one operation.
class Chooser {
public:
    Chooser(Dice& dice, const Expected& state) : m_dice(dice), m_state(state) {}

    Dice& dice() {
        return m_dice;
    }
    const Reference& list() const {
        return m_state.list;
    }
    int Slot(int nullPercent = 3) {
        return m_dice.Chance(nullPercent) ? kNoSlot : m_dice.Pick(0, kSlots - 1);
    }
    bool Flag() {
        return m_dice.Chance(50);
    }
    int Position() {
        const int count = list().FilesInTree();
        if (count > 0 && m_dice.Chance(93)) {
            return m_dice.Pick(0, count - 1);
        }
        if (m_dice.Chance(5)) {
            return m_dice.Chance(50) ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
        }
        return m_dice.Chance(50) ? m_dice.Pick(-3, -1) : count + m_dice.Pick(0, 3);
    }
    Path File() {
        const int count = list().FilesInTree();
        const int kind = m_dice.Pick(1, 100);
        const std::string listed = count > 0 ? list().PathAt(m_dice.Pick(0, count - 1)) : "";
        if (kind <= 70) {
            return listed;
        }
        if (kind <= 84) {
            return std::string(m_state.items[static_cast<std::size_t>(m_dice.Pick(0, kSlots - 1))].m_strURI);
        }
        if (kind <= 92) {
            const std::string folder = RandomFolderName(m_dice);
            return list().baseURI + "/DCIM/" + folder + "/" + RandomFileName(m_dice, folder);
        }
        if (kind <= 95) {
            return listed + std::string(99, 'x');
        }
        return kind <= 98 ? Path("/a/b") : Path();
    }
    int Type() {
        return m_dice.Chance(85) ? m_dice.Of<int>({0, 0, 0, 1, 2, 3, 5}) : m_dice.Of<int>({-1, 4, 6, -7});
    }
    int Mode() {
        return m_dice.Of<int>({0, 0, 1, 2});
    }

    /// A folder on the card that is one; empty when there is none.
    std::string Folder() {
        std::vector<std::string> names;
        for (const auto& [name, folder] : list().card.folders) {
            if (!folder.plain) {
                names.push_back(name);
            }
        }
        return names.empty() ? "" : m_dice.Of(names);
    }

private:
    Dice& m_dice;
    const Expected& m_state;
};

/// The same code for both sides.
template <typename Code>
Operation Both(const std::string& name, const std::string& arguments, Code code) {
    return {name, arguments, [code](Expected& side) -> std::string { return code(side); },
            [code](Actual& side) -> std::string { return code(side); }};
}

using Maker = Operation (*)(const std::string&, Chooser&);

struct Kind {
    const char* name;
    int weight;
    Maker make;
};

// Operations without arguments.
#define PLAIN(operation)                                                                                               \
    [](const std::string& name, Chooser&) {                                                                            \
        return Both(name, "", [](auto& side) { return Show(side.list.operation()); });                                 \
    }
// Operations on an item.
#define ON_ITEM(operation)                                                                                             \
    [](const std::string& name, Chooser& choose) {                                                                     \
        const int slot = choose.Slot();                                                                                \
        return Both(name, "item " + Show(slot),                                                                        \
                    [slot](auto& side) { return Show(side.list.operation(side.Item(slot))); });                        \
    }
#define ON_ITEM_AND_FLAG(operation)                                                                                    \
    [](const std::string& name, Chooser& choose) {                                                                     \
        const int slot = choose.Slot();                                                                                \
        const bool on = choose.Flag();                                                                                 \
        return Both(name, "item " + Show(slot) + ", " + Show(on),                                                      \
                    [slot, on](auto& side) { return Show(side.list.operation(side.Item(slot), on)); });                \
    }
#define AT_POSITION(operation)                                                                                         \
    [](const std::string& name, Chooser& choose) {                                                                     \
        const int position = choose.Position();                                                                        \
        const int slot = choose.Slot();                                                                                \
        return Both(name, Show(position) + ", item " + Show(slot),                                                     \
                    [position, slot](auto& side) { return Show(side.list.operation(position, side.Item(slot))); });    \
    }
#define WITH_POSITION(operation)                                                                                       \
    [](const std::string& name, Chooser& choose) {                                                                     \
        const int position = choose.Position();                                                                        \
        return Both(name, Show(position), [position](auto& side) { return Show(side.list.operation(position)); });     \
    }
#define WITH_FLAG(operation)                                                                                           \
    [](const std::string& name, Chooser& choose) {                                                                     \
        const bool on = choose.Flag();                                                                                 \
        return Both(name, Show(on), [on](auto& side) { return Show(side.list.operation(on)); });                       \
    }
// Settings and looks that the sides take in their own types.
#define SETTING(operation)                                                                                             \
    [](const std::string& name, Chooser& choose) {                                                                     \
        const int mode = choose.Mode();                                                                                \
        return Both(name, Show(mode), [mode](auto& side) -> std::string {                                              \
            side.operation(mode);                                                                                      \
            return kDone;                                                                                              \
        });                                                                                                            \
    }
#define WITH_PATH(operation)                                                                                           \
    [](const std::string& name, Chooser& choose) {                                                                     \
        const Path path = choose.File();                                                                               \
        return Both(name, Show(path), [path](auto& side) { return Show(side.operation(path)); });                      \
    }

Operation MakeIncludeNonDcf(const std::string& name, Chooser& choose) {
    const bool on = choose.dice().Chance(80);
    return Both(name, Show(on), [on](auto& side) -> std::string {
        side.list.IncludeNonDCF(on);
        return kDone;
    });
}

Operation MakeSetSel(const std::string& name, Chooser& choose) {
    const int position = choose.Position();
    const bool on = choose.dice().Chance(80);
    return Both(name, Show(position) + ", " + Show(on), [position, on](auto& side) -> std::string {
        side.list.SetSel(position, on);
        return kDone;
    });
}

Operation MakeSelectCancel(const std::string& name, Chooser& /*choose*/) {
    return Both(name, "", [](auto& side) -> std::string {
        side.list.SelectCancel();
        return kDone;
    });
}

Operation MakeSetCustomBitAll(const std::string& name, Chooser& choose) {
    const int bit = choose.dice().Pick(-1, 9);
    const bool on = choose.Flag();
    return Both(name, Show(bit) + ", " + Show(on),
                [bit, on](auto& side) { return Show(side.list.SetCustomBitAll(bit, on)); });
}

Operation MakeNewName(const std::string& name, Chooser& choose) {
    const int type = choose.Type();
    return Both(name, Show(type), [type](auto& side) { return Show(side.NewName(type)); });
}

Operation MakeLatestName(const std::string& name, Chooser& choose) {
    const int type = choose.dice().Chance(70) ? choose.dice().Pick(1, 2) : choose.Type();
    const bool noBuffer = choose.dice().Chance(3);
    return Both(name, Show(type) + (noBuffer ? ", no buffer" : ""),
                [type, noBuffer](auto& side) { return Show(side.Latest(noBuffer, type)); });
}

Operation MakeSetFilePrefix(const std::string& name, Chooser& choose) {
    const Path prefix =
        choose.dice().Chance(4)
            ? Path()
            : Path(choose.dice().Of<std::string>({"KVR_", "_KVR", "ABCD", "abcd", "JPG_", "12345678", "123456789"}));
    return Both(name, Show(prefix), [prefix](auto& side) { return Show(side.Prefix(prefix)); });
}

Operation MakeGetInfo(const std::string& name, Chooser& choose) {
    const Path path = choose.File();
    const int slot = choose.Slot();
    return Both(name, Show(path) + ", item " + Show(slot),
                [path, slot](auto& side) { return Show(side.Info(path, slot)); });
}

Operation MakeGetFileCount(const std::string& name, Chooser& choose) {
    const int type = choose.dice().Pick(-2, 6);
    return Both(name, Show(type), [type](auto& side) { return Show(side.FileCount(type)); });
}

Operation MakeRegisterPhoto(const std::string& name, Chooser& choose) {
    const auto kind = choose.dice().Of<Collector>(
        {Collector::None, Collector::Describing, Collector::Describing, Collector::Failing});
    return Both(name, Show(static_cast<int>(kind)), [kind](auto& side) { return Show(side.RegisterPhoto(kind)); });
}

Operation MakeRegisterVideo(const std::string& name, Chooser& /*choose*/) {
    return Both(name, "", [](auto& side) { return Show(side.RegisterVideo()); });
}

Operation MakeAddPhoto(const std::string& name, Chooser& choose) {
    const Path path = choose.File();
    const int number = choose.dice().Pick(1, 200);
    return Both(name, Show(path) + ", " + Show(number),
                [path, number](auto& side) { return Show(side.AddPhoto(path, number)); });
}

// ---- From outside ----

template <typename Code>
Operation Outside(const std::string& name, const std::string& arguments, Code code) {
    return Both(name, arguments, [code](auto& side) -> std::string {
        code(side);
        return kDone;
    });
}

Operation PutFile(const std::string& name, const std::string& folder, const std::string& file, Chooser& choose) {
    const CardFile content = RandomFile(choose.dice());
    return Outside(name, folder + "/" + file + " " + ModeText(content.mode),
                   [folder, file, content](auto& side) { side.PutFile(folder, file, content); });
}

Operation MakePutFile(const std::string& name, Chooser& choose) {
    const std::string folder = choose.Folder();
    const std::string file = choose.dice().Chance(15) ? "notes.txt" : RandomFileName(choose.dice(), folder);
    if (folder.empty() || !CanHold(choose.list().card.folders.at(folder), file)) {
        return {};
    }
    return PutFile(name, folder, file, choose);
}

/// The client writes the file whose name it has just been given.
Operation MakeWriteNewest(const std::string& name, Chooser& choose) {
    const Reference& list = choose.list();
    if (!list.tree || list.tree->dirs.empty() || list.tree->dirs.front().items.empty()) {
        return {};
    }
    const RefDir& front = list.tree->dirs.front();
    const std::string& file = front.items.front().name;
    const auto folder = list.card.folders.find(front.name);
    if (folder == list.card.folders.end() || folder->second.plain || !CanHold(folder->second, file)) {
        return {};
    }
    return PutFile(name, front.name, file, choose);
}

/// A file on the card; empty names when there is none.
std::pair<std::string, std::string> RandomEntry(Chooser& choose) {
    const std::string folder = choose.Folder();
    if (folder.empty() || choose.list().card.folders.at(folder).files.empty()) {
        return {};
    }
    std::vector<std::string> names;
    for (const auto& [name, file] : choose.list().card.folders.at(folder).files) {
        names.push_back(name);
    }
    return {folder, choose.dice().Of(names)};
}

Operation MakeTakeFile(const std::string& name, Chooser& choose) {
    const auto [folder, file] = RandomEntry(choose);
    if (file.empty()) {
        return {};
    }
    return Outside(name, folder + "/" + file, [f = folder, n = file](auto& side) { side.TakeFile(f, n); });
}

Operation MakeChangeMode(const std::string& name, Chooser& choose) {
    const auto [folder, file] = RandomEntry(choose);
    if (file.empty() || choose.list().card.folders.at(folder).files.at(file).special == Special::DanglingLink) {
        return {};
    }
    const auto mode = choose.dice().Of<mode_t>({0444, 0644, 0555, 0200});
    return Outside(name, folder + "/" + file + " " + ModeText(mode),
                   [f = folder, n = file, mode](auto& side) { side.ChangeMode(f, n, mode); });
}

Operation MakePutFolder(const std::string& name, Chooser& choose) {
    // Behind an empty tree it is mostly the one that the next file needs.
    const Reference& list = choose.list();
    const bool needed = list.tree && list.tree->dirs.empty() && choose.dice().Chance(70);
    const std::string folder = needed ? "100PHOTO" : RandomFolderName(choose.dice());
    if (!list.card.dcim || list.card.folders.count(folder) > 0) {
        return {};
    }
    return Outside(name, folder, [folder](auto& side) { side.PutFolder(folder); });
}

Operation MakeTakeFolder(const std::string& name, Chooser& choose) {
    const std::string folder = choose.Folder();
    if (folder.empty()) {
        return {};
    }
    return Outside(name, folder, [folder](auto& side) { side.TakeFolder(folder); });
}

Operation MakeStoreSeries(const std::string& name, Chooser& choose) {
    const long value = choose.dice().Of<long>({0, 1, -5, 10000001, 10100003, 30000007, 99809998, 99909997, 99909998,
                                               99909999, 99909999, 99910000, 150000000});
    return Outside(name, std::to_string(value), [value](auto& side) { side.Series(value); });
}

Operation MakeStoreFails(const std::string& name, Chooser& choose) {
    const bool fails = choose.dice().Chance(25);
    return Outside(name, Show(fails), [fails](auto& side) { side.StoreFails(fails); });
}

const Kind kKinds[] = {
    {"SetSeriesMode", 6, WITH_FLAG(SetSeriesMode)},
    {"GetSeriesMode", 2, PLAIN(GetSeriesMode)},
    {"Listup", 1, PLAIN(Listup)},
    {"IncludeNonDCF", 3, MakeIncludeNonDcf},
    {"Delete", 14, ON_ITEM(Delete)},
    {"DeleteSel", 9, PLAIN(DeleteSel)},
    {"DeleteAll", 2, PLAIN(DeleteAll)},
    {"GetCount", 6, PLAIN(GetCount)},
    {"GetAt", 14, AT_POSITION(GetAt)},
    {"GetFileListIndex", 8, WITH_PATH(ListIndex)},
    {"GetCurIndex", 5, PLAIN(GetCurIndex)},
    {"GetCurrent", 8, ON_ITEM(GetCurrent)},
    {"GetFirst", 8, ON_ITEM(GetFirst)},
    {"GetNext", 16, ON_ITEM(GetNext)},
    {"GetPrev", 14, ON_ITEM(GetPrev)},
    {"GetLast", 8, ON_ITEM(GetLast)},
    {"IsLast", 8, ON_ITEM(IsLast)},
    {"SetFileNameMake", 3, SETTING(FileNameMake)},
    {"SetFolderNameMake", 3, SETTING(FolderNameMake)},
    {"SetFileNameColor", 3, SETTING(Color)},
    {"SetImageType", 3, SETTING(ImageType)},
    {"GetNewFileName", 16, MakeNewName},
    {"GetLatestFileName", 6, MakeLatestName},
    {"UpdateFirstIndex", 5, WITH_FLAG(UpdateFirstIndex)},
    {"GetSelectIndecies", 4, PLAIN(GetSelectIndecies)},
    {"SetCur", 7, WITH_PATH(SetCur)},
    {"SetCurIndex", 8, WITH_POSITION(SetCurIndex)},
    {"IsSel", 4, WITH_POSITION(IsSel)},
    {"SetSel", 25, MakeSetSel},
    {"SelectCancel", 2, MakeSelectCancel},
    {"GetSelCount", 3, PLAIN(GetSelCount)},
    {"SetWifiFlag", 6, ON_ITEM_AND_FLAG(SetWifiFlag)},
    {"IsWifiFlag", 4, ON_ITEM(IsWifiFlag)},
    {"SetProtect", 8, ON_ITEM_AND_FLAG(SetProtect)},
    {"SetProtectSel", 5, WITH_FLAG(SetProtectSel)},
    {"SetProtectAll", 2, WITH_FLAG(SetProtectAll)},
    {"SetProtectSelToggle", 6, PLAIN(SetProtectSelToggle)},
    {"SetFilePrefix", 3, MakeSetFilePrefix},
    {"GetInfo", 8, MakeGetInfo},
    {"GetAvailNumOfPhoto", 6, PLAIN(GetAvailNumOfPhoto)},
    {"GetFileCount", 6, MakeGetFileCount},
    {"SetCustomBitAll", 2, MakeSetCustomBitAll},
    {"RegisterPhotoMetadataCB", 3, MakeRegisterPhoto},
    {"RegisterVideoMetadataCB", 1, MakeRegisterVideo},
    {"AddPhotoMetadata", 5, MakeAddPhoto},
    {"GetAtSimply", 8, AT_POSITION(GetAtSimply)},
    {"RenameDCFFullStorage", 2, PLAIN(RenameDCFFullStorage)},
    // Below, from outside.
    {"a file appears", 8, MakePutFile},
    {"the newest file is written", 8, MakeWriteNewest},
    {"a file disappears", 4, MakeTakeFile},
    {"a mode changes", 4, MakeChangeMode},
    {"a folder appears", 3, MakePutFolder},
    {"a folder disappears", 1, MakeTakeFolder},
    {"the series value is stored", 2, MakeStoreSeries},
    {"the preference store fails", 2, MakeStoreFails},
};

constexpr std::size_t kInterfaceKinds = 47;

} // namespace

std::vector<std::string> InterfaceOperations() {
    std::vector<std::string> names;
    std::transform(std::begin(kKinds), std::begin(kKinds) + kInterfaceKinds, std::back_inserter(names),
                   [](const Kind& kind) { return kind.name; });
    return names;
}

Operation RandomOperation(Dice& dice, const Expected& state) {
    static const int total = std::accumulate(std::begin(kKinds), std::end(kKinds), 0,
                                             [](int sum, const Kind& kind) { return sum + kind.weight; });
    Chooser choose(dice, state);
    int at = dice.Pick(0, total - 1);
    for (const Kind& kind : kKinds) {
        at -= kind.weight;
        if (at < 0) {
            return kind.make(kind.name, choose);
        }
    }
    return {};
}

Operation MakeOperation(const std::string& name, Dice& dice, const Expected& state) {
    Chooser choose(dice, state);
    for (const Kind& kind : kKinds) {
        if (name == kind.name) {
            return kind.make(kind.name, choose);
        }
    }
    return {};
}

} // namespace dcftest
