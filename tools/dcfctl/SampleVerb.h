// The verb that makes a sample card to try things on. It touches nothing that was there before.
#ifndef DCFCTL_SAMPLE_VERB_H
#define DCFCTL_SAMPLE_VERB_H

#include <string>

#include "Findings.h"

namespace dcfctl {

struct SampleResult {
    std::string root;
    int files = 0; ///< Companions included.
    int folders = 0;
    int protectedFiles = 0;
    int unprotectedFiles = 0; ///< That the file system would not protect.
};

/// @param root the card's folder; it is made when it is missing. It must hold nothing called "DCIM".
[[nodiscard]] Report<SampleResult> MakeSample(const std::string& root);

} // namespace dcfctl

#endif
