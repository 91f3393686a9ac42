// The preference store of a workstation when it cannot be used: one line that says why, 0 from a read, -1 from a write,
// and whatever is in its place stays as it is.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pref.h>
#include <sched.h>
#include <sqlite3.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "ChildProcess.h"
#include "PosixSeam.h"
#include "TempFolder.h"

using dcftest::Ending;
using dcftest::LinesOf;
using dcftest::ReadFile;
using dcftest::RunInChild;
using dcftest::SetVariable;
using dcftest::TempFolder;
using dcftest::WriteFile;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

namespace {

std::function<void()> g_betweenLookAndUse;

} // namespace

// The host layer resolves the store's folder behind its own look at the store and before SQLite's.
extern "C" char* realpath(const char* path, char* /*resolved, of which nobody here gives one*/) noexcept {
    if (g_betweenLookAndUse) {
        std::exchange(g_betweenLookAndUse, nullptr)();
    }
    return ::canonicalize_file_name(path);
}

namespace {

constexpr int kGroup = 3;
constexpr int kKey = 512;

class Connection {
public:
    explicit Connection(const std::string& path) {
        EXPECT_EQ(sqlite3_open(path.c_str(), &m_database), SQLITE_OK);
    }
    ~Connection() {
        sqlite3_close(m_database);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void Run(const char* sql) {
        EXPECT_EQ(sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(m_database);
    }

private:
    sqlite3* m_database = nullptr;
};

// The content of every file in a folder.
std::map<std::string, std::string> Contents(const std::string& folder) {
    std::map<std::string, std::string> contents;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        contents[entry.path().string()] = entry.is_regular_file() ? ReadFile(entry.path().string()) : "not a file";
    }
    return contents;
}

// In place: files that are written anew go to the disk each time, and there are thousands.
void PutByte(const std::string& path, std::size_t offset, char byte) {
    std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(offset));
    file.put(byte);
    file.close();
    ASSERT_TRUE(file);
}

std::string Complaint(const std::string& verb, const std::string& store, const std::string& cause) {
    return "dcfplatform-host: preference 3/512 cannot be " + verb + " the store \"" + store + "\": " + cause;
}

class PreferenceFailures : public ::testing::Test {
protected:
    PreferenceFailures() {
        SetVariable("DCF_PREFERENCES", m_store.c_str());
    }

    // A sound store with a value in it.
    std::string SoundStore() {
        EXPECT_EQ(pref_set_long(kGroup, kKey, 4711), 0);
        return ReadFile(m_store);
    }

    // A read and a write must fail for this cause and change nothing.
    void ExpectUnusable(const std::string& cause) {
        const auto before = Contents(m_folder.Path());
        const Ending ending = RunInChild([] {
            EXPECT_EQ(pref_get_long(kGroup, kKey), 0);
            EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1);
        });
        EXPECT_TRUE(ending.Completed()) << ending.Describe();
        EXPECT_EQ(ending.out, "");
        EXPECT_THAT(LinesOf(ending.err), ElementsAre(HasSubstr(Complaint("read from", m_store, cause)),
                                                     HasSubstr(Complaint("written to", m_store, cause))));
        EXPECT_TRUE(Contents(m_folder.Path()) == before); // too long to be shown
    }

    const TempFolder m_folder;
    const std::string m_store = m_folder / "store";
};

// Something else in its place.

TEST_F(PreferenceFailures, ATextFileIsNoStore) {
    for (const std::string& text : {std::string("x"), std::string("SQLite format"), std::string(5000, 'x')}) {
        WriteFile(m_store, text);
        ExpectUnusable("it is not a preference store; ");
    }
}

TEST_F(PreferenceFailures, AnotherProgramsDatabaseIsNoStore) {
    for (const char* making : {"CREATE TABLE preference (class, key, value)", "VACUUM", "PRAGMA application_id = 7"}) {
        std::filesystem::remove(m_store);
        Connection(m_store).Run(making);
        ExpectUnusable("it is not a preference store; ");
    }
}

TEST_F(PreferenceFailures, AnotherProgramsInterruptedDatabaseIsNotRepaired) {
    {
        Connection other(m_folder / "other");
        other.Run("CREATE TABLE a (b); INSERT INTO a VALUES (zeroblob(100000));"
                  "PRAGMA cache_size = 1; PRAGMA cache_spill = 1; BEGIN; UPDATE a SET b = randomblob(100000)");
        std::filesystem::copy_file(m_folder / "other", m_store);
        std::filesystem::copy_file(m_folder / "other-journal", m_store + "-journal");
    }
    ASSERT_GT(std::filesystem::file_size(m_store + "-journal"), 512U);
    ExpectUnusable("it is not a preference store; ");
}

