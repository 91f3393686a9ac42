// The road along which every card of the gallery is led, in five parts. Each expects what stands in the table of the
// card, and of any card that nothing ends but by the assertion that is named there, that no file is gone that was not
// being deleted, that no descriptor stays open, and that a walk misses no file. In a child process, one thread.
#ifndef TESTS_GALLERY_ROAD_H
#define TESTS_GALLERY_ROAD_H

#include <string>
#include <vector>

#include "MadeCard.h"

namespace dcftest {

/// The list is made and walked in both modes, its positions are selected and its files asked for by their paths.
void ExpectRead(MadeCard& made);
/// dcfctl looks at the card and changes nothing.
void ExpectToldByDcfctl(MadeCard& made);
/// Files are protected and unprotected, and no others.
void ExpectProtected(MadeCard& made);
/// The next name is free; all directories are renumbered.
void ExpectNamedAndRenumbered(MadeCard& made);
/// Files are deleted one by one, as a selection and all together, and no others.
void ExpectDeleted(MadeCard& made);

// What the parts share.

/// With more files than that a card is led along a shorter road.
inline constexpr int kMany = 5000;

/// Whether a look-up ended it that found no file or no directory of a number.
bool EndedInALookUp(const Ending& ending);
/// All positions of a list, or some of many, both ends among them.
std::vector<int> Choice(int count);
/// Lists the card as a client with a metadata collector does.
int List(CSFileList& list, bool camera);
CSFileListItem At(CSFileList& list, int position);
/// The path of the file that the list finds for the path of a position.
std::string Found(CSFileList& list, int position);

} // namespace dcftest

#endif
