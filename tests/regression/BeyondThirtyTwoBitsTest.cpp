// The story: on a 32-bit board the C library refuses to tell of a file whose size does not fit an off_t of 32 bits, or
// whose time does not fit such a time_t. What cannot be examined is not protected, so a movie that its owner had
// protected in 2040 read as unprotected, went with the next selection, and could not be protected anew. The library had
// asked for wide sizes and not for wide times.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <ostream>
#include <string>

#include "Scenario.h"

namespace dcftest {
namespace {

struct Kind {
    const char* name;
    off_t size;
    std::optional<std::time_t> time;
};

void PrintTo(const Kind& kind, std::ostream* out) {
    *out << kind.name;
}

class BeyondThirtyTwoBits : public FileListTest, public testing::WithParamInterface<Kind> {
protected:
    BeyondThirtyTwoBits() {
        card.AddFile(kDir, kName);
        EXPECT_EQ(::truncate(MoviePath().c_str(), GetParam().size), 0) << "sparse: it takes no room";
        card.SetMode(kDir, kName, 0444);
        if (GetParam().time) {
            SetTime(*GetParam().time);
        }
        EXPECT_EQ(List(), 1);
        EXPECT_EQ(list->GetFirst(&item), 0);
    }

    std::string MoviePath() const {
        return Path(kDir, kName);
    }

    void SetTime(std::time_t time) const {
        const timespec times[2] = {{time, 0}, {time, 0}};
        EXPECT_EQ(::utimensat(AT_FDCWD, MoviePath().c_str(), times, 0), 0);
    }

    static constexpr const char* kDir = "100ABCDE";
    static constexpr const char* kName = "KVR_0001.MP4";
    CSFileListItem item;
};

TEST_P(BeyondThirtyTwoBits, IsListedAsProtected) {
    EXPECT_EQ(item.m_strURI, MoviePath());
    EXPECT_TRUE(item.m_bProtect);
    struct stat status {};
    ASSERT_EQ(::stat(MoviePath().c_str(), &status), 0);
    ASSERT_EQ(status.st_size, GetParam().size);
#ifndef DCF_ENTRY_TIME_DIRENT
    EXPECT_EQ(item.m_nFileTime, static_cast<std::uint32_t>(status.st_mtime));
#endif
}

TEST_P(BeyondThirtyTwoBits, SurvivesADeletionByItself) {
    (void)list->Delete(&item);
    EXPECT_TRUE(card.Exists(kDir, kName));
    EXPECT_EQ(list->GetCount(), 1);
}

TEST_P(BeyondThirtyTwoBits, SurvivesTheDeletionOfASelection) {
    list->SetSel(0, true);
    (void)list->DeleteSel();
    EXPECT_TRUE(card.Exists(kDir, kName));
    EXPECT_EQ(list->GetCount(), 1);
}

TEST_P(BeyondThirtyTwoBits, CanBeUnprotectedProtectedAndDeleted) {
    EXPECT_EQ(list->SetProtect(&item, false), 0);
    EXPECT_EQ(card.Mode(kDir, kName), 0644U);
    list = std::make_unique<CSFileList>();
    EXPECT_EQ(list->SetBaseURI(card.Root().c_str()), 0);
    EXPECT_EQ(List(), 1);
    ASSERT_EQ(list->GetFirst(&item), 0);
    EXPECT_FALSE(item.m_bProtect);

    EXPECT_EQ(list->SetProtect(&item, true), 0);
    EXPECT_EQ(card.Mode(kDir, kName), 0444U);
    EXPECT_EQ(list->SetProtect(&item, false), 0);
    (void)list->Delete(&item);
    EXPECT_FALSE(card.Exists(kDir, kName));
}

constexpr off_t kGiB = off_t{1} << 30;
constexpr std::time_t kYear2040 = 2208988800;

INSTANTIATE_TEST_SUITE_P(Movie, BeyondThirtyTwoBits,
                         testing::Values(Kind{"OfThreeGiB", 3 * kGiB, {}}, Kind{"OfFiveGiB", 5 * kGiB, {}},
                                         Kind{"Of2040", 4096, kYear2040},
                                         Kind{"OfThreeGiBAnd2040", 3 * kGiB, kYear2040}),
                         [](const auto& kind) { return kind.param.name; });

} // namespace
} // namespace dcftest
