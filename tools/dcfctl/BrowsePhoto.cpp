// Metadata in words; see the header.
#include "BrowsePhoto.h"

#include <array>
#include <cstdint>
#include <cstdio>

#include "DcfExif.h"
#include "Text.h"

namespace dcfctl {
namespace {

std::string Decimal(std::int32_t hundredths) {
    std::array<char, 32> text{};
    (void)std::snprintf(text.data(), text.size(), "%.4g", hundredths / 100.0); // fits
    return text.data();
}

std::string ExposureText(const DcfExifInfo& info) {
    std::string text;
    if (info.exposureNumerator > 0 && info.exposureDenominator > 0) {
        text = std::to_string(info.exposureNumerator);
        text += (info.exposureDenominator == 1 ? "" : "/" + std::to_string(info.exposureDenominator)) + " s";
    }
    if (info.fNumber > 0) {
        text += (text.empty() ? "f/" : " f/") + Decimal(info.fNumber);
    }
    return text;
}

std::string LensText(const DcfExifInfo& info) {
    std::string text = info.focalLength > 0 ? Decimal(info.focalLength) + " mm" : "";
    if ((info.flash & DCF_EXIF_FLASH_KNOWN) != 0) {
        text += text.empty() ? "" : ", ";
        text += (info.flash & DCF_EXIF_FLASH_FIRED) != 0 ? "flash" : "no flash";
    }
    return text;
}

} // namespace

BrowseFacts PhotoFacts(const CSFileListItem& item) {
    DcfExifInfo info = {};
    if (!DcfExifRead(item, &info)) {
        return {};
    }
    const char* turn = info.orientation > 1 ? DcfExifOrientationText(info.orientation) : nullptr;
    const std::string size =
        info.width > 0 && info.height > 0 ? std::to_string(info.width) + "x" + std::to_string(info.height) : "";
    const BrowseFacts all = {{"Taken", Escaped(info.date)},
                             {"Picture", size},
                             {"Upright", turn == nullptr ? "" : turn},
                             {"Exposure", ExposureText(info)},
                             {"ISO", info.iso > 0 ? std::to_string(info.iso) : ""},
                             {"Lens", LensText(info)},
                             {"Place", info.hasPosition ? "known" : ""}};
    BrowseFacts known;
    for (const auto& fact : all) {
        if (!fact.second.empty()) {
            known.push_back(fact);
        }
    }
    return known;
}

} // namespace dcfctl
