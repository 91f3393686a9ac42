// The operations on one path: what they do to the card, what they give back, and which calls they make in which order.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "Card.h"
#include "FakePlatform.h"
#include "PCSDCFFSIO.h"
#include "PosixSeam.h"

using dcftest::Card;
using dcftest::DcfName;
using dcftest::PosixSeam;

namespace {

using Texts = std::vector<std::string>;

class CardOperationsTest : public testing::Test {
protected:
    CardOperationsTest() {
        m_card.AddFile(kDir, kName);
        dcftest::FakePlatform::Get().Reset();
    }

    // Nothing here is worth a log line, and nothing is held between calls.
    void TearDown() override {
        EXPECT_TRUE(dcftest::FakePlatform::Get().Lines().empty());
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}), m_descriptors);
    }

    static constexpr const char* kDir = "100ABCDE";
    static constexpr const char* kName = "KVR_0001.JPG";
    Card m_card;
    const std::string m_dir = m_card.Path(kDir);
    const std::string m_file = m_card.Path(kDir, kName);
    const std::string m_missing = m_card.Path(kDir, "KVR_0002.JPG");

private:
    const std::ptrdiff_t m_descriptors = std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
};

/// A umask for one test.
class Umask {
public:
    explicit Umask(mode_t mask) : m_previous(::umask(mask)) {}
    ~Umask() {
        (void)::umask(m_previous);
    }
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;
    static mode_t Current() {
        const mode_t mask = ::umask(0);
        (void)::umask(mask);
        return mask;
    }

private:
    mode_t m_previous;
};

TEST_F(CardOperationsTest, ProtectionIsTheOwnerWriteBitAlone) {
    const struct {
        mode_t before;
        bool protect;
        mode_t after;
        const char* why;
    } rows[] = {
        {0644, true, 0444, "the usual file"},
        {0444, false, 0644, "the usual file, back again"},
        {0666, true, 0466, "only the owner's bit goes"},
        {0466, false, 0666, "only the owner's bit comes"},
        {0755, true, 0555, "execution bits stay"},
        {0444, true, 0444, "protected already"},
        {0644, false, 0644, "unprotected already"},
        {0000, false, 0200, "no other bit is added"},
        {0200, true, 0000, "no other bit is removed"},
        {0022, false, 0222, "group and others stay"},
        {04755, true, 04555, "special bits stay"},
        {01444, false, 01644, "special bits stay"},
    };
    for (const auto& row : rows) {
        m_card.SetMode(kDir, kName, row.before);
        EXPECT_EQ(PCSDCFFSIO::SetProtect(m_file.c_str(), row.protect), 0) << row.why;
        EXPECT_EQ(m_card.Mode(kDir, kName), row.after) << row.why;
        EXPECT_EQ(PCSDCFFSIO::IsProtect(m_file.c_str()), row.protect) << row.why;
    }
}

TEST_F(CardOperationsTest, SetProtectLooksChangesAndSyncs) {
    PosixSeam seam;
    EXPECT_EQ(PCSDCFFSIO::SetProtect(m_file.c_str(), true), 0);
    EXPECT_EQ(seam.Texts(), (Texts{"stat " + m_file, "chmod " + m_file + " 0444", "sync"}));
    seam.Forget();
    EXPECT_EQ(PCSDCFFSIO::SetProtect(m_file.c_str(), false), 0);
    EXPECT_EQ(seam.Texts(), (Texts{"stat " + m_file, "chmod " + m_file + " 0644", "sync"}));
}

TEST_F(CardOperationsTest, SetProtectOfAFileThatCannotBeExaminedChangesNothing) {
    for (const bool protect : {true, false}) {
        PosixSeam seam;
        EXPECT_EQ(PCSDCFFSIO::SetProtect(m_missing.c_str(), protect), -1);
        EXPECT_EQ(seam.Texts(), Texts{"stat " + m_missing});
        seam.Forget();
        seam.Fail("stat", EIO);
        EXPECT_EQ(PCSDCFFSIO::SetProtect(m_file.c_str(), protect), -1);
        EXPECT_EQ(seam.Texts(), Texts{"stat " + m_file});
    }
    EXPECT_EQ(m_card.Mode(kDir, kName), 0644U);
}

TEST_F(CardOperationsTest, SetProtectSyncsAlsoWhenTheChangeFailed) {
    PosixSeam seam;
    seam.Fail("chmod", EROFS);
    EXPECT_EQ(PCSDCFFSIO::SetProtect(m_file.c_str(), true), -1);
    EXPECT_EQ(seam.Texts(), (Texts{"stat " + m_file, "chmod " + m_file + " 0444", "sync"}));
    EXPECT_EQ(m_card.Mode(kDir, kName), 0644U);
}

