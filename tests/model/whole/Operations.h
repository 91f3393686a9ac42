// Operations: the 47 of the interface and what may happen to a card from outside, each with random arguments, for
// either side.
#ifndef TESTS_MODEL_WHOLE_OPERATIONS_H
#define TESTS_MODEL_WHOLE_OPERATIONS_H

#include <functional>
#include <string>
#include <vector>

#include "Dice.h"
#include "Sides.h"

namespace dcftest {

struct Operation {
    std::string name;
    std::string arguments;
    std::function<std::string(Expected&)> onReference; ///< Gives the result as a text.
    std::function<std::string(Actual&)> onLibrary;

    std::string Text() const {
        return name + "(" + arguments + ")";
    }
};

/// The names of the interface's operations, all of them.
std::vector<std::string> InterfaceOperations();

/// An operation that may or may not be right in this state. One from outside may come without a function: then nothing
/// of its kind is possible now.
Operation RandomOperation(Dice& dice, const Expected& state);

/// One operation by its name.
Operation MakeOperation(const std::string& name, Dice& dice, const Expected& state);

} // namespace dcftest

#endif
