// One listing of one folder: how it begins, hands out its entries and ends; failing calls; the times of the entries.
#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "Card.h"
#include "FakePlatform.h"
#include "PCSDCFFSIO.h"
#include "PosixSeam.h"

#if defined(__SANITIZE_ADDRESS__)
#define DCF_TEST_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define DCF_TEST_ASAN 1
#endif
#endif
#ifdef DCF_TEST_ASAN
#include <sanitizer/asan_interface.h>
#endif

using dcftest::Card;
using dcftest::DcfName;
using dcftest::FakePlatform;
using dcftest::PosixSeam;

namespace {

using Texts = std::vector<std::string>;

#ifdef DCF_ENTRY_TIME_DIRENT
constexpr bool kTimesBehindNames = true;
#else
constexpr bool kTimesBehindNames = false;
#endif

std::ptrdiff_t OpenDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

/// The calls that look at a card, without the folder handle of the times.
Texts Looks(const PosixSeam& seam) {
    return seam.Texts({"scandir", "opendir", "readdir", "closedir", "stat", "fstatat", "chmod", "sync"});
}

std::vector<PCSDCFFSIO::PTFile> ReadAll(PCSDCFFSIO& listing) {
    std::vector<PCSDCFFSIO::PTFile> files;
    PCSDCFFSIO::PTFile file;
    while (listing.Read(&file) == 0) {
        files.push_back(file);
    }
    return files;
}

TEST(CardListing, CountsDownAsEntriesAreRead) {
    Card card;
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(2), DcfName(3)});
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    EXPECT_EQ(listing.m_nTotal, 3);
    EXPECT_EQ(listing.m_nRemain, 3);
    ASSERT_NE(listing.m_ppList, nullptr);
    EXPECT_EQ(listing.m_ppCur, listing.m_ppList);
    PCSDCFFSIO::PTFile file;
    for (int number = 3; number >= 1; --number) {
        ASSERT_EQ(listing.Read(&file), 0);
        EXPECT_EQ(file.szName, DcfName(number));
        EXPECT_EQ(listing.m_nRemain, number - 1);
        EXPECT_EQ(listing.m_nTotal, 3);
    }
    EXPECT_EQ(listing.Read(&file), -2) << "all entries have been read";
    EXPECT_EQ(listing.Read(&file), -2) << "and stay so";
    EXPECT_STREQ(file.szName, "KVR_0001.JPG") << "the record keeps what it holds";
}

TEST(CardListing, ZeroesTheRestOfNothingAndStopsAtTheName) {
    Card card;
    card.AddFile("100ABCDE", DcfName(1));
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    PCSDCFFSIO::PTFile file;
    std::memset(&file, 'x', sizeof file);
    ASSERT_EQ(listing.Read(&file), 0);
    EXPECT_EQ(std::string(file.szName), DcfName(1)) << "terminated within a dirty record";
}

TEST(CardListing, OfAnEmptyFolderCountsNothing) {
    Card card;
    card.AddDir("100ABCDE");
    for (const bool dirMode : {false, true}) {
        PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), dirMode);
        EXPECT_EQ(listing.m_nTotal, 0);
        EXPECT_EQ(listing.m_nRemain, 0);
        PCSDCFFSIO::PTFile file = {};
        EXPECT_EQ(listing.Read(&file), listing.m_ppList == nullptr ? -1 : -2);
    }
}

