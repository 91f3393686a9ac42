// A client on a hostile card that nobody foresees: several files of one rank, any length of the root, "Camera" in it.
// What has to hold of any card is checked: the count is what is walked, each path is a file of the card, nothing is
// gone but what may be deleted, and the process ends by documented assertions alone. One thread.
#ifndef TESTS_FUZZ_WILD_CLIENT_H
#define TESTS_FUZZ_WILD_CLIENT_H

#include <string>

#include "Dice.h"

namespace dcffuzz {

/// Makes a card below a folder from the bytes and works on it until they are used up. The folder is left as it was
/// found.
void RunWildClient(dcftest::Dice& dice, const std::string& folder);

} // namespace dcffuzz

#endif
