// Results as text; see Renderer.h. Names are shown escaped, so that a line is always one file and a name cannot reach
// into the terminal; only bare paths that go into a file or a pipe are written as they are.
#include <algorithm>
#include <cstring>

#include "ChangeText.h"
#include "CheckText.h"
#include "DcfNames.h"
#include "MetadataText.h"
#include "Phrases.h"
#include "Renderer.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr const char* kBold = "\033[1m";
constexpr const char* kPlain = "\033[0m";

std::string Padded(std::string text, std::size_t width) {
    if (text.size() < width) {
        text.append(width - text.size(), ' ');
    }
    return text;
}

std::string RightAligned(const std::string& text, std::size_t width) {
    return text.size() < width ? std::string(width - text.size(), ' ') + text : text;
}

std::string TimeText(std::uint32_t time) {
    const std::string text = UtcTime(time);
    return text.empty() ? "-" : text;
}

const char* YesNo(bool value) {
    return value ? "yes" : "no";
}

std::string Marks(const std::optional<FileEntry::Details>& details) {
    if (!details.has_value()) {
        return "??";
    }
    return std::string(details->protect ? "P" : "-") + (details->wifi ? "W" : "-");
}

std::string KindCounts(const Counts& counts) {
    std::string text;
    int sum = 0;
    for (std::size_t i = 0; i < kFileTypes.size(); ++i) {
        if (counts.byType[i] > 0) {
            text += (text.empty() ? "" : ", ") + std::string(TypeText(kFileTypes[i])) + " " +
                    std::to_string(counts.byType[i]);
            sum += counts.byType[i];
        }
    }
    return text + (sum > counts.files ? " (a file with a companion counts under both kinds)" : "");
}

std::string Files(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " file" : " files");
}

std::string CountLine(std::size_t shown, const Counts& counts) {
    const auto all = static_cast<std::size_t>(counts.files);
    std::string line = Files(all) + " in the list";
    if (shown != all) {
        line += ", " + std::to_string(shown) + " shown";
    }
    return line + (all > 0 ? ": " + KindCounts(counts) : "") + "\n";
}

/// The name of a shared value and the value, one a line.
std::string Field(const char* name, const std::string& value) {
    return "  " + Padded(name, 11) + value + "\n";
}

/// What a picture tells, a line each, under a head.
std::string ExifFields(const DcfExifInfo& info) {
    constexpr std::size_t kWidth = 15;
    std::string text = "  metadata\n";
    for (const auto& [name, value] : MetadataTexts(info)) {
        text += "    " + Padded(name, kWidth) + value + "\n";
    }
    return text;
}

class TextRenderer : public Renderer {
public:
    TextRenderer(Format format, Output& out, Output& err) : Renderer(out, err), m_format(format) {}

    void Tell(std::string_view text) override {
        Out().Write(text);
        Out().Flush();
    }

    void Announce(const RemovalPlan& plan) override {
        Out().Write(Change().Of(plan, false));
        Out().Flush();
    }

protected:
    void Put(const Report<ListResult>& report) override;
    void Put(const Report<CountResult>& report) override;
    void Put(const Report<ShowResult>& report) override;
    void Put(const Report<SampleResult>& report) override;
    void Put(const Report<RemovalResult>& report) override {
        PutChange(report);
    }
    void Put(const Report<ProtectionResult>& report) override {
        PutChange(report);
    }
    void Put(const Report<LatestNameResult>& report) override {
        PutChange(report);
    }
    void Put(const Report<CapacityResult>& report) override {
        PutChange(report);
    }
    void Put(const Report<NextNameResult>& report) override {
        PutChange(report);
    }
    void Put(const Report<AddResult>& report) override {
        PutChange(report);
    }
    void Put(const Report<RenumberResult>& report) override {
        PutChange(report);
    }
    void Put(const Report<SeriesResult>& report) override {
        PutChange(report);
    }
    void Put(const Report<CheckResult>& report) override {
        PutCheck(report);
    }
    void Put(const Report<ExplainResult>& report) override {
        PutCheck(report);
    }
    void Put(const Report<SheetResult>& report) override;
    void Put(const ShellReply& reply) override;

private:
    template <typename Value>
    void PutCheck(const Report<Value>& report) {
        if (report.value.has_value()) {
            const CheckText text([this](std::string_view name) { return Name(name); },
                                 [this](std::string_view escaped) { return Shown(escaped); });
            Out().Write(text.Of(*report.value));
        }
    }
    template <typename Value>
    void PutChange(const Report<Value>& report) {
        if (report.value.has_value()) {
            Out().Write(Change().Of(*report.value));
        }
    }
    [[nodiscard]] ChangeText Change() {
        return ChangeText([this](std::string_view name) { return Name(name); });
    }
    void PutTable(const ListResult& list);
    void PutPaths(const ListResult& list);
    [[nodiscard]] std::string Name(std::string_view bytes);
    [[nodiscard]] std::string Shown(std::string_view escaped);
    [[nodiscard]] std::string ItemFields(const ShownItem& shown);
    [[nodiscard]] std::string MetadataFields(const CSFileListItem& item);

