// The results of the verbs that change a card or name files, as text for people. Used by the renderer. Any thread.
#ifndef DCFCTL_CHANGE_TEXT_H
#define DCFCTL_CHANGE_TEXT_H

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "AddVerb.h"
#include "NameVerbs.h"
#include "ProtectVerbs.h"
#include "RemoveVerb.h"
#include "RenumberVerb.h"
#include "SeriesVerb.h"

namespace dcfctl {

/// "2 files with 1 companion (3.4 MB) and 1 folder".
[[nodiscard]] std::string CountsText(const RemovalCounts& counts);

class ChangeText {
public:
    /// Makes a name fit to be shown where the text goes.
    using Show = std::function<std::string(std::string_view)>;

    explicit ChangeText(Show show) : m_show(std::move(show)) {}

    /// What is going to be deleted: the first paths, and the counts.
    [[nodiscard]] std::string Of(const RemovalPlan& plan, bool wholeList) const;
    [[nodiscard]] std::string Of(const RemovalResult& result) const;
    [[nodiscard]] std::string Of(const ProtectionResult& result) const;
    [[nodiscard]] std::string Of(const LatestNameResult& result) const;
    [[nodiscard]] std::string Of(const CapacityResult& result) const;
    [[nodiscard]] std::string Of(const NextNameResult& result) const;
    [[nodiscard]] std::string Of(const AddResult& result) const;
    [[nodiscard]] std::string Of(const RenumberResult& result) const;
    [[nodiscard]] std::string Of(const SeriesResult& result) const;

private:
    [[nodiscard]] std::string Lines(const std::vector<std::string>& paths) const;
    [[nodiscard]] std::string MadeLines(const std::vector<std::string>& made, bool dryRun) const;

    Show m_show;
};

} // namespace dcfctl

#endif
