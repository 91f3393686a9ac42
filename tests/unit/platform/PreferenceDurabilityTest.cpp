// A stored preference is on the disk when the call returns, and a process that dies in the middle leaves the old value
// or the new one. This program stands between SQLite and the calls that bring files to the disk.
#include <dlfcn.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pref.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "PosixSeam.h"
#include "TempFolder.h"

using dcftest::Ending;
using dcftest::RunInChild;
using dcftest::SetVariable;
using dcftest::TempFolder;

namespace {

constexpr int kGroup = 3;
constexpr int kKey = 512;
constexpr int kDied = 9;

std::vector<std::string> g_syncs; // the paths, in order
int g_dieAtSync = 0;              // the process ends before that sync; 0 never
std::function<void(const std::string&)> g_beforeSync;

// The real function, behind a note of what is synced.
int SyncAndNote(const char* name, int fd) {
    std::array<char, 4096> path{};
    (void)::readlink(("/proc/self/fd/" + std::to_string(fd)).c_str(), path.data(), path.size() - 1);
    g_syncs.emplace_back(path.data());
    if (static_cast<int>(g_syncs.size()) == g_dieAtSync) {
        ::_exit(kDied);
    }
    if (g_beforeSync) {
        g_beforeSync(path.data());
    }
    return reinterpret_cast<int (*)(int)>(::dlsym(RTLD_NEXT, name))(fd);
}

} // namespace

extern "C" int fsync(int fd) {
    return SyncAndNote("fsync", fd);
}

extern "C" int fdatasync(int fd) {
    return SyncAndNote("fdatasync", fd);
}

namespace {

class PreferenceDurability : public ::testing::Test {
protected:
    PreferenceDurability() {
        SetVariable("DCF_PREFERENCES", m_store.c_str());
    }

