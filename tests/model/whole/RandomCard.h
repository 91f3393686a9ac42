// Random cards for the reference, and the real cards that are made from them and compared with them.
#ifndef TESTS_MODEL_WHOLE_RANDOM_CARD_H
#define TESTS_MODEL_WHOLE_RANDOM_CARD_H

#include <string>

#include "Dice.h"
#include "ReferenceCard.h"

namespace dcftest {

/// Small: a handful of folders with a handful of files, DCF and not, companions, protected files, look-alikes.
void MakeRandomCard(Dice& dice, ReferenceCard& card);

std::string RandomFolderName(Dice& dice);
std::string RandomFileName(Dice& dice, const std::string& folder);
CardFile RandomFile(Dice& dice);

/// Whether a folder could take a file of this name: free, and not of equal rank with another one, which would leave
/// their order to the file system.
bool CanHold(const CardFolder& folder, const std::string& name);

// The real card. Errors throw.

void MakeRealCard(const ReferenceCard& card);
void MakeRealFolder(const std::string& path, const CardFolder& folder);
void MakeRealFile(const std::string& path, const CardFile& file);
void RemoveReal(const std::string& path);
void SetRealMode(const std::string& path, mode_t mode);

/// What the real card has otherwise than the reference; empty when they are the same.
std::string CardDifference(const ReferenceCard& card);

} // namespace dcftest

#endif
