// The command line; see the header.
#include "SheetCommands.h"

#include <string>

#include "Text.h"

namespace dcfctl {

void AddSheetVerb(CLI::App& app, SheetOptions& options, bool& json, bool& noCamera) {
    CLI::App* sheet = app.add_subcommand("sheet", "Make a contact sheet of the card: one HTML file with everything");
    sheet->add_option("--out", options.out, "The file to make; - for standard output")
        ->type_name("FILE.html")
        ->required()
        ->check([](const std::string& text) { return text.empty() ? "the name of the sheet is empty" : ""; });
    sheet
        ->add_option_function<std::string>(
            "--thumbnails", [&options](const std::string& text) { options.thumbnails = WholeNumber(text).value_or(0); },
            "The most thumbnails that the sheet may hold (default: " + std::to_string(kThumbnails) + ")")
        ->type_name("N")
        ->check([](const std::string& text) {
            const auto number = WholeNumber(text);
            return number.has_value() && *number >= 0 ? "" : "'" + text + "' is no number of thumbnails; use 0 or more";
        });
    sheet->add_flag("--force", options.force, "Replace a file that is no contact sheet");
    sheet->add_flag("--json", json, "One JSON document about the sheet instead of text");
    sheet->add_flag("--no-camera", noCamera, "Leave the \"Camera\" folder out");
    sheet->callback([&options, &json] {
        if (json && options.out == kStandardOutput) {
            throw CLI::ValidationError("--json", "standard output takes the sheet or the document, not both");
        }
    });
    sheet->group("Verbs");
    sheet->fallthrough(); // --card may stand behind the verb
}

} // namespace dcfctl