TEST(CardListing, ThatCannotBeMadeHasNoEntries) {
    Card card;
    card.AddFile("100ABCDE", DcfName(1));
    const struct {
        std::string path;
        int error;
        const char* why;
    } rows[] = {
        {card.Path("101ABCDE"), 0, "no such folder"},
        {card.Path("100ABCDE", DcfName(1)), 0, "a file"},
        {"", 0, "no path"},
        {card.Path("100ABCDE"), EACCES, "no permission"},
        {card.Path("100ABCDE"), EIO, "a broken card"},
        {card.Path("100ABCDE"), ENOMEM, "no memory"},
    };
    for (const auto& row : rows) {
        for (const bool dirMode : {false, true}) {
            FakePlatform::Get().Reset();
            PosixSeam seam;
            if (row.error != 0) {
                seam.Fail("scandir", row.error);
            }
            PCSDCFFSIO listing(row.path.c_str(), dirMode);
            EXPECT_EQ(Looks(seam), Texts{"scandir" + (row.path.empty() ? "" : " " + row.path)}) << row.why;
            EXPECT_EQ(listing.m_nTotal, -1) << row.why;
            EXPECT_EQ(listing.m_nRemain, -1) << row.why;
            EXPECT_EQ(listing.m_ppList, nullptr) << row.why;
            EXPECT_EQ(listing.m_ppCur, nullptr) << row.why;
            PCSDCFFSIO::PTFile file = {"untouched", 7};
            EXPECT_EQ(listing.Read(&file), -1) << row.why;
            EXPECT_EQ(listing.Read(&file), -1) << row.why;
            EXPECT_STREQ(file.szName, "untouched") << row.why;
            EXPECT_EQ(file.nTime, 7U) << row.why;
            EXPECT_TRUE(FakePlatform::Get().Lines().empty()) << row.why;
        }
    }
}

TEST(CardListing, OpenAlwaysGivesZero) {
    Card card;
    card.AddFile("100ABCDE", DcfName(1));
    PCSDCFFSIO listing("/nowhere", false);
    EXPECT_EQ(listing.Open("/nowhere/else", true), 0);
    EXPECT_EQ(listing.m_nTotal, -1);
    EXPECT_EQ(listing.Open(card.Path("100ABCDE").c_str(), false), 0);
    EXPECT_EQ(listing.m_nTotal, 1);
}

TEST(CardListing, IsMadeByOneScan) {
    Card card;
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(2)}).AddDir("Camera");
    PosixSeam seam;
    const PCSDCFFSIO folders(card.Dcim().c_str(), true);
    EXPECT_EQ(seam.Texts(), Texts{"scandir " + card.Dcim()}) << "the listing of folders asks for nothing else";
    seam.Forget();
    const PCSDCFFSIO files(card.Path("100ABCDE").c_str(), false);
    EXPECT_EQ(seam.Count("scandir"), 1);
    EXPECT_EQ(seam.Count("stat"), 0) << "no look at a file by its path";
    EXPECT_EQ(seam.Count("fstatat"), kTimesBehindNames ? 0 : 2);
    EXPECT_EQ(seam.Count("open"), kTimesBehindNames ? 0 : 1) << "one handle of the folder";
    EXPECT_EQ(seam.Changes(), 0);
}

TEST(CardListing, EndsWithClose) {
    Card card;
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(2), DcfName(3)});
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    PCSDCFFSIO::PTFile file;
    ASSERT_EQ(listing.Read(&file), 0);
    listing.Close(); // two entries unread: a leak checker would tell
    EXPECT_EQ(listing.m_ppList, nullptr);
    EXPECT_EQ(listing.m_ppCur, nullptr) << "its copy must not outlive what it points to";
    EXPECT_EQ(listing.Read(&file), -1);
    listing.Close();
    EXPECT_EQ(listing.m_ppList, nullptr);
}

TEST(CardListing, ReleasesUnreadEntriesAndDescriptors) {
    Card card;
    card.Fill(1, 200);
    const auto listAndLeave = [&card](int read) {
        PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
        PCSDCFFSIO::PTFile file;
        for (int i = 0; i < read; ++i) {
            ASSERT_EQ(listing.Read(&file), 0);
        }
    };
    const std::ptrdiff_t descriptors = OpenDescriptors();
    const std::size_t memory = mallinfo2().uordblks;
    for (int round = 0; round < 50; ++round) {
        listAndLeave(round % 5 * 50);
    }
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_LT(mallinfo2().uordblks, memory + 65536) << "50 times 200 entries take more";
}

TEST(CardListing, ListsAgainInTheSameObject) {
    Card card;
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(2)}).AddFile("101ABCDE", DcfName(9));
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    listing.Close();
    EXPECT_EQ(listing.Open(card.Path("101ABCDE").c_str(), false), 0);
    const std::vector<PCSDCFFSIO::PTFile> files = ReadAll(listing);
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(files[0].szName, DcfName(9));
}

