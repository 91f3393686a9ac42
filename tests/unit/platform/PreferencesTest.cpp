// The preference store of a workstation while all is well: values, places, and several users at once.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pref.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <climits>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "TempFolder.h"

using dcftest::Ending;
using dcftest::RunInChild;
using dcftest::SetVariable;
using dcftest::TempFolder;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace {

constexpr int kGroup = 3;
constexpr int kKey = 512;

// Everything in a folder and below it, as paths from the folder on.
std::vector<std::string> NamesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        names.push_back(std::filesystem::relative(entry.path(), folder).string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

mode_t ModeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777U;
}

// A store of the test's own.
class Preferences : public ::testing::Test {
protected:
    Preferences() {
        SetVariable("DCF_PREFERENCES", m_store.c_str());
    }

    const TempFolder m_folder;
    const std::string m_store = m_folder / "store";
};

using PreferencesConcurrency = Preferences;

TEST_F(Preferences, EveryValueOfALongIsReadBack) {
    for (const long value : {LONG_MIN, -1L, 0L, 1L, 10000000L, 99909999L, LONG_MAX}) {
        EXPECT_EQ(pref_set_long(kGroup, kKey, value), 0);
        EXPECT_EQ(pref_get_long(kGroup, kKey), value);
    }
}

TEST_F(Preferences, AValueNeverStoredIsZero) {
    ASSERT_EQ(pref_set_long(kGroup, kKey, 7), 0);
    EXPECT_EQ(pref_get_long(kGroup, kKey + 1), 0);
    EXPECT_EQ(pref_get_long(kGroup + 1, kKey), 0);
}

TEST_F(Preferences, GroupsAndKeysAreKeptApart) {
    ASSERT_EQ(pref_set_long(3, 512, 1), 0);
    ASSERT_EQ(pref_set_long(512, 3, 2), 0);
    ASSERT_EQ(pref_set_long(INT_MIN, INT_MAX, 3), 0);
    ASSERT_EQ(pref_set_long(INT_MAX, INT_MIN, 4), 0);
    EXPECT_EQ(pref_get_long(3, 512), 1);
    EXPECT_EQ(pref_get_long(512, 3), 2);
    EXPECT_EQ(pref_get_long(INT_MIN, INT_MAX), 3);
    EXPECT_EQ(pref_get_long(INT_MAX, INT_MIN), 4);
}

TEST_F(Preferences, AReadWithoutAStoreGivesZeroAndMakesNothing) {
    SetVariable("DCF_PREFERENCES", (m_folder / "some/folder/store").c_str());
    const Ending ending = RunInChild([] { EXPECT_EQ(pref_get_long(kGroup, kKey), 0); });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.err, "");
    EXPECT_THAT(NamesIn(m_folder.Path()), IsEmpty());
}

