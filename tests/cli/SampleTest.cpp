// The sample card: real pictures, right signatures, and nothing written over.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "Card.h"
#include "Cli.h"
#include "JpegReader.h"

using clitest::Dcfctl;
using clitest::ErrorLine;
using clitest::OnCard;
using clitest::Outcome;
using clitest::ReadFile;
using clitest::Words;
using dcftest::Card;
using Json = nlohmann::json;

namespace {

/// A card whose sample is made before each test.
class Sample : public testing::Test {
protected:
    void SetUp() override {
        m_made = Dcfctl({"sample", m_card.Root()});
        ASSERT_EQ(m_made.exit, clitest::kSuccess) << m_made.Describe();
    }

    /// Paths of the files with an extension, companions included.
    [[nodiscard]] Words FilesOf(const std::string& extension) const {
        Words paths;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(m_card.Dcim())) {
            if (entry.path().extension() == "." + extension) {
                paths.push_back(entry.path().string());
            }
        }
        std::sort(paths.begin(), paths.end());
        return paths;
    }

    Card m_card;
    Outcome m_made;
};

TEST_F(Sample, SaysWhatWasMadeAndHowToGoOn) {
    EXPECT_EQ(m_made.out, clitest::Joined({"Made a sample card at " + m_card.Root() +
                                               ": 19 files in 4 folders, 3 of them protected.",
                                           "List it with: dcfctl ls --card '" + m_card.Root() + "'"}));
    EXPECT_EQ(m_made.err, "");
}

