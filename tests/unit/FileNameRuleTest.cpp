// Which file names a DCF directory and "Camera" accept, and how names are upper-cased.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "CSDCFDir.h"
#include "Seed.h"
#include "Trees.h"

using dcftest::Seed;
using dcftest::Writable;

namespace {

struct Verdict {
    int type;
    std::string name; ///< As it stands in the buffer afterwards.

    bool operator==(const Verdict&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Verdict& verdict) {
    return out << verdict.type << " \"" << verdict.name << "\"";
}

Verdict DcfRule(const std::string& name) {
    CSDCFDir dir(100, "100ABCDE");
    std::vector<char> buffer = Writable(name);
    const int type = dir.CheckFileNameSyntax(buffer.data());
    return {type, buffer.data()};
}

Verdict CameraRule(const std::string& name) {
    CSDCFDir dir(99, "Camera");
    std::vector<char> buffer = Writable(name);
    const int type = dir.CheckFileNameSyntaxNonDCF(buffer.data());
    return {type, buffer.data()};
}

std::string Upper(std::string text) {
    for (char& c : text) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 32);
        }
    }
    return text;
}

TEST(DcfFileNameRule, AcceptsAndUpperCases) {
    const struct {
        const char* name;
        int type;
        const char* why;
    } rows[] = {
        {"KVR_0012.JPG", 0, "the usual name"},
        {"KVR_0012.SRW", 1, "raw"},
        {"KVR_0012.MPO", 2, "multi-picture"},
        {"KVR_0012.MP4", 3, "movie"},
        {"KVR_0012.AVI", 5, "movie"},
        {"_KVR0012.JPG", 0, "colour prefix"},
        {"kvr_0012.jpg", 0, "lower case is upper-cased"},
        {"kvr_0012.avi", 5, "with an i, whatever the language"},
        {"iiii0012.Mp4", 3, "mixed case"},
        {"AB-D0012.JPG", 0, "a hyphen in front of the number"},
        {"12AB0012.JPG", 0, "digits in front of the number"},
        {"....0012.JPG", 0, "dots in front of the number"},
        {"    0012.JPG", 0, "blanks in front of the number"},
        {"\xc3\xa4\xc3\xb6"
         "0012.JPG",
         0, "bytes beyond ASCII in front of the number"},
        {"\x01\x7f\xff\x80"
         "0012.JPG",
         0, "any bytes in front of the number"},
        {"ABCD0012XJPG", 0, "the ninth character is not examined"},
        {"ABCD00120JPG", 0, "not even when it is a digit"},
        {"ABCD0012\xffJPG", 0, "nor when it is no character at all"},
        {"ABCD0000.JPG", 0, "number 0"},
        {"ABCD9999.JPG", 0, "the last number"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(DcfRule(row.name), (Verdict{row.type, Upper(row.name)})) << row.name << ": " << row.why;
    }
}

TEST(DcfFileNameRule, Refuses) {
    const struct {
        const char* name;
        const char* why;
    } rows[] = {
        {"", "empty"},
        {"ABCD0012.JP", "11 characters"},
        {"ABCD0012.JPEG", "13 characters"},
        {"ABCD0012.JPGABCD0012.JPG", "24 characters"},
        {"ABCDX012.JPG", "no digit at the fifth character"},
        {"ABCD0X12.JPG", "no digit at the sixth"},
        {"ABCD00X2.JPG", "no digit at the seventh"},
        {"ABCD001X.JPG", "no digit at the eighth"},
        {"ABCD/012.JPG", "one before '0'"},
        {"ABCD:012.JPG", "one behind '9'"},
        {"ABCD0/12.JPG", "one before '0'"},
        {"ABCD00:2.JPG", "one behind '9'"},
        {"ABCD001/.JPG", "one before '0'"},
        {"ABCD -12.JPG", "a sign is no digit"},
        {"ABCD+012.JPG", "a sign is no digit"},
        {"ABCD\xb2\xb3\xb9\xb2.JPG", "digits of another alphabet"},
        {"ABCD0012.MOV", "unknown extension"},
        {"ABCD0012.JP2", "unknown extension"},
        {"ABCD0012.   ", "blank extension"},
        {"ABCD0012JPG.", "extension one too early"},
        {"ABCD0012.THM", "unknown extension"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(DcfRule(row.name).type, -1) << row.name << ": " << row.why;
    }
    CSDCFDir dir(100, "100ABCDE");
    EXPECT_EQ(dir.CheckFileNameSyntax(nullptr), -1);
}

TEST(DcfFileNameRule, LooksAtTheLengthBeforeItChangesAnything) {
    EXPECT_EQ(DcfRule("kvr_0012.jpeg"), (Verdict{-1, "kvr_0012.jpeg"}));
    EXPECT_EQ(DcfRule("kvr_0012.jp"), (Verdict{-1, "kvr_0012.jp"}));
    EXPECT_EQ(DcfRule("kvr_x012.jpg"), (Verdict{-1, "KVR_X012.JPG"}))
        << "of the right length: upper-cased, then judged";
}

TEST(CameraFileNameRule, AcceptsAndUpperCases) {
    const struct {
        const char* name;
        int type;
        const char* why;
    } rows[] = {
        {"20240131_123456.JPG", 0, "the usual name"},
        {"20240131_123456.SRW", 1, "raw"},
        {"20240131_123456.MPO", 2, "multi-picture"},
        {"20240131_123456.jpg", 0, "lower case is upper-cased, also beyond twelve characters"},
        {"abcdefghijklmnopqrstuvwxyz.Jpg", 0, "whole name upper-cased"},
        {"ABCDEFGH.JPG", 0, "12 characters, the least"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGHIJ.JPG", 0, "40 characters, the most"},
        {"20240131_1234567JPG", 0, "no dot needed"},
        {"JPGJPGJPGJPGJPGSRW", 1, "only the last three characters decide"},
        {"\xff\xfe\x01 -+/.:;<=>SRW", 1, "nothing else is examined"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CameraRule(row.name), (Verdict{row.type, Upper(row.name)})) << row.name << ": " << row.why;
    }
}

TEST(CameraFileNameRule, Refuses) {
    const struct {
        const char* name;
        const char* why;
    } rows[] = {
        {"", "empty"},
        {"JPG", "shorter than twelve"},
        {"ABCDEFG.JPG", "11 characters"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZABCDEFGHIJK.JPG", "41 characters"},
        {"20240131_123456.MP4", "no movies in Camera"},
        {"20240131_123456.AVI", "no movies in Camera"},
        {"20240131_123456.PNG", "unknown extension"},
        {"20240131_12345.JPG ", "extension not at the end"},
        {"20240131_12345.JPEG", "extension not at the end"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(CameraRule(row.name).type, -1) << row.name << ": " << row.why;
    }
    CSDCFDir dir(99, "Camera");
    EXPECT_EQ(dir.CheckFileNameSyntaxNonDCF(nullptr), -1);
}

TEST(CameraFileNameRule, LooksAtTheLengthBeforeItChangesAnything) {
    EXPECT_EQ(CameraRule("abcdefg.jpg"), (Verdict{-1, "abcdefg.jpg"}));
    const std::string tooLong(41, 'a');
    EXPECT_EQ(CameraRule(tooLong), (Verdict{-1, tooLong}));
    EXPECT_EQ(CameraRule("20240131_123456.mp4"), (Verdict{-1, "20240131_123456.MP4"}));
}

TEST(UpperCase, ChangesOnlyTheTwentySixLetters) {
    CSDCFDir dir(100, "100ABCDE");
    for (int value = 1; value < 256; ++value) {
        char text[2] = {static_cast<char>(value), '\0'};
        EXPECT_EQ(dir.MakeUpperCase(text, false), 1);
        const int expected = value >= 97 && value <= 122 ? value - 32 : value;
        EXPECT_EQ(static_cast<unsigned char>(text[0]), expected);
    }
}

TEST(UpperCase, GivesTheLengthAndKeepsToTheLimit) {
    const struct {
        const char* text;
        bool limit;
        const char* expected;
        const char* why;
    } rows[] = {
        {"", false, "", "empty"},
        {"", true, "", "empty, limited"},
        {"a", true, "A", "short"},
        {"kvr_0012.jpg", true, "KVR_0012.JPG", "twelve characters are within the limit"},
        {"kvr_0012.jpeg", true, "kvr_0012.jpeg", "thirteen are not"},
        {"kvr_0012.jpeg", false, "KVR_0012.JPEG", "no limit"},
        {"abcdefghijklmnopqrstuvwxyz`{@[", false, "ABCDEFGHIJKLMNOPQRSTUVWXYZ`{@[", "neighbours of the letters"},
    };
    CSDCFDir dir(100, "100ABCDE");
    for (const auto& row : rows) {
        std::vector<char> buffer = Writable(row.text);
        EXPECT_EQ(dir.MakeUpperCase(buffer.data(), row.limit), static_cast<int>(std::strlen(row.text))) << row.why;
        EXPECT_STREQ(buffer.data(), row.expected) << row.why;
    }
}

// The rules once more, written from the other side: what must hold for a name to have a type.
int TypeOfLastThree(const std::string& name) {
    const std::string extension = name.substr(name.size() - 3);
    const std::vector<std::string> byType = {"JPG", "SRW", "MPO", "MP4", "", "AVI"};
    for (std::size_t type = 0; type < byType.size(); ++type) {
        if (extension == byType[type]) {
            return static_cast<int>(type);
        }
    }
    return -1;
}

Verdict ExpectedDcf(const std::string& name) {
    if (name.size() != 12) {
        return {-1, name};
    }
    const std::string upper = Upper(name);
    const bool numbered = upper.find_first_not_of("0123456789", 4) >= 8;
    return {numbered ? TypeOfLastThree(upper) : -1, upper};
}

Verdict ExpectedCamera(const std::string& name) {
    if (name.size() < 12 || name.size() > 40) {
        return {-1, name};
    }
    const std::string upper = Upper(name);
    const int type = TypeOfLastThree(upper);
    return {type > 2 ? -1 : type, upper};
}

/// A well-formed name with some characters spoilt, added or lost.
std::string Spoilt(Seed& seed, std::string name) {
    static const std::string kInteresting = "09/:azAZ`{@[_-. \x7f\x80\xff\x01JPGSRWMO4AVI";
    const int spoils = seed.Pick(0, 3);
    for (int i = 0; i < spoils && !name.empty(); ++i) {
        const auto at = static_cast<std::size_t>(seed.Pick(0, static_cast<int>(name.size()) - 1));
        switch (seed.Pick(0, 5)) {
        case 0:
            name.erase(at, 1);
            break;
        case 1:
            name.insert(at, 1, seed.PickFrom(kInteresting));
            break;
        case 2:
            name[at] = static_cast<char>(seed.Pick(1, 255));
            break;
        default:
            name[at] = seed.PickFrom(kInteresting);
        }
    }
    return name;
}

TEST(FileNameRules, HoldForRandomNames) {
    Seed seed;
    SCOPED_TRACE(seed.Text());
    const std::vector<std::string> extensions = {"JPG", "SRW", "MPO", "MP4", "AVI", "jpg", "avi", "MOV"};
    int accepted = 0;
    constexpr int kRounds = 50000;
    for (int round = 0; round < kRounds; ++round) {
        const std::string& extension = extensions[static_cast<std::size_t>(seed.Pick(0, 7))];
        const std::string dcf = Spoilt(seed, dcftest::DcfName(seed.Pick(0, 9999), extension));
        ASSERT_EQ(DcfRule(dcf), ExpectedDcf(dcf)) << dcf;
        accepted += DcfRule(dcf).type >= 0 ? 1 : 0;
        const std::string stem(static_cast<std::size_t>(seed.Pick(6, 38)), 'q');
        const std::string camera = Spoilt(seed, stem + "." + extension);
        ASSERT_EQ(CameraRule(camera), ExpectedCamera(camera)) << camera;
    }
    EXPECT_GT(accepted, kRounds / 10) << "the generator must make names of both kinds";
    EXPECT_LT(accepted, kRounds * 9 / 10);
}

} // namespace
