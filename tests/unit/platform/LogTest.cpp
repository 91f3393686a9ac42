// The log of a workstation: where the lines go, what they look like, and that none is lost or mixed with another.
#include <dlog.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "TempFolder.h"

using dcftest::Contains;
using dcftest::Ending;
using dcftest::LinesOf;
using dcftest::ReadFile;
using dcftest::RunInChild;
using dcftest::SetVariable;
using dcftest::TempFolder;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;

namespace {

// As the library logs.
int LogAsLibrary(const char* message) {
    const std::string buffer = std::string("\033[m") + message + "\033[m\n";
    return __dlog_print(3, 4, "MM_FLIST", "%s: %s(%d) > %s", "CSFileList", "Listup", 12, buffer.c_str());
}

// The variable is read once per process, so every case runs in a process of its own.
Ending RunWithLog(const char* setting, const std::function<void()>& piece) {
    return RunInChild([&] {
        SetVariable("DCF_LOG", setting);
        piece();
    });
}

TEST(Log, IsSilentWhereTheVariableIsNotSet) {
    const Ending ending = RunWithLog(nullptr, [] { EXPECT_EQ(LogAsLibrary("start"), 0); });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.out, "");
    EXPECT_EQ(ending.err, "");
}

TEST(Log, AnEmptyVariableMeansSilence) {
    const Ending ending = RunWithLog("", [] { EXPECT_EQ(LogAsLibrary("start"), 0); });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.err, "");
}

TEST(Log, ALineHasTimeProcessThreadBufferPriorityTagAndText) {
    const TempFolder folder;
    const std::string file = folder / "log";
    const Ending ending = RunWithLog(file.c_str(), [] { EXPECT_GT(LogAsLibrary("start"), 0); });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();
    const std::regex expected(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z \d+/\d+ 3/4 )"
                              R"(MM_FLIST: CSFileList: Listup\(12\) > start\n)");
    EXPECT_TRUE(std::regex_match(ReadFile(file), expected)) << ReadFile(file);
}

TEST(Log, TheTimeIsUniversalWhateverTheZone) {
    const TempFolder folder;
    const std::string file = folder / "log";
    std::time_t before = std::time(nullptr);
    const Ending ending = RunWithLog(file.c_str(), [] {
        SetVariable("TZ", "Pacific/Kiritimati");
        LogAsLibrary("start");
    });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();
    const std::string line = ReadFile(file);
    std::tm written{};
    ASSERT_NE(strptime(line.c_str(), "%Y-%m-%dT%H:%M:%S", &written), nullptr) << line;
    EXPECT_GE(timegm(&written), before);
    EXPECT_LE(timegm(&written), std::time(nullptr));
}

TEST(Log, StandardErrorThatIsNoTerminalGetsNoEscapeSequences) {
    const Ending ending = RunWithLog("stderr", [] { LogAsLibrary("\033[1;31mred"); });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_THAT(LinesOf(ending.err), ElementsAre(EndsWith("MM_FLIST: CSFileList: Listup(12) > red")));
    EXPECT_FALSE(Contains(ending.err, "\033"));
}

TEST(Log, ATerminalGetsTheColourSequencesAndNoOthers) {
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(::grantpt(terminal), 0);
    ASSERT_EQ(::unlockpt(terminal), 0);
    const int other = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY);
    ASSERT_GE(other, 0);
    const Ending ending = RunWithLog("stderr", [other] {
        ASSERT_EQ(::dup2(other, STDERR_FILENO), STDERR_FILENO);
        LogAsLibrary("\033[1;31mred \033[2Jgone \033]0;title\a");
    });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();
    std::array<char, 1024> shown{};
    ASSERT_GT(::read(terminal, shown.data(), shown.size() - 1), 0);
    EXPECT_THAT(shown.data(), EndsWith("> \033[m\033[1;31mred gone \\x1b]0;title\\x07\033[m\r\n"));
    ::close(other);
    ::close(terminal);
}

TEST(Log, AFileGetsTheLinesWithoutEscapeSequencesBehindWhatItHeld) {
    const TempFolder folder;
    const std::string file = folder / "log";
    dcftest::WriteFile(file, "earlier\n");
    const Ending ending = RunWithLog(file.c_str(), [] {
        LogAsLibrary("start");
        LogAsLibrary("end");
    });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_THAT(LinesOf(ReadFile(file)), ElementsAre("earlier", EndsWith("> start"), EndsWith("> end")));
    EXPECT_FALSE(Contains(ReadFile(file), "\033"));
    EXPECT_EQ(ending.err, "");
}

