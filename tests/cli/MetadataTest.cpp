// What dcfctl tells of the pictures' own metadata: in columns, in words and units, as JSON, in the shell; of the right
// file on every card.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "Card.h"
#include "Cli.h"
#include "ExifBuilder.h"

using clitest::Dcfctl;
using clitest::Joined;
using clitest::Lines;
using clitest::OnCard;
using clitest::Outcome;
using clitest::Shell;
using clitest::Words;
using dcftest::ByteOrder;
using dcftest::Card;
using dcftest::ExifBuilder;
using dcftest::ExifDirectory;
using dcftest::FileTraits;
using Json = nlohmann::json;

namespace {

class Metadata : public testing::Test {
protected:
    void Add(const std::string& folder, const std::string& name, const ExifBuilder& exif) {
        FileTraits traits;
        traits.content = dcftest::JpegWithExif(exif.Build());
        traits.mtime = 1714557600; // 2024-05-01T10:00:00Z
        m_card.AddFile(folder, name, traits);
    }
    void AddWithIso(const std::string& folder, const std::string& name, std::uint32_t iso) {
        Add(folder, name, ExifBuilder(ByteOrder::kBig).Short(ExifDirectory::kExif, 0x8827, {iso}));
    }
    [[nodiscard]] Outcome Run(const Words& arguments) const {
        return OnCard(m_card.Root(), arguments);
    }
    [[nodiscard]] Json RunJson(Words arguments) const {
        arguments.emplace_back("--json");
        return Json::parse(Run(arguments).out);
    }

