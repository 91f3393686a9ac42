// The collector of the model tests: the library calls Collect(), the reference asks Describe().
#ifndef TESTS_MODEL_COLLECTOR_H
#define TESTS_MODEL_COLLECTOR_H

#include <optional>
#include <string>
#include <vector>

#include "MetadataInfo.h"

namespace dcftest {

enum class Answer { always, never, byName };

/// Whether the collector fills the record.
extern Answer g_answer;
/// The paths that the library asked it for.
extern std::vector<std::string> g_asked;

/// What the collector tells about a path: some numbers made of its name.
std::optional<PhotoInfo> Describe(const std::string& path);
int Collect(char* path, PhotoInfo* info);

} // namespace dcftest

#endif
