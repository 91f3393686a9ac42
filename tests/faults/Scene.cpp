#include "Scene.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "CSDCFList.h"
#include "Dice.h"
#include "FakePlatform.h"
#include "RandomCard.h"

namespace dcftest {

namespace {

constexpr std::time_t kNow = 1700000000;
constexpr int kRandomCards = 2;
constexpr int kRandomCardsThorough = 12;
constexpr int kScenesPerOperation = 2;
constexpr int kScenesPerOperationThorough = 5;
constexpr int kDraws = 25;
constexpr int kFruitlessDraws = 4; ///< In a row, until no further scene is looked for.

/// Cards on a file system in memory where there is one and nothing else is wished.
bool PreferMemory() {
    return std::getenv("TMPDIR") == nullptr && ::access("/dev/shm", W_OK) == 0 &&
           ::setenv("TMPDIR", "/dev/shm", 1) == 0;
}

std::tm LocalNow() {
    std::tm date{};
    date.tm_year = 124;
    date.tm_mon = 11;
    date.tm_mday = 24;
    return date;
}

Clock FixedClock() {
    Clock clock;
    clock.now = kNow;
    clock.local = LocalNow();
    return clock;
}

CardFile Plain(std::uint32_t time) {
    return {0644, time, false};
}

CardFile Protected(std::uint32_t time) {
    return {0444, time, false};
}

/// Two directories and "Camera", with companions and protected files.
void MakeOrdinaryCard(ReferenceCard& card) {
    card.folders["101PHOTO"].files = {{"KVR_0003.JPG", Plain(11)},
                                      {"KVR_0003.SRW", Plain(12)},
                                      {"KVR_0002.JPG", Protected(13)},
                                      {"KVR_0001.MP4", Plain(14)}};
    card.folders["100PHOTO"].files = {{"KVR_0009.JPG", Plain(15)}, {"KVR_0009.MPO", Protected(16)}};
    card.folders["Camera"].files = {{"20240131_000002.JPG", Plain(17)}, {"20240131_000001.JPG", Plain(18)}};
}

/// Two folders of a number, an empty one, one that holds something else, a file in place of a folder.
void MakeAwkwardCard(ReferenceCard& card) {
    card.folders["102PHOTO"].files = {};
    card.folders["101ABCDE"].files = {{"KVR_0001.JPG", Plain(21)}, {"notes.txt", Plain(22)}};
    card.folders["100PHOTO"].files = {{"KVR_0004.JPG", Plain(23)}};
    card.folders["100ABCDE"].files = {{"KVR_0007.SRW", Plain(24)}};
    card.folders["099ABCDE"].files = {{"KVR_0001.JPG", Plain(25)}};
    card.folders["104PHOTO"].plain = true;
    card.folders["104PHOTO"].mode = 0644;
}

/// The last numbers.
void MakeFullCard(ReferenceCard& card) {
    card.folders["999PHOTO"].files = {{"KVR_9998.JPG", Plain(31)}};
    card.folders["998ABCDE"].files = {{"KVR_0001.JPG", Plain(32)}, {"KVR_0001.SRW", Plain(33)}};
    card.folders["100ABCDE"].files = {{"KVR_0002.JPG", Plain(34)}};
    card.folders["Camera"].files = {{"20240131_000001.JPG", Plain(35)}};
}

/// One directory whose numbers are used up.
void MakeSingleCard(ReferenceCard& card) {
    card.folders["100PHOTO"].files = {{"KVR_9999.JPG", Plain(41)}, {"KVR_9999.SRW", Plain(42)}};
}

/// What the client has done before: settings, a walk, a selection.
const char* const kPreparations[] = {"SetSeriesMode",   "RegisterPhotoMetadataCB",
                                     "SetFileNameMake", "SetFolderNameMake",
                                     "GetAt",           "GetAt",
                                     "GetAt",           "SetSel",
                                     "SetSel",          "SetSel",
                                     "GetNext"};

/// Does an operation on the reference. @return false when it would end the process or throw: then nothing is changed.
bool Prepare(const Operation& operation, Expected& state) {
    Expected next = state;
    try {
        (void)operation.onReference(next);
    } catch (const Fatal&) {
        return false;
    } catch (const OutOfRange&) {
        return false;
    }
    state = next;
    return true;
}

Scene DrawScene(Dice& dice, const ReferenceCard& card, const std::string& operation) {
    Scene scene;
    scene.initial = card;
    scene.before.list.card = card;
    scene.before.list.baseURI = card.root;
    scene.before.list.clock = FixedClock();
    scene.series = dice.Of<long>({0, 0, 10000001, 10100003, 99909999});
    scene.before.list.storedSeries = scene.series;
    const auto prepare = [&](const char* name) {
        Operation step = MakeOperation(name, dice, scene.before);
        if (Prepare(step, scene.before)) {
            scene.setup.push_back(std::move(step));
        }
    };
    if (operation != "Listup") {
        prepare("Listup");
        for (const char* name : kPreparations) {
            prepare(name);
        }
    }
    scene.operation = MakeOperation(operation, dice, scene.before);
    return scene;
}

/// The calls on the card and the platform that an operation makes, as one text to tell scenes apart.
std::string CallsText(const Forecast& forecast) {
    std::string text;
    for (const std::string& call : forecast.after.list.card.calls) {
        text += call + "\n";
    }
    for (const auto& [name, count] : forecast.after.list.card.faults.seen) {
        text += name + " " + std::to_string(count) + "\n";
    }
    return text;
}

} // namespace

bool Thorough() {
    const char* value = std::getenv("DCF_TEST_FAULTS");
    return value != nullptr && std::string_view(value) == "full";
}

Stage::Stage() : m_inMemory(PreferMemory()) {
    ::umask(022);
}

std::vector<ReferenceCard> Stage::Cards() const {
    std::vector<ReferenceCard> cards(5);
    MakeOrdinaryCard(cards[0]);
    MakeAwkwardCard(cards[1]);
    MakeFullCard(cards[2]);
    MakeSingleCard(cards[3]);
    cards[4].dcim = false;
    for (int seed = 1; seed <= (Thorough() ? kRandomCardsThorough : kRandomCards); ++seed) {
        Dice dice(static_cast<std::uint32_t>(seed));
        cards.emplace_back();
        MakeRandomCard(dice, cards.back());
    }
    for (ReferenceCard& card : cards) {
        card.root = m_card.Root();
    }
    return cards;
}

std::vector<Scene> Stage::Scenes() const {
    std::vector<Scene> scenes;
    int number = 0;
    for (const ReferenceCard& card : Cards()) {
        ++number;
        for (const std::string& operation : InterfaceOperations()) {
            Dice dice(static_cast<std::uint32_t>(number));
            std::set<std::string> known;
            const std::size_t most = Thorough() ? kScenesPerOperationThorough : kScenesPerOperation;
            int fruitless = 0;
            for (int draw = 0; draw < kDraws && fruitless < kFruitlessDraws && known.size() < most; ++draw) {
                Scene scene = DrawScene(dice, card, operation);
                Expected tried = scene.before;
                if (!Prepare(scene.operation, tried) || !known.insert(CallsText(Foresee(scene, CallFaults{}))).second) {
                    fruitless += known.empty() ? 0 : 1;
                    continue;
                }
                fruitless = 0;
                scene.name =
                    "card " + std::to_string(number) + ", draw " + std::to_string(draw) + ", " + scene.operation.Text();
                scenes.push_back(std::move(scene));
            }
        }
    }
    return scenes;
}

Forecast Foresee(const Scene& scene, const CallFaults& faults, Events* events) {
    Forecast forecast;
    forecast.after = scene.before;
    Reference& list = forecast.after.list;
    list.effects = {};
    list.card.calls.clear();
    list.card.faults = faults;
    list.events = events;
    try {
        forecast.result = scene.operation.onReference(forecast.after);
    } catch (const OutOfRange& error) {
        forecast.result = "threw " + error.text;
    } catch (const Fatal& fatal) {
        forecast.fatal = fatal;
    } catch (const PowerCut&) {
        forecast.cut = true;
    }
    return forecast;
}

std::unique_ptr<Actual> Stage::Set(const Scene& scene) const {
    if (!CardDifference(scene.initial).empty()) {
        RemoveReal(m_card.Dcim());
        MakeRealCard(scene.initial);
    }
    FakePlatform& platform = FakePlatform::Get();
    platform.Reset();
    platform.SetPreference(kSeriesGroup, kSeriesKey, scene.series.value_or(0));
    CSDCFList::m_PhotoInfoCollector = nullptr;
    DirPathMapper::getInstance()->clear();
    auto actual = std::make_unique<Actual>();
    actual->dcim = m_card.Dcim();
    (void)actual->list.SetBaseURI(m_card.Root().c_str());
    PosixSeam seam;
    SetClock(seam);
    for (const Operation& step : scene.setup) {
        (void)step.onLibrary(*actual);
    }
    (void)TakeCollected();
    platform.ForgetLines();
    return actual;
}

std::string OnLibrary(const Operation& operation, Actual& actual) {
    try {
        return operation.onLibrary(actual);
    } catch (const std::out_of_range& error) {
        const std::string text = error.what();
        return "threw " + text.substr(0, text.find(": "));
    }
}

void SetClock(PosixSeam& seam) {
    seam.FixTime(kNow);
    seam.FixLocalTime(LocalNow());
    seam.SkipSleeps();
}

ReferenceCard ReadCard(const std::string& root) {
    namespace fs = std::filesystem;
    ReferenceCard card;
    card.root = root;
    card.dcim = fs::exists(root + "/DCIM");
    const auto status = [](const fs::path& path) {
        struct stat found {};
        (void)::lstat(path.c_str(), &found);
        return found;
    };
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(root + "/DCIM", none)) {
        CardFolder& folder = card.folders[entry.path().filename()];
        folder.mode = status(entry.path()).st_mode & 07777U;
        folder.plain = !entry.is_directory();
        if (folder.plain) {
            continue;
        }
        for (const auto& file : fs::directory_iterator(entry.path())) {
            const struct stat found = status(file.path());
            folder.files[file.path().filename()] = {found.st_mode & 07777U, static_cast<std::uint32_t>(found.st_mtime),
                                                    S_ISDIR(found.st_mode)};
        }
    }
    return card;
}

