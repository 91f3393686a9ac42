// rm: what it deletes, what it says, and what it keeps.
#include <gtest/gtest.h>

#include <unistd.h>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::ErrorOf;
using clitest::Json;
using clitest::Options;
using clitest::Outcome;
using clitest::PathsIn;
using clitest::Words;

namespace {

TEST(Remove, DeletesTheFileNamedAndNoOther) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG", "KVR_0003.JPG"});
    const Outcome outcome = card.Run({"rm", "--yes", card.Path("100PHOTO", "KVR_0002.JPG")});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ("To be deleted: 1 file (33 bytes)\n"
              "  " +
                  card.Path("100PHOTO", "KVR_0002.JPG") +
                  "\n"
                  "Deleted 1 file (33 bytes).\n",
              outcome.out);
    EXPECT_EQ("", outcome.err);
    EXPECT_FALSE(card.Exists("100PHOTO", "KVR_0002.JPG"));
    EXPECT_TRUE(card.Holds("100PHOTO", "KVR_0001.JPG"));
    EXPECT_TRUE(card.Holds("100PHOTO", "KVR_0003.JPG"));
}

TEST(Remove, FindsAFileByEveryFormOfItsPath) {
    const std::vector<std::string> forms = {"DCIM/100PHOTO/KVR_0001.JPG", "100PHOTO/KVR_0001.JPG",
                                            "./100PHOTO/../100PHOTO/KVR_0001.JPG", "100PHOTO/kvr_0001.jpg"};
    for (const std::string& form : forms) {
        ChangeCard card;
        card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"});
        const Outcome outcome = card.Run({"rm", "--yes", form});
        EXPECT_EQ(clitest::kSuccess, outcome.exit) << form << outcome.Describe();
        EXPECT_EQ(Words{"KVR_0002.JPG"}, card.Names("100PHOTO")) << form;
    }
}

TEST(Remove, FindsAFileFromTheFolderInWhichThePersonStands) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"});
    Options options;
    options.folder = card.Path("100PHOTO");
    const Outcome outcome = card.Run({"rm", "--yes", "KVR_0001.JPG"}, options);
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ(Words{"KVR_0002.JPG"}, card.Names("100PHOTO"));
}

TEST(Remove, TakesPositionsOfTheList) {
    ChangeCard card;
    card.Put("101PHOTO", {"KVR_0001.JPG"}).Put("100PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"});
    const Outcome outcome = card.Run({"rm", "--yes", "--pos", "0", "2"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_FALSE(card.Exists("101PHOTO"));
    EXPECT_EQ(Words{"KVR_0002.JPG"}, card.Names("100PHOTO"));
}

TEST(Remove, DeletesTheCompanionWithItsFileAndSaysSo) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW", "KVR_0002.JPG"});
    const Outcome outcome = card.Run({"rm", "--yes", "100PHOTO/KVR_0001.JPG"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit);
    EXPECT_EQ("To be deleted: 1 file with 1 companion (66 bytes)\n"
              "  " +
                  card.Path("100PHOTO", "KVR_0001.JPG") +
                  "\n"
                  "  " +
                  card.Path("100PHOTO", "KVR_0001.SRW") +
                  " (its companion)\n"
                  "Deleted 1 file with 1 companion (66 bytes).\n",
              outcome.out);
    EXPECT_EQ(Words{"KVR_0002.JPG"}, card.Names("100PHOTO"));
}

TEST(Remove, RefusesACompanionWhoseFileIsNotNamed) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW"});
    const Words before = card.Before();
    const Outcome outcome = card.Run({"rm", "--yes", "100PHOTO/KVR_0001.SRW"});
    EXPECT_EQ(clitest::kRefused, outcome.exit);
    EXPECT_EQ("'100PHOTO/KVR_0001.SRW' is the companion of 'KVR_0001.JPG' and always shares its fate; name that file "
              "(as well) if both are meant",
              ErrorOf(outcome));
    EXPECT_EQ(before, card.Before());
}

TEST(Remove, TakesACompanionThatIsNamedBesideItsFile) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW", "KVR_0002.JPG"});
    const Outcome outcome = card.Run({"rm", "--yes", "100PHOTO/KVR_0001.SRW", "100PHOTO/KVR_0001.JPG"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ(Words{"KVR_0002.JPG"}, card.Names("100PHOTO"));
}

TEST(Remove, TakesAFileThatIsNamedTwiceOnce) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"});
    const Json json = card.RunJson({"rm", "--yes", "100PHOTO/KVR_0001.JPG", "DCIM/100PHOTO/KVR_0001.JPG"});
    EXPECT_EQ(1, json["planned"]["files"]);
    EXPECT_EQ(1, json["deleted"]["files"]);
    EXPECT_EQ(Words{"KVR_0002.JPG"}, card.Names("100PHOTO"));
}

