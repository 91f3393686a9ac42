// Protection under the mount options that let it reach the card, and under those that take it and do nothing.
#include <fcntl.h>
#include <linux/msdos_fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "MountedCard.h"

namespace dcftest {
namespace {

/// A mount, and the modes of a picture under it.
struct MountRow {
    const char* options;
    mode_t ordinary;
    mode_t readOnly;
    bool fatAlone = false; ///< exFAT has no such option.
};

std::ostream& operator<<(std::ostream& out, const MountRow& row) {
    return out << (*row.options != '\0' ? row.options : "no options");
}

// What the mask leaves of the write bits is the owner's alone.
const MountRow kHolding[] = {
    {"", 0755, 0555},
    {"fmask=0022", 0755, 0555},
    {"umask=022", 0755, 0555},
    {"fmask=0133,dmask=0022", 0644, 0444},
    {"fmask=0177", 0600, 0400},
    {"umask=077", 0700, 0500},
    {"fmask=0022,showexec", 0644, 0444, true},
    {"quiet", 0755, 0555, true},
    {"rodir", 0755, 0555, true},
};

// The driver sees a request for some of the write bits, which it answers with success and forgets.
const MountRow kForgetting[] = {
    {"umask=0", 0777, 0555},
    {"fmask=0111,dmask=0", 0666, 0444},
    {"umask=002", 0775, 0555},
    {"umask=020", 0757, 0555},
    {"fmask=0113", 0664, 0444},
    {"umask=0,quiet", 0777, 0555, true},
    {"umask=0,rodir", 0777, 0555, true},
};

/// Whether the driver itself can end the protection of a file that it has read from the card as protected. The exFAT of
/// Linux 6.1 forgets that, FAT does not.
bool DriverEndsProtection(const Card& card, const std::function<void()>& reinsert) {
    const std::string path = card.Root() + "/probe";
    const auto require = [](bool done) {
        if (!done) {
            throw std::system_error(errno, std::generic_category(), "probe");
        }
    };
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    require(fd >= 0 && ::close(fd) == 0);
    struct stat status {};
    require(::stat(path.c_str(), &status) == 0);
    const mode_t writable = status.st_mode & 07777U;
    require(::chmod(path.c_str(), writable & ~0222U) == 0);
    reinsert();
    require(::chmod(path.c_str(), writable) == 0);
    reinsert();
    require(::stat(path.c_str(), &status) == 0 && ::unlink(path.c_str()) == 0);
    return (status.st_mode & 07777U) == writable;
}

class MountProtection : public MountedCardTest, public testing::WithParamInterface<MountRow> {
protected:
    void SetUp() override {
        MountedCardTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        if (GetParam().fatAlone && !IsFat()) {
            EXPECT_THROW(Mount(GetParam().options), std::system_error) << "there is such an option by now";
            notForThis = true;
            return;
        }
        Mount(GetParam().options);
        card->AddFiles("100ABCDE", {DcfName(2), DcfName(2, "SRW"), DcfName(1)});
        ASSERT_EQ(List(), 2);
    }

    mode_t ModeOf(int number, const std::string& extension = "JPG") const {
        return card->Mode("100ABCDE", DcfName(number, extension));
    }

    /// As after the card was taken out and put in again.
    void Reinsert() {
        Mount(GetParam().options);
        ASSERT_EQ(List(), 2);
    }

