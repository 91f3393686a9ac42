// Drawing; see the header. Sections: text, the list, the details, the other pages, the whole.
#include "BrowseView.h"

#include <curses.h>
#include <langinfo.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <utility>

#include "BrowseKeys.h"
#include "DcfNames.h"
#include "Text.h"
#include "WideText.h"

namespace dcfctl {
namespace {

constexpr int kLeastRows = 6;
constexpr int kLeastColumns = 40;
/// Title and headings above the list, hints below it.
constexpr int kAbove = 2;
constexpr int kBelow = 2;
constexpr int kListColumns = 46;
constexpr int kMostListColumns = 64;
/// With less, the details have no place.
constexpr int kLeastDetails = 28;
constexpr int kLeastPreviewRows = 4;

constexpr short kTroublePair = 1;
constexpr short kMarkPair = 2;
constexpr short kFirstPicturePair = 16;

// ---- Text

void Put(int y, int x, const std::wstring& text, attr_t attributes = A_NORMAL, short pair = 0) {
    (void)attr_set(attributes, pair, nullptr); // what a terminal cannot do, it leaves out
    (void)mvaddnwstr(y, x, text.c_str(), static_cast<int>(text.size()));
    (void)attr_set(A_NORMAL, 0, nullptr);
}

std::size_t Count(int columns) {
    return static_cast<std::size_t>(std::max(0, columns));
}

std::string Padded(const std::string& text, std::size_t width) {
    return std::string(width > text.size() ? width - text.size() : 0, ' ') + text;
}

std::string MarksOf(const BrowseRow& row) {
    std::string marks = row.selected ? "*" : " ";
    if (!row.file.details.has_value()) {
        return marks + "??";
    }
    marks += row.file.details->protect ? 'P' : ' ';
    marks += row.file.details->wifi ? 'W' : ' ';
    return marks;
}

std::string NumberOf(const FileEntry::Details& details) {
    if (details.directoryNumber == kCameraNumber) {
        return std::to_string(details.fileNumber) + " (Camera)";
    }
    std::string file = std::to_string(details.fileNumber);
    file.insert(0, file.size() < 4 ? 4 - file.size() : 0, '0');
    return std::to_string(details.directoryNumber) + "-" + file;
}

std::string ShownTime(std::uint32_t time) {
    std::string text = UtcTime(time);
    if (text.empty()) {
        return "unknown";
    }
    std::replace(text.begin(), text.end(), 'T', ' ');
    text.pop_back();
    return text;
}

BrowseFacts FactsOf(const BrowseRow& row, int count) {
    const FileEntry& file = row.file;
    const PathParts parts = SplitPath(file.path);
    const std::string unknown = "not to be had";
    BrowseFacts facts = {{"Position", std::to_string(file.position) + " of 0 to " + std::to_string(count - 1)},
                         {"File", Escaped(parts.file)},
                         {"Folder", Escaped(parts.folder)},
                         {"Number", file.details.has_value() ? NumberOf(*file.details) : unknown},
                         {"Type", TypeText(file.type)}};
    const std::string companion =
        file.companion.has_value() ? Escaped(SplitPath(file.companion->path).file) : std::string("none");
    facts.emplace_back("Companion", companion);
    facts.emplace_back("Protected", !file.details.has_value() ? unknown : file.details->protect ? "yes" : "no");
    facts.emplace_back("Transfer", !file.details.has_value() ? unknown : file.details->wifi ? "marked" : "no");
    facts.emplace_back("Time (UTC)", ShownTime(file.time));
    return facts;
}

/// Pairs of colours for a picture, made as they are met. Those of the picture before are made anew.
class Pairs {
public:
    short For(const PreviewCell& cell) {
        const auto [known, added] = m_pairs.try_emplace({cell.foreground, cell.background}, m_next);
        if (added &&
            (m_next >= std::min(COLOR_PAIRS, 32767) || init_pair(m_next++, cell.foreground, cell.background) == ERR)) {
            known->second = 0;
        }
        return known->second;
    }

private:
    std::map<std::pair<int, int>, short> m_pairs;
    short m_next = kFirstPicturePair;
};

} // namespace

BrowseView::BrowseView(bool colours, bool manyColours)
    : m_colours(colours), m_manyColours(manyColours), m_utf8(std::strcmp(nl_langinfo(CODESET), "UTF-8") == 0) {
    if (m_colours) {
        (void)init_pair(kTroublePair, COLOR_RED, -1); // without it the text is bold all the same
        (void)init_pair(kMarkPair, COLOR_GREEN, -1);
    }
}

BrowseView::Size BrowseView::Screen() const {
    return {getmaxy(stdscr), getmaxx(stdscr)};
}

bool BrowseView::IsTooSmall() const {
    return Screen().rows < kLeastRows || Screen().columns < kLeastColumns;
}

int BrowseView::ListRows() const {
    return IsTooSmall() ? 0 : Screen().rows - kAbove - kBelow;
}

int BrowseView::ListColumns() const {
    const int columns = Screen().columns;
    constexpr int kDetails = 46; // of what a wide screen has more, the details have theirs first
    return columns >= kListColumns + 1 + kLeastDetails ? std::clamp(columns - kDetails, kListColumns, kMostListColumns)
                                                       : columns;
}

// ---- The list

void BrowseView::DrawTitle(const BrowseModel& model) const {
    const std::string count = model.Count() == 1 ? "1 file" : std::to_string(model.Count()) + " files";
    const std::string selected = model.Selected() > 0 ? ", " + std::to_string(model.Selected()) + " selected" : "";
    const std::wstring right = Wide("  " + count + selected + " ");
    const std::wstring left = Wide(" dcfctl browse  " + Escaped(model.Root().empty() ? "/" : model.Root()));
    const int room = Screen().columns - static_cast<int>(Columns(right));
    Put(0, 0, FittedAtEnd(left, Count(room)) + right, A_REVERSE | A_BOLD);
}

void BrowseView::DrawRows(const BrowseModel& model, const BrowseScene& scene) const {
    const std::size_t digits = std::max<std::size_t>(3, std::to_string(model.Count()).size());
    const auto columns = Count(ListColumns());
    const auto shown = std::min(scene.rows.size(), Count(ListRows()));
    Put(1, 0, Fitted(Wide("     " + Padded("POS", digits) + " TYPE    FILE"), columns), A_BOLD);
    for (std::size_t i = 0; i < shown; ++i) {
        const BrowseRow& row = scene.rows[i];
        const PathParts parts = SplitPath(row.file.path);
        const bool here = row.file.position == model.Cursor();
        const std::string companion =
            row.file.companion.has_value() ? std::string("+") + TypeText(row.file.companion->type) : "    ";
        const std::wstring head =
            Wide((here ? ">" : " ") + MarksOf(row) + " " + Padded(std::to_string(row.file.position), digits) + " " +
                 TypeText(row.file.type) + companion + " ");
        const std::wstring name = Wide(Escaped(parts.folder) + "/" + Escaped(parts.file));
        const std::size_t room = columns > head.size() ? columns - head.size() : 0;
        const attr_t attributes = (here ? A_REVERSE : A_NORMAL) | (row.selected ? A_BOLD : A_NORMAL);
        Put(kAbove + static_cast<int>(i), 0, head + FittedAtEnd(name, room), attributes,
            row.selected && m_colours ? kMarkPair : short{0});
    }
    if (scene.rows.empty()) {
        Put(kAbove + 1, 2, Wide("There is no picture or movie on this card."));
    }
}

// ---- The details

void BrowseView::DrawDetails(const BrowseModel& model, const BrowseScene& scene, const Preview& preview) {
    constexpr int kLabel = 11;
    const int left = ListColumns() + 2;
    const int columns = Screen().columns - left;
    const auto here = std::find_if(scene.rows.begin(), scene.rows.end(),
                                   [&](const BrowseRow& row) { return row.file.position == model.Cursor(); });
    if (ListColumns() == Screen().columns) {
        return;
    }
    (void)mvvline(1, left - 2, 0, ListRows() + 1); // the default character is the terminal's line
    if (here == scene.rows.end()) {
        return;
    }
    int y = 1;
    const int end = kAbove + ListRows();
    BrowseFacts facts = FactsOf(*here, model.Count());
    facts.insert(facts.end(), scene.photo.begin(), scene.photo.end());
    for (const auto& [label, text] : facts) {
        if (y < end) {
            Put(y, left, Fitted(Wide(label), kLabel), A_BOLD);
            Put(y, left + kLabel, Fitted(Wide(text), Count(columns - kLabel)));
            ++y;
        }
    }
    DrawPreview(y + 1, left, end - y - 1, columns, *here, preview);
}

void BrowseView::DrawPreview(int top, int left, int rows, int columns, const BrowseRow& row, const Preview& preview) {
    if (rows < kLeastPreviewRows || !IsPreviewBuilt()) {
        return;
    }
    m_wanted = {row.file.path, columns, rows, m_manyColours, m_utf8};
    if (!(preview.Wish() == m_wanted)) {
        return;
    }
    if (preview.Now() == Preview::State::kReady) {
        DrawImage(top, left, preview.Image());
    } else if (preview.Now() == Preview::State::kNone) {
        Put(top, left, Wide("(no preview)"));
    }
}

void BrowseView::DrawImage(int top, int left, const PreviewImage& image) const {
    Pairs pairs;
    for (std::size_t i = 0; i < image.cells.size(); ++i) {
        const PreviewCell& cell = image.cells[i];
        const int row = static_cast<int>(i) / image.columns;
        const int column = static_cast<int>(i) % image.columns;
        const auto symbol = static_cast<wchar_t>(cell.symbol);
        const std::wstring text(1, wcwidth(symbol) == 1 ? symbol : L' ');
        Put(top + row, left + column, text, A_NORMAL, m_manyColours ? pairs.For(cell) : short{0});
    }
}

// ---- The other pages

void BrowseView::DrawPage(const BrowseModel& model, const BrowseScene& scene) const {
    constexpr std::size_t kKeys = 18;
    const int columns = Screen().columns;
    int y = 1;
    const auto put = [&](const std::wstring& text, int x) {
        if (y < Screen().rows - 1) {
            Put(y++, x, text);
        }
    };
    if (scene.page == BrowsePage::kHelp) {
        for (const BrowseKeyRow& row : kBrowseKeys) {
            put(Fitted(Wide(row.keys), kKeys) + Wide(row.meaning).substr(0, Count(columns - 2) - kKeys), 1);
        }
        return;
    }
    const std::vector<Finding> warnings = model.Warnings();
    if (warnings.empty()) {
        put(Wide("Nothing is odd about this card."), 1);
    }
    for (const Finding& warning : warnings) {
        int x = 1;
        for (const std::wstring& line : Wrapped(Wide(warning.text), Count(columns - 4))) {
            put(line, x);
            x = 3;
        }
    }
}

// ---- The whole

void BrowseView::DrawPrompt(const BrowseScene& scene) const {
    const int y = Screen().rows - 1;
    const std::wstring label = Wide(*scene.prompt);
    const int room = Screen().columns - static_cast<int>(Columns(label)) - 2;
    const std::wstring typed =
        Columns(scene.typed) <= Count(room) ? scene.typed : FittedAtEnd(scene.typed, Count(room));
    Put(y, 0, Fitted(label + typed, Count(Screen().columns - 1)), A_BOLD);
    (void)move(y, static_cast<int>(Columns(label + typed)));
    (void)curs_set(1); // some terminals always show it
}

/// A message may take several lines, over the end of the list.
void BrowseView::DrawFoot(const BrowseScene& scene) const {
    const int columns = Screen().columns;
    const int last = Screen().rows - 1;
    const auto lines = Wrapped(Wide(scene.message), Count(columns - 1));
    const int shown = std::min(static_cast<int>(lines.size()), last - 1);
    for (int i = 0; i < shown; ++i) {
        Put(last - shown + i, 0, Fitted(lines[static_cast<std::size_t>(i)], Count(columns)),
            scene.trouble ? A_BOLD : A_NORMAL, scene.trouble && m_colours ? kTroublePair : short{0});
    }
    if (scene.prompt.has_value()) {
        DrawPrompt(scene);
        return;
    }
    const char* hints = scene.page == BrowsePage::kList
                            ? "q leave  ? help  Space select  p protect  w transfer  d delete  / path"
                            : "any key goes back";
    Put(last, 0, Fitted(Wide(hints), Count(columns - 1)), A_DIM);
}

void BrowseView::Draw(const BrowseModel& model, const BrowseScene& scene, const Preview& preview) {
    m_wanted = PreviewWish{};
    (void)erase();
    (void)curs_set(0);
    if (IsTooSmall()) {
        const std::string text =
            "too small: " + std::to_string(kLeastColumns) + "x" + std::to_string(kLeastRows) + " is needed; q leaves";
        int y = 0;
        for (const std::wstring& line : Wrapped(Wide(text), Count(Screen().columns))) {
            Put(y++, 0, line);
        }
    } else {
        DrawTitle(model);
        if (scene.page == BrowsePage::kList) {
            DrawRows(model, scene);
            DrawDetails(model, scene, preview);
        } else {
            DrawPage(model, scene);
        }
        DrawFoot(scene);
    }
    (void)refresh();
}

} // namespace dcfctl
