// CallFaults: which of the calls that the reference makes fails, and behind which change the power goes. The names and
// the counting are PosixSeam's, with "pref_get" and "pref_set" for the preference service.
#ifndef TESTS_MODEL_WHOLE_CALL_FAULTS_H
#define TESTS_MODEL_WHOLE_CALL_FAULTS_H

#include <map>
#include <string>

namespace dcftest {

/// The power goes.
struct PowerCut {};

struct CallFaults {
    std::string name;        ///< Of the call that fails; "card" for every call that reaches the card.
    int nth = 0;             ///< Which one of them; 1 is the next.
    bool persistent = false; ///< Every later one, too.
    long value = 0;          ///< What a failing pref_get gives.
    int cutAfter = 0;        ///< Changes of card and preference store until the power goes; 0: never.

    int fired = 0;
    int changes = 0;
    std::map<std::string, int> seen; ///< How often each call was made.

    /// Counts a call. @return whether it fails.
    bool Fails(const std::string& call) {
        ++seen[call];
        const bool platform = call == "time" || call == "localtime" || call == "pref_get" || call == "pref_set";
        if (nth < 1 || (call != name && (name != "card" || platform))) {
            return false;
        }
        if (nth > 1) {
            --nth;
            return false;
        }
        nth = persistent ? 1 : 0;
        ++fired;
        return true;
    }
    /// Counts a change that was made.
    void Changed() {
        if (++changes == cutAfter) {
            throw PowerCut{};
        }
    }
};

} // namespace dcftest

#endif
