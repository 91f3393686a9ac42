// Random browsing of random cards through the file list, beside a plain reference list. Behind every operation results,
// item, cursor, cached values, stored series value, log and the collector's calls are compared; where the reference
// says that an operation is fatal, it is run in a child and its end compared.
//
// A failure names its seed and step. Environment:
//   DCF_TEST_SEED   the first card's seed (default 1)
//   DCF_TEST_CARDS  how many cards, each with the next seed (default 40, or 1 where a seed is given)
//   DCF_TEST_STEPS  operations per card (default 150)
#include <sys/stat.h>

#include <cstdlib>
#include <functional>
#include <iterator>
#include <memory>
#include <utility>

#include "AssertionDeath.h"
#include "CSDCFList.h"
#include "CSFileList.h"
#include "Collector.h"
#include "FakePlatform.h"
#include "ReferenceList.h"
#include "Seen.h"

namespace dcftest {
namespace {

// ---- One card ----

struct Tally {
    int files = 0;
    int moves = 0;
    int deaths = 0;
    int collected = 0;
};

/// Now and then a root so long that paths are cut.
std::unique_ptr<Card> MakeCard(Random& random) {
    return random.Chance(15) ? std::make_unique<Card>(static_cast<std::size_t>(60 + random.Below(16)))
                             : std::make_unique<Card>();
}

class Comparison {
public:
    explicit Comparison(std::uint32_t seed)
        : m_random(seed), m_card(MakeCard(m_random)), m_plan(MakePlan(m_random)),
          m_reference(m_card->Root(), Comparable(m_plan)) {
        WriteCard(*m_card, m_plan);
        FakePlatform::Get().Reset();
        FakePlatform::Get().SetPreference(kSeriesGroup, kSeriesKey, 0);
        Register(false);
        EXPECT_EQ(m_list.SetBaseURI(m_card->Root().c_str()), 0);
    }

    void Run(std::uint32_t seed, int steps);

    const Tally& Counts() const {
        return m_tally;
    }

private:
    using Expected = std::function<int()>;
    using Actual = std::function<int()>;

    void Do(const std::string& what, const Expected& expected, const Actual& actual);
    void Die(const Fatal& fatal, const Actual& actual);
    void Compare();
    void Step();
    void Move();
    void ReadPosition();
    void ReadPath();
    void Ask();
    void Settings();
    void ChangeMarks();
    void TakeOut();
    void ListAgain();
    void Register(bool on);
    int AnyPosition();
    std::string AnyPath();

