// The command line of the verb that makes a contact sheet. Called by main. One thread.
#ifndef DCFCTL_SHEET_COMMANDS_H
#define DCFCTL_SHEET_COMMANDS_H

#include <CLI/CLI.hpp>

#include "SheetVerb.h"

namespace dcfctl {

/// @param json, noCamera the options that all verbs share.
void AddSheetVerb(CLI::App& app, SheetOptions& options, bool& json, bool& noCamera);

} // namespace dcfctl

#endif
