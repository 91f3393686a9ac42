// The text of a file type.
#include <gtest/gtest.h>

#include <string>

#include "CSDCFItemList.h"

namespace {

TEST(FileType, HasTheUpperCaseExtensionAsItsText) {
    const struct {
        int type;
        const char* text;
        const char* why;
    } rows[] = {
        {0, "JPG", "still picture"},
        {1, "SRW", "raw picture"},
        {2, "MPO", "multi-picture file"},
        {3, "MP4", "movie"},
        {5, "AVI", "movie"},
        {4, "", "a value that is never produced"},
        {-1, "", "no type"},
        {6, "", "beyond the last"},
        {-2, "", "any other value"},
        {2147483647, "", "any other value"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(fileTypeToString(static_cast<eFileType>(row.type)), row.text) << row.type << ": " << row.why;
    }
}

TEST(FileType, EachTextIsANewString) {
    std::string first = fileTypeToString(FILE_TYPE_JPG);
    first[0] = 'X';
    EXPECT_EQ(fileTypeToString(FILE_TYPE_JPG), "JPG");
}

} // namespace