TEST(Log, ANewFileIsItsOwnersAlone) {
    const TempFolder folder;
    const std::string file = folder / "log";
    const Ending ending = RunWithLog(file.c_str(), [] {
        ::umask(0); // as the library has it for a moment while it makes a folder
        LogAsLibrary("start");
    });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();
    struct stat status {};
    ASSERT_EQ(::stat(file.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
}

TEST(Log, ALinkIsNotFollowed) {
    const TempFolder folder;
    const std::string link = folder / "log";
    for (const std::string& target : {folder / "held", folder / "missing"}) { // a file of the user's; one to be made
        dcftest::WriteFile(folder / "held", "the user's\n");
        ASSERT_EQ(::symlink(target.c_str(), link.c_str()), 0);
        const Ending ending = RunWithLog(link.c_str(), [] { EXPECT_EQ(LogAsLibrary("start"), 0); });
        EXPECT_TRUE(ending.Completed()) << ending.Describe();
        EXPECT_EQ(ending.err,
                  "dcfplatform-host: no log: \"" + link + "\", named by DCF_LOG, cannot be opened: it is a link\n");
        EXPECT_EQ(ReadFile(folder / "held"), "the user's\n");
        EXPECT_NE(::access((folder / "missing").c_str(), F_OK), 0);
        ASSERT_EQ(::unlink(link.c_str()), 0);
    }
}

TEST(Log, ALinkedFolderOnTheWayToTheFileIsTheUsersOwnAffair) {
    const TempFolder folder;
    ASSERT_EQ(::mkdir((folder / "real").c_str(), 0700), 0);
    ASSERT_EQ(::symlink("real", (folder / "link").c_str()), 0);
    const Ending ending = RunWithLog((folder / "link/log").c_str(), [] { EXPECT_GT(LogAsLibrary("start"), 0); });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_THAT(ReadFile(folder / "real/log"), EndsWith("> start\n"));
}

TEST(Log, WhatAFileNameHoldsCannotMakeALineOfItsOwn) {
    const TempFolder folder;
    const std::string file = folder / "log";
    const Ending ending = RunWithLog(file.c_str(), [] { LogAsLibrary("A\nB\rC\tD\177E\033"); });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_THAT(LinesOf(ReadFile(file)), ElementsAre(EndsWith("> A\\x0aB\\x0dC\tD\\x7fE\\x1b")));
}

TEST(Log, EveryLineIsOneWrite) {
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends), 0); // keeps writes apart
    const Ending ending = RunWithLog("stderr", [&ends] {
        ASSERT_EQ(::dup2(ends[1], STDERR_FILENO), STDERR_FILENO);
        LogAsLibrary("first");
        LogAsLibrary("second");
    });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();
    ::close(ends[1]);
    std::vector<std::string> writes;
    std::array<char, 8192> packet{};
    for (ssize_t size = 0; (size = ::read(ends[0], packet.data(), packet.size())) > 0;) {
        writes.emplace_back(packet.data(), static_cast<std::size_t>(size));
    }
    EXPECT_THAT(writes, ElementsAre(EndsWith("> first\n"), EndsWith("> second\n")));
    ::close(ends[0]);
}

TEST(Log, ALineThatWouldNotStayWholeInAPipeIsCut) {
    const TempFolder folder;
    const std::string file = folder / "log";
    const Ending ending = RunWithLog(file.c_str(), [] {
        LogAsLibrary(std::string(10000, 'x').c_str());
        LogAsLibrary("after");
    });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();
    const std::vector<std::string> lines = LinesOf(ReadFile(file));
    ASSERT_THAT(lines, ElementsAre(EndsWith("xxx..."), EndsWith("> after")));
    EXPECT_GT(lines[0].size(), 4000U);
    EXPECT_LT(lines[0].size(), 4096U);
}

TEST(Log, AMissingTagIsShownAsADash) {
    const Ending ending = RunWithLog("stderr", [] { __dlog_print(1, 2, nullptr, "text %d", 7); });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_THAT(ending.err, EndsWith(" 1/2 -: text 7\n"));
}