    Format m_format;
};

std::string TextRenderer::Name(std::string_view bytes) {
    return Shown(Escaped(bytes));
}

std::string TextRenderer::Shown(std::string_view escaped) {
    return Out().IsAsciiTerminal() ? AsciiOnly(escaped) : std::string(escaped);
}

void TextRenderer::Put(const Report<ListResult>& report) {
    if (!report.value.has_value()) {
        return;
    }
    if (m_format == Format::kText) {
        PutTable(*report.value);
    } else {
        PutPaths(*report.value);
    }
}

void TextRenderer::PutTable(const ListResult& list) {
    const int last = list.files.empty() ? 0 : list.files.back().position;
    const std::size_t width = std::max<std::size_t>(3, std::to_string(last).size());
    if (!list.files.empty()) {
        const std::string header = RightAligned("POS", width) + "  TYPE  COMPANION  MARKS  TIME                  " +
                                   (list.metadata ? MetadataHead() : "") + "PATH";
        Out().Write(Out().HasColour() ? kBold + header + kPlain : header);
        Out().Write("\n");
    }
    for (const FileEntry& file : list.files) {
        const char* companion = file.companion.has_value() ? TypeText(file.companion->type) : "-";
        Out().Write(RightAligned(std::to_string(file.position), width) + "  " + Padded(TypeText(file.type), 6) +
                    Padded(companion, 11) + Padded(Marks(file.details), 7) + Padded(TimeText(file.time), 22) +
                    (list.metadata ? MetadataColumns(file) : "") + Name(file.path) + "\n");
        if (Out().Error() != 0) {
            return;
        }
    }
    Out().Write(CountLine(list.files.size(), list.counts));
}

void TextRenderer::PutPaths(const ListResult& list) {
    const bool nul = m_format == Format::kNulPaths;
    for (const FileEntry& file : list.files) {
        Out().Write(Out().IsTerminal() && !nul ? Name(file.path) : file.path);
        Out().Write(nul ? std::string_view("\0", 1) : std::string_view("\n"));
        if (Out().Error() != 0) {
            return;
        }
    }
}

void TextRenderer::Put(const Report<CountResult>& report) {
    if (!report.value.has_value()) {
        return;
    }
    const CountResult& count = *report.value;
    int number = count.counts.files;
    if (count.type.has_value()) {
        const auto* const kind = std::find(kFileTypes.begin(), kFileTypes.end(), *count.type);
        number = count.counts.byType[static_cast<std::size_t>(kind - kFileTypes.begin())];
    }
    Out().Write(std::to_string(number) + "\n");
}

void TextRenderer::Put(const Report<ShowResult>& report) {
    if (!report.value.has_value()) {
        return;
    }
    const FileEntry& file = report.value->file;
    std::string text = Name(file.path) + "\n";
    text += Field("position", std::to_string(file.position));
    text += Field("type", TypeText(file.type));
    text += Field("companion", file.companion.has_value() ? Name(file.companion->path) : "-");
    if (file.details.has_value()) {
        text += Field("folder", std::to_string(file.details->directoryNumber));
        text += Field("number", std::to_string(file.details->fileNumber));
        text += Field("protected", YesNo(file.details->protect));
        text += Field("Wi-Fi mark", YesNo(file.details->wifi));
    } else {
        text += Field("details", "not to be had");
    }
    text += Field("time", TimeText(file.time));
    if (file.metadata.has_value()) {
        text += ExifFields(*file.metadata);
    } else {
        text += Field("metadata", !report.value->metadata ? "not in this build"
                                  : file.metadataMissing  ? "not to be had"
                                                          : "-");
    }
    Out().Write(text);
}

