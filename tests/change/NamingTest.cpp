// The naming settings and the name of the next file through the file list.
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "Change.h"

namespace dcftest {
namespace {

constexpr eFileListColorMode kOtherColor = static_cast<eFileListColorMode>(2);
constexpr eFILE_NAME_MAKE kOtherMake = static_cast<eFILE_NAME_MAKE>(7);

std::tm Date(int month, int day) {
    std::tm date{};
    date.tm_year = 124;
    date.tm_mon = month - 1;
    date.tm_mday = day;
    return date;
}

class Naming : public FileListTest {
protected:
    Naming() {
        ::umask(0022);
    }

    int NewName(int type = FILE_TYPE_JPG) {
        out.fill('\0');
        return list->GetNewFileName(out.data(), type);
    }

    /// The next name on a date, and the calls for it.
    std::string NameOn(const std::tm& date, int type = FILE_TYPE_JPG) {
        calls = CallsOf(
            card, [&] { EXPECT_EQ(NewName(type), 0); }, [&](PosixSeam& seam) { seam.FixLocalTime(date); });
        return Relative(card, out.data());
    }

    /// The prefix and the suffix of the last new name, as the log has them.
    static std::string Parts() {
        const Log log = TakeLog();
        return log.size() == 3 ? log[1] : "an unexpected log";
    }

    std::array<char, 396> out{};
    Texts calls;
};

TEST_F(Naming, StartsWithTheFixedNames) {
    EXPECT_EQ(list->m_eFileNameMake, 0);
    EXPECT_EQ(list->m_eFolderNameMake, 0);
    EXPECT_EQ(list->m_eColorMode, 0);
    EXPECT_EQ(list->m_eImageType, 0);
    EXPECT_STREQ(list->m_szFilePrefix, "KVR_");
    EXPECT_EQ(Bytes(list->m_szDatePrefix), std::string(8, '\0'));
    EXPECT_EQ(Bytes(list->m_szDateFolder), std::string(8, '\0'));
    EXPECT_EQ(Bytes(list->m_sz3DPrefix), std::string(8, '\0'));
}

TEST_F(Naming, TakesAPrefixOfUpToEightCharacters) {
    EXPECT_EQ(list->SetFilePrefix(Text("ABCD")), 0);
    EXPECT_STREQ(list->m_szFilePrefix, "ABCD");
    EXPECT_EQ(list->SetFilePrefix(Text("ABCDEFGH")), 0);
    EXPECT_STREQ(list->m_szFilePrefix, "ABCDEFGH");
    EXPECT_EQ(list->SetFilePrefix(Text("ABCDEFGHI")), -2);
    EXPECT_STREQ(list->m_szFilePrefix, "ABCDEFGH") << "kept";
    EXPECT_EQ(list->SetFilePrefix(nullptr), -1);
    EXPECT_STREQ(list->m_szFilePrefix, "ABCDEFGH") << "kept";
    EXPECT_EQ(list->SetFilePrefix(Text("")), 0);
    EXPECT_STREQ(list->m_szFilePrefix, "");
    EXPECT_EQ(TakeLog(), Log(5, "CSFileList SetFilePrefix start"));
}

TEST_F(Naming, ReplacesThePrefixWithTheColourMode) {
    ASSERT_EQ(list->SetFilePrefix(Text("ABCD")), 0);
    (void)TakeLog();
    list->SetFileNameColor(FILE_LIST_COLOR_MODE_OPTIONAL);
    EXPECT_EQ(TakeLog(), (Log{"CSFileList SetFileNameColor start", "CSFileList SetFilePrefix start"}));
    EXPECT_STREQ(list->m_szFilePrefix, "_KVR");
    EXPECT_EQ(list->m_eColorMode, FILE_LIST_COLOR_MODE_OPTIONAL);
    list->SetFileNameColor(FILE_LIST_COLOR_MODE_STANDARD);
    EXPECT_STREQ(list->m_szFilePrefix, "KVR_");
    list->SetFileNameColor(kOtherColor);
    EXPECT_STREQ(list->m_szFilePrefix, "_KVR");
    EXPECT_EQ(list->m_eColorMode, kOtherColor);
}

TEST_F(Naming, StoresTheModesAsTheyCome) {
    list->SetFileNameMake(kOtherMake);
    list->SetFolderNameMake(FILE_NAME_MAKE_DATE);
    list->SetImageType(FILE_LIST_IMAGE_TYPE_STEREOSCOPIC);
    EXPECT_EQ(list->m_eFileNameMake, kOtherMake);
    EXPECT_EQ(list->m_eFolderNameMake, FILE_NAME_MAKE_DATE);
    EXPECT_EQ(list->m_eImageType, FILE_LIST_IMAGE_TYPE_STEREOSCOPIC);
    EXPECT_EQ(TakeLog(), (Log{"CSFileList SetFileNameMake start", "CSFileList SetFolderNameMake start",
                              "CSFileList SetImageType start"}));
}

TEST_F(Naming, WithoutATreeIsRefused) {
    out.fill('x');
    EXPECT_EQ(list->GetNewFileName(out.data(), FILE_TYPE_JPG), -1);
    EXPECT_EQ(TakeLog(), (Log{"CSFileList GetNewFileName start"}));
    EXPECT_EQ(out[0], 'x');
    EXPECT_EQ(list->m_nList, -1);
}

TEST_F(Naming, IntoNoBufferIsRefused) {
    List();
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list->GetNewFileName(nullptr, FILE_TYPE_JPG), -1); }), Texts{});
    EXPECT_EQ(list->m_pDCF->m_nFirstIndex, 0);
}

