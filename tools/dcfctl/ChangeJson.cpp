// Results as JSON; see the header.
#include "ChangeJson.h"

#include "Phrases.h"

namespace dcfctl {
namespace {

Json CountsJson(const RemovalCounts& counts) {
    return {{"files", counts.files},
            {"companions", counts.companions},
            {"bytes", counts.bytes},
            {"folders", counts.folders}};
}

Json CardFileJson(const CardFile& file) {
    Json json = Json::object();
    AddPath(json, "path", file.path);
    json["bytes"] = file.state.size;
    return json;
}

Json ChangesJson(const std::vector<ProtectionResult::Change>& changes) {
    Json json = Json::array();
    for (const ProtectionResult::Change& change : changes) {
        Json& entry = json.emplace_back(Json::object());
        AddPath(entry, "path", change.path);
        entry["companion"] = Json();
        if (!change.companion.empty()) {
            entry["companion"] = Json::object();
            AddPath(entry["companion"], "path", change.companion);
        }
        entry["protect"] = change.protect;
    }
    return json;
}

Json SeriesValueJson(const std::optional<long>& value) {
    return value.has_value() ? Json(*value) : Json();
}

} // namespace

void AddTo(Json& json, const RemovalResult& result) {
    json["dry_run"] = result.dryRun;
    json["planned"] = CountsJson(result.plan.counts);
    json["deleted"] = CountsJson(result.done);
    Json& files = json["files"] = Json::array();
    for (const Target& target : result.plan.targets) {
        Json& entry = files.emplace_back(CardFileJson(target.file));
        entry["companion"] = target.companion.has_value() ? CardFileJson(*target.companion) : Json();
    }
    json["folders"] = PathsJson(result.plan.folders);
    json["kept"] = PathsJson(result.plan.kept);
    json["left_behind"] = PathsJson(result.left);
}

void AddTo(Json& json, const ProtectionResult& result) {
    constexpr const char* kWanted[] = {"on", "off", "toggle"};
    json["wanted"] = kWanted[static_cast<std::size_t>(result.wanted)];
    json["changed"] = ChangesJson(result.changed);
    json["failed"] = ChangesJson(result.failed);
    json["already"] = result.already;
}

void AddTo(Json& json, const LatestNameResult& result) {
    AddPath(json, "path", result.path);
    json["type"] = TypeJson(result.type);
    json["companion"] = result.companion;
    json["exists"] = result.exists;
}

void AddTo(Json& json, const CapacityResult& result) {
    json["numbers_left"] = result.numbersLeft;
    json["series_mode"] = result.series;
    json["free_bytes"] = result.freeBytes;
    json["total_bytes"] = result.totalBytes;
}

void AddTo(Json& json, const NextNameResult& result) {
    json["dry_run"] = result.dryRun;
    json["series_mode"] = result.series;
    AddPath(json, "path", result.path);
    AddPath(json, "folder", result.folder);
    json["made"] = PathsJson(result.made);
    json["series_value"] = result.stored;
    json["series_before"] = SeriesValueJson(result.storedBefore);
}

void AddTo(Json& json, const AddResult& result) {
    json["dry_run"] = result.dryRun;
    json["series_mode"] = result.series;
    Json& files = json["files"] = Json::array();
    for (const AddedFile& file : result.files) {
        Json& entry = files.emplace_back(Json::object());
        AddPath(entry, "source", file.source);
        AddPath(entry, "path", file.path);
        entry["bytes"] = file.bytes;
        entry["companion"] = file.companion;
    }
    json["not_added"] = PathsJson(result.notAdded);
    json["made"] = PathsJson(result.made);
    json["bytes"] = result.bytes;
    json["series_value"] = SeriesValueJson(result.stored);
    json["series_before"] = SeriesValueJson(result.storedBefore);
}

Json RenamesJson(const RenumberPlan& plan) {
    Json renames = Json::array();
    for (const Renaming& row : plan.rows) {
        Json& entry = renames.emplace_back(Json::object());
        AddPath(entry, "from", row.from);
        AddPath(entry, "to", row.to);
        entry["outcome"] = OutcomeName(row.outcome);
        entry["listed"] = row.listed;
        entry["camera"] = row.camera;
    }
    return renames;
}

void AddTo(Json& json, const RenumberResult& result) {
    json["dry_run"] = result.dryRun;
    json["complete"] = result.complete;
    json["renames"] = RenamesJson(result.plan);
    json["left_behind"] = PathsJson(result.left);
    json["series_value"] = result.stored;
    json["series_before"] = SeriesValueJson(result.storedBefore);
}

void AddTo(Json& json, const SeriesResult& result) {
    json["value"] = result.value;
    json["number"] = result.value == 0 ? Json() : Json(IndexText(result.value));
    json["before"] = result.before;
    json["set"] = result.set;
}

} // namespace dcfctl
