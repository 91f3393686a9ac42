// The lock; see the header.
#include "CardLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>

#include "Phrases.h"
#include "Text.h"

namespace dcfctl {

CardLock::CardLock(const std::string& root)
    : m_fd(open(root.empty() ? "/" : root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (m_fd >= 0 && flock(m_fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        m_refusal = Refused("card-busy", "another dcfctl is changing the card at " + Quoted(root) +
                                             ", so nothing was changed; try again when it is done");
    }
}

CardLock::~CardLock() {
    if (m_fd >= 0) {
        close(m_fd);
    }
}

} // namespace dcfctl