TEST_F(Naming, GivesThePathLogsItAndRefreshesTheCount) {
    card.AddFiles("100PHOTO", {DcfName(2), DcfName(1)});
    ASSERT_EQ(List(), 2);
    ASSERT_EQ(list->SetCurIndex(1), 0);
    (void)TakeLog();
    EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(NewName(), 0); }), (Texts{"opendir 100PHOTO", "time"}));
    EXPECT_EQ(std::string(out.data()), Path("100PHOTO", "KVR_0003.JPG"));
    EXPECT_EQ(TakeLog(),
              (Log{"CSFileList GetNewFileName start", "CSFileList GetNewFileName filename = KVR_ foldername = PHOTO",
                   "CSFileList GetNewFileName new filename = " + Path("100PHOTO", "KVR_0003.JPG")}));
    EXPECT_EQ(list->m_nList, 3);
    EXPECT_EQ(list->GetCount(), 3);
    EXPECT_EQ(list->m_nCurGetAtIdx, 1) << "not refreshed";
    EXPECT_EQ(CursorOf(*list->m_pDCF), (Cursor{100, 3, 0, 0, 0})) << "although the cursor stands on the new file";
}

TEST_F(Naming, KnowsTheExtensionOfEachType) {
    List();
    const std::pair<int, const char*> extensions[] = {{FILE_TYPE_JPG, "JPG"},
                                                      {FILE_TYPE_SRW, "SRW"},
                                                      {FILE_TYPE_MPO, "MPO"},
                                                      {FILE_TYPE_MP4, "MP4"},
                                                      {FILE_TYPE_AVI, "AVI"}};
    int number = 1;
    for (const auto& [type, extension] : extensions) {
        EXPECT_EQ(NewName(type), 0);
        EXPECT_EQ(std::string(out.data()), Path("100PHOTO", DcfName(number++, extension)));
        EXPECT_EQ(ItemAt(*list->m_pDCF, 0, 0).m_eFileType, type);
    }
}

TEST_F(Naming, OfATypeWithoutAnExtensionIsRefusedBeforeAnythingIsMade) {
    card.AddFiles("100PHOTO", {DcfName(1)});
    ASSERT_EQ(List(), 1);
    for (const int type : {4, 6, -1, 99}) {
        list->m_nList = 77;
        const Texts before = EverythingIn(*list->m_pDCF);
        (void)std::snprintf(out.data(), out.size(), "the old text");
        EXPECT_EQ(CallsOf(card, [&] { EXPECT_EQ(list->GetNewFileName(out.data(), type), -1); }), Texts{});
        EXPECT_EQ(TakeLog(), (Log{"CSFileList GetNewFileName start",
                                  "CSFileList GetNewFileName filename = KVR_ foldername = PHOTO",
                                  "CSFileList GetNewFileName new filename = the old text"}));
        EXPECT_EQ(EverythingIn(*list->m_pDCF), before);
        EXPECT_EQ(list->m_nList, 1) << "refreshed";
        EXPECT_STREQ(out.data(), "the old text");
        EXPECT_EQ(SeriesValue(), std::nullopt);
    }
}