TEST(Log, LeavesErrnoAlone) {
    const Ending ending = RunWithLog("/nowhere/at/all", [] {
        errno = EDOM;
        LogAsLibrary("start");
        EXPECT_EQ(errno, EDOM);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
}

TEST(Log, AFileThatCannotBeOpenedCostsOneLineAndNoMore) {
    const TempFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::map<std::string, std::string> cases = {
        {folder / "missing/log", "No such file or directory"}, // the folder is not there
        {folder.Path(), "Is a directory"},
        {pipe, "No such device or address"}, // nobody reads it, and nobody may be waited for
        {"/proc/version/log", "Not a directory"},
    };
    for (const auto& [setting, cause] : cases) {
        const Ending ending = RunWithLog(setting.c_str(), [] {
            for (int i = 0; i < 3; ++i) {
                EXPECT_EQ(LogAsLibrary("start"), 0);
            }
        });
        EXPECT_TRUE(ending.Completed()) << ending.Describe();
        EXPECT_EQ(ending.err,
                  "dcfplatform-host: no log: \"" + setting + "\", named by DCF_LOG, cannot be opened: " + cause + "\n");
    }
}

TEST(Log, AFullDiskLosesLinesAndNothingElse) {
    const Ending ending = RunWithLog("/dev/full", [] { EXPECT_EQ(LogAsLibrary("start"), -1); });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.err, "");
}

TEST(Log, TheFileNeverBecomesAStandardStream) {
    const TempFolder folder;
    const std::string file = folder / "log";
    const Ending ending = RunWithLog(file.c_str(), [] {
        ::close(STDIN_FILENO);
        ::close(STDERR_FILENO);
        LogAsLibrary("start");
        EXPECT_EQ(::fcntl(STDIN_FILENO, F_GETFD), -1);
        EXPECT_EQ(::fcntl(STDERR_FILENO, F_GETFD), -1);
    });
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_THAT(LinesOf(ReadFile(file)), ElementsAre(EndsWith("> start")));
}

TEST(Log, SyslogGetsTheLineWithoutEscapeSequences) {
    const Ending ending = RunWithLog("syslog", [] {
        // A /dev of this process's own, with a log service in it. Its outputs are open already.
        if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount("tmpfs", "/dev", "tmpfs", 0, nullptr) != 0) {
            dcftest::RefuseInChild(std::strerror(errno));
        }
        const int service = ::socket(AF_UNIX, SOCK_DGRAM, 0);
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::strcpy(address.sun_path, "/dev/log");
        ASSERT_EQ(::bind(service, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
        EXPECT_GT(LogAsLibrary("start"), 0);
        std::array<char, 1024> message{};
        ASSERT_GT(::recv(service, message.data(), message.size() - 1, 0), 0);
        EXPECT_THAT(message.data(), ::testing::StartsWith("<14>")); // user, information
        EXPECT_THAT(message.data(), EndsWith(": MM_FLIST: CSFileList: Listup(12) > start"));
    });
    if (ending.refused) {
        GTEST_SKIP() << "no private mounts: " << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.err, "");
}

TEST(Log, SyslogThatIsNotThereIsNoTrouble) {
    const Ending ending = RunWithLog("syslog", [] {
        if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount("tmpfs", "/dev", "tmpfs", 0, nullptr) != 0) {
            dcftest::RefuseInChild(std::strerror(errno));
        }
        LogAsLibrary("start");
    });
    if (ending.refused) {
        GTEST_SKIP() << "no private mounts: " << ending.err;
    }
    EXPECT_TRUE(ending.Completed()) << ending.Describe();
    EXPECT_EQ(ending.err, "");
}

TEST(LogConcurrency, ThreadsOfConcurrentProcessesLoseAndMixNoLine) {
    constexpr int kProcesses = 4;
    constexpr int kThreads = 4;
    constexpr int kLines = 250;
    const TempFolder folder;
    const std::string file = folder / "log";
    const auto logMany = [](int process) {
        std::vector<std::thread> threads;
        for (int thread = 0; thread < kThreads; ++thread) {
            threads.emplace_back([process, thread] {
                for (int line = 0; line < kLines; ++line) {
                    const std::string padding(static_cast<std::size_t>(line), 'x');
                    LogAsLibrary(("<" + std::to_string(process) + " " + std::to_string(thread) + " " +
                                  std::to_string(line) + " " + padding + ">")
                                     .c_str());
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
    };
    const Ending ending = RunWithLog(file.c_str(), [&] {
        for (int process = 0; process < kProcesses; ++process) {
            if (::fork() == 0) {
                logMany(process);
                ::_exit(0);
            }
        }
        for (int process = 0; process < kProcesses; ++process) {
            int status = 0;
            EXPECT_GT(::wait(&status), 0);
            EXPECT_EQ(status, 0);
        }
    });
    ASSERT_TRUE(ending.Completed()) << ending.Describe();

    const std::regex whole(R"(.*Z \d+/\d+ 3/4 MM_FLIST: CSFileList: Listup\(12\) > <(\d) (\d) (\d+) (x*)>)");
    std::map<std::pair<std::string, std::string>, int> next; // every thread's lines come in its own order
    for (const std::string& line : LinesOf(ReadFile(file))) {
        std::smatch parts;
        ASSERT_TRUE(std::regex_match(line, parts, whole)) << line;
        int& expected = next[{parts[1], parts[2]}];
        EXPECT_EQ(std::stoi(parts[3]), expected);
        EXPECT_EQ(parts[4].length(), expected);
        ++expected;
    }
    EXPECT_EQ(next.size(), std::size_t{kProcesses} * kThreads);
    for (const auto& [thread, lines] : next) {
        EXPECT_EQ(lines, kLines) << thread.first << " " << thread.second;
    }
}

} // namespace
