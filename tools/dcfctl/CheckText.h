// The results of check and explain, as text for people. Used by the renderer. Any thread.
#ifndef DCFCTL_CHECK_TEXT_H
#define DCFCTL_CHECK_TEXT_H

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "CheckVerb.h"
#include "ExplainVerb.h"

namespace dcfctl {

class CheckText {
public:
    /// Makes a name fit to be shown where the text goes; the second does the same for a text that is escaped already.
    using Show = std::function<std::string(std::string_view)>;

    CheckText(Show name, Show text) : m_name(std::move(name)), m_text(std::move(text)) {}

    [[nodiscard]] std::string Of(const CheckResult& result) const;
    [[nodiscard]] std::string Of(const ExplainResult& result) const;

private:
    [[nodiscard]] std::string Section(const CheckResult& result, Severity severity) const;
    [[nodiscard]] std::string Group(const CheckResult& result, std::size_t begin, std::size_t end) const;
    [[nodiscard]] std::string Of(const ExplainedEntry& entry, const std::string& root) const;
    [[nodiscard]] std::string PlaceLine(const ExplainedEntry& entry, const std::string& root) const;
    /// From the card's folder on.
    [[nodiscard]] std::string Path(const std::string& path, const std::string& root) const;

    Show m_name;
    Show m_text;
};

} // namespace dcfctl

#endif
