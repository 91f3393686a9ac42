// Draws the browser on the screen of curses. Decides where everything stands and nothing else. One thread.
#ifndef DCFCTL_BROWSE_VIEW_H
#define DCFCTL_BROWSE_VIEW_H

#include <optional>
#include <string>
#include <vector>

#include "BrowseModel.h"
#include "Preview.h"

namespace dcfctl {

enum class BrowsePage { kList, kHelp, kNotes };

/// What is to be seen, beside the list itself.
struct BrowseScene {
    BrowsePage page = BrowsePage::kList;
    int top = 0; ///< Position of the first row.
    std::vector<BrowseRow> rows;
    BrowseFacts photo;                 ///< Of the file at the cursor.
    std::string message;               ///< Escaped.
    bool trouble = false;              ///< The message tells of one.
    std::optional<std::string> prompt; ///< What stands in front of what is typed.
    std::wstring typed;
};

class BrowseView {
public:
    /// @param colours, manyColours what the terminal has.
    BrowseView(bool colours, bool manyColours);

    /// Rows of the list that fit on the screen as it is now; 0 when it is too small for any.
    [[nodiscard]] int ListRows() const;
    [[nodiscard]] bool IsTooSmall() const;
    void Draw(const BrowseModel& model, const BrowseScene& scene, const Preview& preview);
    /// The picture that there was room for when it was drawn last: of no size when there was none.
    [[nodiscard]] const PreviewWish& Wanted() const {
        return m_wanted;
    }

private:
    struct Size {
        int rows;
        int columns;
    };

    [[nodiscard]] Size Screen() const;
    [[nodiscard]] int ListColumns() const;
    void DrawTitle(const BrowseModel& model) const;
    void DrawRows(const BrowseModel& model, const BrowseScene& scene) const;
    void DrawDetails(const BrowseModel& model, const BrowseScene& scene, const Preview& preview);
    void DrawPreview(int top, int left, int rows, int columns, const BrowseRow& row, const Preview& preview);
    void DrawImage(int top, int left, const PreviewImage& image) const;
    void DrawPage(const BrowseModel& model, const BrowseScene& scene) const;
    void DrawFoot(const BrowseScene& scene) const;
    void DrawPrompt(const BrowseScene& scene) const;

    bool m_colours;
    bool m_manyColours;
    bool m_utf8;
    PreviewWish m_wanted;
};

} // namespace dcfctl

#endif