TEST(CardListing, ReleasesTheOldListingWhenItListsAgain) {
    Card card;
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(2), DcfName(3)}).AddFile("101ABCDE", DcfName(9));
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    PCSDCFFSIO::PTFile file;
    ASSERT_EQ(listing.Read(&file), 0);
    EXPECT_EQ(listing.Open(card.Path("101ABCDE").c_str(), false), 0); // a leak checker would tell
    EXPECT_EQ(listing.m_nTotal, 1);
    EXPECT_EQ(ReadAll(listing).size(), 1U);
    EXPECT_EQ(listing.Open(card.Path("102ABCDE").c_str(), false), 0);
    EXPECT_EQ(listing.m_ppList, nullptr) << "a listing that fails leaves none of an earlier one";
    EXPECT_EQ(listing.Read(&file), -1);
}

#ifdef DCF_TEST_ASAN
TEST(CardListing, ReleasesEachEntryAsItIsRead) {
    Card card;
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(2)});
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    const void* const first = listing.m_ppList[0];
    const void* const second = listing.m_ppList[1];
    PCSDCFFSIO::PTFile file;
    ASSERT_EQ(listing.Read(&file), 0);
    EXPECT_NE(__asan_address_is_poisoned(first), 0);
    EXPECT_EQ(__asan_address_is_poisoned(second), 0);
    ASSERT_EQ(listing.Read(&file), 0);
    EXPECT_NE(__asan_address_is_poisoned(second), 0);
}
#endif

/// A record as a device's driver makes it: the name, its terminator, and then bytes of the driver's own.
dirent* MakeRecord(const std::string& name, const std::string& behind) {
    auto* entry = static_cast<dirent*>(std::calloc(1, sizeof(dirent)));
    const std::size_t used = offsetof(dirent, d_name) + name.size() + 1 + behind.size();
    entry->d_reclen = static_cast<unsigned short>(used);
    std::memcpy(entry->d_name, name.c_str(), name.size() + 1);
    std::memcpy(entry->d_name + name.size() + 1, behind.data(), behind.size());
    return entry;
}

TEST(CardListing, CutsANameThatIsLongerThanItsRecord) {
    Card card;
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(2)});
    for (const std::size_t length : {97U, 98U, 99U, 200U}) {
        PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
        std::free(listing.m_ppList[0]);
        listing.m_ppList[0] = MakeRecord(std::string(length, 'n'), "");
        PCSDCFFSIO::PTFile file;
        std::memset(&file, 'x', sizeof file);
        ASSERT_EQ(listing.Read(&file), 0);
        EXPECT_EQ(std::string(file.szName, strnlen(file.szName, sizeof file.szName)),
                  std::string(std::min<std::size_t>(length, 98), 'n'));
        ASSERT_EQ(listing.Read(&file), 0);
        EXPECT_EQ(std::string(file.szName), DcfName(1));
    }
}

#ifdef DCF_ENTRY_TIME_DIRENT

TEST(EntryTime, StandsBehindTheNameInTheRecord) {
    const std::uint32_t time = 0x12345678;
    const std::string bytes(reinterpret_cast<const char*>(&time), sizeof time);
    const struct {
        std::string behind;
        std::uint32_t expected;
        const char* why;
    } rows[] = {
        {bytes, time, "four bytes in the machine's order"},         {bytes + "more", time, "only the first four"},
        {std::string(4, '\xff'), 0xFFFFFFFF, "unsigned"},           {"", 0, "the record ends with the name"},
        {bytes.substr(0, 3), 0, "the record ends within the time"},
    };
    Card card;
    card.AddFile("100ABCDE", DcfName(1));
    for (const auto& row : rows) {
        PosixSeam seam;
        seam.RewriteListings([&](dirent** list, int count) {
            ASSERT_EQ(count, 1);
            std::free(list[0]);
            list[0] = MakeRecord(DcfName(1), row.behind);
        });
        PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
        PCSDCFFSIO::PTFile file = {};
        ASSERT_EQ(listing.Read(&file), 0);
        EXPECT_EQ(file.nTime, row.expected) << row.why;
        EXPECT_EQ(Looks(seam), Texts{"scandir " + card.Path("100ABCDE")}) << "no call per file";
    }
}

