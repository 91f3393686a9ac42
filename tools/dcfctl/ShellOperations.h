// The operations of the file list as the shell offers them: each by its own name, with its arguments, and with what has
// to be looked at before it may run. One thread.
#ifndef DCFCTL_SHELL_OPERATIONS_H
#define DCFCTL_SHELL_OPERATIONS_H

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "CSFileListItem.h"
#include "Findings.h"
#include "ISFileList.h"
#include "ShellParser.h"
#include "ShellTypes.h"

namespace dcfctl {

inline constexpr const char* kStandardPrefix = "KVR_";
inline constexpr const char* kOptionalPrefix = "_KVR";
/// The photo collector that reads the pictures.
inline constexpr const char* kExifCollector = "exif";

/// What a shell works on.
struct ShellState {
    std::string root;           ///< The card of the next listing.
    std::string listedRoot;     ///< The card of the present one.
    ISFileList* list = nullptr; ///< Null after Destroy.
    bool camera = true;         ///< The next listing takes the "Camera" folder in.
    bool listed = false;
    CSFileListItem item; ///< The one that was filled last.
    bool hasItem = false;

    // What a new name will be made of.
    std::string prefix = kStandardPrefix;
    bool dateNames = false;
    std::set<std::string> folders; ///< The folders that the list knows.
};

enum class ArgumentKind {
    kFlag,
    kNumber,
    kPosition,
    kPath,
    kText,
    kType,
    kNameMake,
    kColour,
    kImage,
    kCollector,
    kNull,     ///< Nothing, or "null" in the place of the item.
    kOptional, ///< A text that may be left out.
};

struct Argument {
    ArgumentKind kind = ArgumentKind::kNull;
    int number = 0;
    std::optional<std::string> text; ///< Nothing for null.
};

using Arguments = std::vector<Argument>;

/// What has to be true before an operation runs; to be combined.
enum Guard : unsigned {
    kNone = 0,
    kRehearse = 1U << 0U,     ///< It leaves the card alone: a child process tries it out first.
    kNeedsListing = 1U << 1U, ///< Fatal before Listup, and not to be tried out.
    kFirstFile = 1U << 2U,    ///< Works on the first file: GetFirst is tried out instead.
    kUsesItem = 1U << 3U,     ///< Works on the item that was filled last.
    kKnownItem = 1U << 4U,    ///< Changes the item's file, which the list must be able to find: GetInfo is tried out.
    kSelection = 1U << 5U,    ///< Fatal for a selection that is empty or holds positions beyond the list.
    kListing = 1U << 6U,      ///< Lists the card, which is looked at beforehand.
    kNoList = 1U << 7U,       ///< Works without a file list.
    kNewName = 1U << 8U,      ///< Makes a name and perhaps a folder.
    kOwnNumbers =
        1U << 9U,         ///< Lists again or moves the cursor when the card has changed: no folders may share a number.
    kRelists = 1U << 10U, ///< Lists again when the card has changed, perhaps another card.
};

struct Operation {
    const char* name;
    const char* signature; ///< Its arguments, for the help.
    const char* summary;
    std::vector<ArgumentKind> kinds;
    unsigned guards;
    CallResult (*call)(ShellState& state, const Arguments& arguments);
};

/// All 47 operations of the interface, family by family, then the manager's.
[[nodiscard]] const std::vector<Operation>& Operations();
[[nodiscard]] const Operation* FindOperation(std::string_view name);

// One table for each family; Operations() puts them together.
[[nodiscard]] std::vector<Operation> ListingOperations();
[[nodiscard]] std::vector<Operation> BrowsingOperations();
[[nodiscard]] std::vector<Operation> ChangingOperations();
[[nodiscard]] std::vector<Operation> NamingOperations();
[[nodiscard]] std::vector<Operation> ManagerOperations();

/// @return the arguments, or why the words are none for this operation.
[[nodiscard]] std::variant<Arguments, std::string> ReadArguments(const Operation& operation,
                                                                 const std::vector<Word>& words);
/// What may stand in the place of an argument, for completion.
[[nodiscard]] std::vector<std::string> WordsFor(ArgumentKind kind);

/// The folders of the card as a listing takes them.
[[nodiscard]] std::set<std::string> FoldersOnCard(const ShellState& state);

/// Why the operation must not run now; nothing when it may. What is read-only has then been tried out.
[[nodiscard]] std::optional<Finding> CheckOperation(ShellState& state, const Operation& operation,
                                                    const Arguments& arguments);

} // namespace dcfctl

#endif
