// Names and capacity; see the header.
#include "NameVerbs.h"

#include <sys/statvfs.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <variant>

#include "CardFiles.h"
#include "CardListing.h"
#include "CardLock.h"
#include "DcfNames.h"
#include "NamingCard.h"
#include "Phrases.h"
#include "SeriesStore.h"
#include "Text.h"

namespace dcfctl {
namespace {

/// Switches series mode on for the list. An exhausted series changes nothing about the numbers of the card, but
/// switching to it would start the stored value again, which reading verbs must not do.
std::optional<Finding> ReadInSeries(ISFileList& list) {
    const auto stored = SeriesStore::Read();
    if (const auto* finding = std::get_if<Finding>(&stored)) {
        return *finding;
    }
    if (std::get<long>(stored) != kLastIndex) {
        (void)list.SetSeriesMode(true); // the first index, which is not asked for here
    }
    return std::nullopt;
}

} // namespace

Report<LatestNameResult> LatestName(const CardOptions& card, std::optional<eFileType> companion) {
    const CardListing listing(card);
    if (listing.Refusal().has_value()) {
        return Failed<LatestNameResult>(*listing.Refusal());
    }
    if (listing.Count() == 0) {
        return Failed<LatestNameResult>(
            Refused("empty-list", "the card has no file yet, so there is no newest one; 'dcfctl next-name' names the "
                                  "first"));
    }
    std::array<char, KELP_DCF_MAX_FILE_NAME_LEN + 1> buffer = {};
    (void)listing.List().GetLatestFileName(buffer.data(), companion.value_or(FILE_TYPE_JPG)); // 0 with files listed
    LatestNameResult result;
    result.root = card.root;
    result.path = buffer.data();
    result.type = TypeOfPath(result.path);
    result.companion = companion.has_value();
    result.exists = LookAt(result.path).has_value();
    return {result, std::nullopt, listing.WarningsWithoutDetails()};
}

Report<CapacityResult> Capacity(const CardOptions& card, const NamingOptions& options) {
    const CardListing listing(card);
    if (listing.Refusal().has_value()) {
        return Failed<CapacityResult>(*listing.Refusal());
    }
    ISFileList& list = listing.List();
    ApplyNaming(list, options);
    if (options.series) {
        if (auto finding = ReadInSeries(list)) {
            return Failed<CapacityResult>(*finding);
        }
    }
    CapacityResult result;
    result.root = card.root;
    result.series = options.series;
    result.numbersLeft = list.GetAvailNumOfPhoto();
    struct statvfs space = {};
    if (statvfs((card.root + "/" + std::string(kDcim)).c_str(), &space) != 0) {
        return Failed<CapacityResult>(
            {"space-unknown", ExitCode::kCardUnreadable,
             "the free space of the card cannot be had (" + std::string(std::strerror(errno)) + "); look at the card"});
    }
    result.freeBytes = static_cast<std::uint64_t>(space.f_bavail) * space.f_frsize;
    result.totalBytes = static_cast<std::uint64_t>(space.f_blocks) * space.f_frsize;
    return {result, std::nullopt, listing.WarningsWithoutDetails()};
}

Report<NextNameResult> NextName(const CardOptions& card, const NamingOptions& options, eFileType type, bool dryRun) {
    const CardLock lock(card.root);
    if (lock.Refusal().has_value()) {
        return Failed<NextNameResult>(*lock.Refusal());
    }
    NamingCard naming(card, options);
    if (naming.Refusal().has_value()) {
        return Failed<NextNameResult>(*naming.Refusal());
    }
    const std::string dcim = card.root + "/" + std::string(kDcim);
    const bool needsDcim = naming.NeedsDcim();
    const auto taken = dryRun ? naming.Foretell(type) : naming.Take(type);
    if (const auto* finding = std::get_if<Finding>(&taken)) {
        return Failed<NextNameResult>(*finding);
    }
    const auto& name = std::get<NewName>(taken);
    Report<NextNameResult> report;
    NextNameResult& result = report.value.emplace();
    result.root = card.root;
    result.dryRun = dryRun;
    result.series = options.series;
    result.path = name.path;
    result.folder = dcim + "/" + name.folder;
    result.stored = name.stored;
    result.storedBefore = naming.SeriesBefore();
    if (dryRun) {
        if (needsDcim) {
            result.made.push_back(dcim);
        }
        if (name.makesFolder) {
            result.made.push_back(result.folder);
        }
        return report;
    }
    result.made = naming.Made();
    report.error = CheckStored(name.stored);
    return report;
}

} // namespace dcfctl