void TextRenderer::Put(const Report<SampleResult>& report) {
    if (!report.value.has_value()) {
        return;
    }
    const SampleResult& sample = *report.value;
    Out().Write("Made a sample card at " + Name(sample.root) + ": " + Files(static_cast<std::size_t>(sample.files)) +
                " in " + std::to_string(sample.folders) + " folders, " + std::to_string(sample.protectedFiles) +
                " of them protected.\n");
    Out().Write("List it with: dcfctl ls --card '" + Name(sample.root) + "'\n");
}

/// A sheet that went to standard output says it all itself.
void TextRenderer::Put(const Report<SheetResult>& report) {
    if (!report.value.has_value() || report.value->out == kStandardOutput) {
        return;
    }
    const SheetResult& sheet = *report.value;
    Out().Write("Wrote " + Name(sheet.out) + " (" + SizeText(sheet.bytes) +
                "): " + Files(static_cast<std::size_t>(sheet.counts.files)) + " in " +
                CountText(sheet.folders, "folder", "folders") + ", " +
                CountText(sheet.embedded + sheet.made, "thumbnail", "thumbnails") + ".\n");
}

// ---- The shell ----

std::string ValueText(const CallResult& result) {
    if (const auto* flag = std::get_if<bool>(&result.value)) {
        return *flag ? " = true" : " = false";
    }
    if (const auto* number = std::get_if<int>(&result.value)) {
        return " = " + std::to_string(*number);
    }
    if (const auto* numbers = std::get_if<std::vector<int>>(&result.value)) {
        std::string text = " = [";
        for (const int number : *numbers) {
            text += (text.size() > 4 ? ", " : "") + std::to_string(number);
        }
        return text + "]";
    }
    return " done";
}

std::string TextRenderer::MetadataFields(const CSFileListItem& item) {
    std::string words;
    for (const std::int32_t word : item.m_aMeta) {
        words += (words.empty() ? "" : " ") + std::to_string(word);
    }
    const std::string_view date(item.m_szMetaText, strnlen(item.m_szMetaText, sizeof item.m_szMetaText));
    return Field("meta text", date.empty() ? "-" : Name(date)) +
           Field("meta flags", std::to_string(item.m_nMetaFlag) + " " + std::to_string(item.m_nMetaFlag2) + " " +
                                   std::to_string(item.m_nMetaWord) + " " + std::to_string(item.m_nMetaByte)) +
           Field("meta quad", std::to_string(item.m_nMetaQuad1) + " " + std::to_string(item.m_nMetaQuad2)) +
           Field("meta words", words);
}

std::string TextRenderer::ItemFields(const ShownItem& shown) {
    const CSFileListItem& item = shown.item;
    std::string text = Field("path", item.m_strURI[0] != '\0' ? Name(item.m_strURI) : "-");
    text += Field("companion", item.m_strObject[0] != '\0' ? Name(item.m_strObject) : "-");
    text += Field("time", TimeText(item.m_nFileTime));
    if (shown.filled == Filled::kPathsAndTime) {
        return text;
    }
    text += Field("type", TypeText(item.m_eFileType));
    text += Field("folder", std::to_string(item.m_nDirNum));
    text += Field("number", std::to_string(item.m_nFileNum));
    text += Field("protected", YesNo(item.m_bProtect));
    text += Field("Wi-Fi mark", YesNo(item.m_bWifi));
    text += MetadataFields(item);
    DcfExifInfo info = {};
    return DcfExifRead(item, &info) ? text + ExifFields(info) : text;
}

void TextRenderer::Put(const ShellReply& reply) {
    if (reply.text.has_value()) {
        Out().Write(*reply.text);
    }
    if (!reply.result.has_value()) {
        return;
    }
    std::string text = reply.operation + ValueText(*reply.result) + "\n";
    if (reply.result->path.has_value()) {
        text += Field("path", Name(*reply.result->path));
    }
    if (reply.result->item.has_value()) {
        text += ItemFields(*reply.result->item);
    }
    Out().Write(text);
}

} // namespace

std::unique_ptr<Renderer> MakeTextRenderer(Format format, Output& out, Output& err) {
    return std::make_unique<TextRenderer>(format, out, err);
}

} // namespace dcfctl