TEST(Remove, RemovesAFolderThatItEmptiesAndSaysSo) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).Put("101PHOTO", {"KVR_0001.JPG"});
    const Json json = card.RunJson({"rm", "--yes", "101PHOTO/KVR_0001.JPG"});
    EXPECT_EQ(Words{card.Path("101PHOTO")}, PathsIn(json["folders"]));
    EXPECT_EQ(1, json["planned"]["folders"]);
    EXPECT_EQ(1, json["deleted"]["folders"]);
    EXPECT_EQ(Words{"100PHOTO"}, card.DirNames());
}

TEST(Remove, LeavesAFolderThatHoldsSomethingElse) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "notes.txt"});
    const Json json = card.RunJson({"rm", "--yes", "100PHOTO/KVR_0001.JPG"});
    EXPECT_TRUE(json["folders"].empty());
    EXPECT_EQ(0, json["deleted"]["folders"]);
    EXPECT_TRUE(card.Holds("100PHOTO", "notes.txt"));
}

TEST(Remove, OnlyShowsWithDryRun) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW"}).PutProtected("101PHOTO", {"KVR_0001.JPG"});
    const Words before = card.Before();
    const Outcome outcome = card.Run({"rm", "--dry-run", "100PHOTO/KVR_0001.JPG", "101PHOTO/KVR_0001.JPG"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit);
    EXPECT_EQ("To be deleted: 1 file with 1 companion (66 bytes) and 1 folder\n"
              "  " +
                  card.Path("100PHOTO", "KVR_0001.JPG") +
                  "\n"
                  "  " +
                  card.Path("100PHOTO", "KVR_0001.SRW") +
                  " (its companion)\n"
                  "  " +
                  card.Path("100PHOTO") +
                  " (a folder with nothing left in it)\n"
                  "Protected and kept: 1 file\n"
                  "  " +
                  card.Path("101PHOTO", "KVR_0001.JPG") +
                  "\n"
                  "Nothing was deleted.\n",
              outcome.out);
    EXPECT_EQ(before, card.Before());
}

TEST(Remove, DoesNothingWithoutATerminalToAskOn) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    const Words before = card.Before();
    Options options;
    options.input = "y\n"; // a pipe is nobody
    const Outcome outcome = card.Run({"rm", "100PHOTO/KVR_0001.JPG"}, options);
    EXPECT_EQ(clitest::kRefused, outcome.exit);
    EXPECT_EQ("nothing was deleted, because there is no terminal to ask on; --yes deletes without a question, "
              "--dry-run only shows what would go",
              ErrorOf(outcome));
    EXPECT_EQ(before, card.Before());
}

// ---- Protected files ----

TEST(Remove, KeepsProtectedFilesAndNamesThem) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0003.JPG"}).PutProtected("100PHOTO", {"KVR_0002.JPG"});
    const Outcome outcome = card.Run({"rm", "--yes", "--pos", "0", "1", "2"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ(clitest::WarningLine("1 file protected and kept: '" + card.Path("100PHOTO", "KVR_0002.JPG") + "'"),
              outcome.err);
    EXPECT_EQ(Words{"KVR_0002.JPG"}, card.Names("100PHOTO"));
}

TEST(Remove, KeepsAFileWhoseCompanionAloneIsProtected) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0002.JPG"}).PutProtected("100PHOTO", {"KVR_0001.SRW"});
    const Json json = card.RunJson({"rm", "--yes", "--pos", "0", "1"});
    EXPECT_EQ(Words{card.Path("100PHOTO", "KVR_0001.JPG")}, PathsIn(json["kept"]));
    EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0001.SRW"}), card.Names("100PHOTO"));
}

TEST(Remove, RefusesWhenEverythingNamedIsProtected) {
    ChangeCard card;
    card.PutProtected("100PHOTO", {"KVR_0001.JPG"});
    const Outcome outcome = card.Run({"rm", "--yes", "--pos", "0"});
    EXPECT_EQ(clitest::kRefused, outcome.exit);
    EXPECT_EQ("nothing is deleted, since all that was named is protected ('" + card.Path("100PHOTO", "KVR_0001.JPG") +
                  "'); 'dcfctl unprotect' takes the protection off",
              ErrorOf(outcome));
    EXPECT_TRUE(card.Holds("100PHOTO", "KVR_0001.JPG"));
}

TEST(Remove, RefusesAllFilesWhileSomeAreProtected) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).PutProtected("100PHOTO", {"KVR_0002.JPG"});
    const Words before = card.Before();
    const Outcome outcome = card.Run({"rm", "--yes", "--all"});
    EXPECT_EQ(clitest::kRefused, outcome.exit);
    EXPECT_EQ("1 file of the card is protected ('" + card.Path("100PHOTO", "KVR_0002.JPG") +
                  "'); --protected-too deletes them as well, or name the files that are to go",
              ErrorOf(outcome));
    EXPECT_EQ(before, card.Before());
}

TEST(Remove, DeletesProtectedFilesWithAllWhenToldTo) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).PutProtected("101PHOTO", {"KVR_0002.JPG", "KVR_0002.SRW"});
    const Json json = card.RunJson({"rm", "--yes", "--all", "--protected-too"});
    EXPECT_TRUE(json["error"].is_null()) << json;
    EXPECT_EQ(json["planned"], json["deleted"]);
    EXPECT_EQ(2, json["deleted"]["files"]);
    EXPECT_EQ(1, json["deleted"]["companions"]);
    EXPECT_EQ(Words{}, card.DirNames());
}

