// Pieces of JSON; see the header.
#include "JsonParts.h"

#include "DcfNames.h"
#include "Text.h"

namespace dcfctl {

void AddPath(Json& json, const std::string& name, std::string_view bytes) {
    json[name] = Utf8Replaced(bytes);
    json[name + "_bytes"] = IsUtf8(bytes) ? Json() : Json(Base64(bytes));
}

Json PathsJson(const std::vector<std::string>& paths) {
    Json json = Json::array();
    for (const std::string& path : paths) {
        AddPath(json.emplace_back(Json::object()), "path", path);
    }
    return json;
}

Json TypeJson(eFileType type) {
    return type == FILE_TYPE_NONE ? Json() : Json(TypeText(type));
}

} // namespace dcfctl