TEST_F(PreferenceFailures, AFolderIsNoStore) {
    ASSERT_EQ(::mkdir(m_store.c_str(), 0755), 0);
    ExpectUnusable("it is not a file; ");
}

TEST_F(PreferenceFailures, APathThatEndsInASlashNamesNoFileAndNoFolderIsMade) {
    const std::string store = m_folder / "folder/";
    SetVariable("DCF_PREFERENCES", store.c_str());
    const Ending ending = RunInChild([] { EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1); });
    EXPECT_THAT(LinesOf(ending.err), ElementsAre(HasSubstr(Complaint("written to", store, "it is not a file; "))));
    EXPECT_TRUE(std::filesystem::is_empty(m_folder.Path()));
}

TEST_F(PreferenceFailures, APathThatIsTooLongForTheDatabaseIsRefused) {
    const std::string store =
        (m_folder / std::string(200, 'a')) + "/" + std::string(200, 'b') + "/" + std::string(200, 'c');
    SetVariable("DCF_PREFERENCES", store.c_str());
    const Ending ending = RunInChild([] { EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1); });
    EXPECT_THAT(
        LinesOf(ending.err),
        ElementsAre(Complaint("written to", store, "it cannot be opened as a database, its path may be too long")));
}

TEST_F(PreferenceFailures, APipeIsNoStoreAndIsNotWaitedFor) {
    ASSERT_EQ(::mkfifo(m_store.c_str(), 0644), 0);
    ExpectUnusable("it is not a file; ");
}

TEST_F(PreferenceFailures, ALinkIsNotFollowed) {
    SetVariable("DCF_PREFERENCES", (m_folder / "another").c_str());
    ASSERT_EQ(pref_set_long(kGroup, kKey, 4711), 0);
    SetVariable("DCF_PREFERENCES", m_store.c_str());
    for (const char* target : {"another", "missing"}) { // a sound store; a file to be made
        std::filesystem::remove(m_store);
        std::filesystem::create_symlink(target, m_store);
        ExpectUnusable("it is a link; ");
    }
}

