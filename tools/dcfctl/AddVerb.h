// add: copies pictures and movies onto the card under the next names. Everything that can be known is looked at before
// the first number is taken. One thread.
#ifndef DCFCTL_ADD_VERB_H
#define DCFCTL_ADD_VERB_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Findings.h"
#include "ListVerbs.h"
#include "Naming.h"
#include "Output.h"

namespace dcfctl {

struct AddOptions {
    std::vector<std::string> files;
    NamingOptions naming;
    bool dryRun = false;
};

struct AddedFile {
    std::string source;
    std::string path;
    std::uint64_t bytes = 0;
    bool companion = false; ///< Of the file before it.
};

struct AddResult {
    std::string root;
    bool dryRun = false;
    bool series = false;
    std::vector<AddedFile> files;
    std::vector<std::string> notAdded; ///< Sources that were not reached, or failed.
    std::vector<std::string> made;     ///< Paths of the folders that were made, or would be.
    std::uint64_t bytes = 0;
    std::optional<long> stored; ///< The series value; nothing when no number was taken.
    std::optional<long> storedBefore;
};

[[nodiscard]] Report<AddResult> Add(const CardOptions& card, const AddOptions& options, Output& err);

} // namespace dcfctl

#endif
