// The child process in which pictures are decoded, with a decoder that does the worst. No picture costs more than
// itself.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Thumbnail.h"

using dcfctl::ThumbnailReader;
using namespace std::chrono_literals;

namespace dcfctl {

/// Does what the name of the picture says.
PictureHead DecodeHead(const std::string& path) {
    if (path == "crash") {
        std::abort();
    }
    if (path == "hang") {
        for (;;) {
            pause();
        }
    }
    if (path == "exit") {
        _exit(0);
    }
    if (path == "throw") {
        throw std::runtime_error("no picture");
    }
    if (path == "print") {
        (void)!write(STDOUT_FILENO, "noise", 5); // goes nowhere
        (void)!write(STDERR_FILENO, "noise", 5);
    }
    if (path == "descriptors") {
        int open = 0;
        for (int fd = 0; fd < 1000; ++fd) {
            open += fcntl(fd, F_GETFD) >= 0 ? 1 : 0;
        }
        return {std::to_string(open), ""};
    }
    if (path == "process") {
        return {std::to_string(getpid()), ""};
    }
    return {"thumbnail of " + path, "date"};
}

std::string DecodeScaled(const std::string& path, int side) {
    std::vector<std::unique_ptr<char[]>> all;
    if (path == "devour") {
        for (;;) { // never touched, so that it is the limit that ends it and not the machine
            all.emplace_back(new char[64U << 20U]);
        }
    }
    return path == "giant" ? std::string(100U << 20U, 'x') : path + " " + std::to_string(side);
}

} // namespace dcfctl

namespace {

TEST(ThumbnailChild, AnswersForManyPictures) {
    ThumbnailReader reader;
    const std::string process = reader.Head("process").thumbnail;
    EXPECT_NE(process, std::to_string(getpid()));
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(reader.Head("a").thumbnail, "thumbnail of a");
        EXPECT_EQ(reader.Head("a").date, "date");
        EXPECT_EQ(reader.Made("b", 7), "b 7");
    }
    EXPECT_EQ(reader.Head("process").thumbnail, process) << "one child for all of them";
}

TEST(ThumbnailChild, ThatEndsOverAPictureIsFollowedByAnother) {
    ThumbnailReader reader;
    for (const char* bad : {"crash", "exit", "throw"}) {
        EXPECT_EQ(reader.Head(bad).thumbnail, "") << bad;
        EXPECT_EQ(reader.Head("good").thumbnail, "thumbnail of good") << bad;
    }
}

TEST(ThumbnailChild, ThatNeverEndsIsEnded) {
    ThumbnailReader reader(50ms);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(reader.Head("hang").thumbnail, "");
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    ThumbnailReader patient;
    EXPECT_EQ(patient.Head("good").thumbnail, "thumbnail of good");
}

TEST(ThumbnailChild, MayNotDevourTheMemoryNorSendMoreThanAThumbnail) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(__clang__)
    GTEST_SKIP() << "a sanitizer needs the memory itself";
#else
    ThumbnailReader reader;
    EXPECT_EQ(reader.Made("devour", 1), "");
    EXPECT_EQ(reader.Made("giant", 1), "");
    EXPECT_EQ(reader.Made("good", 1), "good 1");
#endif
}

TEST(ThumbnailChild, HoldsNothingOpenAndPrintsNothing) {
    const int file = open("/dev/null", O_RDONLY);
    ASSERT_GE(file, 0);
    ThumbnailReader reader;
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_EQ(reader.Head("descriptors").thumbnail, "4") << "the three streams and the socket";
    EXPECT_EQ(reader.Head("print").thumbnail, "thumbnail of print");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    close(file);
}

TEST(ThumbnailChild, IsGoneWithItsReader) {
    pid_t child = -1;
    {
        ThumbnailReader reader;
        child = static_cast<pid_t>(std::stol(reader.Head("process").thumbnail));
        EXPECT_EQ(kill(child, 0), 0);
    }
    EXPECT_EQ(kill(child, 0), -1);
}

} // namespace
