// Keeps two runs of the tool from changing one card at the same time: each would work from a list that the other makes
// untrue. Held from before the card is looked at until the change is done. One thread.
#ifndef DCFCTL_CARD_LOCK_H
#define DCFCTL_CARD_LOCK_H

#include <optional>
#include <string>

#include "Findings.h"

namespace dcfctl {

class CardLock {
public:
    /// Tries to take the lock. A card that cannot be locked, or is not there, is left to the checks that follow.
    explicit CardLock(const std::string& root);
    CardLock(const CardLock&) = delete;
    CardLock& operator=(const CardLock&) = delete;
    ~CardLock();

    /// Another run has it.
    [[nodiscard]] const std::optional<Finding>& Refusal() const {
        return m_refusal;
    }

private:
    int m_fd;
    std::optional<Finding> m_refusal;
};

} // namespace dcfctl

#endif
