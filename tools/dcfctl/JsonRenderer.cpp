// Results as JSON; see Renderer.h. Every document says which one it is and the version of its keys, and is valid
// whatever names a card has: bytes that are not UTF-8 stand as U+FFFD, and the bytes themselves beside them in Base64.
#include <cstring>

#include "ChangeJson.h"
#include "CheckJson.h"
#include "DcfNames.h"
#include "MetadataText.h"
#include "Renderer.h"
#include "Text.h"

namespace dcfctl {
namespace {

/// Raised when a key changes its meaning or goes away; a new key leaves it.
constexpr int kVersion = 1;

Json Document(const char* format) {
    return {{"format", format}, {"version", kVersion}, {"bytes_encoding", "base64"}};
}

void AddTime(Json& json, std::uint32_t time) {
    json["time"] = time == 0 ? Json() : Json(time);
    json["time_utc"] = time == 0 ? Json() : Json(UtcTime(time));
}

Json CompanionJson(eFileType type, std::string_view path) {
    Json json = {{"type", TypeJson(type)}};
    AddPath(json, "path", path);
    return json;
}

/// @param metadata the key is there, null for a file that tells nothing or of which it is not known.
Json FileJson(const FileEntry& file, bool metadata) {
    Json json = {{"position", file.position}};
    AddPath(json, "path", file.path);
    json["type"] = TypeJson(file.type);
    json["companion"] = file.companion.has_value() ? CompanionJson(file.companion->type, file.companion->path) : Json();
    const auto& details = file.details;
    json["protected"] = details.has_value() ? Json(details->protect) : Json();
    json["wifi"] = details.has_value() ? Json(details->wifi) : Json();
    json["directory_number"] = details.has_value() ? Json(details->directoryNumber) : Json();
    json["file_number"] = details.has_value() ? Json(details->fileNumber) : Json();
    AddTime(json, file.time);
    if (metadata) {
        json["metadata"] = ExifJson(file.metadata);
        json["metadata_missing"] = file.metadataMissing;
    }
    return json;
}

Json CountsJson(const Counts& counts) {
    Json json = {{"files", counts.files}};
    for (std::size_t i = 0; i < kFileTypes.size(); ++i) {
        json[TypeText(kFileTypes[i])] = counts.byType[i];
    }
    return json;
}

Json FindingJson(const Finding& finding) {
    return {{"cause", finding.code},
            {"exit_code", static_cast<int>(finding.exit)},
            {"exit_name", RowOf(finding.exit).name},
            {"message", Utf8Replaced(finding.text)}};
}

Json FindingsJson(const std::vector<Finding>& findings) {
    Json json = Json::array();
    for (const Finding& finding : findings) {
        json.push_back(FindingJson(finding));
    }
    return json;
}

std::string Dumped(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

/// What every document of a verb begins with.
template <typename Value>
Json Head(const char* format, const Report<Value>& report) {
    Json json = Document(format);
    json["error"] = report.error.has_value() ? FindingJson(*report.error) : Json();
    json["warnings"] = FindingsJson(report.warnings);
    if constexpr (requires { report.value->root; }) {
        if (report.value.has_value()) {
            AddPath(json, "card", report.value->root);
        }
    }
    return json;
}

Json MetadataJson(const CSFileListItem& item) {
    const std::string_view date(item.m_szMetaText, strnlen(item.m_szMetaText, sizeof item.m_szMetaText));
    return {{"flag", item.m_nMetaFlag},   {"flag2", item.m_nMetaFlag2}, {"word", item.m_nMetaWord},
            {"byte", item.m_nMetaByte},   {"quad1", item.m_nMetaQuad1}, {"quad2", item.m_nMetaQuad2},
            {"text", Utf8Replaced(date)}, {"words", item.m_aMeta}};
}

Json ItemJson(const ShownItem& shown) {
    const CSFileListItem& item = shown.item;
    Json json;
    AddPath(json, "path", item.m_strURI);
    const bool companion = item.m_strObject[0] != '\0';
    json["companion"] = companion ? CompanionJson(TypeOfPath(item.m_strObject), item.m_strObject) : Json();
    AddTime(json, item.m_nFileTime);
    if (shown.filled == Filled::kWhole) {
        json["type"] = TypeJson(item.m_eFileType);
        json["protected"] = item.m_bProtect;
        json["wifi"] = item.m_bWifi;
        json["directory_number"] = item.m_nDirNum;
        json["file_number"] = item.m_nFileNum;
        json["metadata"] = MetadataJson(item);
        DcfExifInfo info = {};
        json["exif"] = DcfExifRead(item, &info) ? ExifJson(info) : Json();
    }
    return json;
}

Json ValueJson(const CallResult& result) {
    return std::visit(
        [](const auto& value) {
            if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::monostate>) {
                return Json();
            } else {
                return Json(value);
            }
        },
        result.value);
}

class JsonRenderer : public Renderer {
public:
    using Renderer::Renderer;

