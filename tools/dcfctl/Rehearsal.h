// Tries an operation out in a child process, which shares the card and has a copy of everything else. An assertion of
// the library then ends the child and not the tool. Only for operations that leave the card alone.
#ifndef DCFCTL_REHEARSAL_H
#define DCFCTL_REHEARSAL_H

#include <functional>

namespace dcfctl {

enum class Rehearsed {
    kFine,     ///< It came through.
    kFatal,    ///< It ended the child.
    kThrew,    ///< It threw an exception.
    kNotTried, ///< No child could be made; the last net must do.
};

Rehearsed Rehearse(const std::function<void()>& operation);

} // namespace dcfctl

#endif