TEST_F(Sample, HoldsEveryTypeCompanionsProtectedFilesAndACamera) {
    const Outcome run = OnCard(m_card.Root(), {"ls", "--json"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.err, "") << "a sample has no awkward names";
    const Json json = Json::parse(run.out);
    std::map<std::string, int> seen;
    for (const Json& file : json["files"]) {
        ++seen[file["type"]];
        ++seen[file["companion"].is_null() ? "alone" : "with " + file["companion"]["type"].get<std::string>()];
        ++seen[file["protected"].get<bool>() ? "protected" : "free"];
        ++seen[std::to_string(file["directory_number"].get<int>())];
    }
    const std::map<std::string, int> expected = {
        {"JPG", 11}, {"SRW", 2}, {"MPO", 1}, {"MP4", 1},   {"AVI", 1},       {"alone", 13},   {"100", 6},
        {"101", 5},  {"102", 2}, {"99", 3},  {"free", 14}, {"protected", 2}, {"with SRW", 2}, {"with MPO", 1}};
    EXPECT_EQ(seen, expected);
}

TEST_F(Sample, HasCompanionsThatAreThereAndAsProtectedAsTheirFiles) {
    const Json json = Json::parse(OnCard(m_card.Root(), {"ls", "--json"}).out);
    int companions = 0;
    for (const Json& file : json["files"]) {
        if (!file["companion"].is_null()) {
            struct stat info = {};
            ASSERT_EQ(stat(file["companion"]["path"].get<std::string>().c_str(), &info), 0);
            EXPECT_EQ((info.st_mode & S_IWUSR) == 0, file["protected"].get<bool>());
            ++companions;
        }
    }
    EXPECT_EQ(companions, 3);
}

TEST_F(Sample, HasNamesOf19CharactersInCamera) {
    const Words names = m_card.Names("Camera");
    EXPECT_EQ(names.size(), 3U);
    for (const std::string& name : names) {
        EXPECT_EQ(name.size(), 19U) << name;
    }
}

TEST_F(Sample, HasPicturesThatDecodeToTheirSize) {
    const Words paths = FilesOf("JPG");
    EXPECT_EQ(paths.size(), 11U);
    for (const std::string& path : paths) {
        const clitest::Picture picture = clitest::DecodeJpeg(ReadFile(path));
        EXPECT_EQ(picture.width, 160U) << path;
        EXPECT_EQ(picture.height, 120U) << path;
        ASSERT_EQ(picture.blocks.size(), 300U) << path;
        EXPECT_EQ(picture.rest, "") << path << ": nothing stands behind the end";
    }
}

TEST_F(Sample, HasPicturesThatShowTheirNumber) {
    // The digits are light, three blocks wide and five high; "1" has its stroke in the middle.
    const clitest::Picture one = clitest::DecodeJpeg(ReadFile(m_card.Path("100PHOTO", "KVR_0001.JPG")));
    const clitest::Picture three = clitest::DecodeJpeg(ReadFile(m_card.Path("100PHOTO", "KVR_0003.JPG")));
    const auto isLight = [](const clitest::Picture& picture, std::size_t column, std::size_t row) {
        return picture.blocks[row * 20 + column] > 100;
    };
    const auto lastDigit = [&](const clitest::Picture& picture) {
        std::string rows;
        for (std::size_t row = 5; row < 10; ++row) {
            for (std::size_t column = 15; column < 18; ++column) {
                rows += isLight(picture, column, row) ? '#' : '.';
            }
            rows += '/';
        }
        return rows;
    };
    EXPECT_EQ(lastDigit(one), ".#./##./.#./.#./###/");
    EXPECT_EQ(lastDigit(three), "###/..#/.##/..#/###/");
}

TEST_F(Sample, HasTheTimeOfItsFilesInExif) {
    for (const std::string& path : FilesOf("JPG")) {
        struct stat info = {};
        ASSERT_EQ(stat(path.c_str(), &info), 0);
        std::array<char, 20> date{};
        std::tm parts = {};
        ASSERT_NE(gmtime_r(&info.st_mtime, &parts), nullptr);
        ASSERT_EQ(std::strftime(date.data(), date.size(), "%Y:%m:%d %H:%M:%S", &parts), 19U);
        const std::string exif = clitest::ExifOf(ReadFile(path));
        const std::string text(date.data(), date.size()); // with its terminator
        std::size_t count = 0;
        for (std::size_t at = exif.find(text); at != std::string::npos; at = exif.find(text, at + 1)) {
            ++count;
        }
        EXPECT_EQ(count, 3U) << path << ": the date of the file, when it was taken, when it was stored";
    }
}

TEST_F(Sample, HasStandInsWithTheRightSignatures) {
    const struct {
        const char* extension;
        std::size_t files;
        std::size_t offset;
        std::string signature;
    } rows[] = {
        {"JPG", 11, 0, "\xff\xd8\xff\xe1"}, {"SRW", 4, 0, std::string("II*\0", 4)},
        {"MPO", 2, 0, "\xff\xd8\xff\xe1"},  {"MP4", 1, 4, "ftypmp42"},
        {"AVI", 1, 8, "AVI LIST"},
    };
    for (const auto& row : rows) {
        const Words paths = FilesOf(row.extension);
        EXPECT_EQ(paths.size(), row.files) << row.extension;
        for (const std::string& path : paths) {
            EXPECT_EQ(ReadFile(path).substr(row.offset, row.signature.size()), row.signature) << path;
        }
    }
}

TEST_F(Sample, HasTwoPicturesInAMultiPictureFile) {
    for (const std::string& path : FilesOf("MPO")) {
        const clitest::Picture first = clitest::DecodeJpeg(ReadFile(path));
        EXPECT_EQ(first.blocks.size(), 300U);
        const clitest::Picture second = clitest::DecodeJpeg(first.rest);
        EXPECT_EQ(second.blocks.size(), 300U);
        EXPECT_EQ(second.rest, "");
        EXPECT_NE(first.blocks, second.blocks);
        EXPECT_NE(ReadFile(path).find(std::string("MPF\0II*\0", 8)), std::string::npos);
    }
}

TEST_F(Sample, IsTheSameEveryTime) {
    Card other;
    ASSERT_EQ(Dcfctl({"sample", other.Root()}).exit, clitest::kSuccess);
    for (const std::string& folder : m_card.DirNames()) {
        ASSERT_EQ(m_card.Names(folder), other.Names(folder));
        for (const std::string& name : m_card.Names(folder)) {
            EXPECT_EQ(ReadFile(m_card.Path(folder, name)), ReadFile(other.Path(folder, name))) << name;
        }
    }
}

TEST_F(Sample, IsNotMadeWhereThereIsADcimAlready) {
    const auto before = clitest::Snapshot(m_card.Root());
    const Outcome again = Dcfctl({"sample", m_card.Root()});
    EXPECT_EQ(again.exit, clitest::kRefused);
    EXPECT_EQ(again.out, "");
    EXPECT_EQ(again.err, ErrorLine("'" + m_card.Root() +
                                   "' already has a 'DCIM', and nothing is ever written over; name another folder"));
    EXPECT_EQ(clitest::Snapshot(m_card.Root()), before);
}

TEST(SamplePlace, MayHoldOtherThings) {
    Card card;
    std::ofstream(card.Root() + "/notes.txt") << "mine";
    EXPECT_EQ(Dcfctl({"sample", card.Root()}).exit, clitest::kSuccess);
    EXPECT_EQ(ReadFile(card.Root() + "/notes.txt"), "mine");
    Words names;
    for (const auto& entry : std::filesystem::directory_iterator(card.Root())) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Words{"DCIM", "notes.txt"})) << "no folder of the work is left";
}

