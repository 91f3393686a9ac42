// ChangeCard: a card for tests of the changing verbs, with a preference store of its own beside it. A file's content is
// its own name and folder, so that a file which was taken for another one is noticed. One thread.
#ifndef TESTS_CLI_CHANGE_CHANGE_CARD_H
#define TESTS_CLI_CHANGE_CHANGE_CARD_H

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "Card.h"
#include "Cli.h"

namespace clitest {

using Json = nlohmann::json;

class ChangeCard : public dcftest::Card {
public:
    /// With a prefix of four characters for the names of files.
    ChangeCard();

    /// Makes files with their contents.
    ChangeCard& Put(const std::string& folder, const std::vector<std::string>& names);
    ChangeCard& PutProtected(const std::string& folder, const std::vector<std::string>& names);
    /// What a file made by Put holds.
    static std::string ContentOf(const std::string& folder, const std::string& name);
    /// Whether a file made by Put is still there, whole.
    [[nodiscard]] bool Holds(const std::string& folder, const std::string& name) const;

    /// The environment with this card's store.
    [[nodiscard]] Options Environment() const;
    /// Runs dcfctl over the card.
    [[nodiscard]] Outcome Run(const Words& words) const;
    [[nodiscard]] Outcome Run(const Words& words, Options options) const;
    /// Runs it with --json, and expects one document.
    [[nodiscard]] Json RunJson(const Words& words) const;
    /// The series value in this card's store.
    [[nodiscard]] long Series() const;
    void SetSeries(long value) const;

    /// Everything on the card, and the store's content.
    [[nodiscard]] Words Before() const;
    /// A folder beside the card for sources; made on demand, removed with the card.
    [[nodiscard]] std::string Beside() const;
    /// A file there. @return its path.
    std::string Source(const std::string& name, const std::string& content, long mtime = 1714557600) const;
    [[nodiscard]] std::string Store() const {
        return m_beside.Root() + "/preferences";
    }

private:
    dcftest::Card m_beside;
};

/// The part of standard error behind "dcfctl: error: ", one line.
[[nodiscard]] std::string ErrorOf(const Outcome& outcome);

/// Runs what has to be refused with a code: it says so on standard error alone and changes neither card nor store.
/// @return its one line, as ErrorOf() gives it.
[[nodiscard]] std::string RefusalOf(const ChangeCard& card, const Words& words, int code = kRefused);

/// The paths in an array of objects with "path".
[[nodiscard]] Words PathsIn(const Json& array);

/// The environment for a run with the calls of the shim library (see Shim.cpp) switched on.
[[nodiscard]] Options WithShim(Options options, const std::string& what);

} // namespace clitest

#endif
