// The part of a contact sheet that tells what a check of the card has found: the figures, and the findings with what to
// do. Called by SheetHtml. One thread.
#ifndef DCFCTL_SHEET_CHECK_HTML_H
#define DCFCTL_SHEET_CHECK_HTML_H

#include "CheckVerb.h"
#include "Output.h"

namespace dcfctl {

/// A section with the id "check".
void WriteCheck(Output& out, const CheckResult& check);

} // namespace dcfctl

#endif