TEST(Remove, DeletesEmptyFoldersWithAllAndAnnouncesThem) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).AddDir("101PHOTO").AddDir("102PHOTO");
    card.AddDir("misc"); // no folder of the list
    const Json json = card.RunJson({"rm", "--yes", "--all"});
    EXPECT_EQ((Words{card.Path("102PHOTO"), card.Path("101PHOTO"), card.Path("100PHOTO")}), PathsIn(json["folders"]));
    EXPECT_EQ(3, json["deleted"]["folders"]);
    EXPECT_EQ(Words{"misc"}, card.DirNames());
}

TEST(Remove, LeavesEmptyFoldersAloneWhenFilesAreNamed) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"}).AddDir("101PHOTO");
    EXPECT_EQ(clitest::kSuccess, card.Run({"rm", "--yes", "--pos", "0"}).exit);
    EXPECT_EQ(Words{"101PHOTO"}, card.DirNames());
}

TEST(Remove, SaysWhenThereIsNothingToDelete) {
    ChangeCard card;
    const Outcome outcome = card.Run({"rm", "--all"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ("There is nothing to delete.\n", outcome.out);
}

// ---- Trouble ----

TEST(Remove, TellsWhatWasLeftBehindWhenTheCardKeepsFiles) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "KVR_0001.SRW"});
    const Outcome outcome = card.Run({"rm", "--yes", "--pos", "0"}, WithShim(card.Environment(), "keep-files"));
    EXPECT_EQ(clitest::kIncomplete, outcome.exit) << outcome.Describe();
    EXPECT_EQ("of what was to be deleted, this is still on the card: '" + card.Path("100PHOTO", "KVR_0001.JPG") +
                  "', '" + card.Path("100PHOTO") +
                  "'; check that the card is not locked or damaged and that its folders may be written, then run it "
                  "again",
              ErrorOf(outcome));
    EXPECT_NE(std::string::npos, outcome.out.find("Deleted 0 files with 1 companion (33 bytes).\nStill there:\n"))
        << outcome.out;
    EXPECT_TRUE(card.Holds("100PHOTO", "KVR_0001.JPG"));
}

TEST(Remove, RefusesAFolderThatMayNotBeWritten) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs the right to run as another user";
    }
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    ASSERT_EQ(0, chmod(card.Root().c_str(), 0755));
    ASSERT_EQ(0, chmod(card.Beside().c_str(), 0777));
    const Words before = card.Before();
    Options options;
    options.user = 65534;
    const Outcome outcome = card.Run({"rm", "--yes", "--pos", "0"}, options);
    EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
    EXPECT_EQ("nothing can be deleted in '" + card.Dcim() +
                  "' (Permission denied); check the permissions of the folder, or run as the user who may",
              ErrorOf(outcome));
    EXPECT_EQ(before, card.Before());
}

TEST(Remove, RefusesPathsAndPositionsThatTheListHasNot) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG", "notes.txt"});
    const Words before = card.Before();
    const std::vector<std::pair<Words, std::string>> rows = {
        {{"100PHOTO/KVR_0009.JPG"},
         "the list has no file '100PHOTO/KVR_0009.JPG'; 'dcfctl ls --paths' shows the paths "
         "there are"},
        {{"100PHOTO/notes.txt"},
         "the list has no file '100PHOTO/notes.txt'; 'dcfctl ls --paths' shows the paths there "
         "are"},
        {{""}, "the list has no file ''; 'dcfctl ls --paths' shows the paths there are"},
        {{"/etc/passwd"}, "the list has no file '/etc/passwd'; 'dcfctl ls --paths' shows the paths there are"},
        {{"DCIM/100PHOTO/"},
         "'DCIM/100PHOTO/' is a folder; name the files, 'dcfctl ls --dir 100PHOTO --paths' shows "
         "them"},
        {{"--pos", "1"}, "there is no position '1'; the list has the positions 0 to 0"},
        {{"--pos", "one"}, "there is no position 'one'; the list has the positions 0 to 0"},
    };
    for (const auto& [words, expected] : rows) {
        Words all = {"rm", "--yes"};
        all.insert(all.end(), words.begin(), words.end());
        const Outcome outcome = card.Run(all);
        EXPECT_EQ(clitest::kRefused, outcome.exit) << outcome.Describe();
        EXPECT_EQ(expected, ErrorOf(outcome));
        EXPECT_EQ("", outcome.out);
    }
    EXPECT_EQ(before, card.Before());
}

TEST(Remove, ShowsControlCharactersOfANameEscaped) {
    ChangeCard card;
    card.Put("100PHOTO", {"K\x1b[M0001.JPG", "KVR_0002.JPG"});
    const Outcome outcome = card.Run({"rm", "--yes", "--pos", "1"});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ(std::string::npos, outcome.out.find('\x1b')) << outcome.out;
}

} // namespace
