// The way out of a documented end of the process: what would abort is left by an exception instead, so that a fuzzer
// goes on with the next input. It is thrown in the platform's log, at the assertion's last line, and every object of
// the library is destroyed on its way. The list is of no further use then. One thread.
#ifndef TESTS_FUZZ_ESCAPE_H
#define TESTS_FUZZ_ESCAPE_H

#include <string>

namespace dcffuzz {

/// An assertion has failed.
struct Ended {
    std::string condition;
    std::string info;
};

/// From now on, until the fake platform is reset.
void EscapeAssertions();

} // namespace dcffuzz

#endif
