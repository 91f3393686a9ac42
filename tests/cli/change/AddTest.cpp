// add: pictures and movies come onto the card under the next names.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>

#include "ChangeCard.h"

using clitest::ChangeCard;
using clitest::Json;
using clitest::Options;
using clitest::Outcome;
using clitest::PathsIn;
using clitest::ReadFile;
using clitest::Words;

namespace fs = std::filesystem;

namespace {

TEST(Add, CopiesUnderTheNextNameAndKeepsTheTime) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0041.JPG"});
    const std::string source = card.Source("holiday.jpg", "a picture", 1600000000);
    const Outcome outcome = card.Run({"add", source});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    const std::string path = card.Path("100PHOTO", "KVR_0042.JPG");
    EXPECT_EQ(path + " from " + source + "\n  series value 100-0042 (before: none)\nAdded 1 file (9 bytes).\n",
              outcome.out);
    EXPECT_EQ("a picture", ReadFile(path));
    struct stat info = {};
    ASSERT_EQ(0, stat(path.c_str(), &info));
    EXPECT_EQ(1600000000, info.st_mtim.tv_sec);
    EXPECT_EQ((Words{"KVR_0041.JPG", "KVR_0042.JPG"}), card.Names("100PHOTO"));
    EXPECT_EQ("a picture", ReadFile(source));
    EXPECT_EQ(10000042, card.Series());
}

TEST(Add, MakesTheFirstFolderOfAnEmptyCard) {
    ChangeCard card;
    fs::remove(card.Dcim());
    const Json json = card.RunJson({"add", card.Source("a.JPG", "a")});
    EXPECT_EQ((Words{card.Dcim(), card.Path("100PHOTO")}), PathsIn(json["made"]));
    EXPECT_EQ("a", ReadFile(card.Path("100PHOTO", "KVR_0001.JPG")));
}

TEST(Add, TakesTheTypeFromTheExtensionInAnyCase) {
    ChangeCard card;
    const Json json = card.RunJson({"add", card.Source("1.jpg", "1"), card.Source("2.Srw", "2"),
                                    card.Source("3.MPO", "3"), card.Source("4.mp4", "4"), card.Source("5.AVI", "5")});
    EXPECT_EQ((Words{card.Path("100PHOTO", "KVR_0001.JPG"), card.Path("100PHOTO", "KVR_0002.SRW"),
                     card.Path("100PHOTO", "KVR_0003.MPO"), card.Path("100PHOTO", "KVR_0004.MP4"),
                     card.Path("100PHOTO", "KVR_0005.AVI")}),
              PathsIn(json["files"]));
    EXPECT_EQ("4", ReadFile(card.Path("100PHOTO", "KVR_0004.MP4")));
}

TEST(Add, KeepsAPairUnderOneNumber) {
    ChangeCard card;
    const Outcome outcome =
        card.Run({"add", card.Source("b.SRW", "raw"), card.Source("a.jpg", "single"), card.Source("b.JPG", "picture")});
    EXPECT_EQ(clitest::kSuccess, outcome.exit) << outcome.Describe();
    EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0001.SRW", "KVR_0002.JPG"}), card.Names("100PHOTO"));
    EXPECT_EQ("picture", ReadFile(card.Path("100PHOTO", "KVR_0001.JPG")));
    EXPECT_EQ("raw", ReadFile(card.Path("100PHOTO", "KVR_0001.SRW")));
    EXPECT_EQ("single", ReadFile(card.Path("100PHOTO", "KVR_0002.JPG")));
    const Json listed = card.RunJson({"show", "1"});
    EXPECT_EQ(card.Path("100PHOTO", "KVR_0001.SRW"), listed["file"]["companion"]["path"]);
}

TEST(Add, PairsOnlyFilesOfOneNameInOneFolder) {
    ChangeCard card;
    const Json json = card.RunJson({"add", card.Source("one/a.jpg", "1"), card.Source("two/a.srw", "2"),
                                    card.Source("b.mp4", "3"), card.Source("b.srw", "4")});
    EXPECT_EQ((Words{card.Path("100PHOTO", "KVR_0001.JPG"), card.Path("100PHOTO", "KVR_0002.SRW"),
                     card.Path("100PHOTO", "KVR_0003.MP4"), card.Path("100PHOTO", "KVR_0004.SRW")}),
              PathsIn(json["files"]));
}

TEST(Add, GivesARawFileTheFirstClaimToThePair) {
    // Three files of one number would be one too many for the list.
    ChangeCard card;
    const Json json =
        card.RunJson({"add", card.Source("a.MPO", "mpo"), card.Source("a.JPG", "jpg"), card.Source("a.SRW", "srw")});
    EXPECT_EQ((Words{card.Path("100PHOTO", "KVR_0001.MPO"), card.Path("100PHOTO", "KVR_0002.JPG"),
                     card.Path("100PHOTO", "KVR_0002.SRW")}),
              PathsIn(json["files"]));
    EXPECT_TRUE(json["files"][2]["companion"].get<bool>());
}

TEST(Add, PairsAMultiPictureFileWhereThereIsNoRawOne) {
    ChangeCard card;
    EXPECT_EQ(clitest::kSuccess, card.Run({"add", card.Source("a.MPO", "mpo"), card.Source("a.JPG", "jpg")}).exit);
    EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0001.MPO"}), card.Names("100PHOTO"));
}

