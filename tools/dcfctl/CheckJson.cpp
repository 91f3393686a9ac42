// Results as JSON; see the header.
#include "CheckJson.h"

#include "ChangeJson.h"
#include "Text.h"

namespace dcfctl {
namespace {

void AddOptionalPath(Json& json, const std::string& name, const std::string& path) {
    json[name] = Json();
    json[name + "_bytes"] = Json();
    if (!path.empty()) {
        AddPath(json, name, path);
    }
}

template <typename Value>
Json OptionalJson(const std::optional<Value>& value) {
    return value.has_value() ? Json(*value) : Json();
}

Json EntryJson(const ExplainedEntry& entry) {
    Json json = Json::object();
    AddPath(json, "path", entry.path);
    json["on_card"] = entry.onCard;
    json["place"] = PlaceName(entry.place);
    json["position"] = OptionalJson(entry.position);
    json["number"] = OptionalJson(entry.number);
    json["files"] = entry.place == Place::kFolder ? Json(entry.files) : Json();
    AddOptionalPath(json, "partner", entry.partner);
    Json& findings = json["findings"] = Json::array();
    for (const CheckFinding& finding : entry.findings) {
        findings.push_back(CheckFindingJson(finding));
    }
    return json;
}

} // namespace

Json CheckFindingJson(const CheckFinding& finding) {
    const CheckCodeRow& row = finding.Row();
    Json json = {{"code", row.name}, {"severity", SeverityName(row.severity)}};
    AddPath(json, "path", finding.path);
    json["message"] = Utf8Replaced(finding.text);
    AddOptionalPath(json, "other", finding.other);
    json["title"] = row.title;
    json["cure"] = row.cure;
    return json;
}

void AddTo(Json& json, const CheckResult& result) {
    const CheckFigures& figures = result.figures;
    json["figures"] = {{"entries", figures.entries},  {"folders", figures.folders},
                       {"listed", figures.listed},    {"companions", figures.companions},
                       {"left_out", figures.leftOut}, {"hazards", figures.hazards},
                       {"notes", figures.notes},      {"numbers_left", OptionalJson(figures.numbersLeft)}};
    json["has_list"] = !result.refusal.has_value();
    json["refusal"] = result.refusal.has_value() ? Json(Utf8Replaced(result.refusal->text)) : Json();
    json["renumbering"] = {{"complete", result.renumbering.IsComplete()}, {"renames", RenamesJson(result.renumbering)}};
    Json& counts = json["counts"] = Json::object();
    for (std::size_t i = 0; i < kCheckCodeCount; ++i) {
        counts[kCheckCodes[i].name] = 0;
    }
    for (const CheckFinding& finding : result.findings) {
        Json& count = counts[finding.Row().name];
        count = count.get<std::size_t>() + 1;
    }
}

void AddTo(Json& json, const ExplainResult& result) {
    AddPath(json, "what", result.what);
    Json& entries = json["entries"] = Json::array();
    for (const ExplainedEntry& entry : result.entries) {
        entries.push_back(EntryJson(entry));
    }
}

} // namespace dcfctl
