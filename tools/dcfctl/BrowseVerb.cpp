// The verb; see the header.
#include "BrowseVerb.h"

#include <string>

#include "BrowseController.h"
#include "BrowseModel.h"
#include "BrowseScreen.h"
#include "Terminal.h"

namespace dcfctl {

void AddBrowseVerb(CLI::App& app, bool& noCamera) {
    CLI::App* verb = app.add_subcommand("browse", "Look through the card on a terminal: move, select, protect, delete");
    verb->add_flag("--no-camera", noCamera, "Leave the \"Camera\" folder out");
    verb->group("Verbs");
    verb->fallthrough(); // --card may stand behind the verb
}

ExitCode Browse(const CardOptions& card, Renderer& renderer, const Output& out) {
    if (const auto finding = BrowseScreen::Check(out.Descriptor())) {
        renderer.SayError(finding->text);
        return finding->exit;
    }
    BrowseModel model(card);
    if (const auto refusal = model.Open()) {
        renderer.SayError(refusal->text);
        return refusal->exit;
    }
    std::string lastWord;
    {
        BrowseScreen screen(out.Descriptor(), out.HasColour());
        BrowseController controller(model, screen);
        controller.Run();
        lastWord = controller.Message();
    }
    if (InterruptGuard::Interrupted()) {
        renderer.SayError(lastWord); // what became of the work, which nobody could read on the screen
    }
    BrowseScreen::Resignal();
    return ExitCode::kSuccess;
}

} // namespace dcfctl