TEST_F(CardOperationsTest, IsProtectLooksAtTheOwnerWriteBitAlone) {
    for (mode_t mode = 0; mode <= 0777; ++mode) {
        m_card.SetMode(kDir, kName, mode);
        ASSERT_EQ(PCSDCFFSIO::IsProtect(m_file.c_str()), (mode & 0200U) == 0) << std::oct << mode;
    }
}

TEST_F(CardOperationsTest, IsProtectAsksOnceAndTakesTheUnreadableForUnprotected) {
    m_card.SetMode(kDir, kName, 0444);
    PosixSeam seam;
    EXPECT_TRUE(PCSDCFFSIO::IsProtect(m_file.c_str()));
    EXPECT_EQ(seam.Texts(), Texts{"stat " + m_file});
    EXPECT_FALSE(PCSDCFFSIO::IsProtect(m_missing.c_str()));
    seam.Fail("stat", EIO);
    EXPECT_FALSE(PCSDCFFSIO::IsProtect(m_file.c_str()));
    EXPECT_FALSE(PCSDCFFSIO::IsProtect(""));
}

TEST_F(CardOperationsTest, RemoveFileUnlinksAFile) {
    PosixSeam seam;
    EXPECT_EQ(PCSDCFFSIO::RemoveFile(m_file.c_str()), 0);
    EXPECT_EQ(seam.Texts(), Texts{"unlink " + m_file});
    EXPECT_FALSE(m_card.Exists(kDir, kName));
}

TEST_F(CardOperationsTest, RemoveFileRemovesWhatCannotBeUnlinked) {
    m_card.AddDir("101ABCDE");
    const std::string folder = m_card.Path("101ABCDE");
    PosixSeam seam;
    EXPECT_EQ(PCSDCFFSIO::RemoveFile(folder.c_str()), 0);
    EXPECT_EQ(seam.Texts(), (Texts{"unlink " + folder, "remove " + folder}));
    EXPECT_FALSE(m_card.Exists("101ABCDE"));
    seam.Forget();
    seam.Fail("unlink", EIO);
    EXPECT_EQ(PCSDCFFSIO::RemoveFile(m_file.c_str()), 0);
    EXPECT_EQ(seam.Texts(), (Texts{"unlink " + m_file, "remove " + m_file}));
    EXPECT_FALSE(m_card.Exists(kDir, kName));
}

TEST_F(CardOperationsTest, RemoveFileReportsWhatStays) {
    PosixSeam seam;
    EXPECT_EQ(PCSDCFFSIO::RemoveFile(m_missing.c_str()), -1);
    EXPECT_EQ(seam.Texts(), (Texts{"unlink " + m_missing, "remove " + m_missing}));
    EXPECT_EQ(PCSDCFFSIO::RemoveFile(m_dir.c_str()), -1) << "a folder that is not empty";
    seam.FailFrom("unlink", EROFS);
    seam.FailFrom("remove", EROFS);
    EXPECT_EQ(PCSDCFFSIO::RemoveFile(m_file.c_str()), -1);
    EXPECT_TRUE(m_card.Exists(kDir, kName));
}

TEST_F(CardOperationsTest, MakeDirectoryGivesItsModeWhateverTheUmask) {
    for (const mode_t mask : {0000U, 0022U, 0027U, 0077U, 0777U}) {
        const std::string name = "2" + std::to_string(mask + 10000).substr(1) + "ABC";
        const std::string path = m_card.Path(name);
        const Umask umask(mask);
        EXPECT_EQ(PCSDCFFSIO::MakeDirectory(path.c_str()), 0);
        EXPECT_EQ(Umask::Current(), mask) << "restored";
        struct stat status {};
        ASSERT_EQ(::stat(path.c_str(), &status), 0);
        EXPECT_TRUE(S_ISDIR(status.st_mode));
        EXPECT_EQ(status.st_mode & 07777U, 0775U);
    }
}

TEST_F(CardOperationsTest, MakeDirectoryMakesItsCallsInOrder) {
    const std::string path = m_card.Path("101ABCDE");
    const Umask umask(0027);
    PosixSeam seam;
    EXPECT_EQ(PCSDCFFSIO::MakeDirectory(path.c_str()), 0);
    EXPECT_EQ(seam.Texts(), (Texts{"umask 0000", "mkdir " + path + " 0775", "umask 0027", "sync"}));
    seam.Forget();
    EXPECT_EQ(PCSDCFFSIO::MakeDirectory(path.c_str()), -1) << "it is there";
    EXPECT_EQ(seam.Texts(), (Texts{"umask 0000", "mkdir " + path + " 0775", "umask 0027"})) << "no sync";
    seam.Forget();
    seam.Fail("mkdir", ENOSPC);
    EXPECT_EQ(PCSDCFFSIO::MakeDirectory(m_card.Path("102ABCDE").c_str()), -1);
    EXPECT_EQ(seam.Count("sync"), 0);
    EXPECT_FALSE(m_card.Exists("102ABCDE"));
    EXPECT_EQ(Umask::Current(), 0027U);
}