TEST_F(PreferenceFailures, ALinkThatTakesTheStoresPlaceBehindTheFirstLookIsNotFollowedEither) {
    const std::string another = m_folder / "another";
    SetVariable("DCF_PREFERENCES", another.c_str());
    ASSERT_EQ(pref_set_long(kGroup, kKey, 4711), 0);
    const std::string sound = ReadFile(another);
    SetVariable("DCF_PREFERENCES", m_store.c_str());
    WriteFile(m_store, sound);
    const Ending ending = RunInChild([&] {
        g_betweenLookAndUse = [&] {
            std::filesystem::remove(m_store);
            std::filesystem::create_symlink("another", m_store);
        };
        EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_THAT(ending.err, HasSubstr(Complaint("written to", m_store, "it cannot be opened as a database")));
    EXPECT_TRUE(ReadFile(another) == sound); // too long to be shown
}

TEST_F(PreferenceFailures, AStoreOfANewerVersionIsLeftToIt) {
    (void)SoundStore();
    Connection(m_store).Run("PRAGMA user_version = 2");
    ExpectUnusable("it belongs to another version of this library; ");
}

// Damage.

TEST_F(PreferenceFailures, ATruncatedStoreIsDamaged) {
    const std::string sound = SoundStore();
    for (const std::size_t size : {std::size_t{100}, std::size_t{600}, sound.size() / 2, sound.size() - 1}) {
        WriteFile(m_store, sound.substr(0, size));
        ExpectUnusable("it is damaged (");
    }
}

TEST_F(PreferenceFailures, AStoreWithAnOverwrittenPartIsDamaged) {
    const std::string sound = SoundStore();
    struct Damage {
        std::size_t offset;
        std::size_t size;
        char byte;
    };
    const std::size_t page = sound.size() / 2; // two pages: the schema and the table
    for (const auto& [offset, size, byte] :
         {Damage{100, 50, '\xff'}, Damage{100, page - 100, '\0'}, Damage{page, 8, '\xff'}, Damage{page, page, '\0'},
          Damage{page, page, 'x'}}) {
        std::string damaged = sound;
        damaged.replace(offset, size, size, byte);
        WriteFile(m_store, damaged);
        ExpectUnusable("it is damaged (");
    }
}

TEST_F(PreferenceFailures, NoDamagedByteReadsAsAnotherValue) {
    ASSERT_EQ(pref_set_long(-kGroup, -kKey, -1), 0);
    const std::string sound = SoundStore();
    const Ending ending = RunInChild([&] {
        int noticed = 0;
        for (std::size_t at = 0; at < sound.size(); ++at) {
            if (sound[at] == '\0' && at % 16 != 0) {
                continue; // most of the store is unused
            }
            for (const char change : {'\xff', '\x01', '\x80'}) {
                PutByte(m_store, at, static_cast<char>(sound[at] ^ change));
                const long value = pref_get_long(kGroup, kKey);
                PutByte(m_store, at, sound[at]);
                ASSERT_TRUE(value == 4711 || value == 0) << value << " from byte " << at;
                noticed += value == 0 ? 1 : 0;
            }
        }
        EXPECT_GT(noticed, 100);
        std::fprintf(stderr, "%d", noticed);
    });
    EXPECT_TRUE(ending.Completed()) << ending.out;
    const std::vector<std::string> lines = LinesOf(ending.err);
    EXPECT_EQ(std::to_string(lines.size() - 1), lines.back()); // a line for every 0
}

TEST_F(PreferenceFailures, AFileOfZerosIsDamaged) {
    WriteFile(m_store, std::string(8192, '\0'));
    ExpectUnusable("it is damaged (");
}

TEST_F(PreferenceFailures, AStoreWithoutItsTableIsDamaged) {
    (void)SoundStore();
    Connection(m_store).Run("DROP TABLE preference");
    ExpectUnusable("it is damaged (its table is missing); ");
}

TEST_F(PreferenceFailures, TheLineIsOneLineWhateverThePathHolds) {
    SetVariable("DCF_PREFERENCES", (m_folder / "a\n\033[2Jb").c_str());
    WriteFile(m_folder / "a\n\033[2Jb", "text");
    const Ending ending = RunInChild([] { EXPECT_EQ(pref_get_long(kGroup, kKey), 0); });
    EXPECT_THAT(LinesOf(ending.err), ElementsAre(HasSubstr(Complaint("read from", m_folder / "a\\x0ab", "it is not"))));
}

// No access.

// Runs the piece where nobody may make anything in the folder. Root may do everything, so it becomes nobody.
Ending RunWithoutWriting(const TempFolder& folder, const std::function<void()>& piece) {
    constexpr uid_t kNobody = 65534;
    EXPECT_EQ(::chmod(folder.Path().c_str(), 0555), 0);
    Ending ending = RunInChild([&] {
        if (::geteuid() == 0) {
            EXPECT_EQ(::setgid(kNobody), 0);
            EXPECT_EQ(::setuid(kNobody), 0);
        }
        piece();
    });
    EXPECT_EQ(::chmod(folder.Path().c_str(), 0755), 0);
    return ending;
}

TEST_F(PreferenceFailures, AStoreThatMayNotBeReadGivesNothing) {
    (void)SoundStore();
    ASSERT_EQ(::chmod(m_store.c_str(), 0), 0);
    const Ending ending = RunWithoutWriting(m_folder, [] {
        EXPECT_EQ(pref_get_long(kGroup, kKey), 0);
        EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    const std::string cause = "it cannot be opened: Permission denied";
    EXPECT_THAT(LinesOf(ending.err),
                ElementsAre(Complaint("read from", m_store, cause), Complaint("written to", m_store, cause)));
}

TEST_F(PreferenceFailures, AStoreThatMayNotBeWrittenIsStillRead) {
    const std::string before = SoundStore();
    ASSERT_EQ(::chmod(m_store.c_str(), 0444), 0);
    const Ending ending = RunWithoutWriting(m_folder, [] {
        EXPECT_EQ(pref_get_long(kGroup, kKey), 4711);
        EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_THAT(LinesOf(ending.err), ElementsAre(HasSubstr(Complaint("written to", m_store, "it is write-protected"))));
    EXPECT_TRUE(ReadFile(m_store) == before);
}

TEST_F(PreferenceFailures, AFolderThatMayNotBeMadeIsNamed) {
    const std::string store = m_folder / "file/folder/store";
    WriteFile(m_folder / "file", "text");
    SetVariable("DCF_PREFERENCES", store.c_str());
    const Ending asFolder = RunInChild([] { EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1); });
    EXPECT_THAT(LinesOf(asFolder.err),
                ElementsAre(Complaint("written to", store, "it cannot be opened: Not a directory")));

    const std::string hidden = m_folder / "folder/store";
    SetVariable("DCF_PREFERENCES", hidden.c_str());
    const Ending denied = RunWithoutWriting(m_folder, [] { EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1); });
    EXPECT_THAT(LinesOf(denied.err), ElementsAre(Complaint("written to", hidden,
                                                           "its folder \"" + (m_folder / "folder") +
                                                               "\" cannot be made: Permission denied")));
}

TEST_F(PreferenceFailures, WithoutAnyPlaceTheCureIsNamed) {
    SetVariable("DCF_PREFERENCES", nullptr);
    SetVariable("XDG_STATE_HOME", nullptr);
    SetVariable("HOME", "not/absolute");
    const Ending ending = RunInChild([] {
        EXPECT_EQ(pref_get_long(kGroup, kKey), 0);
        EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    const std::string cause = " the store: there is no place for it; name a file in DCF_PREFERENCES";
    EXPECT_THAT(LinesOf(ending.err), ElementsAre("dcfplatform-host: preference 3/512 cannot be read from" + cause,
                                                 "dcfplatform-host: preference 3/512 cannot be written to" + cause));
}

TEST_F(PreferenceFailures, ALockedStoreIsGivenUpAfterAWhile) {
    (void)SoundStore();
    Connection other(m_store);
    other.Run("BEGIN EXCLUSIVE");
    const Ending ending = RunInChild([] {
        dcftest::PosixSeam seam;
        seam.SkipSleeps();
        EXPECT_EQ(pref_get_long(kGroup, kKey), 0);
        EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1);
        EXPECT_GT(seam.Count("usleep"), 10); // it did wait
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_THAT(LinesOf(ending.err),
                ElementsAre(HasSubstr(Complaint("read from", m_store, "another process has it locked; ")),
                            HasSubstr(Complaint("written to", m_store, "another process has it locked; "))));
    other.Run("COMMIT");
    EXPECT_EQ(pref_get_long(kGroup, kKey), 4711);
}

// No room.

// Puts a file system of 64 KiB on the folder, for this process alone, and runs the pieces before and after it is full.
void OnASmallDisk(const std::string& folder, const std::function<void()>& before, const std::function<void()>& full) {
    if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") != 0) {
        dcftest::RefuseInChild(std::strerror(errno));
    }
    before();
    std::ofstream file(folder + "/filler", std::ios::binary);
    while (file << std::string(1024, 'x') << std::flush) {
    }
    file.close(); // once removed, it must give its room back
    full();
}

TEST_F(PreferenceFailures, OnAFullDiskTheOldValueStaysAndAWriteIsRefused) {
    const Ending ending = RunInChild([this] {
        OnASmallDisk(
            m_folder.Path(), [] { EXPECT_EQ(pref_set_long(kGroup, kKey, 4711), 0); },
            [this] {
                const std::string before = ReadFile(m_store);
                EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1);
                EXPECT_EQ(pref_get_long(kGroup, kKey), 4711);
                EXPECT_TRUE(ReadFile(m_store) == before);
                std::filesystem::remove(m_folder / "filler");
                EXPECT_EQ(pref_set_long(kGroup, kKey, 2), 0);
                EXPECT_EQ(pref_get_long(kGroup, kKey), 2);
            });
    });
    if (ending.refused) {
        GTEST_SKIP() << "no private mounts: " << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_THAT(LinesOf(ending.err), ElementsAre(HasSubstr(Complaint("written to", m_store, "the disk is full; "))));
}

TEST_F(PreferenceFailures, OnAFullDiskTheFirstWriteIsRefusedAndSucceedsOnceThereIsRoom) {
    const Ending ending = RunInChild([this] {
        OnASmallDisk(
            m_folder.Path(), [] {},
            [this] {
                EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1);
                EXPECT_EQ(pref_get_long(kGroup, kKey), 0);
                std::filesystem::remove(m_folder / "filler");
                EXPECT_EQ(pref_set_long(kGroup, kKey, 2), 0);
                EXPECT_EQ(pref_get_long(kGroup, kKey), 2);
            });
    });
    if (ending.refused) {
        GTEST_SKIP() << "no private mounts: " << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_THAT(LinesOf(ending.err), ElementsAre(HasSubstr(Complaint("written to", m_store, "the disk is full; "))));
}

TEST_F(PreferenceFailures, ALimitOnTheSizeOfFilesRefusesAWrite) {
    const std::string before = SoundStore();
    const Ending ending = RunInChild([] {
        EXPECT_NE(::signal(SIGXFSZ, SIG_IGN), SIG_ERR);
        const rlimit limit{100, 100};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
        const int result = pref_set_long(kGroup, kKey, 1);
        ::_exit(result == -1 && pref_get_long(kGroup, kKey) == 4711 ? 0 : 1); // no output may be written any more
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_TRUE(ReadFile(m_store) == before);
}

} // namespace