namespace {

bool HasTwoOfANumber(const ReferenceCard& card) {
    std::set<std::string> numbers;
    return std::any_of(card.folders.begin(), card.folders.end(),
                       [&](const auto& folder) { return !numbers.insert(folder.first.substr(0, 3)).second; });
}

} // namespace

std::string ListedAnew(const ReferenceCard& card, long series) {
    FakePlatform& platform = FakePlatform::Get();
    platform.Reset();
    platform.SetPreference(kSeriesGroup, kSeriesKey, series);
    CSDCFList::m_PhotoInfoCollector = nullptr;
    Expected expected;
    expected.list.card = card;
    expected.list.card.calls.clear();
    expected.list.card.faults = {};
    expected.list.baseURI = card.root;
    expected.list.storedSeries = series;
    expected.list.registry = DirPathMapper::getInstance()->m_mapPath;
    Actual actual;
    (void)actual.list.SetBaseURI(card.root.c_str());
    PosixSeam seam;
    SetClock(seam);
    int foreseen = 0;
    try {
        foreseen = expected.list.Listup();
    } catch (const Fatal& fatal) {
        // Two directories of one number, of which the first does not hold the first file: no list can be had of it.
        return HasTwoOfANumber(card) ? "" : "  the card cannot be listed: " + fatal.info + "\n";
    }
    const int count = actual.list.Listup();
    const std::string wrong = count == foreseen && count == actual.list.GetCount() ? "" : "the count";
#ifdef DCF_ENTRY_TIME_DIRENT
    return wrong; // the times that the list has are not the card's
#else
    return wrong + StateDifference(expected, actual);
#endif
}

