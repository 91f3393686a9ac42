// The story: SQLite takes back an interrupted change with the journal that lies beside the store. A journal may say
// that its change belonged to several databases, and name a file that goes with it; SQLite deletes that file when it is
// done. A journal of unknown origin could so make a read of the series value delete anything, a picture for instance.
// No store's own change involves another database, so such a journal is now refused.
#include <gtest/gtest.h>
#include <pref.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <numeric>
#include <string>

#include "ChildProcess.h"
#include "TempFolder.h"

namespace {

using dcftest::Ending;
using dcftest::ReadFile;
using dcftest::RunInChild;
using dcftest::TempFolder;
using dcftest::WriteFile;

constexpr int kGroup = 3;
constexpr int kKey = 512;
constexpr std::size_t kPage = 4096; ///< Of a store.
constexpr std::size_t kSector = 512;
const std::string kMagic = "\xd9\xd5\x05\xf9\x20\xa1\x63\xd7";

std::string Number(std::size_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes += static_cast<char>((number >> static_cast<unsigned>(shift)) & 0xffU);
    }
    return bytes;
}

/// A journal that brings the first page of a store back, as SQLite writes them.
std::string Journal(const std::string& store) {
    constexpr std::size_t kNonce = 1;
    std::string header =
        kMagic + Number(1) + Number(kNonce) + Number(store.size() / kPage) + Number(kSector) + Number(kPage);
    header.resize(kSector, '\0');
    const std::string page = store.substr(0, kPage);
    std::size_t checksum = kNonce;
    for (std::size_t at = kPage - 200; at > 0 && at < kPage; at -= 200) {
        checksum += static_cast<unsigned char>(page[at]);
    }
    return header + Number(1) + page + Number(checksum);
}

/// What makes it one of several databases.
std::string Naming(const std::string& file) {
    const auto checksum = std::accumulate(file.begin(), file.end(), 0U,
                                          [](unsigned sum, char c) { return sum + static_cast<unsigned>(c); });
    return Number(0x40000000U / kPage + 1) + file + Number(file.size()) + Number(checksum) + kMagic;
}

class JournalOfOthers : public ::testing::Test {
protected:
    JournalOfOthers() {
        dcftest::SetVariable("DCF_PREFERENCES", m_store.c_str());
        EXPECT_EQ(pref_set_long(kGroup, kKey, 4711), 0);
        m_sound = ReadFile(m_store);
        WriteFile(m_picture, "a picture");
        WriteFile(m_store, std::string(kPage, '\0') + m_sound.substr(kPage)); // the power went
    }

    TempFolder m_folder;
    std::string m_store = m_folder / "preferences.sqlite";
    std::string m_journal = m_folder / "preferences.sqlite-journal";
    std::string m_picture = m_folder / "KVR_0001.JPG";
    std::string m_sound;
};

TEST_F(JournalOfOthers, TheStoresOwnIsTakenBack) {
    WriteFile(m_journal, Journal(m_sound));
    EXPECT_EQ(pref_get_long(kGroup, kKey), 4711);
    EXPECT_EQ(ReadFile(m_store), m_sound);
    EXPECT_FALSE(std::filesystem::exists(m_journal));
}

TEST_F(JournalOfOthers, OneThatNamesAnotherFileIsRefusedAndTheFileStays) {
    WriteFile(m_journal, Journal(m_sound) + Naming(m_picture));
    const Ending ending = RunInChild([] {
        EXPECT_EQ(pref_get_long(kGroup, kKey), 0);
        EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_TRUE(dcftest::Contains(ending.err, "its journal belongs to other databases, too")) << ending.err;
    EXPECT_EQ(ReadFile(m_picture), "a picture");
    EXPECT_TRUE(std::filesystem::exists(m_journal));
}

TEST_F(JournalOfOthers, OneThatIsALinkIsNotFollowed) {
    std::filesystem::create_symlink(m_picture, m_journal);
    (void)RunInChild([] { (void)pref_set_long(kGroup, kKey, 1); });
    EXPECT_EQ(ReadFile(m_picture), "a picture");
}

} // namespace