    const TempFolder m_folder;
    const std::string m_store = m_folder / "store";
};

TEST_F(PreferenceDurability, AWriteSyncsTheJournalTheStoreAndLastTheFolderWithoutTheJournal) {
    ASSERT_EQ(pref_set_long(kGroup, kKey, 1), 0);
    g_syncs.clear();
    std::size_t syncsBeforeTheJournalWent = 0;
    dcftest::PosixSeam seam;
    seam.Before("unlink", 1, [&] { syncsBeforeTheJournalWent = g_syncs.size(); });
    ASSERT_EQ(pref_set_long(kGroup, kKey, 2), 0);

    const std::string journal = m_store + "-journal";
    EXPECT_EQ(seam.Texts({"unlink"}), std::vector<std::string>{"unlink " + journal});
    const std::vector<std::string> before(g_syncs.begin(),
                                          g_syncs.begin() + static_cast<std::ptrdiff_t>(syncsBeforeTheJournalWent));
    const std::vector<std::string> after(g_syncs.begin() + static_cast<std::ptrdiff_t>(syncsBeforeTheJournalWent),
                                         g_syncs.end());
    ASSERT_FALSE(before.empty());
    EXPECT_THAT(before, ::testing::Contains(journal));
    EXPECT_THAT(before, ::testing::Contains(m_folder.Path())); // the journal's own entry
    EXPECT_EQ(before.back(), m_store);
    EXPECT_EQ(after, std::vector<std::string>{m_folder.Path()});
}

TEST_F(PreferenceDurability, TheFirstWriteSyncsAllTheFoldersThatLeadToTheStore) {
    SetVariable("DCF_PREFERENCES", (m_folder / "new/newer/store").c_str());
    ASSERT_EQ(pref_set_long(kGroup, kKey, 1), 0);
    for (const std::string& folder : {m_folder.Path(), m_folder / "new", m_folder / "new/newer"}) {
        EXPECT_THAT(g_syncs, ::testing::Contains(folder));
    }
}

TEST_F(PreferenceDurability, AProcessThatDiesBeforeAnySyncLeavesTheOldValueOrTheNewOne) {
    bool diedOnce = false;
    for (int sync = 1;; ++sync) {
        ASSERT_EQ(pref_set_long(kGroup, kKey, 1), 0); // also repairs what the last round left
        const Ending ending = RunInChild([sync] {
            g_syncs.clear();
            g_dieAtSync = sync;
            ::_exit(pref_set_long(kGroup, kKey, 2) == 0 ? 0 : 1);
        });
        ASSERT_TRUE(ending.status == 0 || ending.status == kDied) << ending.Describe();
        if (ending.status == 0) {
            EXPECT_EQ(pref_get_long(kGroup, kKey), 2);
            break;
        }
        diedOnce = true;
        const Ending reading = RunInChild([] {
            const long value = pref_get_long(kGroup, kKey);
            EXPECT_TRUE(value == 1 || value == 2) << value;
        });
        EXPECT_TRUE(reading.Completed()) << reading.Describe();
        EXPECT_EQ(reading.err, "");
    }
    EXPECT_TRUE(diedOnce);
}

TEST_F(PreferenceDurability, AFirstWriteThatDiesBeforeAnySyncCanBeRepeated) {
    bool diedOnce = false;
    for (int sync = 1;; ++sync) {
        std::filesystem::remove_all(m_folder / "new");
        SetVariable("DCF_PREFERENCES", (m_folder / "new/store").c_str());
        const Ending ending = RunInChild([sync] {
            g_syncs.clear();
            g_dieAtSync = sync;
            ::_exit(pref_set_long(kGroup, kKey, 2) == 0 ? 0 : 1);
        });
        ASSERT_TRUE(ending.status == 0 || ending.status == kDied) << ending.Describe();
        if (ending.status == 0) {
            break;
        }
        diedOnce = true;
        const Ending next = RunInChild([] {
            const long value = pref_get_long(kGroup, kKey);
            EXPECT_TRUE(value == 0 || value == 2) << value;
            EXPECT_EQ(pref_set_long(kGroup, kKey, 3), 0);
            EXPECT_EQ(pref_get_long(kGroup, kKey), 3);
        });
        EXPECT_TRUE(next.Completed()) << next.Describe();
        EXPECT_EQ(next.err, "");
    }
    EXPECT_TRUE(diedOnce);
}

// A process that closes a file gives up all its locks on it, whoever of its threads holds them.
TEST_F(PreferenceDurability, AReadOnAnotherThreadLeavesAWriteItsLock) {
    ASSERT_EQ(pref_set_long(kGroup, kKey, 1), 0);
    std::thread reader;
    bool locked = false;
    g_beforeSync = [&](const std::string& path) {
        if (path != m_store || reader.joinable()) {
            return;
        }
        reader = std::thread([] { EXPECT_EQ(pref_get_long(kGroup, kKey), 2); });
        std::this_thread::sleep_for(std::chrono::milliseconds(100)); // it must not get far
        const Ending asking = RunInChild([this] {
            const int fd = ::open(m_store.c_str(), O_RDWR);
            struct flock lock {};
            lock.l_type = F_WRLCK;
            ::_exit(::fcntl(fd, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK ? 0 : 1);
        });
        locked = asking.Completed();
    };
    EXPECT_EQ(pref_set_long(kGroup, kKey, 2), 0);
    g_beforeSync = nullptr;
    ASSERT_TRUE(reader.joinable());
    reader.join();
    EXPECT_TRUE(locked);
}

TEST_F(PreferenceDurability, AProcessThatIsKilledLosesNoValueThatWasAcknowledged) {
    for (int round = 0; round < 5; ++round) {
        int acknowledged[2];
        ASSERT_EQ(::pipe(acknowledged), 0);
        const long first = pref_get_long(kGroup, kKey);
        const pid_t writer = ::fork();
        ASSERT_GE(writer, 0);
        if (writer == 0) {
            for (long value = first + 1; pref_set_long(kGroup, kKey, value) == 0; ++value) {
                (void)::write(acknowledged[1], &value, sizeof value);
            }
            ::_exit(1);
        }
        ::close(acknowledged[1]);
        long last = first;
        for (int i = 0; i <= round; ++i) { // let a few through, then kill it wherever it is
            ASSERT_EQ(::read(acknowledged[0], &last, sizeof last), static_cast<ssize_t>(sizeof last));
        }
        ::usleep(static_cast<useconds_t>(700 * round));
        ASSERT_EQ(::kill(writer, SIGKILL), 0);
        int status = 0;
        ASSERT_EQ(::waitpid(writer, &status, 0), writer);
        for (long value = 0; ::read(acknowledged[0], &value, sizeof value) == static_cast<ssize_t>(sizeof value);) {
            last = value;
        }
        ::close(acknowledged[0]);
        const long stored = pref_get_long(kGroup, kKey);
        EXPECT_TRUE(stored == last || stored == last + 1) << "acknowledged " << last << ", stored " << stored;
    }
}

} // namespace