    Random m_random;
    std::unique_ptr<Card> m_card;
    CardPlan m_plan;
    ReferenceList m_reference;
    CSFileList m_list;
    CSFileListItem m_item;
    ReferenceItem m_expectedItem;
    std::vector<std::string> m_done;
    Tally m_tally;
};

void Comparison::Do(const std::string& what, const Expected& expected, const Actual& actual) {
    m_done.push_back(what);
    m_reference.log.clear();
    m_reference.tree.collected.clear();
    g_asked.clear();
    FakePlatform::Get().ForgetLines();
    const ReferenceList before = m_reference;
    const ReferenceItem itemBefore = m_expectedItem;
    int result = 0;
    try {
        result = expected();
    } catch (const Fatal& fatal) {
        Die(fatal, actual);
        m_reference = before;
        m_expectedItem = itemBefore;
        return;
    }
    EXPECT_EQ(actual(), result);
    EXPECT_EQ(FakePlatform::Get().Texts(), m_reference.log);
    Compare();
    m_tally.collected += static_cast<int>(g_asked.size());
}

void Comparison::Die(const Fatal& fatal, const Actual& actual) {
    const Ending ending = RunInChild([&] { (void)actual(); });
    EXPECT_TRUE(DiesByAssertion(ending, {fatal.condition, fatal.info, fatal.file, fatal.signature}));
    std::vector<std::string> log;
    for (const LogLine& line : LoggedLines(ending)) {
        log.push_back(line.Text());
    }
    log.resize(log.size() - std::min<std::size_t>(log.size(), 2)); // the assertion's own
    EXPECT_EQ(log, m_reference.log);
    ++m_tally.deaths;
}

void Comparison::Compare() {
    EXPECT_EQ(Seen(m_item), m_expectedItem);
    EXPECT_EQ(Seen(m_list), m_reference.State());
    EXPECT_EQ(g_asked, m_reference.tree.collected);
    EXPECT_EQ(FakePlatform::Get().Preference(kSeriesGroup, kSeriesKey), m_reference.seriesValue);
    EXPECT_EQ(m_list.m_pDCF != nullptr, m_reference.HasTree());
}

// ---- The operations ----

void Comparison::Move() {
    using Operation = int (CSFileList::*)(CSFileListItem*);
    using Reference = int (ReferenceList::*)(ReferenceItem*);
    struct Row {
        const char* name;
        Operation operation;
        Reference reference;
    };
    const std::vector<Row> rows = {{"GetNext", &CSFileList::GetNext, &ReferenceList::GetNext},
                                   {"GetNext", &CSFileList::GetNext, &ReferenceList::GetNext},
                                   {"GetPrev", &CSFileList::GetPrev, &ReferenceList::GetPrev},
                                   {"GetPrev", &CSFileList::GetPrev, &ReferenceList::GetPrev},
                                   {"GetFirst", &CSFileList::GetFirst, &ReferenceList::GetFirst},
                                   {"GetLast", &CSFileList::GetLast, &ReferenceList::GetLast},
                                   {"GetCurrent", &CSFileList::GetCurrent, &ReferenceList::GetCurrent}};
    const Row& row = m_random.Pick(rows);
    const bool null = m_random.Chance(3);
    Do(
        row.name + std::string(null ? " null" : ""),
        [&] { return (m_reference.*row.reference)(null ? nullptr : &m_expectedItem); },
        [&] { return (m_list.*row.operation)(null ? nullptr : &m_item); });
    ++m_tally.moves;
}

int Comparison::AnyPosition() {
    const int count = m_reference.tree.Count();
    return m_random.Chance(92) && count > 0 ? m_random.Below(count) : m_random.Below(count + 4) - 2;
}

void Comparison::ReadPosition() {
    const int position = AnyPosition();
    const std::string at = " " + std::to_string(position);
    const bool null = m_random.Chance(3);
    ReferenceItem* const expected = null ? nullptr : &m_expectedItem;
    CSFileListItem* const item = null ? nullptr : &m_item;
    switch (m_random.Below(3)) {
    case 0:
        Do(
            "GetAt" + at, [&] { return m_reference.GetAt(position, expected); },
            [&] { return m_list.GetAt(position, item); });
        break;
    case 1:
        Do(
            "GetAtSimply" + at, [&] { return m_reference.GetAtSimply(position, expected); },
            [&] { return m_list.GetAtSimply(position, item); });
        break;
    default:
        Do(
            "SetCurIndex" + at, [&] { return m_reference.SetCurIndex(position); },
            [&] { return m_list.SetCurIndex(position); });
    }
}

std::string Comparison::AnyPath() {
    std::vector<std::string> paths = m_reference.tree.Paths();
    if (paths.empty()) {
        paths.push_back(m_card->Path("100ABCDE", "KVR_0001.JPG"));
    }
    std::string path = m_random.Pick(paths);
    const std::size_t name = m_card->Dcim().size() + 1;
    switch (m_random.Below(16)) {
    case 0:
        return path.substr(0, path.size() - 3) + "SRW";
    case 1:
        return path.replace(name + 3, 3, "XYZ");
    case 2:
        return path.replace(name, 3, "777");
    case 3:
        return m_card->Path("100ABCDE", DcfName(m_random.Below(45)));
    case 4:
        return m_random.Chance(50) ? "" : "/DCIM/100ABCDE";
    case 5:
        return path + std::string(static_cast<std::size_t>(m_random.Below(120 - static_cast<int>(path.size()))), 'x');
    case 6:
        return m_expectedItem.path;
    default:
        return path;
    }
}

void Comparison::ReadPath() {
    const std::string path = AnyPath();
    std::string given = path;
    switch (m_random.Below(5)) {
    case 0:
        Do(
            "SetCur " + path, [&] { return m_reference.SetCur(path); }, [&] { return m_list.SetCur(given.data()); });
        break;
    case 1:
        Do(
            "GetFileListIndex " + path, [&] { return m_reference.GetFileListIndex(path); },
            [&] { return m_list.GetFileListIndex(given.data()); });
        break;
    case 2: {
        const PhotoInfo info = Describe("/" + std::to_string(m_random.Below(1000))).value_or(PhotoInfo{});
        PhotoInfo added = info;
        Do(
            "AddPhotoMetadata " + path, [&] { return m_reference.AddPhotoMetadata(path, info); },
            [&] { return m_list.AddPhotoMetadata(path.c_str(), added); });
        break;
    }
    case 3: // the path is written over by the composed one before it is handed back
        Do(
            "GetInfo of the item's own path", [&] { return m_reference.GetInfo(m_expectedItem.path, &m_expectedItem); },
            [&] { return m_list.GetInfo(m_item.m_strURI, &m_item); });
        break;
    default:
        Do(
            "GetInfo " + path, [&] { return m_reference.GetInfo(path, &m_expectedItem); },
            [&] { return m_list.GetInfo(given.data(), &m_item); });
    }
}

void Comparison::Ask() {
    const int type = m_random.Below(8) - 1;
    const bool ignoreSeries = m_random.Chance(50);
    switch (m_random.Below(6)) {
    case 0:
        Do(
            "GetCurIndex", [&] { return m_reference.GetCurIndex(); }, [&] { return m_list.GetCurIndex(); });
        break;
    case 1:
        Do(
            "GetCount", [&] { return m_reference.GetCount(); }, [&] { return m_list.GetCount(); });
        break;
    case 2:
        Do(
            "GetFileCount " + std::to_string(type), [&] { return m_reference.GetFileCount(type); },
            [&] { return m_list.GetFileCount(static_cast<eFileType>(type)); });
        break;
    case 3:
        Do(
            "UpdateFirstIndex", [&] { return m_reference.UpdateFirstIndex(ignoreSeries); },
            [&] { return m_list.UpdateFirstIndex(ignoreSeries); });
        break;
    case 4:
        Do(
            "GetSeriesMode", [&] { return m_reference.GetSeriesMode(); },
            [&] { return static_cast<int>(m_list.GetSeriesMode()); });
        break;
    default:
        Do(
            "IsLast", [&] { return m_reference.IsLast(&m_expectedItem); },
            [&] { return static_cast<int>(m_list.IsLast(&m_item)); });
    }
}

void Comparison::Register(bool on) {
    m_reference.tree.collector = on ? ReferenceTree::Collector(Describe) : nullptr;
    EXPECT_EQ(m_list.RegisterPhotoMetadataCB(on ? Collect : nullptr), 1);
}

void Comparison::Settings() {
    const bool on = m_random.Chance(50);
    switch (m_random.Below(3)) {
    case 0:
        Do(
            "SetSeriesMode", [&] { return m_reference.SetSeriesMode(on); }, [&] { return m_list.SetSeriesMode(on); });
        break;
    case 1:
        m_done.emplace_back(on ? "a collector" : "no collector");
        g_answer = m_random.Pick(std::vector{Answer::always, Answer::never, Answer::byName});
        Register(on);
        break;
    default:
        m_done.emplace_back("another series value");
        m_reference.seriesValue = m_random.Pick(std::vector<long>{0, 10000001, 10100020, 50000000, 99909999, 99900001});
        FakePlatform::Get().SetPreference(kSeriesGroup, kSeriesKey, m_reference.seriesValue);
    }
}

void Comparison::ChangeMarks() {
    auto& modes = m_reference.tree.modes;
    if (!modes.empty()) {
        const auto file = std::next(modes.begin(), m_random.Below(static_cast<int>(modes.size())));
        file->second ^= 0200U;
        m_done.push_back("chmod " + file->first);
        EXPECT_EQ(::chmod(file->first.c_str(), file->second), 0);
    }
    if (m_reference.HasTree() && m_reference.tree.Count() > 0) {
        int position = m_random.Below(m_reference.tree.Count());
        std::size_t directory = 0;
        while (position >= static_cast<int>(m_reference.tree.directories[directory].files.size())) {
            position -= static_cast<int>(m_reference.tree.directories[directory++].files.size());
        }
        ReferenceFile& file = m_reference.tree.directories[directory].files[static_cast<std::size_t>(position)];
        file.wifi = m_random.Chance(50);
        m_list.m_pDCF->m_dirGroup[directory]->SetWifi(position, file.wifi);
        if (m_random.Chance(30)) {
            file.isProtected = m_random.Chance(50);
            m_list.m_pDCF->m_dirGroup[directory]->SetProtect(position, *file.isProtected);
        }
        m_done.push_back("marks of " + file.name);
    }
}

/// A file or a whole directory goes out of the tree, so that the cursor may point at nothing.
void Comparison::TakeOut() {
    auto& directories = m_reference.tree.directories;
    if (directories.empty()) {
        return;
    }
    CSDCFList& tree = *m_list.m_pDCF;
    const int directory = m_random.Below(static_cast<int>(directories.size()));
    auto& files = directories[static_cast<std::size_t>(directory)].files;
    if (m_random.Chance(40)) {
        delete tree.m_dirGroup[static_cast<std::size_t>(directory)];
        tree.m_dirGroup.erase(tree.m_dirGroup.begin() + directory);
        --tree.m_nDirCount;
        directories.erase(directories.begin() + directory);
        m_done.push_back("no directory " + std::to_string(directory));
    } else if (!files.empty()) {
        const int file = m_random.Below(static_cast<int>(files.size()));
        tree.m_dirGroup[static_cast<std::size_t>(directory)]->RemoveItem(file);
        files.erase(files.begin() + file);
        m_done.push_back("no file " + std::to_string(directory) + "/" + std::to_string(file));
    }
    m_list.m_nList = tree.GetCount();
    m_reference.Recount();
    Compare();
    if (m_random.Chance(50)) {
        Do(
            "GetCurIndex", [&] { return m_reference.GetCurIndex(); }, [&] { return m_list.GetCurIndex(); });
    } else {
        Move();
    }
}

void Comparison::ListAgain() {
    if (m_random.Chance(70)) {
        delete std::exchange(m_list.m_pDCF, nullptr);
        m_reference.DropTree();
        m_reference.includeCamera = m_random.Chance(80);
        m_list.IncludeNonDCF(m_reference.includeCamera);
    }
    Do(
        "Listup", [&] { return m_reference.Listup(); }, [&] { return m_list.Listup(); });
    m_tally.files += m_reference.tree.Count();
}

void Comparison::Step() {
    const int what = m_random.Below(100);
    if (!m_reference.HasTree() && what < 20) {
        ListAgain();
    } else if (what < 50) {
        Move();
    } else if (what < 65) {
        ReadPosition();
    } else if (what < 80) {
        ReadPath();
    } else if (what < 88) {
        Ask();
    } else if (what < 93) {
        Settings();
    } else if (what < 97) {
        ChangeMarks();
    } else if (what < 99) {
        TakeOut();
    } else {
        ListAgain();
    }
}

void Comparison::Run(std::uint32_t seed, int steps) {
    for (int step = 1; step <= steps && !testing::Test::HasFailure(); ++step) {
        if (step == 3) {
            ListAgain(); // the steps before it have no tree
        } else {
            Step();
        }
        if (testing::Test::HasFailure()) {
            std::string last;
            for (std::size_t i = m_done.size() - std::min<std::size_t>(m_done.size(), 12); i < m_done.size(); ++i) {
                last += "\n  " + m_done[i];
            }
            ADD_FAILURE() << "seed " << seed << ", step " << step << "; repeat it with DCF_TEST_SEED=" << seed
                          << " DCF_TEST_STEPS=" << step << "\nThe last operations:" << last;
        }
    }
}

int FromEnvironment(const char* name, int otherwise) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value != '\0' ? std::atoi(value) : otherwise;
}

TEST(BrowsingModel, TheFileListBehavesAsTheReferenceOnRandomCards) {
    const bool chosen = std::getenv("DCF_TEST_SEED") != nullptr;
    const int seed = FromEnvironment("DCF_TEST_SEED", 1);
    const int cards = FromEnvironment("DCF_TEST_CARDS", chosen ? 1 : 40);
    const int steps = FromEnvironment("DCF_TEST_STEPS", 150);
    ASSERT_GT(cards, 0);
    ASSERT_GT(steps, 0);
    Tally all;
    for (int card = 0; card < cards && !HasFailure(); ++card) {
        const auto cardSeed = static_cast<std::uint32_t>(seed + card);
        Comparison comparison(cardSeed);
        comparison.Run(cardSeed, steps);
        all.files += comparison.Counts().files;
        all.moves += comparison.Counts().moves;
        all.deaths += comparison.Counts().deaths;
        all.collected += comparison.Counts().collected;
    }
    RecordProperty("files", all.files);
    RecordProperty("moves", all.moves);
    RecordProperty("deaths", all.deaths);
    RecordProperty("collected", all.collected);
    if (!chosen && cards >= 20 && steps >= 100) { // enough for every side of it to have been met
        EXPECT_GT(all.files, cards);
        EXPECT_GT(all.moves, cards);
        EXPECT_GT(all.deaths, cards);
        EXPECT_GT(all.collected, cards);
    }
}

} // namespace
} // namespace dcftest
