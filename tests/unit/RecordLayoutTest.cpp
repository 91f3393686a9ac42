// Order, width and place of the fields that clients, collectors and maintenance tools rely on. What can be said at
// compile time is; the runtime tests show that the fields are independent.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <iterator>
#include <new>
#include <type_traits>
#include <vector>

#include "CSDCFDir.h"
#include "CSDCFItemList.h"
#include "CSDCFList.h"
#include "CSFileList.h"
#include "CSFileListItem.h"
#include "FileListTypes.h"
#include "MetadataInfo.h"
#include "PCSDCFFSIO.h"

// The classes with a virtual destructor have no standard layout, yet a fixed one on every platform in use.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

namespace {

constexpr std::size_t RoundUp(std::size_t offset, std::size_t alignment) {
    return (offset + alignment - 1) / alignment * alignment;
}

#define EXPECT_FIELD(Record, field, Type, offset)                                                                      \
    static_assert(std::is_same_v<decltype(Record::field), Type>, "type of " #Record "::" #field);                      \
    static_assert(offsetof(Record, field) == (offset), "place of " #Record "::" #field)

// The field is the next one behind another, with no more than padding between them.
#define EXPECT_NEXT(Record, previous, field, Type)                                                                     \
    EXPECT_FIELD(Record, field, Type, RoundUp(offsetof(Record, previous) + sizeof(Record::previous), alignof(Type)))

// Enumerations: unscoped, 32 bits, signed; any integer may be cast to them.
template <typename Enumeration>
constexpr bool IsPlainInt32 = std::is_enum_v<Enumeration>&& std::is_convertible_v<Enumeration, int>&&
    std::is_same_v<std::underlying_type_t<Enumeration>, std::int32_t>;
static_assert(IsPlainInt32<eFileType> && IsPlainInt32<eFileNumberType> && IsPlainInt32<eFileListImageType>);
static_assert(IsPlainInt32<eFileListColorMode> && IsPlainInt32<eFILE_NAME_MAKE>);
static_assert(FILE_TYPE_NONE == -1 && FILE_TYPE_JPG == 0 && FILE_TYPE_SRW == 1 && FILE_TYPE_MPO == 2);
static_assert(FILE_TYPE_MP4 == 3 && FILE_TYPE_AVI == 5);
static_assert(KELP_DCF_MAX_FILE_NAME_LEN == 99);

EXPECT_FIELD(PhotoInfo, attributeByte1, std::uint8_t, 0);
EXPECT_FIELD(PhotoInfo, attributeByte2, std::uint8_t, 1);
EXPECT_FIELD(PhotoInfo, attributeWord, std::uint32_t, 4);
EXPECT_FIELD(PhotoInfo, attributeFlag, std::uint8_t, 8);
EXPECT_FIELD(PhotoInfo, attributeWords, std::int32_t[4], 12);
EXPECT_FIELD(PhotoInfo, date, char[20], 28);
EXPECT_FIELD(PhotoInfo, trailingWords, std::int32_t[17], 48);
static_assert(sizeof(PhotoInfo) == 116);
static_assert(std::is_trivial_v<PhotoInfo> && std::is_standard_layout_v<PhotoInfo>);

EXPECT_FIELD(VideoInfo, imageWidth, std::int32_t, 0);
EXPECT_FIELD(VideoInfo, imageHeight, std::int32_t, 4);
EXPECT_FIELD(VideoInfo, hasAudio, std::int32_t, 8);
EXPECT_FIELD(VideoInfo, fps, std::int32_t, 12);
EXPECT_FIELD(VideoInfo, videoBitRate, std::int32_t, 16);
EXPECT_FIELD(VideoInfo, audioBitRate, std::int32_t, 20);
EXPECT_FIELD(VideoInfo, multiMotion, std::int32_t, 24);
EXPECT_FIELD(VideoInfo, reserved1, std::int32_t, 28);
EXPECT_FIELD(VideoInfo, totalTime, std::int32_t, 32);
EXPECT_FIELD(VideoInfo, reserved2, std::int32_t, 36);
EXPECT_FIELD(VideoInfo, fileSize, std::int32_t, 40);
EXPECT_FIELD(VideoInfo, reserved3, std::int32_t, 44);
EXPECT_FIELD(VideoInfo, date, char[16], 48);
EXPECT_FIELD(VideoInfo, reserved4, std::int32_t, 64);
static_assert(sizeof(VideoInfo) == 68);
static_assert(std::is_trivial_v<VideoInfo> && std::is_standard_layout_v<VideoInfo>);

EXPECT_FIELD(CSFileListItem, m_strURI, char[99], 0);
EXPECT_FIELD(CSFileListItem, m_strObject, char[99], 99);
EXPECT_FIELD(CSFileListItem, m_eFileType, eFileType, 200);
EXPECT_FIELD(CSFileListItem, m_eObjectType, eFileType, 204);
EXPECT_FIELD(CSFileListItem, m_nMetaFlag, std::uint8_t, 208);
EXPECT_FIELD(CSFileListItem, m_bProtect, bool, 209);
EXPECT_FIELD(CSFileListItem, m_bWifi, bool, 210);
EXPECT_FIELD(CSFileListItem, m_nDirNum, std::int32_t, 212);
EXPECT_FIELD(CSFileListItem, m_nFileNum, std::int32_t, 216);
EXPECT_FIELD(CSFileListItem, m_nMetaQuad1, std::int32_t, 220);
EXPECT_FIELD(CSFileListItem, m_nMetaQuad2, std::int32_t, 224);
EXPECT_FIELD(CSFileListItem, m_aReserved1, std::uint8_t[36], 228);
EXPECT_FIELD(CSFileListItem, m_szMetaText, char[20], 264);
EXPECT_FIELD(CSFileListItem, m_nMetaFlag2, std::uint8_t, 284);
EXPECT_FIELD(CSFileListItem, m_nMetaWord, std::uint32_t, 288);
EXPECT_FIELD(CSFileListItem, m_nMetaByte, std::uint8_t, 292);
EXPECT_FIELD(CSFileListItem, m_aMeta, std::int32_t[19], 296);
EXPECT_FIELD(CSFileListItem, m_aReserved2, std::uint8_t[24], 372);
EXPECT_FIELD(CSFileListItem, m_nFileTime, std::uint32_t, 396);
static_assert(sizeof(CSFileListItem) == 400);
static_assert(std::is_standard_layout_v<CSFileListItem> && !std::is_polymorphic_v<CSFileListItem>);

EXPECT_FIELD(DCFItem, m_fileName, char[30], 0);
EXPECT_FIELD(DCFItem, m_bProtectKnown, bool, 30);
EXPECT_FIELD(DCFItem, m_bProtect, bool, 31);
EXPECT_FIELD(DCFItem, m_bWifi, bool, 32);
EXPECT_FIELD(DCFItem, m_nFileTime, std::uint32_t, 36);
EXPECT_FIELD(DCFItem, m_nFileNum, std::int32_t, 40);
EXPECT_FIELD(DCFItem, m_nDirNum, std::int16_t, 44);
EXPECT_FIELD(DCFItem, m_eFileType, eFileType, 48);
EXPECT_FIELD(DCFItem, m_eObjectType, eFileType, 52);
EXPECT_FIELD(DCFItem, m_bMetadata, bool, 56);
static_assert(offsetof(DCFItem, m_photo) == 60);
static_assert(sizeof(DCFItem) == 60 + sizeof(PhotoInfo));
static_assert(std::is_trivially_copyable_v<DCFItem> && !std::is_polymorphic_v<DCFItem>, "a plain value record");
static_assert(std::is_trivially_destructible_v<DCFItem>);

EXPECT_FIELD(PCSDCFFSIO::PTFile, szName, char[99], 0);
EXPECT_FIELD(PCSDCFFSIO::PTFile, nTime, std::uint32_t, 100);
static_assert(sizeof(PCSDCFFSIO::PTFile) == 104);

// What follows starts with the pointer to the virtual table.
EXPECT_FIELD(PCSDCFFSIO, m_ppCur, dirent**, sizeof(void*));
EXPECT_NEXT(PCSDCFFSIO, m_ppCur, m_ppList, dirent**);
EXPECT_NEXT(PCSDCFFSIO, m_ppList, m_nTotal, std::int32_t);
EXPECT_NEXT(PCSDCFFSIO, m_nTotal, m_nRemain, std::int32_t);
static_assert(std::has_virtual_destructor_v<PCSDCFFSIO>);

EXPECT_FIELD(CSDCFDir, m_nDnum, std::int16_t, sizeof(void*));
EXPECT_NEXT(CSDCFDir, m_nDnum, m_strDirName, char[99]);
EXPECT_NEXT(CSDCFDir, m_strDirName, m_itemGroup, std::deque<DCFItem>);
static_assert(std::has_virtual_destructor_v<CSDCFDir>);

EXPECT_FIELD(CSDCFList, m_nFirstIndex, int, sizeof(void*));
EXPECT_NEXT(CSDCFList, m_nFirstIndex, m_dirGroup, std::deque<CSDCFDir*>);
EXPECT_NEXT(CSDCFList, m_dirGroup, m_nDirCount, int);
EXPECT_NEXT(CSDCFList, m_nDirCount, m_szBaseURI, char[100]);
EXPECT_NEXT(CSDCFList, m_szBaseURI, m_nTotalCount, int);
EXPECT_NEXT(CSDCFList, m_nTotalCount, m_nCurDnum, int);
EXPECT_NEXT(CSDCFList, m_nCurDnum, m_nCurFnum, int);
EXPECT_NEXT(CSDCFList, m_nCurFnum, m_CurFileIndex, int);
EXPECT_NEXT(CSDCFList, m_CurFileIndex, m_CurItem, DCFItem);
EXPECT_NEXT(CSDCFList, m_CurItem, m_nCurDidx, int);
EXPECT_NEXT(CSDCFList, m_nCurDidx, m_bSeriesMode, bool);
EXPECT_NEXT(CSDCFList, m_bSeriesMode, m_nCurListIndex, int);
// Behind the fixed members stands what is derived from them, and nothing else.
static_assert(sizeof(CSDCFList) ==
              RoundUp(offsetof(CSDCFList, m_nCurListIndex) + sizeof(int), alignof(kelp::TreeIndex)) +
                  sizeof(kelp::TreeIndex));
static_assert(std::has_virtual_destructor_v<CSDCFList>);

EXPECT_FIELD(CSFileList, m_szBaseURI, char[100], sizeof(void*));
EXPECT_NEXT(CSFileList, m_szBaseURI, m_eFileNameMake, eFILE_NAME_MAKE);
EXPECT_NEXT(CSFileList, m_eFileNameMake, m_eFolderNameMake, eFILE_NAME_MAKE);
EXPECT_NEXT(CSFileList, m_eFolderNameMake, m_eColorMode, eFileListColorMode);
EXPECT_NEXT(CSFileList, m_eColorMode, m_eImageType, eFileListImageType);
EXPECT_NEXT(CSFileList, m_eImageType, m_bIncludeNonDCF, bool);
EXPECT_NEXT(CSFileList, m_bIncludeNonDCF, m_nCurGetAtIdx, std::int32_t);
EXPECT_NEXT(CSFileList, m_nCurGetAtIdx, m_nList, std::int32_t);
EXPECT_NEXT(CSFileList, m_nList, m_szDefaultPath, char[99]);
EXPECT_NEXT(CSFileList, m_szDefaultPath, m_szDefaultFolder, char[99]);
EXPECT_NEXT(CSFileList, m_szDefaultFolder, m_szDefaultPrefix, char[99]);
EXPECT_NEXT(CSFileList, m_szDefaultPrefix, m_bSeriesMode, bool);
EXPECT_NEXT(CSFileList, m_bSeriesMode, m_szFilePrefix, char[99]);
EXPECT_NEXT(CSFileList, m_szFilePrefix, m_szDatePrefix, char[8]);
EXPECT_NEXT(CSFileList, m_szDatePrefix, m_szDateFolder, char[8]);
EXPECT_NEXT(CSFileList, m_szDateFolder, m_sz3DPrefix, char[8]);
EXPECT_NEXT(CSFileList, m_sz3DPrefix, m_pDCF, CSDCFList*);
EXPECT_NEXT(CSFileList, m_pDCF, listupDone, std::int32_t);
EXPECT_NEXT(CSFileList, listupDone, m_vecSel, std::vector<std::int32_t>);
static_assert(sizeof(CSFileList) ==
              offsetof(CSFileList, m_vecSel) + sizeof(std::vector<std::int32_t>) + sizeof(kelp::PositionSet));
static_assert(std::is_base_of_v<ISFileList, CSFileList>);

TEST(RecordLayout, AnItemForClientsIsAllZeroAtFirst) {
    alignas(CSFileListItem) unsigned char memory[sizeof(CSFileListItem)];
    std::fill(std::begin(memory), std::end(memory), static_cast<unsigned char>(0xA5));
    auto* item = new (memory) CSFileListItem;
    EXPECT_STREQ(item->m_strURI, "");
    EXPECT_STREQ(item->m_strObject, "");
    EXPECT_EQ(item->m_eFileType, 0);
    EXPECT_EQ(item->m_eObjectType, 0);
    EXPECT_EQ(item->m_nMetaFlag, 0);
    EXPECT_FALSE(item->m_bProtect);
    EXPECT_FALSE(item->m_bWifi);
    EXPECT_EQ(item->m_nDirNum, 0);
    EXPECT_EQ(item->m_nFileNum, 0);
    EXPECT_EQ(item->m_nMetaQuad1, 0);
    EXPECT_EQ(item->m_nMetaQuad2, 0);
    EXPECT_EQ(item->m_nMetaFlag2, 0);
    EXPECT_EQ(item->m_nMetaWord, 0U);
    EXPECT_EQ(item->m_nMetaByte, 0);
    EXPECT_EQ(item->m_nFileTime, 0U);
    const auto allZero = [](const auto& field) {
        return std::all_of(std::begin(field), std::end(field), [](auto value) { return value == 0; });
    };
    EXPECT_TRUE(allZero(item->m_strURI));
    EXPECT_TRUE(allZero(item->m_strObject));
    EXPECT_TRUE(allZero(item->m_aReserved1));
    EXPECT_TRUE(allZero(item->m_szMetaText));
    EXPECT_TRUE(allZero(item->m_aMeta));
    EXPECT_TRUE(allZero(item->m_aReserved2));
    item->~CSFileListItem();
}

TEST(RecordLayout, AnyIntegerPassesThroughAFileType) {
    for (const int value : {-2147483647 - 1, -7, 4, 6, 2147483647}) {
        EXPECT_EQ(static_cast<int>(static_cast<eFileType>(value)), value);
    }
}

} // namespace
