// Words and units; see the header. Numbers are put together here, so that no locale has a say.
#include "MetadataText.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "Text.h"

namespace dcfctl {
namespace {

constexpr const char* kUnknown = "-";

std::string OrUnknown(const char* text) {
    return text != nullptr ? text : kUnknown;
}

/// A whole number of parts as a decimal fraction. @param digits how many of them make one. @param all shows every
/// digit.
std::string Decimal(std::int64_t parts, std::size_t digits, bool all) {
    std::string text = std::to_string(std::llabs(parts));
    if (text.size() <= digits) {
        text.insert(0, digits + 1 - text.size(), '0');
    }
    text.insert(text.size() - digits, ".");
    if (!all) {
        text.erase(text.find_last_not_of('0') + 1);
        if (text.back() == '.') {
            text.pop_back();
        }
    }
    return (parts < 0 ? "-" : "") + text;
}

std::string Hundredths(std::int64_t parts) {
    return Decimal(parts, 2, false);
}

std::string TakenText(const DcfExifInfo& info) {
    return info.date[0] != '\0' ? Escaped(info.date) : kUnknown;
}

std::string SizeText(const DcfExifInfo& info) {
    return info.width > 0 && info.height > 0 ? std::to_string(info.width) + "x" + std::to_string(info.height)
                                             : kUnknown;
}

std::string IsoText(const DcfExifInfo& info) {
    return info.iso > 0 ? std::to_string(info.iso) : kUnknown;
}

/// "1/125 s", "0.3 s", "30 s": as cameras show it.
std::string ExposureText(const DcfExifInfo& info) {
    const std::int64_t numerator = info.exposureNumerator;
    const std::int64_t denominator = info.exposureDenominator;
    if (numerator <= 0 || denominator <= 0) {
        return kUnknown;
    }
    if (numerator == 1 && denominator > 1) {
        return "1/" + std::to_string(denominator) + " s";
    }
    constexpr std::int64_t kQuarter = 4; // shorter times are parts of a second
    if (numerator * kQuarter >= denominator) {
        return Hundredths((numerator * 100 + denominator / 2) / denominator) + " s";
    }
    return "1/" + std::to_string((denominator + numerator / 2) / numerator) + " s";
}

std::string ApertureText(const DcfExifInfo& info) {
    return info.fNumber > 0 ? "f/" + Hundredths(info.fNumber) : kUnknown;
}

std::string FocalText(const DcfExifInfo& info) {
    return info.focalLength > 0 ? Hundredths(info.focalLength) + " mm" : kUnknown;
}

std::string Film35Text(const DcfExifInfo& info) {
    return info.focalLength35 > 0 ? std::to_string(info.focalLength35) + " mm" : kUnknown;
}

std::string BiasText(const DcfExifInfo& info) {
    if (info.exposureBias == DCF_EXIF_UNKNOWN_SIGNED) {
        return kUnknown;
    }
    return (info.exposureBias > 0 ? "+" : "") + Hundredths(info.exposureBias) + " EV";
}

std::string FlashText(const DcfExifInfo& info) {
    const char* fired = DcfExifFlashText(info.flash);
    if (fired == nullptr) {
        return kUnknown;
    }
    std::string text = fired;
    const char* mode = DcfExifFlashModeText(info.flash);
    const char* seen = DcfExifFlashReturnText(info.flash);
    text += mode != nullptr ? std::string(", set to ") + mode : "";
    text += seen != nullptr ? std::string(", ") + seen : "";
    return text + ((info.flash & DCF_EXIF_FLASH_RED_EYE) != 0 ? ", against red eyes" : "");
}

bool Fired(const DcfExifInfo& info) {
    return (info.flash & DCF_EXIF_FLASH_FIRED) != 0;
}

std::string AngleText(std::int32_t millionths, const char* signs) {
    return Decimal(std::llabs(millionths), 6, true) + " " + signs[millionths < 0 ? 1 : 0];
}

std::string PositionText(const DcfExifInfo& info) {
    return info.hasPosition ? AngleText(info.latitude, "NS") + ", " + AngleText(info.longitude, "EW") : kUnknown;
}

std::string AltitudeText(const DcfExifInfo& info) {
    return info.altitude != DCF_EXIF_UNKNOWN_SIGNED ? Hundredths(info.altitude) + " m" : kUnknown;
}

struct Column {
    const char* head;
    std::size_t width;
    std::string (*text)(const DcfExifInfo&);
};

constexpr Column kColumns[] = {
    {"TAKEN", 21, TakenText},
    {"SIZE", 11, SizeText},
    {"ISO", 7, IsoText},
    {"EXPOSURE", 10, ExposureText},
    {"APERTURE", 10, ApertureText},
    {"FOCAL", 9, FocalText},
    {"FLASH", 7,
     [](const DcfExifInfo& info) -> std::string {
         return DcfExifFlashText(info.flash) == nullptr ? kUnknown : (Fired(info) ? "yes" : "no");
     }},
    {"GPS", 5, [](const DcfExifInfo& info) -> std::string { return info.hasPosition ? "yes" : "no"; }},
};

std::string Cell(std::string text, std::size_t width) {
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
}

Json Word(const char* text) {
    return text != nullptr ? Json(text) : Json();
}

Json Number(std::int64_t value, bool known, double unit) {
    return known ? Json(static_cast<double>(value) / unit) : Json();
}

Json Whole(std::int64_t value) {
    return value > 0 ? Json(value) : Json();
}

Json FlashJson(std::uint8_t flash) {
    if (DcfExifFlashText(flash) == nullptr) {
        return {};
    }
    return {{"fired", (flash & DCF_EXIF_FLASH_FIRED) != 0},
            {"present", (flash & DCF_EXIF_FLASH_NO_FUNCTION) == 0},
            {"mode", Word(DcfExifFlashModeText(flash))},
            {"return", Word(DcfExifFlashReturnText(flash))},
            {"red_eye", (flash & DCF_EXIF_FLASH_RED_EYE) != 0}};
}

Json ExposureJson(const DcfExifInfo& info) {
    if (info.exposureNumerator <= 0 || info.exposureDenominator <= 0) {
        return {};
    }
    return {{"numerator", info.exposureNumerator},
            {"denominator", info.exposureDenominator},
            {"seconds", static_cast<double>(info.exposureNumerator) / info.exposureDenominator}};
}

} // namespace

std::string MetadataHead() {
    std::string text;
    for (const Column& column : kColumns) {
        text += Cell(column.head, column.width);
    }
    return text;
}

std::string MetadataColumns(const FileEntry& file) {
    std::string text;
    for (const Column& column : kColumns) {
        text += Cell(file.metadata.has_value() ? column.text(*file.metadata)
                     : file.metadataMissing    ? "?"
                                               : kUnknown,
                     column.width);
    }
    return text;
}

NamedTexts MetadataTexts(const DcfExifInfo& info) {
    return {{"taken", TakenText(info)},
            {"size", SizeText(info) + (SizeText(info) == kUnknown ? "" : " pixels")},
            {"orientation", OrUnknown(DcfExifOrientationText(info.orientation))},
            {"ISO", IsoText(info)},
            {"exposure time", ExposureText(info)},
            {"aperture", ApertureText(info)},
            {"focal length", FocalText(info)},
            {"on 35 mm film", Film35Text(info)},
            {"exposure bias", BiasText(info)},
            {"program", OrUnknown(DcfExifProgramText(info.exposureProgram))},
            {"exposure mode", OrUnknown(DcfExifExposureModeText(info.exposureMode))},
            {"metering", OrUnknown(DcfExifMeteringText(info.meteringMode))},
            {"flash", FlashText(info)},
            {"light source", OrUnknown(DcfExifLightText(info.lightSource))},
            {"white balance", OrUnknown(DcfExifWhiteBalanceText(info.whiteBalance))},
            {"scene", OrUnknown(DcfExifSceneText(info.sceneCaptureType))},
            {"contrast", OrUnknown(DcfExifHardnessText(info.contrast))},
            {"saturation", OrUnknown(DcfExifSaturationText(info.saturation))},
            {"sharpness", OrUnknown(DcfExifHardnessText(info.sharpness))},
            {"digital zoom", info.digitalZoom > 0 ? Hundredths(info.digitalZoom) + " times" : kUnknown},
            {"position", PositionText(info)},
            {"altitude", AltitudeText(info)}};
}

Json ExifJson(const std::optional<DcfExifInfo>& metadata) {
    if (!metadata.has_value()) {
        return {};
    }
    const DcfExifInfo& info = *metadata;
    constexpr double kHundredths = 100;
    constexpr double kMillionths = 1e6;
    const auto positive = [](std::int32_t value) { return Number(value, value > 0, kHundredths); };
    const auto any = [](std::int32_t value) { return Number(value, value != DCF_EXIF_UNKNOWN_SIGNED, kHundredths); };
    return {{"taken", info.date[0] != '\0' ? Json(Utf8Replaced(info.date)) : Json()},
            {"width", Whole(info.width)},
            {"height", Whole(info.height)},
            {"orientation", Whole(info.orientation)},
            {"orientation_text", Word(DcfExifOrientationText(info.orientation))},
            {"iso", Whole(info.iso)},
            {"exposure_time", ExposureJson(info)},
            {"f_number", positive(info.fNumber)},
            {"focal_length_mm", positive(info.focalLength)},
            {"focal_length_35mm_mm", Whole(info.focalLength35)},
            {"exposure_bias_ev", any(info.exposureBias)},
            {"exposure_program", Word(DcfExifProgramText(info.exposureProgram))},
            {"exposure_mode", Word(DcfExifExposureModeText(info.exposureMode))},
            {"metering_mode", Word(DcfExifMeteringText(info.meteringMode))},
            {"flash", FlashJson(info.flash)},
            {"light_source", Word(DcfExifLightText(info.lightSource))},
            {"white_balance", Word(DcfExifWhiteBalanceText(info.whiteBalance))},
            {"scene_capture_type", Word(DcfExifSceneText(info.sceneCaptureType))},
            {"contrast", Word(DcfExifHardnessText(info.contrast))},
            {"saturation", Word(DcfExifSaturationText(info.saturation))},
            {"sharpness", Word(DcfExifHardnessText(info.sharpness))},
            {"digital_zoom", positive(info.digitalZoom)},
            {"latitude", Number(info.latitude, info.hasPosition, kMillionths)},
            {"longitude", Number(info.longitude, info.hasPosition, kMillionths)},
            {"altitude_m", any(info.altitude)}};
}

} // namespace dcfctl
