// Foretells the next new file names without taking them: which number, in which folder, whether that is made, and what
// the series value becomes. What a prediction finds in its way is refused before a number is lost. Reads the card and
// never changes it. One thread.
#ifndef DCFCTL_NUMBERING_H
#define DCFCTL_NUMBERING_H

#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <variant>

#include "CardFiles.h"
#include "CardInspector.h"
#include "Findings.h"
#include "Naming.h"

namespace dcfctl {

/// A name that will be given.
struct NewName {
    std::string folder; ///< Its name.
    std::string file;
    std::string path;
    bool makesFolder = false;
    int folderNumber = 0; ///< Of the number that is taken and stored ...
    int fileNumber = 0;
    long stored = 0; ///< ... as the series value.
};

class Numbering {
public:
    struct Start {
        std::string dcim;     ///< Path of "DCIM"; it need not be there yet.
        int firstIndex = 0;   ///< Number index of the newest file on the card.
        int files = 0;        ///< In the list.
        bool series = false;  ///< Series numbering is on.
        long seriesValue = 0; ///< The stored one.
    };
    /// @param report what a look at the card has found; must outlive this.
    Numbering(Start start, const CardReport& report);

    /// Takes the next number in this prediction. @return the name, or why none can be given.
    [[nodiscard]] std::variant<NewName, Finding> Take(const NameParts& parts);

private:
    struct Folder {
        std::string name;
        int number;
    };

    void RaiseToSeries();
    [[nodiscard]] bool TakenByOther(int number, const std::string& suffix) const;
    [[nodiscard]] std::optional<Finding> UsedUp() const;
    /// @param required receives whether a folder is to be made whatever the card has.
    [[nodiscard]] std::optional<Finding> ChooseNumber(const std::string& suffix, NewName& name, bool& required) const;
    [[nodiscard]] std::optional<Finding> ChooseFolder(const std::string& wanted, bool required, NewName& name);
    [[nodiscard]] std::optional<Finding> PrepareFolder(const std::string& wanted, NewName& name);
    [[nodiscard]] std::optional<Finding> CheckNewFolder(const NewName& name) const;
    [[nodiscard]] std::optional<Finding> CheckPlace(const NewName& name);
    [[nodiscard]] bool Exists(const std::string& folder) const;

    Start m_start;
    const CardReport& m_report;
    std::deque<Folder> m_folders; ///< In list order.
    std::set<std::string> m_made; ///< Names of folders that will have been made.
    std::map<std::string, FolderContents> m_contents;
};

} // namespace dcfctl

#endif
