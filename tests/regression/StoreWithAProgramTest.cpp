// The story: of a preference store it was asked whether its pages are sound and whether there is a table of its name,
// and not what else the file holds. A view in the place of the table, or a trigger on it, is a program that runs when a
// value is read or written; one without an end kept the camera's software waiting for ever. A store now holds its
// table, word for word, and nothing else.
#include <gtest/gtest.h>
#include <pref.h>
#include <sqlite3.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "ChildProcess.h"
#include "TempFolder.h"

namespace {

using dcftest::Ending;
using dcftest::ReadFile;
using dcftest::RunInChild;
using dcftest::TempFolder;

constexpr int kGroup = 3;
constexpr int kKey = 512;
constexpr unsigned kPatience = 20; ///< Seconds, where a loop without end is feared.
const std::string kEndless = "(WITH RECURSIVE r(a) AS (SELECT 1 UNION ALL SELECT a + 1 FROM r) SELECT a FROM r)";

class StoreWithAProgram : public ::testing::Test {
protected:
    StoreWithAProgram() {
        dcftest::SetVariable("DCF_PREFERENCES", m_store.c_str());
        EXPECT_EQ(pref_set_long(kGroup, kKey, 4711), 0);
    }

    void Run(const std::string& sql) const {
        sqlite3* opened = nullptr;
        EXPECT_EQ(sqlite3_open(m_store.c_str(), &opened), SQLITE_OK);
        const std::unique_ptr<sqlite3, int (*)(sqlite3*)> database(opened, sqlite3_close);
        EXPECT_EQ(sqlite3_exec(opened, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(opened);
    }

    void ExpectRefused() const {
        const std::string before = ReadFile(m_store);
        const Ending ending = RunInChild([] {
            (void)::alarm(kPatience);
            EXPECT_EQ(pref_get_long(kGroup, kKey), 0);
            EXPECT_EQ(pref_set_long(kGroup, kKey, 1), -1);
        });
        EXPECT_TRUE(ending.Completed()) << ending.Describe();
        EXPECT_TRUE(dcftest::Contains(ending.err, "it holds something else than its table")) << ending.err;
        EXPECT_EQ(ReadFile(m_store), before);
    }

private:
    TempFolder m_folder;
    std::string m_store = m_folder / "preferences.sqlite";
};

TEST_F(StoreWithAProgram, AViewInPlaceOfTheTableIsNotAsked) {
    Run("DROP TABLE preference");
    Run("CREATE VIEW preference AS SELECT 3 AS class, 512 AS key, count(*) AS value FROM " + kEndless);
    ExpectRefused();
}

TEST_F(StoreWithAProgram, ATriggerIsNotRun) {
    Run("CREATE TRIGGER endless AFTER INSERT ON preference BEGIN SELECT count(*) FROM " + kEndless + "; END");
    ExpectRefused();
}

TEST_F(StoreWithAProgram, AnotherTableOfTheSameNameIsNotTaken) {
    Run("DROP TABLE preference");
    Run("CREATE TABLE preference (class, key, value)");
    ExpectRefused();
}

} // namespace