TEST(EntryTime, IsNeverReadBeyondTheRecordOfAWorkstation) {
    Card card;
    card.Fill(1, 50);
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    const std::vector<PCSDCFFSIO::PTFile> files = ReadAll(listing);
    ASSERT_EQ(files.size(), 50U);
    for (const PCSDCFFSIO::PTFile& file : files) {
        EXPECT_EQ(file.nTime, 0U) << "a twelve-character name fills its record";
    }
}

#else

TEST(EntryTime, IsTheModificationTime) {
    Card card;
    const std::vector<std::time_t> times = {0, 1, 315532800, 2147483647, 2147483648, 4294967295, 4294967296, -1};
    for (std::size_t i = 0; i < times.size(); ++i) {
        card.AddFile("100ABCDE", DcfName(static_cast<int>(i) + 1), {"", 0644, times[i]});
    }
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    const std::vector<PCSDCFFSIO::PTFile> files = ReadAll(listing);
    ASSERT_EQ(files.size(), times.size());
    for (const PCSDCFFSIO::PTFile& file : files) {
        struct stat status {};
        ASSERT_EQ(::stat(card.Path("100ABCDE", file.szName).c_str(), &status), 0);
        EXPECT_EQ(file.nTime, static_cast<std::uint32_t>(status.st_mtime)) << file.szName << ": its low 32 bits";
    }
    EXPECT_EQ(files.back().nTime, 0U);
    EXPECT_EQ(files[files.size() - 3].nTime, 315532800U);
}

TEST(EntryTime, IsTheModificationTimeInCameraToo) {
    Card card;
    card.AddFile("Camera", dcftest::CameraName(1), {"", 0644, 1000000001});
    card.AddFile("Camera", dcftest::CameraName(2), {"", 0644, 1000000002});
    PCSDCFFSIO listing(card.Path("Camera").c_str(), false);
    const std::vector<PCSDCFFSIO::PTFile> files = ReadAll(listing);
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files[0].nTime, 1000000001U);
    EXPECT_EQ(files[1].nTime, 1000000002U);
}

TEST(EntryTime, OfAFolderIsZero) {
    Card card;
    card.AddDir("100ABCDE").AddDir("Camera");
    PCSDCFFSIO listing(card.Dcim().c_str(), true);
    const std::vector<PCSDCFFSIO::PTFile> folders = ReadAll(listing);
    ASSERT_EQ(folders.size(), 2U);
    EXPECT_EQ(folders[0].nTime, 0U);
    EXPECT_EQ(folders[1].nTime, 0U);
}

TEST(EntryTime, OfAnEarlierListingOfFilesIsForgotten) {
    Card card;
    card.AddFile("100ABCDE", DcfName(1), {"", 0644, 1000000001});
    card.AddFile("100ABCDE", DcfName(2), {"", 0644, 1000000002});
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    ASSERT_EQ(ReadAll(listing).front().nTime, 1000000002U);
    ASSERT_EQ(listing.Open(card.Dcim().c_str(), true), 0);
    const std::vector<PCSDCFFSIO::PTFile> folders = ReadAll(listing);
    ASSERT_EQ(folders.size(), 1U);
    EXPECT_EQ(folders[0].nTime, 0U);
}

TEST(EntryTime, OfALinkIsThatOfTheFileItLeadsTo) {
    Card card;
    card.AddFile("100ABCDE", "target", {"", 0644, 1000000001});
    ASSERT_EQ(::symlink("target", card.Path("100ABCDE", DcfName(1)).c_str()), 0);
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    EXPECT_EQ(ReadAll(listing).at(0).nTime, 1000000001U);
}

TEST(EntryTime, IsAskedThroughAHandleThatNoChildProcessInherits) {
    Card card;
    card.AddFile("100ABCDE", DcfName(1));
    const auto handlesOfTheFolder = [&] {
        std::vector<int> flags;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code none;
            if (std::filesystem::read_symlink(entry.path(), none) == card.Path("100ABCDE")) {
                flags.push_back(::fcntl(std::stoi(entry.path().filename()), F_GETFD));
            }
        }
        return flags;
    };
    std::vector<int> flags;
    {
        PosixSeam seam;
        seam.Before("fstatat", 1, [&] { flags = handlesOfTheFolder(); });
        const PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    }
    EXPECT_EQ(flags, std::vector<int>{FD_CLOEXEC});
    EXPECT_EQ(handlesOfTheFolder(), std::vector<int>{}) << "closed again";
}