TEST(Add, GoesOnInTheNextFolderWhereOneIsFull) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_9998.JPG"});
    const Json json = card.RunJson({"add", card.Source("a.jpg", "a"), card.Source("b.jpg", "b")});
    EXPECT_EQ((Words{card.Path("100PHOTO", "KVR_9999.JPG"), card.Path("101PHOTO", "KVR_0001.JPG")}),
              PathsIn(json["files"]));
    EXPECT_EQ(Words{card.Path("101PHOTO")}, PathsIn(json["made"]));
    EXPECT_EQ("b", ReadFile(card.Path("101PHOTO", "KVR_0001.JPG")));
}

TEST(Add, TakesTheNamingOptionsAndTheSeries) {
    ChangeCard card;
    card.SetSeries(12300045);
    const Json json = card.RunJson({"add", "--series", "--prefix", "OWN_", card.Source("a.jpg", "a")});
    EXPECT_EQ(card.Path("123PHOTO", "OWN_0046.JPG"), json["files"][0]["path"]);
    EXPECT_EQ(12300046, json["series_value"]);
    EXPECT_EQ(12300045, json["series_before"]);
    EXPECT_EQ("a", ReadFile(card.Path("123PHOTO", "OWN_0046.JPG")));
}

TEST(Add, OnlyShowsWithDryRunWhatItWouldDo) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_9999.JPG"});
    const Words sources = {card.Source("a.jpg", "a"), card.Source("a.srw", "aa"), card.Source("b.mp4", "b")};
    Words words = {"add"};
    words.insert(words.end(), sources.begin(), sources.end());
    Words dry = words;
    dry.emplace_back("--dry-run");
    const Words before = card.Before();
    Json foretold = card.RunJson(dry);
    EXPECT_EQ(before, card.Before());
    EXPECT_TRUE(foretold["dry_run"].get<bool>());
    foretold["dry_run"] = false;
    EXPECT_EQ(foretold, card.RunJson(words));
    const Outcome text = card.Run(dry);
    EXPECT_NE(std::string::npos, text.out.find("Would add 3 files (4 bytes).\n")) << text.Describe();
}

TEST(Add, TellsAProgramWhatWentWhere) {
    ChangeCard card;
    const std::string source = card.Source("a.jpg", "abc");
    const Json json = card.RunJson({"add", source});
    EXPECT_EQ("dcfctl.add", json["format"]);
    EXPECT_EQ(source, json["files"][0]["source"]);
    EXPECT_EQ(3, json["files"][0]["bytes"]);
    EXPECT_FALSE(json["files"][0]["companion"].get<bool>());
    EXPECT_EQ(3, json["bytes"]);
    EXPECT_TRUE(json["not_added"].empty());
    EXPECT_EQ(10000001, json["series_value"]);
}

TEST(Add, FollowsALinkToItsSourceAndCopiesWhatIsThere) {
    ChangeCard card;
    const std::string link = card.Beside() + "/link.jpg";
    fs::create_symlink(card.Source("real.jpg", "real"), link);
    EXPECT_EQ(clitest::kSuccess, card.Run({"add", link}).exit);
    const std::string path = card.Path("100PHOTO", "KVR_0001.JPG");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(path)));
    EXPECT_EQ("real", ReadFile(path));
}

TEST(Add, CopiesAPictureOfTheCardItself) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    EXPECT_EQ(clitest::kSuccess, card.Run({"add", card.Path("100PHOTO", "KVR_0001.JPG")}).exit);
    EXPECT_EQ(ReadFile(card.Path("100PHOTO", "KVR_0001.JPG")), ReadFile(card.Path("100PHOTO", "KVR_0002.JPG")));
}

TEST(Add, CopiesBigAndEmptyFilesWhole) {
    ChangeCard card;
    std::string big(3U << 20U, 'x');
    for (std::size_t i = 0; i < big.size(); i += 997) {
        big[i] = static_cast<char>(i);
    }
    EXPECT_EQ(clitest::kSuccess, card.Run({"add", card.Source("big.mp4", big), card.Source("empty.jpg", "")}).exit);
    EXPECT_TRUE(big == ReadFile(card.Path("100PHOTO", "KVR_0001.MP4")));
    EXPECT_EQ("", ReadFile(card.Path("100PHOTO", "KVR_0002.JPG")));
}

TEST(Add, WorksOnFileSystemsWithoutRenameFlagsAndWithoutLinks) {
    for (const char* what : {"no-flags", "no-flags,no-links"}) {
        ChangeCard card;
        const Outcome outcome =
            card.Run({"add", card.Source("a.jpg", "a"), card.Source("a.srw", "b")}, WithShim(card.Environment(), what));
        EXPECT_EQ(clitest::kSuccess, outcome.exit) << what << outcome.Describe();
        EXPECT_EQ((Words{"KVR_0001.JPG", "KVR_0001.SRW"}), card.Names("100PHOTO")) << what;
        EXPECT_EQ("a", ReadFile(card.Path("100PHOTO", "KVR_0001.JPG"))) << what;
    }
}

TEST(Add, RemovesWhatAKilledRunHasLeftAndNothingElse) {
    ChangeCard card;
    card.Put("100PHOTO", {"KVR_0001.JPG"});
    card.AddFile("100PHOTO", ".dcfctl-0123abcd.part");
    card.AddFile("100PHOTO", ".dcfctl-mine.part");
    card.AddFile("100PHOTO", ".dcfctl-0123abcd.party");
    EXPECT_EQ(clitest::kSuccess, card.Run({"add", card.Source("a.jpg", "a")}).exit);
    EXPECT_EQ((Words{".dcfctl-0123abcd.party", ".dcfctl-mine.part", "KVR_0001.JPG", "KVR_0002.JPG"}),
              card.Names("100PHOTO"));
}

} // namespace
