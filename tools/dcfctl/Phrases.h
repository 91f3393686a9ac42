// Turns of speech that the changing verbs share in their messages. Pure functions.
#ifndef DCFCTL_PHRASES_H
#define DCFCTL_PHRASES_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "Findings.h"

namespace dcfctl {

/// "1 file", "2 files".
[[nodiscard]] std::string CountText(std::size_t count, const char* one, const char* many);
[[nodiscard]] std::string FilesText(std::size_t count);

/// The first few, quoted, and how many more there are.
[[nodiscard]] std::string PathsText(const std::vector<std::string>& paths);

/// "12.3 MB" and so on; "1 byte" below a thousand.
[[nodiscard]] std::string SizeText(std::uint64_t bytes);

/// A number index as people read it: "100-0012".
[[nodiscard]] std::string IndexText(long index);

/// The same, or "none" for 0.
[[nodiscard]] std::string SeriesText(long value);

/// Nothing was changed.
[[nodiscard]] Finding Refused(const char* code, const std::string& text);
/// Something was.
[[nodiscard]] Finding Incomplete(const char* code, const std::string& text);

} // namespace dcfctl

#endif
