// The seam: untouched calls outside a scope; records, failures, power cuts and a fixed clock inside.
#include "PosixSeam.h"

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <thread>

#include "Card.h"
#include "ChildProcess.h"
#include "PCSDCFFSIO.h"

using dcftest::Card;
using dcftest::DcfName;
using dcftest::PosixSeam;

namespace {

using Texts = std::vector<std::string>;

int CountEntries(const std::string& path) {
    dirent** list = nullptr;
    const int count = scandir(path.c_str(), &list, nullptr, alphasort);
    for (int i = 0; i < count; ++i) {
        std::free(list[i]);
    }
    std::free(list);
    return count;
}

class PosixSeamTest : public testing::Test {
protected:
    PosixSeamTest() {
        m_card.AddFile("100ABCDE", DcfName(1));
    }

    const std::string& Dir() const {
        return m_dir;
    }
    const std::string& File() const {
        return m_file;
    }

    Card m_card;

private:
    std::string m_dir = m_card.Path("100ABCDE");
    std::string m_file = m_card.Path("100ABCDE", DcfName(1));
};

TEST_F(PosixSeamTest, EveryCallGoesThroughOutsideAScope) {
    struct stat status {};
    EXPECT_EQ(::stat(File().c_str(), &status), 0);
    EXPECT_EQ(CountEntries(Dir()), 3);
    EXPECT_EQ(::chmod(File().c_str(), 0400), 0);
    EXPECT_EQ(m_card.Mode("100ABCDE", DcfName(1)), 0400U);
    EXPECT_NE(std::time(nullptr), -1);
    EXPECT_EQ(::stat("/nowhere", &status), -1);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(PosixSeamTest, RecordsEveryKnownCallAndForwardsIt) {
    const std::string folder = m_card.Path("101NEW__");
    const std::string other = m_card.Path("102NEW__");
    struct stat status {};
    PosixSeam seam;
    EXPECT_EQ(CountEntries(Dir()), 3);
    DIR* dir = ::opendir(Dir().c_str());
    ASSERT_NE(dir, nullptr);
    EXPECT_NE(::readdir(dir), nullptr);
    EXPECT_EQ(::fstatat(::dirfd(dir), DcfName(1).c_str(), &status, 0), 0);
    EXPECT_TRUE(S_ISREG(status.st_mode));
    EXPECT_EQ(::closedir(dir), 0);
    const int fd = ::open(File().c_str(), O_RDONLY | O_CLOEXEC);
    EXPECT_GE(fd, 0);
    (void)::close(fd);
    EXPECT_EQ(::stat(File().c_str(), &status), 0);
    EXPECT_EQ(::chmod(File().c_str(), 0400), 0);
    const mode_t mask = ::umask(027);
    EXPECT_EQ(::umask(mask), 027U);
    EXPECT_EQ(::mkdir(folder.c_str(), 0700), 0);
    EXPECT_EQ(::rename(folder.c_str(), other.c_str()), 0);
    EXPECT_EQ(std::remove(other.c_str()), 0);
    EXPECT_EQ(::unlink(File().c_str()), 0);
    ::sync();
    EXPECT_EQ(::usleep(1), 0);
    const std::time_t now = std::time(nullptr);
    EXPECT_NE(std::localtime(&now), nullptr);

    const Texts expected = {"scandir " + Dir(),
                            "opendir " + Dir(),
                            "readdir",
                            "fstatat " + DcfName(1),
                            "closedir",
                            "open " + File(),
                            "stat " + File(),
                            "chmod " + File() + " 0400",
                            "umask 0027",
                            "umask " + seam.Calls()[9].argument,
                            "mkdir " + folder + " 0700",
                            "rename " + folder + " " + other,
                            "remove " + other,
                            "unlink " + File(),
                            "sync",
                            "usleep 1",
                            "time",
                            "localtime"};
    EXPECT_EQ(seam.Texts(), expected);
    EXPECT_EQ(seam.Changes(), 5);
    EXPECT_FALSE(m_card.Exists("100ABCDE", DcfName(1)));
    EXPECT_FALSE(m_card.Exists("102NEW__"));
    for (const std::string& name : PosixSeam::KnownNames()) {
        EXPECT_GE(seam.Count(name), 1) << name;
    }
}

TEST_F(PosixSeamTest, SeesTheCallsOfTheSharedLibrary) {
    PosixSeam seam;
    EXPECT_EQ(PCSDCFFSIO::SetProtect(File().c_str(), true), 0);
    EXPECT_EQ(seam.Texts(), (Texts{"stat " + File(), "chmod " + File() + " 0444", "sync"}));
    seam.Forget();
    seam.Fail("stat", EIO);
    EXPECT_FALSE(PCSDCFFSIO::IsExist(File().c_str()));
    EXPECT_TRUE(PCSDCFFSIO::IsExist(File().c_str()));
}

TEST_F(PosixSeamTest, FailsTheNthCallOnceWithoutDoingIt) {
    PosixSeam seam;
    seam.Fail("chmod", EROFS, 2);
    EXPECT_EQ(::chmod(File().c_str(), 0600), 0);
    EXPECT_EQ(::chmod(File().c_str(), 0400), -1);
    EXPECT_EQ(errno, EROFS);
    EXPECT_EQ(m_card.Mode("100ABCDE", DcfName(1)), 0600U);
    EXPECT_EQ(::chmod(File().c_str(), 0400), 0);
    EXPECT_EQ(seam.Fired(), 1);
    EXPECT_EQ(seam.Changes(), 2);
    EXPECT_EQ(seam.Count("chmod"), 3);
}

TEST_F(PosixSeamTest, FailsFromTheNthCallOnPersistently) {
    PosixSeam seam;
    seam.FailFrom("unlink", EIO, 2);
    EXPECT_EQ(::unlink("/nowhere"), -1);
    EXPECT_EQ(errno, ENOENT);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(::unlink(File().c_str()), -1);
        EXPECT_EQ(errno, EIO);
    }
    EXPECT_EQ(seam.Fired(), 3);
    EXPECT_TRUE(m_card.Exists("100ABCDE", DcfName(1)));
}

TEST_F(PosixSeamTest, FailsEveryCallThatReachesTheCardAsWhenItIsTakenOut) {
    PosixSeam seam;
    seam.FailFrom(PosixSeam::kEveryCardCall, ENODEV, 2);
    struct stat status {};
    EXPECT_EQ(0, stat(File().c_str(), &status)) << "the first one goes through";
    EXPECT_EQ(-1, stat(File().c_str(), &status));
    EXPECT_EQ(ENODEV, errno);
    EXPECT_EQ(nullptr, opendir(Dir().c_str()));
    EXPECT_EQ(-1, chmod(File().c_str(), 0600));
    EXPECT_EQ(-1, CountEntries(Dir()));
    EXPECT_NE(-1, time(nullptr)) << "the clock is not on the card";
    EXPECT_EQ(4, seam.Fired());
}

TEST_F(PosixSeamTest, EveryCallThatCanFailFailsAsItDoes) {
    struct stat status {};
    DIR* dir = ::opendir(Dir().c_str());
    ASSERT_NE(dir, nullptr);
    PosixSeam seam;
    for (const std::string& name : PosixSeam::KnownNames()) {
        seam.FailFrom(name, EIO);
    }
    dirent** list = nullptr;
    const std::time_t moment = 0;
    EXPECT_EQ(scandir(Dir().c_str(), &list, nullptr, nullptr), -1);
    EXPECT_EQ(::opendir(Dir().c_str()), nullptr);
    EXPECT_EQ(::readdir(dir), nullptr);
    EXPECT_EQ(::fstatat(AT_FDCWD, File().c_str(), &status, 0), -1);
    EXPECT_EQ(::open(File().c_str(), O_RDONLY), -1);
    EXPECT_EQ(::stat(File().c_str(), &status), -1);
    EXPECT_EQ(::chmod(File().c_str(), 0), -1);
    EXPECT_EQ(::unlink(File().c_str()), -1);
    EXPECT_EQ(std::remove(File().c_str()), -1);
    EXPECT_EQ(::rename(File().c_str(), "/nowhere/at/all"), -1);
    EXPECT_EQ(::mkdir(m_card.Path("101NEW__").c_str(), 0700), -1);
    EXPECT_EQ(::usleep(1), -1);
    EXPECT_EQ(std::time(nullptr), -1);
    EXPECT_EQ(std::localtime(&moment), nullptr);
    EXPECT_EQ(seam.Fired(), 14);
    errno = 0;
    EXPECT_EQ(::closedir(dir), -1);
    EXPECT_EQ(errno, EIO);
    EXPECT_EQ(seam.Changes(), 0);
}

TEST_F(PosixSeamTest, StopsWithItsScopeAndStandsAlone) {
    {
        PosixSeam seam;
        seam.FailFrom("stat", EIO);
        EXPECT_THROW(PosixSeam second, std::logic_error);
        EXPECT_FALSE(PCSDCFFSIO::IsExist(File().c_str()));
    }
    EXPECT_TRUE(PCSDCFFSIO::IsExist(File().c_str()));
    const PosixSeam seam;
    EXPECT_TRUE(seam.Calls().empty());
    EXPECT_TRUE(PCSDCFFSIO::IsExist(File().c_str()));
}

TEST_F(PosixSeamTest, LeavesOtherThreadsAlone) {
    PosixSeam seam;
    seam.FailFrom("stat", EIO);
    bool found = false;
    std::thread other([&] { found = PCSDCFFSIO::IsExist(File().c_str()); });
    other.join();
    EXPECT_TRUE(found);
    EXPECT_EQ(seam.Count("stat"), 0);
}

TEST_F(PosixSeamTest, RunsAnActionBeforeTheNthCallUnseen) {
    PosixSeam seam;
    seam.Before("stat", 2, [&] { (void)::unlink(File().c_str()); });
    EXPECT_TRUE(PCSDCFFSIO::IsExist(File().c_str()));
    EXPECT_FALSE(PCSDCFFSIO::IsExist(File().c_str()));
    EXPECT_FALSE(PCSDCFFSIO::IsExist(File().c_str()));
    EXPECT_EQ(seam.Texts(), (Texts(3, "stat " + File())));
}

TEST_F(PosixSeamTest, CutsThePowerBehindTheNthChange) {
    const dcftest::Ending ending = dcftest::RunInChild([&] {
        PosixSeam seam;
        seam.CutPowerAfterChange(2);
        (void)::chmod("/nowhere", 0600); // changes nothing
        (void)::chmod(File().c_str(), 0400);
        (void)::mkdir(m_card.Path("101NEW__").c_str(), 0755);
        (void)::mkdir(m_card.Path("102NEW__").c_str(), 0755);
    });
    EXPECT_EQ(ending.status, PosixSeam::kPowerCutStatus) << ending.Describe();
    EXPECT_EQ(m_card.Mode("100ABCDE", DcfName(1)), 0400U);
    EXPECT_TRUE(m_card.Exists("101NEW__"));
    EXPECT_FALSE(m_card.Exists("102NEW__"));
}

TEST_F(PosixSeamTest, FixesTheClock) {
    PosixSeam seam;
    seam.FixTime(86400);
    std::time_t now = 0;
    EXPECT_EQ(std::time(&now), 86400);
    EXPECT_EQ(now, 86400);
    EXPECT_EQ(std::localtime(&now)->tm_year, 70);
    std::tm christmas{};
    christmas.tm_mon = 11;
    christmas.tm_mday = 24;
    seam.FixLocalTime(christmas);
    EXPECT_EQ(std::localtime(&now)->tm_mday, 24);
    EXPECT_EQ(std::localtime(&now)->tm_mon, 11);
}

TEST_F(PosixSeamTest, SkipsSleepsOnRequest) {
    PosixSeam seam;
    seam.SkipSleeps();
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(::usleep(100000), 0);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(seam.Count("usleep"), 100);
}

TEST_F(PosixSeamTest, KeepsTheCallsOwnErrno) {
    PosixSeam seam;
    errno = 0;
    EXPECT_EQ(::rename("/nowhere/a", "/nowhere/b"), -1);
    EXPECT_EQ(errno, ENOENT);
    errno = EDOM;
    ::sync();
    EXPECT_EQ(errno, EDOM);
}

} // namespace
