// Reads that are interrupted, that fail, and that meet a file which somebody has cut meanwhile. The call is defined
// here and takes the place of the C library's.
#include <dlfcn.h>

#include <cerrno>

#include "Collected.h"

namespace {

enum class Reading { kWell, kInterruptedOnce, kByHalves, kFailing, kCut };

Reading g_reading = Reading::kWell;
int g_reads = 0;

using Read = ssize_t (*)(int, void*, size_t, off_t);

ssize_t ReadSo(int fd, void* buffer, size_t count, off_t offset) {
    ++g_reads;
    if (g_reading == Reading::kFailing || (g_reading == Reading::kInterruptedOnce && g_reads == 1)) {
        errno = g_reading == Reading::kFailing ? EIO : EINTR;
        return -1;
    }
    if (g_reading == Reading::kCut) {
        return 0;
    }
    const size_t wanted = g_reading == Reading::kByHalves && count > 1 ? count / 2 : count;
    return reinterpret_cast<Read>(dlsym(RTLD_NEXT, "pread64"))(fd, buffer, wanted, offset);
}

} // namespace

extern "C" ssize_t pread64(int fd, void* buffer, size_t count, off_t offset) {
    return ReadSo(fd, buffer, count, offset);
}

namespace dcftest {
namespace {

class FailingRead : public ExifTest {
protected:
    Collected CollectWhile(Reading reading) {
        g_reads = 0;
        g_reading = reading;
        Collected collected = Collect(JpegFile(ExifSegment(OrdinaryExif(ByteOrder::kBig).Build())));
        g_reading = Reading::kWell;
        EXPECT_GT(g_reads, 0) << "the read of the collector is the one defined here";
        return collected;
    }
};

TEST_F(FailingRead, ThatWasInterruptedIsMadeAgain) {
    EXPECT_EQ(CollectWhile(Reading::kWell).result, DCF_EXIF_OK);
    const int undisturbed = g_reads;
    EXPECT_EQ(CollectWhile(Reading::kInterruptedOnce).result, DCF_EXIF_OK);
    EXPECT_EQ(g_reads, undisturbed + 1);
}

TEST_F(FailingRead, ThatBringsLessIsGoneOnWith) {
    EXPECT_EQ(CollectWhile(Reading::kByHalves).result, DCF_EXIF_OK);
}

TEST_F(FailingRead, MakesTheFileUnreadable) {
    EXPECT_TRUE(CollectWhile(Reading::kFailing).Refused(DCF_EXIF_UNREADABLE));
    EXPECT_EQ(g_reads, 1) << "and is not tried again";
}

TEST_F(FailingRead, OfAFileThatWasCutMeanwhileFindsNothing) {
    EXPECT_TRUE(CollectWhile(Reading::kCut).Refused(DCF_EXIF_NONE));
}

} // namespace
} // namespace dcftest
