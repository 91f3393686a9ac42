// What the library shows, in the reference's terms.
#ifndef TESTS_MODEL_SEEN_H
#define TESTS_MODEL_SEEN_H

#include "CSFileList.h"
#include "RandomCard.h"
#include "ReferenceList.h"

namespace dcftest {

ReferenceItem Seen(const CSFileListItem& item);
ReferenceState Seen(const CSFileList& list);
/// The plan without what cannot be compared: where the library does not ask for times, the card has none to expect.
CardPlan Comparable(CardPlan plan);

} // namespace dcftest

#endif
