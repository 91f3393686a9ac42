// What the tests of the EXIF collector share: a file with given bytes, and what the collector says to it.
#ifndef TESTS_EXIF_COLLECTED_H
#define TESTS_EXIF_COLLECTED_H

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "DcfExif.h"
#include "ExifBuilder.h"

namespace dcftest {

/// The bytes with which a record is filled beforehand, to see what is written.
inline constexpr int kMark = 0x5a;

struct Collected {
    int result = 0;
    PhotoInfo info = {};
    bool untouched = false; ///< The record was left as it was.

    /// The named fields; the test fails when there are none.
    [[nodiscard]] DcfExifInfo Fields() const {
        DcfExifInfo fields = {};
        EXPECT_EQ(result, DCF_EXIF_OK);
        EXPECT_TRUE(DcfExifRead(info, &fields));
        return fields;
    }
    /// Refused, with nothing done.
    [[nodiscard]] bool Refused(int wanted) const {
        return result == wanted && untouched;
    }
};

inline Collected CollectFrom(std::string path) {
    Collected collected;
    std::memset(static_cast<void*>(&collected.info), kMark, sizeof collected.info);
    const std::string before(reinterpret_cast<const char*>(&collected.info), sizeof collected.info);
    collected.result = CollectExif(path.data(), &collected.info);
    collected.untouched = std::memcmp(&collected.info, before.data(), before.size()) == 0;
    return collected;
}

/// A file whose bytes change from one look at it to the next: thousands of times, so it lives in memory.
class ExifTest : public testing::Test {
protected:
    ExifTest() : m_fd(memfd_create("picture", MFD_CLOEXEC)) {
        EXPECT_GE(m_fd, 0);
    }
    ~ExifTest() override {
        close(m_fd);
    }

    [[nodiscard]] Collected Collect(const std::string& bytes) {
        Resize(0);
        EXPECT_EQ(pwrite(m_fd, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
        return CollectFrom(Path());
    }
    [[nodiscard]] Collected CollectJpeg(const ExifBuilder& exif) {
        return Collect(JpegWithExif(exif.Build()));
    }
    void Resize(off_t size) {
        EXPECT_EQ(ftruncate(m_fd, size), 0);
    }
    [[nodiscard]] std::string Path() const {
        return "/proc/self/fd/" + std::to_string(m_fd);
    }

private:
    int m_fd;
};

} // namespace dcftest

#endif
