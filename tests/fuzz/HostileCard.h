// Cards from bytes: any names, kinds of entries, modes and times. One thread.
#ifndef TESTS_FUZZ_HOSTILE_CARD_H
#define TESTS_FUZZ_HOSTILE_CARD_H

#include <string>

#include "Dice.h"
#include "ReferenceCard.h"

namespace dcffuzz {

/// What is kept from a card.
enum class Ranks {
    Distinct, ///< No two files of one number and extension in a folder, whose order the file system would choose.
    Any
};

void DrawHostileCard(dcftest::Dice& dice, Ranks ranks, dcftest::ReferenceCard& card);

} // namespace dcffuzz

#endif
