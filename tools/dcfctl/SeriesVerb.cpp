// series; see the header.
#include "SeriesVerb.h"

#include <variant>

#include "Phrases.h"
#include "SeriesStore.h"
#include "Text.h"

namespace dcfctl {
namespace {

Report<SeriesResult> Store(long value) {
    const auto before = SeriesStore::Read();
    if (const auto* finding = std::get_if<Finding>(&before)) {
        return Failed<SeriesResult>(*finding);
    }
    if (auto finding = SeriesStore::Write(value)) {
        return Failed<SeriesResult>(*finding);
    }
    if (auto finding = CheckStored(value)) {
        return Failed<SeriesResult>(*finding);
    }
    return {SeriesResult{value, std::get<long>(before), true}, std::nullopt, {}};
}

} // namespace

Report<SeriesResult> ShowSeries() {
    const auto stored = SeriesStore::Read();
    if (const auto* finding = std::get_if<Finding>(&stored)) {
        return Failed<SeriesResult>(*finding);
    }
    const long value = std::get<long>(stored);
    return {SeriesResult{value, value, false}, std::nullopt, {}};
}

Report<SeriesResult> SetSeries(const std::string& value) {
    constexpr long kFirstFolder = 100;
    constexpr long kLastFile = 9999;
    const auto index = ReadIndex(value);
    const bool valid =
        index.has_value() &&
        (*index == 0 || (*index / kIndexPerFolder >= kFirstFolder && *index % kIndexPerFolder <= kLastFile));
    if (!valid) {
        return Failed<SeriesResult>({"bad-series-value", ExitCode::kUsage,
                                     Quoted(value) + " is no series value; it is a folder and a file number such as "
                                                     "100-0012 (10000012), up to 999-9999, or 0 for none"});
    }
    return Store(*index);
}

Report<SeriesResult> ResetSeries() {
    return Store(0);
}

} // namespace dcfctl