TEST_F(Preferences, TheFirstWriteMakesTheFoldersAndTheStoreForTheirOwnerAlone) {
    ASSERT_EQ(::mkdir((m_folder / "old").c_str(), 0751), 0);
    const mode_t before = ModeOf(m_folder / "old");
    const std::string store = m_folder / "old/new/newer/store";
    SetVariable("DCF_PREFERENCES", store.c_str());
    const Ending ending = RunInChild([] {
        ::umask(0); // as the library has it for a moment while it makes a folder
        EXPECT_EQ(pref_set_long(kGroup, kKey, 7), 0);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ModeOf(m_folder / "old"), before);
    EXPECT_EQ(ModeOf(m_folder / "old/new"), 0700U);
    EXPECT_EQ(ModeOf(m_folder / "old/new/newer"), 0700U);
    EXPECT_EQ(ModeOf(store), 0600U);
    EXPECT_EQ(pref_get_long(kGroup, kKey), 7);
}

TEST_F(Preferences, TheModeOfAStoreThatIsThereStays) {
    ASSERT_EQ(pref_set_long(kGroup, kKey, 7), 0);
    ASSERT_EQ(::chmod(m_store.c_str(), 0640), 0);
    ASSERT_EQ(pref_set_long(kGroup, kKey, 8), 0);
    EXPECT_EQ(ModeOf(m_store), 0640U);
}

TEST_F(Preferences, ALinkedFolderOnTheWayToTheStoreIsTheUsersOwnAffair) {
    ASSERT_EQ(::mkdir((m_folder / "real").c_str(), 0700), 0);
    ASSERT_EQ(::symlink("real", (m_folder / "link").c_str()), 0);
    SetVariable("DCF_PREFERENCES", (m_folder / "link/store").c_str());
    EXPECT_EQ(pref_set_long(kGroup, kKey, 7), 0);
    EXPECT_EQ(pref_get_long(kGroup, kKey), 7);
    EXPECT_THAT(NamesIn(m_folder / "real"), ElementsAre("store"));
}

TEST_F(Preferences, AWriteLeavesTheStoreAndNothingElse) {
    ASSERT_EQ(pref_set_long(kGroup, kKey, 7), 0);
    EXPECT_THAT(NamesIn(m_folder.Path()), ElementsAre("store"));
}

TEST_F(Preferences, WithoutAVariableTheStoreIsInTheStateFolder) {
    for (const char* unset : {static_cast<const char*>(nullptr), ""}) {
        const TempFolder state;
        SetVariable("DCF_PREFERENCES", unset);
        SetVariable("XDG_STATE_HOME", state.Path().c_str());
        SetVariable("HOME", m_folder.Path().c_str());
        ASSERT_EQ(pref_set_long(kGroup, kKey, 7), 0);
        EXPECT_THAT(NamesIn(state.Path()), ElementsAre("dcffilelist", "dcffilelist/preferences.sqlite"));
    }
    EXPECT_THAT(NamesIn(m_folder.Path()), IsEmpty());
}

TEST_F(Preferences, WithoutAnAbsoluteStateFolderTheStoreIsUnderTheHomeFolder) {
    for (const char* useless : {static_cast<const char*>(nullptr), "", "relative/state"}) {
        const TempFolder home;
        SetVariable("DCF_PREFERENCES", nullptr);
        SetVariable("XDG_STATE_HOME", useless);
        SetVariable("HOME", home.Path().c_str());
        ASSERT_EQ(pref_set_long(kGroup, kKey, 7), 0);
        EXPECT_TRUE(std::filesystem::exists(home / ".local/state/dcffilelist/preferences.sqlite"));
        EXPECT_EQ(ModeOf(home / ".local"), 0700U);
    }
}

TEST_F(Preferences, ARelativePathCountsFromTheWorkingFolder) {
    std::filesystem::current_path(m_folder.Path());
    SetVariable("DCF_PREFERENCES", "a/store");
    ASSERT_EQ(pref_set_long(kGroup, kKey, 7), 0);
    EXPECT_THAT(NamesIn(m_folder.Path()), ElementsAre("a", "a/store"));
}

TEST_F(Preferences, NamesWithAMeaningForTheDatabaseArePlainFileNames) {
    std::filesystem::current_path(m_folder.Path());
    for (const char* name : {":memory:", "file:x?mode=memory", "-wal"}) {
        SetVariable("DCF_PREFERENCES", name);
        ASSERT_EQ(pref_set_long(kGroup, kKey, 7), 0);
        EXPECT_EQ(pref_get_long(kGroup, kKey), 7);
        EXPECT_TRUE(std::filesystem::is_regular_file(name)) << name;
    }
}

TEST_F(Preferences, TheVariableCountsAtEveryCall) {
    ASSERT_EQ(pref_set_long(kGroup, kKey, 7), 0);
    SetVariable("DCF_PREFERENCES", (m_folder / "other").c_str());
    EXPECT_EQ(pref_get_long(kGroup, kKey), 0);
    SetVariable("DCF_PREFERENCES", m_store.c_str());
    EXPECT_EQ(pref_get_long(kGroup, kKey), 7);
}

TEST_F(Preferences, AnEmptyFileIsAStoreWithoutValues) {
    dcftest::WriteFile(m_store, "");
    const Ending ending = RunInChild([] {
        EXPECT_EQ(pref_get_long(kGroup, kKey), 0);
        EXPECT_EQ(pref_set_long(kGroup, kKey, 7), 0);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.err, "");
    EXPECT_EQ(pref_get_long(kGroup, kKey), 7);
}

TEST_F(Preferences, AReadChangesNothing) {
    ASSERT_EQ(pref_set_long(kGroup, kKey, 7), 0);
    const std::string before = dcftest::ReadFile(m_store);
    const auto time = std::filesystem::last_write_time(m_store);
    EXPECT_EQ(pref_get_long(kGroup, kKey), 7);
    EXPECT_EQ(dcftest::ReadFile(m_store), before);
    EXPECT_EQ(std::filesystem::last_write_time(m_store), time);
    EXPECT_THAT(NamesIn(m_folder.Path()), ElementsAre("store"));
}

TEST_F(Preferences, AStoreThatWasTakenAwayIsMadeAnew) {
    ASSERT_EQ(pref_set_long(kGroup, kKey, 7), 0);
    std::filesystem::remove(m_store);
    EXPECT_EQ(pref_get_long(kGroup, kKey), 0);
    ASSERT_EQ(pref_set_long(kGroup, kKey, 8), 0);
    EXPECT_EQ(pref_get_long(kGroup, kKey), 8);
}

// Runs the piece in that many processes, which all wait for the last one to be there. They must all end with 0.
void RunInProcesses(int count, const std::function<bool(int)>& piece) {
    int gate[2];
    ASSERT_EQ(::pipe(gate), 0);
    for (int process = 0; process < count; ++process) {
        if (::fork() == 0) {
            ::close(gate[1]);
            char ignored = 0;
            (void)::read(gate[0], &ignored, 1); // until the parent closes its end
            ::_exit(piece(process) ? 0 : 1);
        }
    }
    ::close(gate[0]);
    ::close(gate[1]);
    for (int process = 0; process < count; ++process) {
        int status = 0;
        ASSERT_GT(::wait(&status), 0);
        EXPECT_EQ(status, 0);
    }
}

TEST_F(PreferencesConcurrency, ConcurrentFirstWritesAllSucceed) {
    constexpr int kProcesses = 8;
    SetVariable("DCF_PREFERENCES", (m_folder / "new/folder/store").c_str());
    const Ending ending = RunInChild([] {
        RunInProcesses(kProcesses, [](int process) { return pref_set_long(kGroup, process, process + 100) == 0; });
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.err, "");
    for (int process = 0; process < kProcesses; ++process) {
        EXPECT_EQ(pref_get_long(kGroup, process), process + 100);
    }
}

TEST_F(PreferencesConcurrency, ConcurrentProcessesReadWholeValuesInTheOrderInWhichTheyWereStored) {
    constexpr int kLast = 25;
    constexpr long kScale = 1000000007L;
    const Ending ending = RunInChild([] {
        RunInProcesses(4, [](int process) {
            long seen = 0;
            for (int i = 1; i <= kLast; ++i) {
                if (process < 2) { // two writers with a key each
                    if (pref_set_long(kGroup, process, i * kScale) != 0) {
                        return false;
                    }
                    continue;
                }
                const long now = pref_get_long(kGroup, process - 2); // two readers, one for each
                if (now < seen || now % kScale != 0) {
                    return false;
                }
                seen = now;
            }
            return true;
        });
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.err, "");
    EXPECT_EQ(pref_get_long(kGroup, 0), kLast * kScale);
    EXPECT_EQ(pref_get_long(kGroup, 1), kLast * kScale);
}

TEST_F(PreferencesConcurrency, ConcurrentThreadsStoreAndReadTheirOwnValues) {
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([thread] {
            for (long i = 1; i <= 10; ++i) {
                EXPECT_EQ(pref_set_long(kGroup, thread, i), 0);
                EXPECT_EQ(pref_get_long(kGroup, thread), i);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace
