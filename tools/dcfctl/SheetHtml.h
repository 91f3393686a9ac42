// Writes a contact sheet as one HTML file that needs nothing else: no network, no script. It is XML too. The text
// depends on its content alone. One thread.
#ifndef DCFCTL_SHEET_HTML_H
#define DCFCTL_SHEET_HTML_H

#include <string_view>

#include "Output.h"
#include "SheetContent.h"

namespace dcfctl {

/// What every sheet begins with, and nothing else does.
[[nodiscard]] std::string_view SheetSignature();

/// @param illustrate is asked for each file once, in the order of the list, and may throw to break the work off.
void WriteSheet(Output& out, const SheetContent& sheet, const Illustrate& illustrate);

} // namespace dcfctl

#endif
