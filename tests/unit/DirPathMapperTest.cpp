// The registry of directory paths and its rule for directories that share a number.
#include <gtest/gtest.h>

#include <string>

#include "CSDCFList.h"

namespace {

class DirPathMapperTest : public testing::Test {
protected:
    DirPathMapperTest() {
        m_mapper.clear();
    }

    DirPathMapper& m_mapper = *DirPathMapper::getInstance();
};

TEST_F(DirPathMapperTest, IsOneForTheProcess) {
    ASSERT_NE(DirPathMapper::getInstance(), nullptr);
    EXPECT_EQ(DirPathMapper::getInstance(), &m_mapper);
    EXPECT_EQ(DirPathMapper::m_pInstance, &m_mapper);
}

TEST_F(DirPathMapperTest, KeepsOnePathPerNumber) {
    m_mapper.add(100, "/card/DCIM/100ABCDE");
    m_mapper.add(99, "/card/DCIM/Camera");
    EXPECT_EQ(m_mapper.getPath(100), "/card/DCIM/100ABCDE");
    EXPECT_EQ(m_mapper.getPath(99), "/card/DCIM/Camera");
    m_mapper.add(100, "/card/DCIM/100PHOTO");
    EXPECT_EQ(m_mapper.getPath(100), "/card/DCIM/100PHOTO") << "the later one replaces the earlier";
    EXPECT_EQ(m_mapper.m_mapPath.size(), 2U);
}

TEST_F(DirPathMapperTest, EntersAnUnknownNumberWithAnEmptyPath) {
    EXPECT_EQ(m_mapper.getPath(321), "");
    ASSERT_EQ(m_mapper.m_mapPath.count(321), 1U);
    EXPECT_EQ(m_mapper.m_mapPath.at(321), "");
}

TEST_F(DirPathMapperTest, ForgetsEverythingOnClear) {
    m_mapper.add(100, "/card/DCIM/100ABCDE");
    m_mapper.clear();
    EXPECT_TRUE(m_mapper.m_mapPath.empty());
    EXPECT_EQ(m_mapper.getPath(100), "");
}

TEST_F(DirPathMapperTest, LetsAFurtherDirectoryInUnlessThePhotoFolderIsRegistered) {
    const struct {
        const char* registered;
        bool possible;
        const char* why;
    } rows[] = {
        {"/card/DCIM/100ABCDE", true, "another suffix"},
        {"/card/DCIM/100PHOTO", false, "the photo folder"},
        {"/card/DCIM/100photo", true, "case-sensitive"},
        {"/card/DCIM/100XPHOTO", false, "anywhere in the name"},
        {"/PHOTO/DCIM/100ABCDE", false, "anywhere in the path"},
        {"/card/DCIM/100PHOT", true, "not the whole text"},
        {"", true, "entered by a question"},
    };
    for (const auto& row : rows) {
        m_mapper.clear();
        EXPECT_TRUE(m_mapper.isPossibleAddDirnum(100, "/card/DCIM/100PHOTO")) << "nothing is registered";
        m_mapper.add(100, row.registered);
        for (const char* path : {"/card/DCIM/100PHOTO", "/card/DCIM/100ABCDE", ""}) {
            EXPECT_EQ(m_mapper.isPossibleAddDirnum(100, path), row.possible) << row.registered << ": " << row.why;
        }
        EXPECT_TRUE(m_mapper.isPossibleAddDirnum(101, "/card/DCIM/100PHOTO")) << "each number for itself";
        EXPECT_EQ(m_mapper.m_mapPath.size(), 1U) << "the question enters nothing";
    }
}

} // namespace
