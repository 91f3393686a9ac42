// The findings; see the header.
#include "SheetCheckHtml.h"

#include <cstddef>
#include <string>
#include <vector>

#include "Html.h"
#include "Phrases.h"

namespace dcfctl {
namespace {

/// More of a kind are counted only: a sheet is there for the pictures.
constexpr std::size_t kShown = 10;

std::string Figure(std::size_t count, const char* one, const char* many) {
    return "<li>" + CountText(count, one, many) + "</li>";
}

void WriteFigures(Output& out, const CheckFigures& figures) {
    out.Write("<ul class=\"row figures\" aria-label=\"Figures\">" + Figure(figures.leftOut, "left out", "left out") +
              Figure(figures.hazards, "hazard", "hazards") + Figure(figures.notes, "note", "notes"));
    if (figures.numbersLeft.has_value()) {
        out.Write(Figure(static_cast<std::size_t>(*figures.numbersLeft), "number left", "numbers left"));
    }
    out.Write("</ul>\n<p class=\"sum\">" + CountText(figures.entries, "entry", "entries") + " = " +
              std::to_string(figures.listed) + " listed + " + CountText(figures.companions, "companion", "companions") +
              " + " + std::to_string(figures.leftOut) + " left out</p>\n");
}

/// A path from the card's folder on; the card's own as it is.
std::string FromCard(const std::string& path, const std::string& root) {
    return path.rfind(root + "/", 0) == 0 && path.size() > root.size() + 1 ? path.substr(root.size() + 1) : path;
}

/// The findings of one code, which stand together.
void WriteKind(Output& out, const CheckFinding* first, const CheckFinding* last, const std::string& root) {
    const CheckCodeRow& row = first->Row();
    const auto count = static_cast<std::size_t>(last - first);
    out.Write(std::string("<li class=\"finding ") + row.name + "\"><h3>" + HtmlText(row.title) +
              " <span class=\"dim\">" + SeverityName(row.severity) + ", " + std::to_string(count) +
              "</span></h3><p>To do: " + HtmlText(row.cure) + "</p><ul>\n");
    for (std::size_t i = 0; i < count && i < kShown; ++i) {
        out.Write("<li>" + HtmlName(FromCard(first[i].path, root)) + ": " + HtmlText(first[i].text) + "</li>\n");
    }
    if (count > kShown) {
        out.Write("<li>and " + std::to_string(count - kShown) + " more, which dcfctl check --all shows</li>\n");
    }
    out.Write("</ul></li>\n");
}

} // namespace

void WriteCheck(Output& out, const CheckResult& check) {
    out.Write(
        "<section id=\"check\" aria-labelledby=\"check-title\">\n<h2 id=\"check-title\">Check of the card</h2>\n");
    WriteFigures(out, check.figures);
    const CheckFinding* const end = check.findings.data() + check.findings.size();
    if (!check.findings.empty()) {
        out.Write("<ul class=\"findings\">\n");
        for (const CheckFinding* first = check.findings.data(); first != end;) {
            const CheckFinding* last = first;
            while (last != end && last->code == first->code) {
                ++last;
            }
            WriteKind(out, first, last, check.root);
            first = last;
        }
        out.Write("</ul>\n");
    }
    out.Write("</section>\n");
}

} // namespace dcfctl