TEST(SamplePlace, IsMadeWhenItIsMissing) {
    Card card;
    const Outcome run = Dcfctl({"sample", card.Root() + "/new/"});
    EXPECT_EQ(run.exit, clitest::kSuccess) << run.Describe();
    EXPECT_EQ(OnCard(card.Root() + "/new", {"count"}).out, "16\n");
}

TEST(SamplePlace, CannotBeAnythingCalledDcimAlready) {
    for (const bool link : {false, true}) {
        Card card;
        if (link) {
            std::filesystem::create_symlink(card.Root() + "/nothing", card.Dcim());
        } else {
            std::ofstream(card.Dcim()).flush();
        }
        EXPECT_EQ(Dcfctl({"sample", card.Root()}).exit, clitest::kRefused);
        EXPECT_FALSE(std::filesystem::exists(card.Root() + "/nothing"));
    }
}

TEST(SamplePlace, CannotBeAFile) {
    Card card;
    card.AddFile("100ABCDE", "KVR_0001.JPG");
    const std::string file = card.Path("100ABCDE", "KVR_0001.JPG");
    const Outcome run = Dcfctl({"sample", file});
    EXPECT_EQ(run.exit, clitest::kRefused);
    EXPECT_EQ(run.err, ErrorLine("'" + file + "' is not a folder; name another one"));
}

TEST(SamplePlace, ThatCannotBeWrittenIsToldAndKeepsNothing) {
    Card card;
    const Outcome missing = Dcfctl({"sample", card.Root() + "/no/where"});
    EXPECT_EQ(missing.exit, clitest::kIncomplete);
    EXPECT_EQ(missing.err, ErrorLine("the sample card could not be written at '" + card.Root() +
                                     "/no/where' (No such file or directory), and nothing of it was left; make room "
                                     "or name another folder"));
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root, to run the tool as another user";
    }
    ASSERT_EQ(chmod(card.Root().c_str(), 0755), 0);
    clitest::Options nobody;
    nobody.user = 65534;
    const Outcome refused = Dcfctl({"sample", card.Root()}, nobody);
    EXPECT_EQ(refused.exit, clitest::kIncomplete);
    EXPECT_EQ(clitest::Lines(refused.err).size(), 1U);
    EXPECT_EQ(clitest::Snapshot(card.Root()).size(), 1U);
    const Outcome beside = Dcfctl({"sample", card.Root() + "/new"}, nobody);
    EXPECT_EQ(beside.exit, clitest::kIncomplete);
    EXPECT_EQ(beside.err, ErrorLine("the sample card could not be written at '" + card.Root() +
                                    "/new' (Permission denied), and nothing of it was left; make room or name another "
                                    "folder"));
}

TEST(SamplePlace, ThatTakesNoProtectionIsToldAndKeepsTheCard) {
    Card card;
    clitest::Options options;
    options.environment["LD_PRELOAD"] = DCFCTL_IGNORED_PROTECTION;
    const Outcome run = Dcfctl({"sample", card.Root()}, options);
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.err, clitest::WarningLine("the file system takes no protection, so 3 files of the sample are without "
                                            "it; look at the options of its mount"));
    EXPECT_NE(run.out.find(": 19 files in 4 folders, 0 of them protected."), std::string::npos) << run.out;
    EXPECT_EQ(OnCard(card.Root(), {"count"}).out, "16\n");
}

TEST(SampleJson, TellsWhatWasMade) {
    Card card;
    const Json json = Json::parse(Dcfctl({"sample", "--json", card.Root()}).out);
    EXPECT_EQ(json["format"], "dcfctl.sample");
    EXPECT_EQ(json["card"], card.Root());
    EXPECT_EQ(json["files"], 19);
    EXPECT_EQ(json["folders"], 4);
    EXPECT_EQ(json["protected"], 3);
    const Json again = Json::parse(Dcfctl({"sample", "--json", card.Root()}).out);
    EXPECT_EQ(again["error"]["cause"], "dcim-exists");
}

} // namespace
