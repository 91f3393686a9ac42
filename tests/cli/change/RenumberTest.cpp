// renumber: the plan, its refusals, and what is done.
#include <gtest/gtest.h>

#include <filesystem>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::ErrorOf;
using clitest::Json;
using clitest::Outcome;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

/// "from to outcome" of every row.
Words Rows(const Json& json) {
    Words rows;
    for (const Json& row : json["renames"]) {
        rows.push_back(row["from"].get<std::string>() + " " + row["to"].get<std::string>() + " " +
                       row["outcome"].get<std::string>());
    }
    return rows;
}

TEST(Renumber, GivesTheFoldersNumbersFrom100InReversedOrder) {
    ChangeCard card;
    card.Put("100AAAAA", {"KVR_0001.JPG"}).Put("105BBBBB", {"KVR_0002.JPG"}).Put("230CCCCC", {"KVR_0003.JPG"});
    card.SetSeries(23000003);
    const Outcome outcome = card.Run({"renumber"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ("  230CCCCC -> 100CCCCC  renamed\n"
              "  105BBBBB -> 101BBBBB  renamed\n"
              "  100AAAAA -> 102AAAAA  renamed\n"
              "Renumbered.\n"
              "  series value none (before: 230-0003)\n",
              outcome.out);
    EXPECT_EQ((Words{"100CCCCC", "101BBBBB", "102AAAAA"}), card.DirNames());
    EXPECT_EQ(ChangeCard::ContentOf("230CCCCC", "KVR_0003.JPG"),
              clitest::ReadFile(card.Path("100CCCCC", "KVR_0003.JPG")));
    EXPECT_EQ(0, card.Series());
}

TEST(Renumber, ShowsThePlanWithDryRunAndChangesNothing) {
    ChangeCard card;
    card.Put("101AAAAA", {"KVR_0001.JPG"}).Put("230CCCCC", {"KVR_0003.JPG"});
    card.SetSeries(23000003);
    const Words before = card.Before();
    const Outcome outcome = card.Run({"renumber", "--dry-run"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ("  230CCCCC -> 100CCCCC  renamed\n"
              "  101AAAAA -> 101AAAAA  has this name already\n"
              "The plan is complete. Nothing was renamed.\n"
              "  series value would be none (before: 230-0003)\n",
              outcome.out);
    EXPECT_EQ(before, card.Before());
}

TEST(Renumber, TellsAProgramThePlan) {
    ChangeCard card;
    card.Put("230CCCCC", {"KVR_0003.JPG"}).Put("Camera", {"20240501_123456.JPG"});
    const Json json = card.RunJson({"renumber", "--dry-run"});
    EXPECT_EQ("dcfctl.renumber", json["format"]);
    EXPECT_TRUE(json["dry_run"].get<bool>());
    EXPECT_FALSE(json["complete"].get<bool>());
    EXPECT_EQ((Words{"230CCCCC 100CCCCC renamed", "Camera 101era renamed"}), Rows(json));
    EXPECT_TRUE(json["renames"][0]["listed"].get<bool>());
    EXPECT_TRUE(json["renames"][1]["camera"].get<bool>());
    EXPECT_EQ(clitest::kFindings, json["warnings"][0]["exit_code"]);
}

/// A plan that is shown as not complete, refused without --force, and changes nothing so far.
void ExpectIncomplete(const ChangeCard& card, const Words& rows, const std::string& trouble) {
    const Words before = card.Before();
    const Json plan = card.RunJson({"renumber", "--dry-run"});
    EXPECT_EQ(rows, Rows(plan));
    EXPECT_FALSE(plan["complete"].get<bool>());
    const Outcome dry = card.Run({"renumber", "--dry-run"});
    EXPECT_EQ(clitest::kFindings, dry.exit) << dry.Describe();
    EXPECT_EQ(clitest::WarningLine("this renumbering would not end complete: " + trouble +
                                   "; without --dry-run it is refused unless --force is given"),
              dry.err);
    EXPECT_NE(std::string::npos, dry.out.find("The plan is not complete. Nothing was renamed.\n")) << dry.out;
    const Outcome outcome = card.Run({"renumber"});
    EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
    EXPECT_EQ("the renumbering would not end complete: " + trouble +
                  "; 'dcfctl renumber --dry-run' shows the whole plan, and --force does what can be done",
              ErrorOf(outcome));
    EXPECT_EQ(before, card.Before());
}

TEST(Renumber, RefusesARenameWhoseTargetIsInTheWay) {
    ChangeCard card;
    card.Put("101ABCDE", {"KVR_0001.JPG"}).Put("100ABCDE", {"KVR_0002.JPG"});
    ExpectIncomplete(card, {"101ABCDE 100ABCDE blocked", "100ABCDE 101ABCDE blocked"},
                     "'101ABCDE': cannot be renamed: '100ABCDE' is in the way (and 1 more)");
    const Outcome forced = card.Run({"renumber", "--force"});
    EXPECT_EQ(clitest::kIncomplete, forced.exit) << forced.Describe();
    EXPECT_EQ("as planned, some entries were not renamed: '101ABCDE', '100ABCDE'; give them free numbers by hand, and "
              "look whether two folders share a number now",
              ErrorOf(forced));
    EXPECT_TRUE(card.Holds("101ABCDE", "KVR_0001.JPG"));
    EXPECT_TRUE(card.Holds("100ABCDE", "KVR_0002.JPG"));
}

TEST(Renumber, RefusesToRenameCamera) {
    ChangeCard card;
    card.Put("200PHOTO", {"KVR_0001.JPG"}).Put("Camera", {"20240501_123456.JPG"});
    ExpectIncomplete(card, {"200PHOTO 100PHOTO renamed", "Camera 101era renamed"},
                     "'Camera': renamed, and no longer in the list: it is \"Camera\"");
    const Outcome forced = card.Run({"renumber", "--force"});
    EXPECT_EQ(clitest::kSuccess, forced.exit) << forced.Describe();
    EXPECT_EQ((Words{"100PHOTO", "101era"}), card.DirNames());
    EXPECT_TRUE(fs::exists(card.Path("101era", "20240501_123456.JPG")));
}

TEST(Renumber, RefusesToRenameEntriesThatAreNotInTheList) {
    ChangeCard card;
    card.Put("200PHOTO", {"KVR_0001.JPG"}).Put("HOLIDAYS", {"letter.txt"});
    ExpectIncomplete(card, {"HOLIDAYS 100IDAYS renamed", "200PHOTO 101PHOTO renamed"},
                     "'HOLIDAYS': renamed, though it is not in the list");
    EXPECT_EQ(clitest::kSuccess, card.Run({"renumber", "--force"}).exit);
    EXPECT_EQ((Words{"100IDAYS", "101PHOTO"}), card.DirNames());
}

TEST(Renumber, RefusesToReplaceAnEmptyFolder) {
    ChangeCard card;
    card.Put("200PHOTO", {"KVR_0001.JPG"}).AddDir("100PHOTO");
    // The second step finds the folder that the first one put there.
    ExpectIncomplete(card, {"200PHOTO 100PHOTO replaces-empty", "100PHOTO 101PHOTO renamed"},
                     "'200PHOTO': renamed, replacing the empty folder '100PHOTO'");
    const Outcome forced = card.Run({"renumber", "--force"});
    EXPECT_EQ(clitest::kSuccess, forced.exit) << forced.Describe();
    EXPECT_EQ(Words{"101PHOTO"}, card.DirNames());
    EXPECT_EQ(Words{"KVR_0001.JPG"}, card.Names("101PHOTO"));
}

TEST(Renumber, RefusesEvenWithForceToOverwriteAFile) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    card.Put("", {"zzzAAAAA", "100AAAAA"}); // two files in "DCIM", of which one would get the other's name
    const Words before = card.Before();
    for (const Words& words : {Words{"renumber"}, Words{"renumber", "--force"}}) {
        const Outcome outcome = card.Run(words);
        EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
        EXPECT_EQ("the renumbering is not done, not even with --force: 'zzzAAAAA' would overwrite the file '100AAAAA'; "
                  "move that entry out of 'DCIM' first",
                  ErrorOf(outcome));
        EXPECT_EQ(before, card.Before());
    }
    EXPECT_EQ(clitest::kFindings, card.Run({"renumber", "--dry-run"}).exit);
    EXPECT_EQ(before, card.Before());
}

TEST(Renumber, RefusesAFileAmongTheFoldersOfTheList) {
    ChangeCard card;
    card.Put("", {"200PLANS"});
    const Outcome outcome = card.Run({"renumber", "--force"});
    EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
    EXPECT_EQ("'" + card.Path("200PLANS") + "' is a file and no folder; move it away first", ErrorOf(outcome));
}

TEST(Renumber, RefusesANumberBeyond999) {
    ChangeCard card;
    for (int number = 100; number <= 999; ++number) {
        card.AddDir(dcftest::DirName(number, number % 2 == 0 ? "AAAAA" : "BBBBB"));
    }
    card.AddDir("zzzzzzzz");
    card.Put("100AAAAA", {"KVR_0001.JPG"});
    const Words before = card.Before();
    const Outcome outcome = card.Run({"renumber", "--force"});
    EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
    EXPECT_NE(std::string::npos, ErrorOf(outcome).find("would get a number beyond 999 and vanish from the list"));
    EXPECT_EQ(before, card.Before());
}

TEST(Renumber, RefusesACardWhoseFolderIsALink) {
    ChangeCard card;
    ChangeCard other;
    other.Put("100PHOTO", {"KVR_0001.JPG"});
    fs::create_directory_symlink(other.Path("100PHOTO"), card.Path("200PHOTO"));
    const Outcome outcome = card.Run({"renumber", "--force"});
    EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
    EXPECT_EQ("'" + card.Path("200PHOTO") +
                  "' is a link and no folder, and nothing outside the card is ever changed; "
                  "move it away first",
              ErrorOf(outcome));
}

TEST(Renumber, SurvivesAForcedPlanThatLeavesTheListImpossible) {
    // Afterwards an empty folder and a filled one share the number 101, which ends a listing.
    ChangeCard card;
    card.AddDir("105PHOTO");
    card.Put("101ZZZZZ", {"KVR_0002.JPG"}).Put("101XXXXX", {"KVR_0001.JPG"});
    card.Put("100PHOTO", {"KVR_0003.JPG"});
    const Outcome outcome = card.Run({"renumber", "--force"});
    EXPECT_EQ(0, outcome.signal) << outcome.Describe();
    EXPECT_TRUE(outcome.exit == clitest::kSuccess || outcome.exit == clitest::kIncomplete ||
                outcome.exit == clitest::kRefused)
        << outcome.Describe();
    std::size_t files = 0;
    for (const auto& entry : fs::recursive_directory_iterator(card.Dcim())) {
        files += entry.is_regular_file() ? 1 : 0;
    }
    EXPECT_EQ(3U, files);
}

TEST(Renumber, TellsWhenTheCardDidNotDoAsPlanned) {
    ChangeCard card;
    card.Put("200PHOTO", {"KVR_0001.JPG"});
    const Outcome outcome = card.Run({"renumber"}, WithShim(card.Environment(), "fail-rename"));
    EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
    EXPECT_EQ("not all entries have their new names: '200PHOTO'; check that 'DCIM' may be written and that nothing in "
              "it is in use, then look at 'dcfctl renumber --dry-run'",
              ErrorOf(outcome));
    EXPECT_EQ(0U, outcome.out.find("  200PHOTO -> 100PHOTO  NOT DONE\n")) << outcome.out;
    EXPECT_TRUE(card.Holds("200PHOTO", "KVR_0001.JPG"));
}

} // namespace
