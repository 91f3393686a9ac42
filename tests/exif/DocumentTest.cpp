// The table in docs/metadata.md against the header and the library: places, units of "unknown", words, and what is
// exported.
#include "Collected.h"

#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <vector>

namespace dcftest {
namespace {

using Row = std::vector<std::string>;

std::string Document() {
    std::ifstream file(DCF_SOURCE_ROOT "/docs/metadata.md");
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Trimmed(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(" `");
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" `") - begin + 1);
}

/// The rows of the table behind a mark, without its head.
std::vector<Row> Table(const std::string& mark) {
    const std::string text = Document();
    std::istringstream lines(text.substr(text.find("<!-- " + mark + " -->\n") + mark.size() + 10));
    std::vector<Row> rows;
    for (std::string line; std::getline(lines, line) && line.rfind('|', 0) == 0;) {
        std::istringstream cells(line.substr(1));
        Row& row = rows.emplace_back();
        for (std::string cell; std::getline(cells, cell, '|');) {
            row.push_back(Trimmed(cell));
        }
    }
    EXPECT_GT(rows.size(), 2U);
    rows.erase(rows.begin(), rows.begin() + 2);
    return rows;
}

/// A field of a record by the name that the table gives it: "date", "trailingWords[3]".
std::string FieldText(const PhotoInfo& info, const std::string& name) {
    const auto word = [&](const std::int32_t* words) {
        return std::to_string(words[std::stoul(name.substr(name.find('[') + 1))]);
    };
    if (name.rfind("attributeWords[", 0) == 0) {
        return word(info.attributeWords);
    }
    if (name.rfind("trailingWords[", 0) == 0) {
        return word(info.trailingWords);
    }
    const std::map<std::string, std::string> rest = {{"attributeByte2", std::to_string(info.attributeByte2)},
                                                     {"attributeWord", std::to_string(info.attributeWord)},
                                                     {"attributeFlag", std::to_string(info.attributeFlag)},
                                                     {"date", info.date}};
    return rest.at(name);
}

/// The same of what the header gives names to, by the meaning that the table tells.
std::map<std::string, std::string> Meanings(const DcfExifInfo& info) {
    const auto text = [](auto number) { return std::to_string(number); };
    return {{"orientation", text(info.orientation)},
            {"sensitivity", text(info.iso)},
            {"flash", text(info.flash)},
            {"width", text(info.width)},
            {"height", text(info.height)},
            {"exposure time, numerator", text(info.exposureNumerator)},
            {"exposure time, denominator", text(info.exposureDenominator)},
            {"date", info.date},
            {"aperture", text(info.fNumber)},
            {"focal length", text(info.focalLength)},
            {"focal length on 35 mm film", text(info.focalLength35)},
            {"exposure bias", text(info.exposureBias)},
            {"exposure program", text(info.exposureProgram)},
            {"metering mode", text(info.meteringMode)},
            {"latitude", text(info.latitude)},
            {"longitude", text(info.longitude)},
            {"altitude", text(info.altitude)},
            {"light source", text(info.lightSource)},
            {"digital zoom", text(info.digitalZoom)},
            {"white balance", text(info.whiteBalance)},
            {"exposure mode", text(info.exposureMode)},
            {"scene capture type", text(info.sceneCaptureType)},
            {"contrast", text(info.contrast)},
            {"saturation", text(info.saturation)},
            {"sharpness", text(info.sharpness)}};
}

/// Sets a field of an item, by the name that the table gives it, to 1 or "1".
void SetField(CSFileListItem& item, const std::string& name) {
    const std::map<std::string, std::function<void()>> fields = {
        {"m_nMetaFlag2", [&] { item.m_nMetaFlag2 = 1; }}, {"m_nMetaWord", [&] { item.m_nMetaWord = 1; }},
        {"m_nMetaByte", [&] { item.m_nMetaByte = 1; }},   {"m_nMetaQuad1", [&] { item.m_nMetaQuad1 = 1; }},
        {"m_nMetaQuad2", [&] { item.m_nMetaQuad2 = 1; }}, {"m_szMetaText", [&] { item.m_szMetaText[0] = '1'; }}};
    if (name.rfind("m_aMeta[", 0) == 0) {
        item.m_aMeta[std::stoul(name.substr(8))] = 1;
    } else {
        fields.at(name)();
    }
}

TEST(ExifDocument, NamesThePlacesOfEveryFieldAsTheHeaderReadsThem) {
    std::set<std::string> seen;
    for (const Row& row : Table("fields")) {
        if (row.at(2) == "m_nMetaFlag") {
            continue; // its bits have tests of their own
        }
        CSFileListItem item;
        item.m_nMetaFlag = DCF_EXIF_PRESENT;
        SetField(item, row[2]);
        EXPECT_EQ(FieldText(DcfExifPhotoInfo(item), row[1]), "1") << row[0];
        DcfExifInfo info = {};
        ASSERT_TRUE(DcfExifRead(item, &info));
        EXPECT_EQ(Meanings(info).at(row[0]), "1") << row[0];
        EXPECT_TRUE(seen.insert(row[0]).second) << row[0] << " stands twice";
    }
    EXPECT_EQ(seen.size(), Meanings(DcfExifInfo()).size());
}

TEST_F(ExifTest, DocumentNamesWhatUnknownIs) {
    const auto onlyIso =
        Meanings(CollectJpeg(ExifBuilder(ByteOrder::kBig).Short(ExifDirectory::kExif, 0x8827, {1})).Fields());
    auto unknown =
        Meanings(CollectJpeg(ExifBuilder(ByteOrder::kBig).Short(ExifDirectory::kExif, 0xa402, {1})).Fields());
    unknown["exposure mode"] = onlyIso.at("exposure mode");
    unknown["width"] = unknown["height"] = "0"; // the frame tells
    for (const Row& row : Table("fields")) {
        if (row.at(2) != "m_nMetaFlag") {
            const std::string told = row.at(4) == "empty" ? "" : row[4].substr(0, row[4].find(','));
            EXPECT_EQ(unknown.at(row[0]), told) << row[0];
        }
    }
}

TEST(ExifDocument, HasTheWordsOfEveryChoice) {
    const std::map<std::string, const char* (*)(std::int32_t)> functions = {
        {"DcfExifOrientationText", DcfExifOrientationText},
        {"DcfExifProgramText", DcfExifProgramText},
        {"DcfExifMeteringText", DcfExifMeteringText},
        {"DcfExifLightText", DcfExifLightText},
        {"DcfExifWhiteBalanceText", DcfExifWhiteBalanceText},
        {"DcfExifExposureModeText", DcfExifExposureModeText},
        {"DcfExifSceneText", DcfExifSceneText},
        {"DcfExifHardnessText", DcfExifHardnessText},
        {"DcfExifSaturationText", DcfExifSaturationText}};
    const std::vector<Row> rows = Table("words");
    EXPECT_EQ(rows.size(), functions.size());
    for (const Row& row : rows) {
        std::string words;
        for (std::int32_t value = -1; value <= 0xffff; ++value) {
            if (const char* text = functions.at(row.at(1))(value)) {
                words += (words.empty() ? "" : "; ") + std::to_string(value) + " " + text;
            }
        }
        EXPECT_EQ(words, row.at(2)) << row[0];
    }
}

TEST(ExifDocument, HasEveryResult) {
    const std::string text = Document();
    for (const auto& [result, name] : {std::pair<DcfExifResult, const char*>{DCF_EXIF_OK, "DCF_EXIF_OK"},
                                       {DCF_EXIF_NULL_ARGUMENT, "DCF_EXIF_NULL_ARGUMENT"},
                                       {DCF_EXIF_UNREADABLE, "DCF_EXIF_UNREADABLE"},
                                       {DCF_EXIF_NONE, "DCF_EXIF_NONE"}}) {
        EXPECT_NE(text.find("| " + std::to_string(result) + " | `" + name + "` |"), std::string::npos) << name;
    }
}

TEST(ExifLibrary, ExportsTheCollectorAndNothingElse) {
    FILE* listing = ::popen(DCF_NM " --dynamic --defined-only --demangle " DCF_EXIF_LIBRARY, "r");
    ASSERT_NE(listing, nullptr);
    std::string text;
    char line[1024];
    while (std::fgets(line, sizeof line, listing) != nullptr) { // "0000000000001234 T name"
        text += std::string(line).substr(std::string(line).find(' ') + 3);
    }
    ::pclose(listing);
    EXPECT_EQ(text, "CollectExif(char*, PhotoInfo*)\n");
}

} // namespace
} // namespace dcftest