    void Tell(std::string_view /*text*/) override {
        // A program reads along: nothing but documents.
    }
    void Announce(const RemovalPlan& /*plan*/) override {
        // As above.
    }

protected:
    void Put(const Report<ListResult>& report) override;
    void Put(const Report<CountResult>& report) override;
    void Put(const Report<ShowResult>& report) override;
    void Put(const Report<SampleResult>& report) override;
    void Put(const Report<RemovalResult>& report) override {
        PutChange("dcfctl.rm", report);
    }
    void Put(const Report<ProtectionResult>& report) override {
        PutChange("dcfctl.protect", report);
    }
    void Put(const Report<LatestNameResult>& report) override {
        PutChange("dcfctl.latest-name", report);
    }
    void Put(const Report<CapacityResult>& report) override {
        PutChange("dcfctl.capacity", report);
    }
    void Put(const Report<NextNameResult>& report) override {
        PutChange("dcfctl.next-name", report);
    }
    void Put(const Report<AddResult>& report) override {
        PutChange("dcfctl.add", report);
    }
    void Put(const Report<RenumberResult>& report) override {
        PutChange("dcfctl.renumber", report);
    }
    void Put(const Report<SeriesResult>& report) override {
        PutChange("dcfctl.series", report);
    }
    void Put(const Report<CheckResult>& report) override;
    void Put(const Report<ExplainResult>& report) override {
        PutChange("dcfctl.explain", report);
    }
    void Put(const Report<SheetResult>& report) override;
    void Put(const ShellReply& reply) override;

private:
    template <typename Value>
    void PutChange(const char* format, const Report<Value>& report) {
        Json json = Head(format, report);
        if (report.value.has_value()) {
            AddTo(json, *report.value);
        }
        PutLine(json);
    }
    void PutLine(const Json& json) {
        Out().Write(Dumped(json) + "\n");
    }
    template <typename Item, typename ToJson>
    void PutLong(const Json& head, const char* key, const std::vector<Item>& items, ToJson toJson);
};

/// Writes a document whose last key has a list, one item a line: the whole of a big card as one value would need many
/// times the room of its text.
template <typename Item, typename ToJson>
void JsonRenderer::PutLong(const Json& head, const char* key, const std::vector<Item>& items, ToJson toJson) {
    std::string text = Dumped(head);
    text.back() = ','; // the object stays open
    Out().Write(text + "\"" + key + "\":[");
    bool first = true;
    for (const Item& item : items) {
        Out().Write(first ? "\n" : ",\n");
        Out().Write(Dumped(toJson(item)));
        first = false;
        if (Out().Error() != 0) {
            return;
        }
    }
    Out().Write("\n]}\n");
}

void JsonRenderer::Put(const Report<ListResult>& report) {
    Json head = Head("dcfctl.ls", report);
    if (!report.value.has_value()) {
        PutLine(head);
        return;
    }
    head["counts"] = CountsJson(report.value->counts);
    head["shown"] = report.value->files.size();
    PutLong(head, "files", report.value->files,
            [&](const FileEntry& file) { return FileJson(file, report.value->metadata); });
}

void JsonRenderer::Put(const Report<CheckResult>& report) {
    Json head = Head("dcfctl.check", report);
    if (!report.value.has_value()) {
        PutLine(head);
        return;
    }
    AddTo(head, *report.value);
    PutLong(head, "findings", report.value->findings, CheckFindingJson);
}

void JsonRenderer::Put(const Report<CountResult>& report) {
    Json json = Head("dcfctl.count", report);
    if (report.value.has_value()) {
        json["counts"] = CountsJson(report.value->counts);
    }
    PutLine(json);
}

void JsonRenderer::Put(const Report<ShowResult>& report) {
    Json json = Head("dcfctl.show", report);
    if (report.value.has_value()) {
        json["file"] = FileJson(report.value->file, report.value->metadata);
    }
    PutLine(json);
}

void JsonRenderer::Put(const Report<SampleResult>& report) {
    Json json = Head("dcfctl.sample", report);
    if (report.value.has_value()) {
        json["files"] = report.value->files;
        json["folders"] = report.value->folders;
        json["protected"] = report.value->protectedFiles;
    }
    PutLine(json);
}

void JsonRenderer::Put(const Report<SheetResult>& report) {
    Json json = Head("dcfctl.sheet", report);
    if (report.value.has_value()) {
        const SheetResult& sheet = *report.value;
        AddPath(json, "out", sheet.out);
        json["bytes"] = sheet.bytes;
        json["counts"] = CountsJson(sheet.counts);
        json["folders"] = sheet.folders;
        json["thumbnails"] = {{"embedded", sheet.embedded}, {"made", sheet.made}, {"missing", sheet.missing}};
    }
    PutLine(json);
}

void JsonRenderer::Put(const ShellReply& reply) {
    Json json = Document("dcfctl.shell");
    json["line"] = reply.line;
    json["operation"] = Utf8Replaced(reply.operation);
    json["arguments"] = Json::array();
    for (const std::string& argument : reply.arguments) {
        json["arguments"].push_back(Utf8Replaced(argument));
    }
    json["error"] = reply.error.has_value() ? FindingJson(*reply.error) : Json();
    json["warnings"] = FindingsJson(reply.warnings);
    json["result"] = reply.result.has_value() ? ValueJson(*reply.result) : Json();
    if (reply.text.has_value()) {
        json["text"] = Utf8Replaced(*reply.text);
    }
    if (reply.result.has_value() && reply.result->path.has_value()) {
        AddPath(json, "path", *reply.result->path);
    }
    const bool item = reply.result.has_value() && reply.result->item.has_value();
    json["item"] = item ? ItemJson(*reply.result->item) : Json();
    PutLine(json);
}

} // namespace

std::unique_ptr<Renderer> MakeJsonRenderer(Output& out, Output& err) {
    return std::make_unique<JsonRenderer>(out, err);
}

} // namespace dcfctl
