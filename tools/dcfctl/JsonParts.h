// Pieces of JSON that every document is made of: names, which need not be UTF-8, and types. Pure functions.
#ifndef DCFCTL_JSON_PARTS_H
#define DCFCTL_JSON_PARTS_H

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "FileListTypes.h"

namespace dcfctl {

using Json = nlohmann::ordered_json;

/// Adds "name" and "name_bytes": the second is null when the first says it all.
void AddPath(Json& json, const std::string& name, std::string_view bytes);

/// An array of objects with "path" and "path_bytes".
[[nodiscard]] Json PathsJson(const std::vector<std::string>& paths);

/// "JPG" and so on, null for no type.
[[nodiscard]] Json TypeJson(eFileType type);

} // namespace dcfctl

#endif
