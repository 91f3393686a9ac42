// sheet: a contact sheet of a card as one HTML file. The card is only read; the file appears whole or not at all. One
// thread.
#ifndef DCFCTL_SHEET_VERB_H
#define DCFCTL_SHEET_VERB_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "Findings.h"
#include "ListVerbs.h"
#include "Output.h"

namespace dcfctl {

/// The name that means standard output.
inline constexpr const char* kStandardOutput = "-";

/// So many pictures a desktop browser shows without effort.
inline constexpr long long kThumbnails = 10000;

struct SheetOptions {
    std::string out;
    bool force = false;
    long long thumbnails = kThumbnails; ///< Files further down the list have none.
};

struct SheetResult {
    std::string root;
    std::string out;
    std::uint64_t bytes = 0;
    Counts counts;
    std::size_t folders = 0;
    std::size_t embedded = 0; ///< Thumbnails that the pictures had themselves.
    std::size_t made = 0;
    std::size_t missing = 0; ///< Files without one.
};

/// @param out standard output, should the sheet go there. @param err receives the progress, on a terminal.
[[nodiscard]] Report<SheetResult> MakeSheet(const CardOptions& card, const SheetOptions& options, Output& out,
                                            Output& err);

} // namespace dcfctl

#endif
