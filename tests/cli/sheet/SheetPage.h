// SheetPage: a contact sheet as a parser sees it. The sheet has to be XML as well as HTML, and a parser of XML lets no
// mistake in the markup pass. One thread.
#ifndef TESTS_CLI_SHEET_SHEET_PAGE_H
#define TESTS_CLI_SHEET_SHEET_PAGE_H

#include <memory>
#include <string>
#include <vector>

#include "Cli.h"

struct _xmlDoc;

namespace clitest {

class SheetPage {
public:
    /// Throws std::runtime_error for a text that is not well-formed.
    explicit SheetPage(const std::string& html);

    /// The text of each node that an XPath expression finds; element names stand behind "h:".
    [[nodiscard]] Words All(const std::string& xpath) const;
    /// The text of the only node; throws where there are none or more.
    [[nodiscard]] std::string One(const std::string& xpath) const;
    [[nodiscard]] std::size_t Count(const std::string& xpath) const {
        return All(xpath).size();
    }
    /// The thumbnail of the file at a position of the list, as bytes; empty where there is none.
    [[nodiscard]] std::string Thumbnail(int position) const;
    /// The alternative text of the picture at a position, or of what stands in its place.
    [[nodiscard]] std::string Alternative(int position) const;
    /// The runs of used or free numbers of a folder, or of the "Folder numbers", with their count.
    [[nodiscard]] std::string Runs(const std::string& title, const std::string& kind) const;

    /// What finds the file at a position.
    [[nodiscard]] static std::string File(int position) {
        return "//h:li[@id='file-" + std::to_string(position) + "']";
    }

private:
    std::shared_ptr<_xmlDoc> m_document;
};

/// The sheet of a card, which goes to standard output.
[[nodiscard]] SheetPage SheetOf(const std::string& root, const Words& options = {});

} // namespace clitest

#endif
