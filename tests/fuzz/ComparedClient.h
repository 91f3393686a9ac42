// A client of the whole interface on a hostile card, every step compared with the reference of the model test. One
// thread.
#ifndef TESTS_FUZZ_COMPARED_CLIENT_H
#define TESTS_FUZZ_COMPARED_CLIENT_H

#include <string>

#include "Dice.h"

namespace dcffuzz {

/// Makes a card below a folder from the bytes and steps until they are used up. The folder is left as it was found.
void RunComparedClient(dcftest::Dice& dice, const std::string& folder);

} // namespace dcffuzz

#endif