TEST_F(Naming, OfATypeWithoutAnExtensionReadsTheBufferNoFurtherThanItsEnd) {
    List();
    // The buffer ends with the page; behind it nothing may be read.
    const auto page = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    void* memory = ::mmap(nullptr, 2 * page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(memory, MAP_FAILED);
    char* end = static_cast<char*>(memory) + page;
    ASSERT_EQ(::mprotect(end, page, PROT_NONE), 0);
    std::memset(end - 396, 'x', 396);
    EXPECT_EQ(list->GetNewFileName(end - 396, -1), -1);
    const Log log = TakeLog();
    ASSERT_EQ(log.size(), 3U);
    const std::string cut = "new filename = " + std::string(396, 'x');
    EXPECT_EQ(log[2], "CSFileList GetNewFileName " + cut.substr(0, 248));
    (void)::munmap(memory, 2 * page);
}

TEST_F(Naming, WithoutANumberLeftLogsAndRefreshesTheCountAllTheSame) {
    card.AddFiles("999PHOTO", {DcfName(9999)});
    ASSERT_EQ(List(), 1);
    list->m_nList = 77;
    EXPECT_EQ(NewName(), -1);
    EXPECT_EQ(TakeLog(),
              (Log{"CSFileList GetNewFileName start", "CSFileList GetNewFileName filename = KVR_ foldername = PHOTO",
                   "CSFileList GetNewFileName new filename = "}));
    EXPECT_EQ(list->m_nList, 1);
}

TEST_F(Naming, UsesTheClientsPrefix) {
    List();
    ASSERT_EQ(list->SetFilePrefix(Text("ABCD")), 0);
    EXPECT_EQ(NewName(), 0);
    EXPECT_EQ(std::string(out.data()), Path("100PHOTO", "ABCD0001.JPG"));
}

TEST_F(Naming, WithAPrefixThatIsNotFourCharactersIsFatal) {
    List();
    ASSERT_EQ(list->SetFilePrefix(Text("ABCDEFGH")), 0);
    EXPECT_TRUE(DiesByAssertion(RunInChild([&] { (void)NewName(); }),
                                {"len == 12", "more than dcf filename length = 16", "CSDCFItemList",
                                 "void DCFItem::setFileName(const char*)"}));
}

TEST_F(Naming, ByDateMakesThePrefixOfMonthAndDay) {
    List();
    list->SetFileNameMake(FILE_NAME_MAKE_DATE);
    EXPECT_EQ(NameOn(Date(12, 24)), "100PHOTO/12240001.JPG");
    EXPECT_EQ(calls, (Texts{"time", "localtime", "opendir 100PHOTO", "umask 0000", "mkdir 100PHOTO 0775", "umask 0022",
                            "sync", "time"}));
    EXPECT_STREQ(list->m_szDatePrefix, "1224");
    EXPECT_EQ(NameOn(Date(3, 5)), "100PHOTO/03050002.JPG");
    EXPECT_EQ(Bytes(list->m_szDateFolder), std::string(8, '\0')) << "which is not asked for";
}

TEST_F(Naming, ByDateInTheOptionalColourHasTheMonthInOneCharacter) {
    List();
    list->SetFileNameMake(kOtherMake);
    list->SetFileNameColor(FILE_LIST_COLOR_MODE_OPTIONAL);
    const char* const prefixes[] = {"_105", "_205", "_305", "_405", "_505", "_605",
                                    "_705", "_805", "_905", "_A05", "_B05", "_C05"};
    for (int month = 1; month <= 12; ++month) {
        EXPECT_EQ(NameOn(Date(month, 5)), std::string("100PHOTO/") + DcfName(month, "JPG", prefixes[month - 1]));
    }
    EXPECT_EQ(NameOn(Date(12, 24)), "100PHOTO/_C240013.JPG");
}

TEST_F(Naming, ByDateInAnyOtherColourHasTheMonthInTwoDigits) {
    List();
    list->SetFileNameMake(FILE_NAME_MAKE_DATE);
    list->SetFileNameColor(kOtherColor);
    EXPECT_EQ(NameOn(Date(12, 24)), "100PHOTO/12240001.JPG");
}

TEST_F(Naming, ByDateForAStereoscopicMovieHasTheMonthInTwoDigits) {
    List();
    list->SetFileNameMake(FILE_NAME_MAKE_DATE);
    list->SetFileNameColor(FILE_LIST_COLOR_MODE_OPTIONAL);
    list->SetImageType(FILE_LIST_IMAGE_TYPE_STEREOSCOPIC);
    EXPECT_EQ(NameOn(Date(12, 24), FILE_TYPE_MP4), "100PHOTO/12240001.MP4");
    EXPECT_EQ(NameOn(Date(12, 24), FILE_TYPE_JPG), "100PHOTO/_C240002.JPG") << "a picture is not concerned";
    EXPECT_EQ(NameOn(Date(12, 24), FILE_TYPE_AVI), "100PHOTO/_C240003.AVI");
    list->SetImageType(static_cast<eFileListImageType>(2));
    EXPECT_EQ(NameOn(Date(12, 24), FILE_TYPE_MP4), "100PHOTO/_C240004.MP4") << "only type 1 counts";
    EXPECT_EQ(Bytes(list->m_sz3DPrefix), std::string(8, '\0'));
}

TEST_F(Naming, OfAStereoscopicMovieFillsAPrefixThatIsNeverUsed) {
    List();
    EXPECT_EQ(NewName(FILE_TYPE_MP4), 0);
    EXPECT_STREQ(list->m_sz3DPrefix, "") << "an ordinary one does not";
    list->SetImageType(FILE_LIST_IMAGE_TYPE_STEREOSCOPIC);
    EXPECT_EQ(NewName(FILE_TYPE_JPG), 0);
    EXPECT_STREQ(list->m_sz3DPrefix, "") << "nor does a picture";
    EXPECT_EQ(NewName(FILE_TYPE_MP4), 0);
    EXPECT_STREQ(list->m_sz3DPrefix, "S3D_");
    EXPECT_EQ(std::string(out.data()), Path("100PHOTO", "KVR_0003.MP4"));
}

TEST_F(Naming, ByDateMakesTheFolderOfMonthAndDay) {
    List();
    list->SetFolderNameMake(FILE_NAME_MAKE_DATE);
    (void)TakeLog();
    EXPECT_EQ(NameOn(Date(12, 24)), "100_1224/KVR_0001.JPG");
    EXPECT_EQ(calls.front(), "time");
    EXPECT_EQ(std::count(calls.begin(), calls.end(), "localtime"), 1);
    EXPECT_EQ(Parts(), "CSFileList GetNewFileName filename = KVR_ foldername = _1224");
    EXPECT_STREQ(list->m_szDateFolder, "_1224");
    EXPECT_EQ(NameOn(Date(12, 24)), "100_1224/KVR_0002.JPG");
    EXPECT_EQ(NameOn(Date(3, 5)), "101_0305/KVR_0001.JPG") << "another day, another directory";
    EXPECT_EQ(Bytes(list->m_szDatePrefix), std::string(8, '\0'));
}

TEST_F(Naming, ByDateReadsTheClockForEachPartAndForTheItem) {
    List();
    list->SetFileNameMake(FILE_NAME_MAKE_DATE);
    list->SetFolderNameMake(kOtherMake);
    EXPECT_EQ(NameOn(Date(10, 31)), "100_1031/10310001.JPG");
    EXPECT_EQ(calls, (Texts{"time", "localtime", "time", "localtime", "opendir 100_1031", "umask 0000",
                            "mkdir 100_1031 0775", "umask 0022", "sync", "time"}));
}

TEST_F(Naming, ByDateWithoutADateTakesTheFirstOfJanuary) {
    List();
    list->SetFileNameMake(FILE_NAME_MAKE_DATE);
    list->SetFolderNameMake(FILE_NAME_MAKE_DATE);
    (void)CallsOf(
        card, [&] { EXPECT_EQ(NewName(), 0); }, [](PosixSeam& seam) { seam.FailFrom("localtime", EOVERFLOW); });
    EXPECT_EQ(std::string(out.data()), Path("100_0101", "01010001.JPG"));
}

TEST_F(Naming, ByDateFollowsTheLocalTimeZone) {
    List();
    list->SetFileNameMake(FILE_NAME_MAKE_DATE);
    const std::time_t noonOnTheTwentyThird = 1734955200; // 2024-12-23 12:00 UTC
    for (const auto& [zone, prefix] :
         {std::pair("AAA-14", "1224"), std::pair("BBB+14", "1222"), std::pair("UTC0", "1223")}) {
        const Ending ending = RunInChild([&, timeZone = zone, expected = prefix] {
            ASSERT_EQ(::setenv("TZ", timeZone, 1), 0);
            (void)CallsOf(
                card, [&] { EXPECT_EQ(NewName(), 0); }, [&](PosixSeam& seam) { seam.FixTime(noonOnTheTwentyThird); });
            EXPECT_EQ(std::string(out.data()), Path("100PHOTO", DcfName(1, "JPG", expected)));
        });
        EXPECT_TRUE(ending.Completed()) << zone << ": " << ending.Describe();
        card.Remove("100PHOTO", "");
    }
}

TEST_F(Naming, KeepsTheSettingsOverANewListing) {
    List();
    list->SetFolderNameMake(FILE_NAME_MAKE_DATE);
    ASSERT_EQ(list->SetFilePrefix(Text("ABCD")), 0);
    ASSERT_EQ(list->DeleteAll(), 0);
    EXPECT_EQ(NameOn(Date(12, 24)), "100_1224/ABCD0001.JPG");
}

} // namespace
} // namespace dcftest
