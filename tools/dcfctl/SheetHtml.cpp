// The sheet; see the header.
#include "SheetHtml.h"

#include <set>
#include <string>

#include "DcfNames.h"
#include "Html.h"
#include "NumberMap.h"
#include "Phrases.h"
#include "SheetCheckHtml.h"
#include "SheetStyle.h"
#include "Text.h"

namespace dcfctl {
namespace {

// Nothing is fetched and nothing runs, whatever a browser or a mistake of this program would make of a name: the only
// pictures are those inside of the file.
constexpr std::string_view kSignature = "<!DOCTYPE html>\n"
                                        "<html xmlns=\"http://www.w3.org/1999/xhtml\" lang=\"en\">\n"
                                        "<head>\n"
                                        "<meta charset=\"utf-8\"/>\n"
                                        "<meta name=\"generator\" content=\"dcfctl sheet\"/>\n";
constexpr std::string_view kHead =
    "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; img-src data:; "
    "style-src 'unsafe-inline'; base-uri 'none'; form-action 'none'\"/>\n"
    "<meta name=\"referrer\" content=\"no-referrer\"/>\n"
    "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\"/>\n"
    "<meta name=\"color-scheme\" content=\"light dark\"/>\n";

/// More folders than these are folded away until somebody asks for them.
constexpr std::size_t kFewFolders = 24;

std::string Tag(const char* name, const char* cssClass, const std::string& content) {
    return std::string("<") + name + " class=\"" + cssClass + "\">" + content + "</" + name + ">";
}

std::string Icon(const char* name) {
    return std::string(R"(<svg class="icon" aria-hidden="true"><use href="#)") + name + "\"></use></svg>";
}

bool IsMovie(eFileType type) {
    return type == FILE_TYPE_MP4 || type == FILE_TYPE_AVI;
}

// ---- Numbers ----

/// By the name, which tells it on every card; nothing for a name that cannot be in the list.
std::optional<int> NumberOf(const SheetFolder& folder, const FileEntry& file) {
    const std::string name = SplitPath(file.path).file;
    const auto read = folder.IsCamera() ? CameraFileName(name) : DcfFileName(name);
    return read.has_value() ? std::optional<int>(read->number) : std::nullopt;
}

/// "100-0012"; in "Camera", whose files are named after the time, the number alone.
std::string NumberText(const SheetFolder& folder, const FileEntry& file) {
    constexpr long kPerFolder = 100000;
    const auto number = NumberOf(folder, file);
    if (!number.has_value()) {
        return "?";
    }
    return folder.IsCamera() ? std::to_string(*number) : IndexText(folder.number * kPerFolder + *number);
}

// ---- One file ----

/// A digit stands for any digit.
bool HasForm(std::string_view text, std::string_view form) {
    if (text.size() != form.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (form[i] == '0' ? !digit : text[i] != form[i]) {
            return false;
        }
    }
    return true;
}

/// The camera's own time where the picture tells it, else the file's; as words for a caption and for the alternative
/// text.
struct DateTexts {
    std::string html;
    std::string plain;
};

DateTexts DateOf(const FileEntry& file, const std::string& taken) {
    if (HasForm(taken, "0000:00:00 00:00:00")) {
        const std::string day = taken.substr(0, 4) + "-" + taken.substr(5, 2) + "-" + taken.substr(8, 2);
        const std::string text = day + " " + taken.substr(11);
        return {"<time datetime=\"" + day + "T" + taken.substr(11) + "\">" + text + "</time>", text};
    }
    if (!taken.empty()) {
        return {HtmlName(taken), Escaped(taken)};
    }
    const std::string utc = UtcTime(file.time);
    if (utc.empty()) {
        return {"no date", "no date"};
    }
    constexpr std::size_t kDay = 10;
    constexpr std::size_t kClock = 8;
    const std::string text = utc.substr(0, kDay) + " " + utc.substr(kDay + 1, kClock) + " UTC";
    return {"file <time datetime=\"" + utc + "\">" + text + "</time>", "file of " + text};
}

std::string Kind(const FileEntry& file) {
    return IsMovie(file.type) ? "movie" : file.type == FILE_TYPE_SRW ? "raw picture" : "picture";
}

std::string AlternativeText(const FileEntry& file, const std::string& number, const std::string& date) {
    std::string text = std::string(TypeText(file.type)) + " " + Kind(file) + " " + number;
    if (file.companion.has_value()) {
        text += std::string(" with ") + TypeText(file.companion->type) + " companion";
    }
    if (file.details.has_value() && file.details->protect) {
        text += ", protected";
    }
    return text + ", " + date;
}

std::string PictureHtml(const FileEntry& file, const Illustration& shown, const std::string& alternative) {
    if (!shown.thumbnail.empty()) {
        return R"(<img class="pic" loading="lazy" decoding="async" alt=")" + HtmlText(alternative) +
               "\" src=\"data:image/jpeg;base64," + Base64(shown.thumbnail) + "\"/>";
    }
    return R"(<div class="pic none" role="img" aria-label=")" + HtmlText(alternative + ", " + shown.missing) +
           "\"><svg aria-hidden=\"true\"><use href=\"#" + (IsMovie(file.type) ? "movie" : "picture") +
           "\"></use></svg><span>" + HtmlText(shown.missing) + "</span></div>";
}

std::string Badges(const FileEntry& file) {
    const std::string type = TypeText(file.type);
    std::string html = Tag("span", "badge", (IsMovie(file.type) ? Icon("movie") + " " : std::string()) + type);
    if (file.companion.has_value()) {
        html += Tag("span", "badge companion", std::string("+ ") + TypeText(file.companion->type));
    }
    if (!file.details.has_value()) {
        html += Tag("span", "badge unknown", "marks unknown");
    } else if (file.details->protect) {
        html += Tag("span", "badge lock", Icon("lock") + " protected");
    }
    return Tag("div", "badges", html);
}

std::string FileHtml(const SheetFolder& folder, const FileEntry& file, const Illustration& shown) {
    const std::string number = NumberText(folder, file);
    const DateTexts date = DateOf(file, shown.date);
    return "<li id=\"file-" + std::to_string(file.position) + "\"><figure>" +
           PictureHtml(file, shown, AlternativeText(file, number, date.plain)) + "<figcaption>" +
           Tag("span", "number", HtmlText(number)) + Badges(file) +
           Tag("span", "name", HtmlName(SplitPath(file.path).file)) + Tag("span", "date", date.html) +
           "</figcaption></figure></li>\n";
}

// ---- The map of the numbers ----

/// One drawing for all runs: a rectangle each, widened by its outline so that a single number is still seen.
std::string MapHtml(const std::vector<NumberRange>& used, NumberRange within, int digits) {
    constexpr const char* kHeight = "10";
    std::string path;
    for (const NumberRange& run : used) {
        path += "M" + std::to_string(run.first) + " 0h" + std::to_string(run.Count()) + "v" + kHeight + "h-" +
                std::to_string(run.Count()) + "z";
    }
    const auto end = [digits](int number) { return "<span>" + RunsText({{number, number}}, digits) + "</span>"; };
    return "<svg class=\"map\" aria-hidden=\"true\" preserveAspectRatio=\"none\" viewBox=\"" +
           std::to_string(within.first) + " 0 " + std::to_string(within.Count()) + " " + kHeight + "\"><path d=\"" +
           path + "\"></path></svg><div class=\"ends\" aria-hidden=\"true\">" + end(within.first) + end(within.last) +
           "</div>";
}

std::string RunsHtml(const std::vector<NumberRange>& used, NumberRange within, int digits) {
    const std::vector<NumberRange> open = FreeRuns(used, within);
    const auto line = [digits](const char* cssClass, const char* word, const std::vector<NumberRange>& runs) {
        return Tag("p", cssClass,
                   std::string(word) + " (" + std::to_string(CountOf(runs)) + "): " + HtmlText(RunsText(runs, digits)));
    };
    return MapHtml(used, within, digits) + line("runs used", "used", used) + line("runs free", "free", open);
}

std::string FolderLink(std::size_t index, const SheetFolder& folder) {
    return "<a href=\"#folder-" + std::to_string(index) + "\">" + HtmlName(folder.name) + "</a>";
}

std::string FolderMapHtml(std::size_t index, const SheetFolder& folder, const SheetContent& sheet) {
    constexpr int kDigits = 4;
    std::string html = "<li><h3>" + FolderLink(index, folder) + "</h3>";
    if (folder.IsCamera()) {
        return html + Tag("p", "runs", "named after the time: " + FilesText(folder.count) + ", no numbers used") +
               "</li>\n";
    }
    std::set<int> numbers;
    for (std::size_t i = 0; i < folder.count; ++i) {
        if (const auto number = NumberOf(folder, sheet.files[folder.first + i])) {
            numbers.insert(*number);
        }
    }
    return html + RunsHtml(UsedRuns(numbers, kFileNumbers), kFileNumbers, kDigits) + "</li>\n";
}

void WriteNumbers(Output& out, const SheetContent& sheet) {
    constexpr int kDigits = 3;
    std::set<int> numbers;
    for (const SheetFolder& folder : sheet.folders) {
        numbers.insert(folder.number);
    }
    out.Write("<section id=\"numbers\" aria-labelledby=\"numbers-title\">\n"
              "<h2 id=\"numbers-title\">Numbers used and free</h2>\n"
              "<p class=\"dim\">New files go on behind the highest number of the first folder; gaps further down stay "
              "as they are.</p>\n<ul class=\"maps\">\n<li><h3>Folder numbers</h3>");
    out.Write(RunsHtml(UsedRuns(numbers, kFolderNumbers), kFolderNumbers, kDigits));
    out.Write("</li>\n");
    for (std::size_t i = 0; i < sheet.folders.size(); ++i) {
        out.Write(FolderMapHtml(i, sheet.folders[i], sheet));
    }
    out.Write("</ul>\n</section>\n");
}

// ---- The page ----

void WriteCounts(Output& out, const SheetContent& sheet) {
    const auto item = [](const std::string& text) { return "<li>" + text + "</li>"; };
    out.Write("<ul class=\"row counts\" aria-label=\"What the card holds\">");
    out.Write(item(FilesText(static_cast<std::size_t>(sheet.counts.files))));
    out.Write(item(CountText(sheet.folders.size(), "folder", "folders")));
    for (std::size_t i = 0; i < kFileTypes.size(); ++i) {
        if (sheet.counts.byType[i] > 0) {
            out.Write(item(std::string(TypeText(kFileTypes[i])) + " " + std::to_string(sheet.counts.byType[i])));
        }
    }
    out.Write("</ul>\n");
}

void WriteWarnings(Output& out, const std::vector<Finding>& warnings) {
    if (warnings.empty()) {
        return;
    }
    out.Write("<div class=\"warnings\"><h2>What is missing or odd</h2><ul>\n");
    for (const Finding& warning : warnings) {
        out.Write("<li>" + HtmlText(warning.text) + "</li>\n");
    }
    out.Write("</ul></div>\n");
}

void WriteNavigation(Output& out, const SheetContent& sheet) {
    const bool many = sheet.folders.size() > kFewFolders;
    out.Write("<nav aria-label=\"Folders and figures\">");
    out.Write(many ? "<details><summary>Go to a folder</summary>" : "");
    out.Write("<ul class=\"row\">");
    for (std::size_t i = 0; i < sheet.folders.size(); ++i) {
        out.Write("<li>" + FolderLink(i, sheet.folders[i]) + "</li>");
    }
    out.Write("<li><a href=\"#numbers\">Numbers</a></li><li><a href=\"#check\">Check</a></li></ul>");
    out.Write(many ? "</details></nav>\n" : "</nav>\n");
}

void WriteHead(Output& out, const SheetContent& sheet) {
    out.Write(kSignature);
    out.Write(kHead);
    out.Write("<title>Contact sheet of " + HtmlName(sheet.name) + "</title>\n<style>");
    out.Write(kSheetStyle);
    out.Write("</style>\n</head>\n<body>\n");
    out.Write(kSheetDrawings);
    out.Write("\n<a class=\"skip\" href=\"#pictures\">To the pictures</a>\n<header>\n<h1>Contact sheet of " +
              HtmlName(sheet.name) + "</h1>\n<p class=\"dim\">The card's folder: <span class=\"card\">" +
              HtmlName(sheet.root.empty() ? "/" : sheet.root) + "</span></p>\n");
    WriteCounts(out, sheet);
    WriteWarnings(out, sheet.warnings);
    WriteNavigation(out, sheet);
    out.Write("</header>\n<main id=\"pictures\">\n");
}

void WriteFolder(Output& out, std::size_t index, const SheetContent& sheet, const Illustrate& illustrate) {
    const SheetFolder& folder = sheet.folders[index];
    const std::string id = "folder-" + std::to_string(index);
    out.Write("<section class=\"folder\" aria-labelledby=\"" + id + "\">\n<h2 id=\"" + id + "\">" +
              HtmlName(folder.name) + " " + Tag("span", "dim", FilesText(folder.count)) + "</h2>\n");
    if (folder.count > 0) {
        out.Write("<ol class=\"grid\">\n");
        for (std::size_t i = 0; i < folder.count && out.Error() == 0; ++i) {
            const FileEntry& file = sheet.files[folder.first + i];
            out.Write(FileHtml(folder, file, illustrate(file)));
        }
        out.Write("</ol>\n");
    }
    out.Write("</section>\n");
}

} // namespace

std::string_view SheetSignature() {
    return kSignature;
}

void WriteSheet(Output& out, const SheetContent& sheet, const Illustrate& illustrate) {
    WriteHead(out, sheet);
    for (std::size_t i = 0; i < sheet.folders.size() && out.Error() == 0; ++i) {
        WriteFolder(out, i, sheet, illustrate);
    }
    if (sheet.files.empty()) {
        out.Write("<p>There are no files in the list.</p>\n");
    }
    WriteNumbers(out, sheet);
    WriteCheck(out, sheet.check);
    out.Write("</main>\n<footer><p class=\"dim\">Made by dcfctl. Thumbnails and figures are as the card was when this "
              "sheet was made.</p></footer>\n</body>\n</html>\n");
}

} // namespace dcfctl