    Card m_card;
};

TEST_F(Metadata, StandsInColumnsOfTheList) {
    Add("100ABCDE", "KVR_0003.JPG", dcftest::OrdinaryExif(ByteOrder::kLittle));
    AddWithIso("100ABCDE", "KVR_0002.JPG", 51200);
    m_card.AddFile("100ABCDE", "KVR_0001.MP4");
    const Outcome run = Run({"ls", "--metadata"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    EXPECT_EQ(run.err, "");
    const Words lines = Lines(run.out);
    ASSERT_EQ(lines.size(), 5U) << run.out;
    const std::string head = "TAKEN                SIZE       ISO    EXPOSURE  APERTURE  FOCAL    FLASH  GPS  PATH";
    const std::size_t at = lines[0].find(head);
    ASSERT_NE(at, std::string::npos) << lines[0];
    EXPECT_EQ(lines[0].substr(0, at), "POS  TYPE  COMPANION  MARKS  TIME                  ");
    EXPECT_EQ(lines[1].substr(at), "2024:05:01 10:20:30  5472x3648  400    1/125 s   f/2.8     18.5 mm  yes    yes  " +
                                       m_card.Path("100ABCDE", "KVR_0003.JPG"));
    EXPECT_EQ(lines[2].substr(at), "-                    640x480    51200  -         -         -        -      no   " +
                                       m_card.Path("100ABCDE", "KVR_0002.JPG"));
    EXPECT_EQ(lines[3].substr(at), "-                    -          -      -         -         -        -      -    " +
                                       m_card.Path("100ABCDE", "KVR_0001.MP4"));
}

TEST_F(Metadata, IsAskedForWithTheOptionAlone) {
    AddWithIso("100ABCDE", "KVR_0002.JPG", 51200);
    EXPECT_EQ(Run({"ls"}).out.find("51200"), std::string::npos);
    EXPECT_FALSE(RunJson({"ls"})["files"][0].contains("metadata"));
}

TEST_F(Metadata, IsNoMatterOfPaths) {
    for (const char* option : {"--paths", "-0"}) {
        EXPECT_EQ(Run({"ls", "--metadata", option}).exit, clitest::kUsage) << option;
    }
}

TEST_F(Metadata, IsShownInWordsAndUnits) {
    Add("100ABCDE", "KVR_0001.JPG", dcftest::OrdinaryExif(ByteOrder::kBig));
    const Outcome run = Run({"show", "0"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    const std::size_t at = run.out.find("  metadata\n");
    ASSERT_NE(at, std::string::npos) << run.out;
    EXPECT_EQ(run.out.substr(at), Joined({"  metadata",
                                          "    taken          2024:05:01 10:20:30",
                                          "    size           5472x3648 pixels",
                                          "    orientation    turn right",
                                          "    ISO            400",
                                          "    exposure time  1/125 s",
                                          "    aperture       f/2.8",
                                          "    focal length   18.5 mm",
                                          "    on 35 mm film  28 mm",
                                          "    exposure bias  -0.33 EV",
                                          "    program        aperture priority",
                                          "    exposure mode  automatic bracket",
                                          "    metering       pattern",
                                          "    flash          fired, set to automatic",
                                          "    light source   cloudy",
                                          "    white balance  manual",
                                          "    scene          landscape",
                                          "    contrast       soft",
                                          "    saturation     high",
                                          "    sharpness      normal",
                                          "    digital zoom   1.5 times",
                                          "    position       52.520000 N, 13.405100 E",
                                          "    altitude       34.5 m"}));
}

TEST_F(Metadata, ThatIsUnknownIsShownAsADash) {
    AddWithIso("100ABCDE", "KVR_0002.JPG", 100);
    m_card.AddFile("100ABCDE", "KVR_0001.JPG");
    const Words lines = Lines(Run({"show", "0"}).out);
    std::size_t dashes = 0;
    for (const std::string& line : lines) {
        dashes += line.rfind("    ", 0) == 0 && line.substr(19) == "-" ? 1 : 0;
    }
    EXPECT_EQ(dashes, 20U) << "all but the size and the sensitivity";
    EXPECT_EQ(Lines(Run({"show", "1"}).out).back(), "  metadata   -") << "no EXIF at all";
}

TEST_F(Metadata, ShowsTimesAndPlacesAsPeopleWriteThem) {
    const struct {
        std::uint32_t tag;
        std::pair<std::uint32_t, std::uint32_t> written;
        const char* shown;
    } rows[] = {
        {0x829a, {30, 1}, "exposure time  30 s"},     {0x829a, {25, 10}, "exposure time  2.5 s"},
        {0x829a, {3, 10}, "exposure time  0.3 s"},    {0x829a, {10, 601}, "exposure time  1/60 s"},
        {0x829a, {1, 1}, "exposure time  1 s"},       {0x829a, {1, 2}, "exposure time  1/2 s"},
        {0x829a, {1, 0}, "exposure time  -\n"},       {0x829d, {110, 10}, "aperture       f/11\n"},
        {0x829d, {95, 100}, "aperture       f/0.95"}, {0x920a, {4, 1}, "focal length   4 mm"},
    };
    for (const auto& row : rows) {
        m_card.AddDir("100ABCDE");
        Add("100ABCDE", "KVR_0001.JPG",
            dcftest::OrdinaryExif(ByteOrder::kBig).Ratio(ExifDirectory::kExif, row.tag, {row.written}));
        EXPECT_NE(Run({"show", "0"}).out.find(row.shown), std::string::npos) << row.shown;
        m_card.Remove("100ABCDE", "KVR_0001.JPG");
    }
    ExifBuilder south = dcftest::OrdinaryExif(ByteOrder::kBig);
    south.Text(ExifDirectory::kGps, 1, "S").Text(ExifDirectory::kGps, 3, "W").Byte(ExifDirectory::kGps, 5, {1});
    Add("100ABCDE", "KVR_0001.JPG", south);
    const std::string out = Run({"show", "0"}).out;
    EXPECT_NE(out.find("position       52.520000 S, 13.405100 W"), std::string::npos) << out;
    EXPECT_NE(out.find("altitude       -34.5 m"), std::string::npos) << out;
}

TEST_F(Metadata, HasNamesInJson) {
    Add("100ABCDE", "KVR_0002.JPG", dcftest::OrdinaryExif(ByteOrder::kBig));
    m_card.AddFile("100ABCDE", "KVR_0001.JPG");
    const Json expected = {
        {"taken", "2024:05:01 10:20:30"},
        {"width", 5472},
        {"height", 3648},
        {"orientation", 6},
        {"orientation_text", "turn right"},
        {"iso", 400},
        {"exposure_time", {{"numerator", 1}, {"denominator", 125}, {"seconds", 0.008}}},
        {"f_number", 2.8},
        {"focal_length_mm", 18.5},
        {"focal_length_35mm_mm", 28},
        {"exposure_bias_ev", -0.33},
        {"exposure_program", "aperture priority"},
        {"exposure_mode", "automatic bracket"},
        {"metering_mode", "pattern"},
        {"flash", {{"fired", true}, {"present", true}, {"mode", "automatic"}, {"return", nullptr}, {"red_eye", false}}},
        {"light_source", "cloudy"},
        {"white_balance", "manual"},
        {"scene_capture_type", "landscape"},
        {"contrast", "soft"},
        {"saturation", "high"},
        {"sharpness", "normal"},
        {"digital_zoom", 1.5},
        {"latitude", 52.52},
        {"longitude", 13.4051},
        {"altitude_m", 34.5}};
    const Json list = RunJson({"ls", "--metadata"});
    EXPECT_EQ(list["files"][0]["metadata"], expected);
    EXPECT_EQ(list["files"][0]["metadata_missing"], false);
    EXPECT_EQ(list["files"][1]["metadata"], nullptr);
    EXPECT_EQ(RunJson({"show", "0"})["file"]["metadata"], expected);
    // Every key is told of.
    const std::string page = clitest::ReadFile(std::string(DCFCTL_SOURCE_ROOT) + "/docs/dcfctl.md");
    for (const auto& [key, value] : expected.items()) {
        EXPECT_NE(page.find("`" + key + "`"), std::string::npos) << key;
    }
}

TEST_F(Metadata, ThatIsUnknownIsNullInJson) {
    AddWithIso("100ABCDE", "KVR_0002.JPG", 100);
    const Json metadata = RunJson({"show", "0"})["file"]["metadata"];
    EXPECT_EQ(metadata.size(), 25U);
    for (const auto& [key, value] : metadata.items()) {
        const bool known = key == "iso" || key == "width" || key == "height";
        EXPECT_EQ(value.is_null(), !known) << key;
    }
}

TEST_F(Metadata, IsHandedOutInTheShellFromTheSecondConversionOn) {
    Add("100ABCDE", "KVR_0001.JPG", dcftest::OrdinaryExif(ByteOrder::kBig));
    const Outcome run = Shell(m_card.Root(), {"Listup", "RegisterPhotoMetadataCB exif", "GetAt 0", "GetAt 0"});
    EXPECT_EQ(run.exit, clitest::kSuccess);
    const std::size_t second = run.out.rfind("GetAt = 0");
    EXPECT_EQ(run.out.find("    exposure time  1/125 s"), run.out.find("    exposure time  1/125 s", second));
    EXPECT_NE(run.out.find("    exposure time  1/125 s"), std::string::npos) << run.out;
    const Words lines =
        Lines(Shell(m_card.Root(), {"Listup", "RegisterPhotoMetadataCB exif", "GetAt 0", "GetAt 0"}, {"--json"}).out);
    EXPECT_EQ(Json::parse(lines.at(2))["item"]["exif"], nullptr);
    EXPECT_EQ(Json::parse(lines.at(3))["item"]["exif"]["iso"], 400);
}

TEST_F(Metadata, OfTheDemonstrationIsNoExif) {
    m_card.AddFile("100ABCDE", "KVR_0001.JPG");
    const Outcome run = Shell(m_card.Root(), {"Listup", "RegisterPhotoMetadataCB demo", "GetAt 0", "GetAt 0"});
    EXPECT_EQ(run.out.find("  metadata\n"), std::string::npos) << run.out;
}

TEST_F(Metadata, OfTwoFoldersWithOneNumberIsNeverTakenFromTheOther) {
    AddWithIso("100PHOTO", "KVR_0001.JPG", 111);
    AddWithIso("100ZZZZZ", "KVR_0001.JPG", 222);
    AddWithIso("101ABCDE", "KVR_0001.JPG", 333);
    const Outcome run = Run({"ls", "--metadata", "--json"});
    EXPECT_EQ(run.exit, clitest::kPartial) << run.Describe();
    const Json json = Json::parse(run.out);
    ASSERT_EQ(json["files"].size(), 3U) << run.Describe();
    for (const Json& file : json["files"]) {
        const bool shared = file["path"].get<std::string>().find("/100") != std::string::npos;
        EXPECT_EQ(file["metadata_missing"], shared) << file;
        EXPECT_EQ(file["metadata"].is_null(), shared) << file;
    }
    const std::string text = Run({"ls", "--metadata"}).out;
    EXPECT_NE(text.find("  ?                    ?          ?      ?"), std::string::npos) << text;
    EXPECT_EQ(Run({"show", "1"}).exit, clitest::kPartial);
}

TEST_F(Metadata, OfCameraFilesWithOneNumberIsShownOfTheFirstAlone) {
    AddWithIso("Camera", "20240501_101010.JPG", 111);
    AddWithIso("Camera", "20240502_111111.JPG", 222); // a neighbour of the same number would not be listed at all
    AddWithIso("Camera", "20240503_101010.JPG", 333);
    const Outcome run = Run({"ls", "--metadata", "--json"});
    EXPECT_EQ(run.exit, clitest::kPartial) << run.Describe();
    const Json json = Json::parse(run.out);
    ASSERT_EQ(json["warnings"].size(), 1U);
    EXPECT_EQ(json["warnings"][0]["cause"], "metadata-missing");
    ASSERT_EQ(json["files"].size(), 3U);
    EXPECT_EQ(json["files"][0]["metadata"]["iso"], 111);
    EXPECT_EQ(json["files"][1]["metadata"]["iso"], 222);
    EXPECT_EQ(json["files"][2]["metadata"], nullptr);
    EXPECT_EQ(json["files"][2]["metadata_missing"], true);
    const Outcome shown = Run({"show", "2"});
    EXPECT_EQ(shown.exit, clitest::kPartial);
    EXPECT_EQ(Lines(shown.out).back(), "  metadata   not to be had");
    EXPECT_EQ(Run({"ls", "--limit", "2", "--metadata"}).exit, clitest::kSuccess) << "nothing is missing there";
}

TEST_F(Metadata, OfHostileFilesIsNoneAndEverythingElseStays) {
    const std::string whole = dcftest::JpegWithExif(dcftest::OrdinaryExif(ByteOrder::kBig).Build());
    int number = 0;
    for (const std::string& bytes : {std::string(), whole.substr(0, 100), whole.substr(0, whole.size() - 1),
                                     std::string("\xff\xd8\xff\xe1\xff\xff", 6) + std::string(70000, '\xff')}) {
        FileTraits traits;
        traits.content = bytes;
        m_card.AddFile("100ABCDE", dcftest::DcfName(++number), traits);
    }
    const Outcome run = Run({"ls", "--metadata", "--json"});
    EXPECT_EQ(run.exit, clitest::kSuccess) << run.Describe();
    EXPECT_EQ(run.err, "");
    const Json files = Json::parse(run.out)["files"];
    ASSERT_EQ(files.size(), 4U);
    for (const Json& file : files) {
        EXPECT_TRUE(file["metadata"].is_null());
        EXPECT_FALSE(file["protected"].is_null());
    }
}

TEST_F(Metadata, OfTheSampleCardIsThere) {
    ASSERT_EQ(Dcfctl({"sample", m_card.Root()}).exit, clitest::kSuccess);
    int known = 0;
    int positions = 0;
    int flashes = 0;
    const Json list = RunJson({"ls", "--metadata"});
    for (const Json& file : list["files"]) {
        const bool movie = file["type"] == "MP4" || file["type"] == "AVI";
        EXPECT_EQ(file["metadata"].is_null(), movie) << file;
        if (!movie) {
            const Json& metadata = file["metadata"];
            ++known;
            positions += metadata["latitude"].is_null() ? 0 : 1;
            flashes += metadata["flash"]["fired"].get<bool>() ? 1 : 0;
            for (const char* key : {"taken", "width", "iso", "exposure_time", "f_number", "focal_length_mm"}) {
                EXPECT_FALSE(metadata[key].is_null()) << key << " " << file;
            }
        }
    }
    EXPECT_EQ(known, 14);
    EXPECT_GE(positions, 1);
    EXPECT_GE(flashes, 1);
    EXPECT_LT(flashes, known);
}

} // namespace