TEST_F(CardOperationsTest, MakeDirectoryNeedsItsParent) {
    EXPECT_EQ(PCSDCFFSIO::MakeDirectory((m_card.Root() + "/no/parent").c_str()), -1);
    EXPECT_EQ(PCSDCFFSIO::MakeDirectory(""), -1);
}

TEST_F(CardOperationsTest, IsExistTellsWhetherThereIsAnything) {
    EXPECT_TRUE(PCSDCFFSIO::IsExist(m_file.c_str()));
    EXPECT_TRUE(PCSDCFFSIO::IsExist(m_dir.c_str()));
    EXPECT_FALSE(PCSDCFFSIO::IsExist(m_missing.c_str()));
    EXPECT_FALSE(PCSDCFFSIO::IsExist(""));
    PosixSeam seam;
    seam.Fail("stat", EACCES);
    EXPECT_FALSE(PCSDCFFSIO::IsExist(m_file.c_str()));
    EXPECT_EQ(seam.Texts(), Texts{"stat " + m_file});
}

TEST_F(CardOperationsTest, IsDirEmptyCountsEntriesWithoutLookingAtTheirNames) {
    m_card.AddDir("101EMPTY").AddDir("102SUBDI/x").AddFile("103HIDDE", ".hidden");
    EXPECT_FALSE(PCSDCFFSIO::IsDirEmpty(m_dir.c_str())) << "one file";
    EXPECT_TRUE(PCSDCFFSIO::IsDirEmpty(m_card.Path("101EMPTY").c_str())) << "the two dot entries alone";
    EXPECT_FALSE(PCSDCFFSIO::IsDirEmpty(m_card.Path("102SUBDI").c_str())) << "one folder";
    EXPECT_FALSE(PCSDCFFSIO::IsDirEmpty(m_card.Path("103HIDDE").c_str())) << "one hidden file";
    EXPECT_TRUE(PCSDCFFSIO::IsDirEmpty(m_card.Path("104NONE_").c_str())) << "cannot be opened";
    EXPECT_TRUE(PCSDCFFSIO::IsDirEmpty(m_file.c_str())) << "a file cannot be opened as a folder";
}

TEST_F(CardOperationsTest, IsDirEmptyReadsAtMostThreeEntriesAndCloses) {
    m_card.AddDir("101EMPTY").AddFiles(kDir, {DcfName(2), DcfName(3), DcfName(4)});
    for (const std::string& dir : {std::string(kDir), std::string("101EMPTY")}) {
        PosixSeam seam;
        EXPECT_EQ(PCSDCFFSIO::IsDirEmpty(m_card.Path(dir).c_str()), dir == "101EMPTY");
        EXPECT_EQ(seam.Texts(), (Texts{"opendir " + m_card.Path(dir), "readdir", "readdir", "readdir", "closedir"}));
    }
    PosixSeam seam;
    seam.Fail("opendir", EACCES);
    EXPECT_TRUE(PCSDCFFSIO::IsDirEmpty(m_dir.c_str()));
    EXPECT_EQ(seam.Texts(), Texts{"opendir " + m_dir});
}

TEST_F(CardOperationsTest, IsDirEmptyTakesAFailedReadForTheEnd) {
    for (int failing = 1; failing <= 3; ++failing) {
        PosixSeam seam;
        seam.FailFrom("readdir", EIO, failing);
        EXPECT_TRUE(PCSDCFFSIO::IsDirEmpty(m_dir.c_str()));
        EXPECT_GE(seam.Fired(), 1);
        EXPECT_EQ(seam.Count("closedir"), 1);
    }
}

TEST_F(CardOperationsTest, IsDirExistOpensAndCloses) {
    EXPECT_TRUE(PCSDCFFSIO::IsDirExist(m_dir.c_str()));
    EXPECT_FALSE(PCSDCFFSIO::IsDirExist(m_file.c_str()));
    EXPECT_FALSE(PCSDCFFSIO::IsDirExist(m_card.Path("101ABCDE").c_str()));
    PosixSeam seam;
    EXPECT_TRUE(PCSDCFFSIO::IsDirExist(m_dir.c_str()));
    EXPECT_EQ(seam.Texts(), (Texts{"opendir " + m_dir, "closedir"}));
    seam.Forget();
    seam.Fail("opendir", EMFILE);
    EXPECT_FALSE(PCSDCFFSIO::IsDirExist(m_dir.c_str()));
    EXPECT_EQ(seam.Texts(), Texts{"opendir " + m_dir});
}

} // namespace
