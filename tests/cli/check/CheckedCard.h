// CheckedCard: a card whose files have the contents that their extensions promise, and what check has to say about it.
// One thread.
#ifndef TESTS_CLI_CHECK_CHECKED_CARD_H
#define TESTS_CLI_CHECK_CHECKED_CARD_H

#include <cstddef>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Card.h"
#include "Cli.h"

namespace clitest {

using Json = nlohmann::ordered_json;

class CheckedCard : public dcftest::Card {
public:
    /// With a "DCIM".
    CheckedCard();
    /// With a root whose path has that many characters.
    explicit CheckedCard(std::size_t rootLength);

    /// Makes files with the first bytes of their kind.
    CheckedCard& Put(const std::string& folder, const std::vector<std::string>& names);
    CheckedCard& PutContent(const std::string& folder, const std::string& name, const std::string& content);
    /// Makes folders.
    CheckedCard& Make(const std::vector<std::string>& folders);
    /// Makes an empty file in "DCIM" itself.
    CheckedCard& PutIntoDcim(const std::string& name);

    /// Runs check with --json and expects one document, whose figures close.
    [[nodiscard]] Json Check(const Words& more = {}, const Options& options = {}) const;
    /// The same with explain.
    [[nodiscard]] Json Explain(const std::string& what, const Words& more = {}) const;
};

/// The first bytes of a file of that extension, as a camera writes them.
[[nodiscard]] std::string ContentFor(const std::string& name);

/// Of the findings with a code: "PATH: MESSAGE", the path from "DCIM" on.
[[nodiscard]] Words Of(const Json& check, const std::string& code);

/// The codes that were found, but for notes.
[[nodiscard]] Words Codes(const Json& check);

/// "ENTRIES LISTED COMPANIONS LEFT-OUT".
[[nodiscard]] std::string Figures(const Json& check);

} // namespace clitest

#endif