TEST(EntryTime, IsAskedOncePerKeptEntryInTheOrderOfTheFolder) {
    Card card;
    for (const int number : {500, 3, 77, 9999, 12, 4096, 1, 2500, 640, 31}) {
        card.AddFile("100ABCDE", DcfName(number)).AddFile("100ABCDE", DcfName(number, "SRW"));
        card.AddFile("100ABCDE", "dropped" + std::to_string(number));
    }
    card.AddFile("100ABCDE", "NOT_DCF_NAME");
    // By place: most file systems name entries in the order of their places, a tmpfs the other way round.
    std::map<decltype(dirent::d_off), std::string> places;
    DIR* dir = ::opendir(card.Path("100ABCDE").c_str());
    ASSERT_NE(dir, nullptr);
    while (const dirent* entry = ::readdir(dir)) {
        if (std::strlen(entry->d_name) == 12) {
            places[entry->d_off] = std::string("fstatat ") + entry->d_name;
        }
    }
    (void)::closedir(dir);
    ASSERT_EQ(places.size(), 21U);
    Texts expected;
    for (const auto& place : places) {
        expected.push_back(place.second);
    }
    PosixSeam seam;
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    EXPECT_EQ(seam.Texts({"fstatat"}), expected);
    seam.Forget();
    EXPECT_EQ(ReadAll(listing).size(), 21U);
    EXPECT_TRUE(seam.Calls().empty()) << "reading makes no call";
}

TEST(EntryTime, IsZeroWhereItCannotBeHad) {
    Card card;
    for (int number = 1; number <= 5; ++number) {
        card.AddFile("100ABCDE", DcfName(number), {"", 0644, 1000000000 + number});
    }
    for (int failing = 1; failing <= 5; ++failing) {
        PosixSeam seam;
        seam.Fail("fstatat", ENOENT, failing);
        PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
        ASSERT_EQ(seam.Fired(), 1);
        EXPECT_EQ(seam.Count("fstatat"), 5) << "the others are asked all the same";
        const std::string name = seam.Texts({"fstatat"})[static_cast<std::size_t>(failing) - 1].substr(8);
        const std::vector<PCSDCFFSIO::PTFile> files = ReadAll(listing);
        ASSERT_EQ(files.size(), 5U);
        for (int i = 0; i < 5; ++i) {
            const PCSDCFFSIO::PTFile& file = files[static_cast<std::size_t>(i)];
            EXPECT_EQ(file.szName, DcfName(5 - i));
            EXPECT_EQ(file.nTime, file.szName == name ? 0U : 1000000000U + static_cast<unsigned>(5 - i));
        }
    }
}

TEST(EntryTime, IsZeroForAllWithoutAHandleOfTheFolder) {
    Card card;
    card.AddFiles("100ABCDE", {DcfName(1), DcfName(2)});
    const std::ptrdiff_t before = OpenDescriptors();
    PosixSeam seam;
    seam.FailFrom("open", EMFILE);
    seam.FailFrom("opendir", EMFILE);
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    EXPECT_EQ(seam.Fired(), 1);
    EXPECT_EQ(seam.Count("fstatat"), 0);
    const std::vector<PCSDCFFSIO::PTFile> files = ReadAll(listing);
    ASSERT_EQ(files.size(), 2U);
    EXPECT_EQ(files[0].nTime, 0U);
    EXPECT_EQ(files[1].nTime, 0U);
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(EntryTime, OfAFileThatVanishedBeforeItWasAskedIsZero) {
    Card card;
    card.AddFile("100ABCDE", DcfName(1)).AddFile("100ABCDE", DcfName(2), {"", 0644, 1000000002});
    PosixSeam seam;
    seam.Before("open", 1, [&] { card.Remove("100ABCDE", DcfName(1)); });
    PCSDCFFSIO listing(card.Path("100ABCDE").c_str(), false);
    const std::vector<PCSDCFFSIO::PTFile> files = ReadAll(listing);
    ASSERT_EQ(files.size(), 2U) << "it was listed";
    EXPECT_EQ(files[0].nTime, 1000000002U);
    EXPECT_EQ(files[1].nTime, 0U);
}

#endif

} // namespace