    bool notForThis = false; ///< The mount is refused, which was seen.
};

class HoldingMount : public MountProtection {};
class ForgettingMount : public MountProtection {};

TEST_P(HoldingMount, KeepsProtectionOfFileAndCompanionOnTheCard) {
    if (notForThis) {
        return;
    }
    CSFileListItem item = ItemOf(0);
    EXPECT_EQ(ModeOf(2), GetParam().ordinary);
    EXPECT_EQ(list->SetProtect(&item, true), 0);
    Reinsert();
    EXPECT_EQ(ModeOf(2), GetParam().readOnly);
    EXPECT_EQ(ModeOf(2, "SRW"), GetParam().readOnly);
    EXPECT_EQ(ModeOf(1), GetParam().ordinary);
    EXPECT_TRUE(Protected(0));
    EXPECT_FALSE(Protected(1));

    item = ItemOf(0);
    EXPECT_EQ(list->Delete(&item), -1);
    EXPECT_TRUE(card->Exists("100ABCDE", DcfName(2)));
}

TEST_P(HoldingMount, EndsProtectionOfWhatWasProtectedUnderIt) {
    if (notForThis) {
        return;
    }
    CSFileListItem item = ItemOf(0);
    EXPECT_EQ(list->SetProtect(&item, true), 0);
    EXPECT_EQ(ModeOf(2), GetParam().readOnly);
    EXPECT_EQ(list->SetProtect(&item, false), 0);
    Reinsert();
    EXPECT_EQ(ModeOf(2), GetParam().ordinary);
    EXPECT_EQ(ModeOf(2, "SRW"), GetParam().ordinary);
    EXPECT_FALSE(Protected(0));
    item = ItemOf(0);
    EXPECT_EQ(list->Delete(&item), 0);
    EXPECT_EQ(card->Names("100ABCDE"), (Texts{DcfName(1)}));
}

TEST_P(HoldingMount, EndsProtectionFromAnEarlierMountAsFarAsTheDriverDoes) {
    if (notForThis) {
        return;
    }
    const bool lasts = DriverEndsProtection(*card, [&] { Mount(GetParam().options); });
    EXPECT_TRUE(lasts || !IsFat());
    ASSERT_EQ(List(), 2);
    CSFileListItem item = ItemOf(0);
    EXPECT_EQ(list->SetProtect(&item, true), 0);
    Reinsert();
    item = ItemOf(0);
    EXPECT_EQ(list->SetProtect(&item, false), 0);
    EXPECT_EQ(ModeOf(2), GetParam().ordinary) << "until the kernel forgets the file";
    Reinsert();
    EXPECT_EQ(ModeOf(2), lasts ? GetParam().ordinary : GetParam().readOnly);
    EXPECT_EQ(Protected(0), !lasts);
}

TEST_P(ForgettingMount, TakesProtectionAndForgetsIt) {
    if (notForThis) {
        return;
    }
    CSFileListItem item = ItemOf(0);
    EXPECT_EQ(list->SetProtect(&item, true), 0);
    EXPECT_TRUE(Protected(0)) << "the list believes it";
    EXPECT_EQ(ModeOf(2), GetParam().ordinary) << "nothing happened";
    Reinsert();
    EXPECT_EQ(ModeOf(2), GetParam().ordinary);
    EXPECT_FALSE(Protected(0));
}

TEST_P(ForgettingMount, ShowsProtectionFromElsewhereAndCannotEndIt) {
    if (notForThis) {
        return;
    }
    Mount("");
    card->SetMode("100ABCDE", DcfName(2), 0555);
    Reinsert();
    EXPECT_EQ(ModeOf(2), GetParam().readOnly);
    EXPECT_TRUE(Protected(0));
    CSFileListItem item = ItemOf(0);
    EXPECT_EQ(list->SetProtect(&item, false), 0);
    EXPECT_FALSE(Protected(0)) << "the list believes it";
    Reinsert();
    EXPECT_EQ(ModeOf(2), GetParam().readOnly) << "nothing happened";
    EXPECT_TRUE(Protected(0));
}

INSTANTIATE_TEST_SUITE_P(Mounts, HoldingMount, testing::ValuesIn(kHolding));
INSTANTIATE_TEST_SUITE_P(Mounts, ForgettingMount, testing::ValuesIn(kForgetting));

class ProtectedFile : public MountedCardTest {
protected:
    /// File 2 is protected, 1 is not.
    void ListTwo() {
        card->AddFiles("100ABCDE", {DcfName(2), DcfName(1)});
        ASSERT_EQ(List(), 2);
        CSFileListItem item = ItemOf(0);
        ASSERT_EQ(list->SetProtect(&item, true), 0);
    }
};

TEST_F(ProtectedFile, HasTheReadOnlyAttributeThatOtherSystemsShow) {
    ListTwo();
    Mount("");
    for (const auto& [number, expected] : {std::pair(2, ATTR_RO), std::pair(1, 0)}) {
        const int fd = ::open(card->Path("100ABCDE", DcfName(number)).c_str(), O_RDONLY | O_CLOEXEC);
        ASSERT_GE(fd, 0);
        std::uint32_t attributes = 0;
        const int result = ::ioctl(fd, FAT_IOCTL_GET_ATTRIBUTES, &attributes);
        const int error = errno;
        (void)::close(fd);
        if (!IsFat() && result != 0) {
            EXPECT_EQ(error, ENOTTY) << "exFAT has no such call before Linux 6.4";
            continue;
        }
        EXPECT_EQ(result, 0);
        EXPECT_EQ(attributes & ATTR_RO, static_cast<std::uint32_t>(expected)) << number;
    }
}

TEST_F(ProtectedFile, IsPassedOverByASetDeletion) {
    ListTwo();
    list->SetSel(0, true);
    list->SetSel(1, true);
    EXPECT_EQ(list->DeleteSel(), 0);
    Mount("");
    EXPECT_EQ(card->Names("100ABCDE"), (Texts{DcfName(2)}));
}

TEST_F(ProtectedFile, DoesNotStopRootFromRemovingIt) {
    ListTwo();
    EXPECT_EQ(::unlink(card->Path("100ABCDE", DcfName(2)).c_str()), 0);
}

TEST_F(ProtectedFile, GoesWithADeletionOfEverything) {
    ListTwo();
    EXPECT_EQ(list->DeleteAll(), 0);
    Mount("");
    EXPECT_EQ(card->DirNames(), Texts{});
}

TEST_F(ProtectedFile, CanBeUnprotectedTogetherWithAllOthers) {
    ListTwo();
    EXPECT_EQ(list->SetProtectAll(true), 0);
    Mount("");
    ASSERT_EQ(List(), 2);
    EXPECT_TRUE(Protected(0) && Protected(1));
    EXPECT_EQ(list->SetProtectAll(false), 0);
    ASSERT_EQ(List(), 2);
    EXPECT_FALSE(Protected(0) || Protected(1));
    EXPECT_EQ(card->Mode("100ABCDE", DcfName(1)), 0755U);
}

TEST_F(ProtectedFile, IsFlippedInASelection) {
    ListTwo();
    list->SetSel(0, true);
    list->SetSel(1, true);
    EXPECT_EQ(list->SetProtectSelToggle(), 0);
    Mount("");
    ASSERT_EQ(List(), 2);
    EXPECT_FALSE(Protected(0));
    EXPECT_TRUE(Protected(1));
}

} // namespace
} // namespace dcftest
