// The EXIF collector: an input is a file. Whatever it holds, the result is one that the header names, a record is
// filled whole or left as it was, every field keeps to its range, and a second look says the same.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "DcfExif.h"
#include "Target.h"

namespace dcffuzz {
namespace {

constexpr int kMark = 0x5a;

/// One file in memory, whose bytes change from one input to the next.
class Picture {
public:
    Picture() : m_fd(::memfd_create("picture", MFD_CLOEXEC)) {
        Require(m_fd >= 0, "there is no memory for a file");
    }
    void Hold(const std::uint8_t* data, std::size_t size) const {
        Require(::ftruncate(m_fd, 0) == 0 && ::pwrite(m_fd, data, size, 0) == static_cast<ssize_t>(size),
                "the file cannot be written");
    }
    std::string Path() const {
        return "/proc/self/fd/" + std::to_string(m_fd);
    }

private:
    int m_fd;
};

struct Collected {
    int result;
    PhotoInfo info;

    bool operator==(const Collected& other) const {
        return result == other.result && std::memcmp(&info, &other.info, sizeof info) == 0;
    }
};

Collected Collect(std::string path) {
    Collected collected;
    std::memset(static_cast<void*>(&collected), kMark, sizeof collected);
    collected.result = CollectExif(path.data(), &collected.info);
    return collected;
}

bool IsDate(const char (&date)[20]) {
    constexpr char kPattern[] = "0000:00:00 00:00:00";
    return std::equal(std::begin(date), std::end(date), std::begin(kPattern),
                      [](char c, char wanted) { return wanted == '0' ? c >= '0' && c <= '9' : c == wanted; });
}

bool Within(std::int32_t value, std::int32_t low, std::int32_t high) {
    return value >= low && value <= high;
}

void CheckPosition(const DcfExifInfo& info) {
    constexpr std::int32_t kQuarter = 90000000;
    const bool known =
        Within(info.latitude, -kQuarter, kQuarter) && Within(info.longitude, -2 * kQuarter, 2 * kQuarter);
    const bool unknown = info.latitude == DCF_EXIF_UNKNOWN_SIGNED && info.longitude == DCF_EXIF_UNKNOWN_SIGNED;
    Require(info.hasPosition ? known : unknown, "a position that is none");
}

void CheckFields(const PhotoInfo& record) {
    DcfExifInfo info = {};
    Require(DcfExifRead(record, &info), "a filled record is refused");
    Require(std::memcmp(record.date, info.date, sizeof info.date) == 0, "a date without an end");
    Require(IsDate(info.date) ||
                std::all_of(std::begin(info.date), std::end(info.date), [](char c) { return c == '\0'; }),
            "a date that is none");
    Require(info.orientation <= 8, "an orientation that EXIF does not know");
    Require(info.width >= 0 && info.height >= 0, "a negative size");
    Require((info.exposureNumerator > 0 && info.exposureDenominator > 0) ||
                (info.exposureNumerator == 0 && info.exposureDenominator == 0),
            "an exposure time that is none");
    Require(info.fNumber >= 0 && info.focalLength >= 0 && info.focalLength35 >= 0 && info.digitalZoom >= 0,
            "a negative number of a lens");
    Require(info.flash == 0 || (info.flash & DCF_EXIF_FLASH_KNOWN) != 0, "a flash that is not known");
    Require(info.exposureProgram == 0 || DcfExifProgramText(info.exposureProgram) != nullptr, "no such program");
    Require(info.meteringMode == 0 || DcfExifMeteringText(info.meteringMode) != nullptr, "no such metering");
    Require(info.lightSource == 0 || DcfExifLightText(info.lightSource) != nullptr, "no such light");
    CheckPosition(info);
}

} // namespace
} // namespace dcffuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace dcffuzz;
    SetUpOnce();
    static const Picture picture;
    picture.Hold(data, size);
    const Collected collected = Collect(picture.Path());
    Require(collected.result == DCF_EXIF_OK || collected.result == DCF_EXIF_NONE, "an unexpected result");
    Require(collected == Collect(picture.Path()), "a second look says something else");
    if (collected.result == DCF_EXIF_OK) {
        CheckFields(collected.info);
    } else {
        const auto* bytes = reinterpret_cast<const unsigned char*>(&collected.info);
        Require(std::all_of(bytes, bytes + sizeof collected.info, [](unsigned char byte) { return byte == kMark; }),
                "the record was written to");
    }
    return 0;
}