std::set<std::string> FilesOf(const ReferenceCard& card) {
    std::set<std::string> files;
    for (const auto& [folder, content] : card.folders) {
        for (const auto& [name, file] : content.files) {
            files.insert(folder + "/" + name);
        }
    }
    return files;
}

std::multiset<std::set<std::string>> FilesByFolder(const ReferenceCard& card) {
    std::multiset<std::set<std::string>> all;
    for (const auto& [folder, content] : card.folders) {
        std::set<std::string> names;
        for (const auto& [name, file] : content.files) {
            names.insert(name);
        }
        if (!names.empty()) { // an empty folder may be replaced
            all.insert(names);
        }
    }
    return all;
}

bool NamesWhatItDeletes(const Scene& scene, bool unreadable) {
    const Reference& list = scene.before.list;
    if (scene.operation.name != "DeleteSel" || !list.tree) {
        return true;
    }
    std::set<std::string> folders;
    const auto folderOf = [&](int position) {
        const std::string path = list.PathAt(position);
        return path.substr(0, path.rfind('/'));
    };
    if (unreadable && list.FilesInTree() > 0) {
        folders.insert(folderOf(0));
    }
    for (const int position : list.selection) {
        if (position >= 0 && position < list.FilesInTree()) {
            folders.insert(folderOf(position));
        }
    }
    return folders.size() < 2;
}

} // namespace dcftest
