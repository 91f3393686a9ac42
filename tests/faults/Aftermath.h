// What has to hold behind an operation whatever happened during it. Every function gives what does not hold, empty when
// all is well.
#ifndef TESTS_FAULTS_AFTERMATH_H
#define TESTS_FAULTS_AFTERMATH_H

#include <string>

#include "Scene.h"

namespace dcftest {

/// Descriptors that this process has open.
int OpenDescriptors();

/// No file is gone that the undisturbed operation keeps; renumbered directories keep their files.
/// @param examined whether files could be examined: one that cannot counts as unprotected, so a selected one may go.
std::string LostFiles(const Scene& scene, const ReferenceCard& now, bool examined = true);

/// The count of the list is that of its files, every position can be read, and each path is on the card, but for the
/// newest file, which the client has still to write, and those that were missing before.
std::string WrongPositions(const Scene& scene, const ReferenceCard& now, Actual& actual);

} // namespace dcftest

#endif
