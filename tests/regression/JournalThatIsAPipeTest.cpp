// The story: SQLite opens the journal beside a store to read it, and waits. Where a pipe lay in the journal's place,
// nobody ever wrote to it, and the read of the series value did not return. What is no file is now refused.
#include <gtest/gtest.h>
#include <pref.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "ChildProcess.h"
#include "TempFolder.h"

namespace {

using dcftest::Ending;
using dcftest::ReadFile;
using dcftest::RunInChild;

constexpr int kGroup = 3;
constexpr int kKey = 512;
constexpr unsigned kPatience = 20; ///< Seconds, where a wait without end is feared.

TEST(JournalThatIsAPipe, IsRefusedAndNotWaitedFor) {
    const dcftest::TempFolder folder;
    const std::string store = folder / "preferences.sqlite";
    const std::string journal = store + "-journal";
    dcftest::SetVariable("DCF_PREFERENCES", store.c_str());
    ASSERT_EQ(pref_set_long(kGroup, kKey, 4711), 0);
    const std::string before = ReadFile(store);
    ASSERT_EQ(::mkfifo(journal.c_str(), 0600), 0);

    const Ending ending = RunInChild([] {
        (void)::alarm(kPatience);
        EXPECT_EQ(pref_get_long(kGroup, kKey), 0);
        EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_TRUE(dcftest::Contains(ending.err, "its journal is not a file")) << ending.err;
    EXPECT_EQ(ReadFile(store), before);
    EXPECT_TRUE(std::filesystem::is_fifo(journal));
}

} // namespace
