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
/// @param failing the kind of call that failed, if any. A file that cannot be examined counts as unprotected, so a
///        selected one may go; and a directory that cannot be read makes DeleteSel() miss the ones behind it.
std::string LostFiles(const Scene& scene, const ReferenceCard& now, const std::string& failing = "");

/// The count of the list is that of its files, every position can be read, and each path is on the card, but for the
/// newest file, which the client has still to write, and those that were missing before.
std::string WrongPositions(const Scene& scene, const ReferenceCard& now, Actual& actual);

} // namespace dcftest

#endif
