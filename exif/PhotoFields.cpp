// The one place where a field of EXIF becomes a field of PhotoInfo; see the header.
#include "PhotoFields.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <numeric>
#include <string_view>

#include "DcfExif.h"

namespace dcfexif {
namespace {

constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();

/// A pattern in which '0' stands for a digit.
bool IsLike(std::string_view text, std::string_view pattern) {
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const bool digit = i < text.size() && text[i] >= '0' && text[i] <= '9';
        if (i >= text.size() || (pattern[i] == '0' ? !digit : text[i] != pattern[i])) {
            return false;
        }
    }
    return true;
}

/// The date at the beginning of a text, or "": blanks and zeros are how a camera without a clock says that it does not
/// know.
std::string DateIn(std::string text) {
    constexpr std::string_view kPattern = "0000:00:00 00:00:00";
    if (!IsLike(text, kPattern)) {
        return {};
    }
    text.resize(kPattern.size());
    const auto number = [&text](std::size_t at) { return (text[at] - '0') * 10 + text[at + 1] - '0'; };
    const int year = number(0) * 100 + number(2);
    const int month = number(5);
    const int day = number(8);
    const bool real = year > 0 && month >= 1 && month <= 12 && day >= 1 && day <= 31 && number(11) <= 23 &&
                      number(14) <= 59 && number(17) <= 60; // a leap second
    return real ? text : std::string();
}

/// A fraction in parts of a unit, rounded; nothing when the result is no 32-bit number.
std::optional<std::int32_t> Scaled(const std::optional<Fraction>& fraction, double parts) {
    if (!fraction.has_value()) {
        return std::nullopt;
    }
    const double value =
        std::round(static_cast<double>(fraction->numerator) * parts / static_cast<double>(fraction->denominator));
    if (!(std::fabs(value) <= kMost)) {
        return std::nullopt;
    }
    return static_cast<std::int32_t>(value);
}

std::int32_t PositiveHundredths(const std::optional<Fraction>& fraction) {
    const auto value = Scaled(fraction, 100);
    return value.has_value() && *value > 0 ? *value : 0;
}

/// The value when the header has words for it.
std::int32_t Choice(const std::optional<std::uint32_t>& value, const char* (*text)(std::int32_t),
                    std::int32_t unknown) {
    const bool known =
        value.has_value() && *value <= std::uint32_t{kMost} && text(static_cast<std::int32_t>(*value)) != nullptr;
    return known ? static_cast<std::int32_t>(*value) : unknown;
}

std::int32_t NotTooLarge(const std::optional<std::uint32_t>& value) {
    return value.has_value() && *value <= std::uint32_t{kMost} ? static_cast<std::int32_t>(*value) : 0;
}

/// What does not fit into 16 bits stands in a field of its own, in one of three as the camera measures it.
std::uint32_t Iso(const ExifEntries& entries) {
    constexpr std::uint32_t kFull = 0xffff;
    const std::uint32_t iso = entries.Number(EXIF_TAG_ISO_SPEED_RATINGS).value_or(0);
    if (iso != 0 && iso != kFull) {
        return iso;
    }
    for (const ExifTag tag :
         {EXIF_TAG_RECOMMENDED_EXPOSURE_INDEX, EXIF_TAG_ISO_SPEED, EXIF_TAG_STANDARD_OUTPUT_SENSITIVITY}) {
        const std::uint32_t more = entries.Number(tag).value_or(0);
        if (more != 0) {
            return more;
        }
    }
    return iso;
}

std::uint8_t Flash(const std::optional<std::uint32_t>& value) {
    const bool known = value.has_value() && *value < DCF_EXIF_FLASH_KNOWN; // higher bits are reserved
    return static_cast<std::uint8_t>(known ? *value | DCF_EXIF_FLASH_KNOWN : 0U);
}

void SetExposure(const ExifEntries& entries, PhotoInfo& info) {
    const auto time = entries.Ratio(EXIF_TAG_EXPOSURE_TIME);
    if (!time.has_value() || time->numerator <= 0 || time->denominator < 0) {
        return;
    }
    const std::int64_t divisor = std::gcd(time->numerator, time->denominator);
    const std::int64_t numerator = time->numerator / divisor;
    const std::int64_t denominator = time->denominator / divisor;
    if (numerator <= kMost && denominator <= kMost) {
        info.attributeWords[DCF_EXIF_EXPOSURE_NUMERATOR] = static_cast<std::int32_t>(numerator);
        info.attributeWords[DCF_EXIF_EXPOSURE_DENOMINATOR] = static_cast<std::int32_t>(denominator);
    }
}

/// Degrees, minutes and seconds in millionths of a degree.
std::optional<std::int32_t> Angle(const ExifEntries& entries, std::uint32_t tag, const char* signs, double limit) {
    const std::string reference = entries.GpsText(tag);
    if (reference.size() != 1 || (reference[0] != signs[0] && reference[0] != signs[1])) {
        return std::nullopt;
    }
    double degrees = 0;
    constexpr double kParts[] = {1, 60, 3600};
    for (std::size_t i = 0; i < std::size(kParts); ++i) {
        const auto part = entries.GpsRatio(tag + 1, i);
        if (!part.has_value() || part->numerator < 0 || part->denominator < 0) {
            return std::nullopt;
        }
        const double value = static_cast<double>(part->numerator) / static_cast<double>(part->denominator);
        if (i > 0 && value > 60) { // writers that round up do not carry: 5' 60" is common
            return std::nullopt;
        }
        degrees += value / kParts[i];
    }
    if (degrees > limit) {
        return std::nullopt;
    }
    constexpr double kMillionths = 1e6;
    return static_cast<std::int32_t>(std::lround(degrees * kMillionths)) * (reference[0] == signs[1] ? -1 : 1);
}

std::int32_t Altitude(const ExifEntries& entries) {
    constexpr std::uint32_t kBelowTheSea = 1;
    const auto centimetres = Scaled(entries.GpsRatio(EXIF_TAG_GPS_ALTITUDE, 0), 100);
    const std::uint32_t reference = entries.GpsNumber(EXIF_TAG_GPS_ALTITUDE_REF).value_or(0);
    if (!centimetres.has_value() || reference > kBelowTheSea) {
        return DCF_EXIF_UNKNOWN_SIGNED;
    }
    return reference == kBelowTheSea ? -*centimetres : *centimetres;
}

void SetPosition(const ExifEntries& entries, PhotoInfo& info) {
    const auto latitude = Angle(entries, EXIF_TAG_GPS_LATITUDE_REF, "NS", 90);
    const auto longitude = Angle(entries, EXIF_TAG_GPS_LONGITUDE_REF, "EW", 180);
    const bool known = latitude.has_value() && longitude.has_value();
    info.trailingWords[DCF_EXIF_LATITUDE] = known ? *latitude : DCF_EXIF_UNKNOWN_SIGNED;
    info.trailingWords[DCF_EXIF_LONGITUDE] = known ? *longitude : DCF_EXIF_UNKNOWN_SIGNED;
    info.trailingWords[DCF_EXIF_ALTITUDE] = Altitude(entries);
    if (known) {
        info.attributeByte1 |= DCF_EXIF_GPS;
    }
}

void SetWords(const ExifEntries& entries, PhotoInfo& info) {
    std::int32_t* words = info.trailingWords;
    words[DCF_EXIF_F_NUMBER] = PositiveHundredths(entries.Ratio(EXIF_TAG_FNUMBER));
    words[DCF_EXIF_FOCAL_LENGTH] = PositiveHundredths(entries.Ratio(EXIF_TAG_FOCAL_LENGTH));
    words[DCF_EXIF_FOCAL_LENGTH_35] = NotTooLarge(entries.Number(EXIF_TAG_FOCAL_LENGTH_IN_35MM_FILM));
    words[DCF_EXIF_EXPOSURE_BIAS] =
        Scaled(entries.Ratio(EXIF_TAG_EXPOSURE_BIAS_VALUE), 100).value_or(DCF_EXIF_UNKNOWN_SIGNED);
    words[DCF_EXIF_DIGITAL_ZOOM] = PositiveHundredths(entries.Ratio(EXIF_TAG_DIGITAL_ZOOM_RATIO));
    const struct {
        DcfExifTrailingWord word;
        ExifTag tag;
        const char* (*text)(std::int32_t);
        std::int32_t unknown;
    } choices[] = {
        {DCF_EXIF_EXPOSURE_PROGRAM, EXIF_TAG_EXPOSURE_PROGRAM, DcfExifProgramText, 0},
        {DCF_EXIF_METERING_MODE, EXIF_TAG_METERING_MODE, DcfExifMeteringText, 0},
        {DCF_EXIF_LIGHT_SOURCE, EXIF_TAG_LIGHT_SOURCE, DcfExifLightText, 0},
        {DCF_EXIF_WHITE_BALANCE, EXIF_TAG_WHITE_BALANCE, DcfExifWhiteBalanceText, DCF_EXIF_UNKNOWN_CHOICE},
        {DCF_EXIF_EXPOSURE_MODE, EXIF_TAG_EXPOSURE_MODE, DcfExifExposureModeText, DCF_EXIF_UNKNOWN_CHOICE},
        {DCF_EXIF_SCENE_CAPTURE_TYPE, EXIF_TAG_SCENE_CAPTURE_TYPE, DcfExifSceneText, DCF_EXIF_UNKNOWN_CHOICE},
        {DCF_EXIF_CONTRAST, EXIF_TAG_CONTRAST, DcfExifHardnessText, DCF_EXIF_UNKNOWN_CHOICE},
        {DCF_EXIF_SATURATION, EXIF_TAG_SATURATION, DcfExifSaturationText, DCF_EXIF_UNKNOWN_CHOICE},
        {DCF_EXIF_SHARPNESS, EXIF_TAG_SHARPNESS, DcfExifHardnessText, DCF_EXIF_UNKNOWN_CHOICE},
    };
    for (const auto& choice : choices) {
        words[choice.word] = Choice(entries.Number(choice.tag), choice.text, choice.unknown);
    }
}

void SetSize(const ExifEntries& entries, std::uint32_t width, std::uint32_t height, PhotoInfo& info) {
    const std::int32_t ownWidth = NotTooLarge(entries.Number(EXIF_TAG_PIXEL_X_DIMENSION));
    const std::int32_t ownHeight = NotTooLarge(entries.Number(EXIF_TAG_PIXEL_Y_DIMENSION));
    const bool own = ownWidth > 0 && ownHeight > 0;
    info.attributeWords[DCF_EXIF_WIDTH] = own ? ownWidth : NotTooLarge(width);
    info.attributeWords[DCF_EXIF_HEIGHT] = own ? ownHeight : NotTooLarge(height);
}

/// A record in which nothing is known.
PhotoInfo NothingKnown() {
    PhotoInfo info = {};
    info.attributeByte1 = DCF_EXIF_PRESENT;
    for (const DcfExifTrailingWord word :
         {DCF_EXIF_EXPOSURE_BIAS, DCF_EXIF_LATITUDE, DCF_EXIF_LONGITUDE, DCF_EXIF_ALTITUDE}) {
        info.trailingWords[word] = DCF_EXIF_UNKNOWN_SIGNED;
    }
    for (const DcfExifTrailingWord word : {DCF_EXIF_WHITE_BALANCE, DCF_EXIF_EXPOSURE_MODE, DCF_EXIF_SCENE_CAPTURE_TYPE,
                                           DCF_EXIF_CONTRAST, DCF_EXIF_SATURATION, DCF_EXIF_SHARPNESS}) {
        info.trailingWords[word] = DCF_EXIF_UNKNOWN_CHOICE;
    }
    return info;
}

/// Apart from the size, which every picture has.
bool TellsNothing(PhotoInfo info) {
    const PhotoInfo nothing = NothingKnown();
    return info.attributeByte1 == nothing.attributeByte1 && info.attributeByte2 == nothing.attributeByte2 &&
           info.attributeWord == nothing.attributeWord && info.attributeFlag == nothing.attributeFlag &&
           info.attributeWords[DCF_EXIF_EXPOSURE_DENOMINATOR] == 0 && info.date[0] == '\0' &&
           std::memcmp(info.trailingWords, nothing.trailingWords, sizeof nothing.trailingWords) == 0;
}

} // namespace

std::optional<PhotoInfo> PhotoFields(const ExifEntries& entries, std::uint32_t width, std::uint32_t height) {
    PhotoInfo info = NothingKnown();
    std::string date = DateIn(entries.Text(EXIF_TAG_DATE_TIME_ORIGINAL));
    if (date.empty()) {
        date = DateIn(entries.Text(EXIF_TAG_DATE_TIME_DIGITIZED)); // the same moment in a camera
    }
    date.copy(info.date, sizeof info.date - 1);
    info.attributeByte2 =
        static_cast<std::uint8_t>(Choice(entries.Number(EXIF_TAG_ORIENTATION), DcfExifOrientationText, 0));
    info.attributeWord = Iso(entries);
    info.attributeFlag = Flash(entries.Number(EXIF_TAG_FLASH));
    SetExposure(entries, info);
    SetWords(entries, info);
    SetPosition(entries, info);
    if (TellsNothing(info)) {
        return std::nullopt;
    }
    SetSize(entries, width, height, info);
    return info;
}

} // namespace dcfexif
