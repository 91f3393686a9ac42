// What each key of the browser does: the road from the screen's events to the model, and back to the view. One thread.
#ifndef DCFCTL_BROWSE_CONTROLLER_H
#define DCFCTL_BROWSE_CONTROLLER_H

#include <functional>
#include <string>

#include "BrowseModel.h"
#include "BrowseScreen.h"
#include "BrowseView.h"
#include "Preview.h"

namespace dcfctl {

class BrowseController {
public:
    /// @param model with its card listed.
    BrowseController(BrowseModel& model, BrowseScreen& screen);

    /// Until the person leaves, or the process is to end.
    void Run();

    /// What was told last.
    [[nodiscard]] const std::string& Message() const {
        return m_scene.message;
    }

private:
    /// What is being typed.
    enum class Mode { kKeys, kPosition, kPath, kQuestion };

    /// @return false when it is time to leave.
    bool Handle(const ScreenEvent& event);
    bool HandleKey(const ScreenEvent& event);
    bool HandleCommand(std::wint_t key);
    void HandleMove(std::wint_t key);
    void HandleTyping(const ScreenEvent& event);
    void HandleAnswer(const ScreenEvent& event);
    void BeginTyping(Mode mode, std::wstring typed);
    void EndTyping();
    void Enter();
    void Search();
    void Ask();
    void Relist();
    void LookAtCard();
    void Tell(const BrowseReply& reply);
    void TellOddities();
    [[nodiscard]] Tick Progress(const char* what);

    void Draw();
    void FetchRows();
    void FetchPhoto();
    /// There is room for a picture that nobody has begun to draw.
    [[nodiscard]] bool IsPreviewMissing() const;
    void FollowPreview();

    BrowseModel& m_model;
    BrowseScreen& m_screen;
    BrowseView m_view;
    BrowseScene m_scene;
    Preview m_preview;
    Mode m_mode = Mode::kKeys;
    std::string m_searched;
    bool m_rowsOld = true; ///< The rows have to be fetched again.
    int m_photoOf = -1;    ///< The position of which the metadata was fetched.
    bool m_gone = false;   ///< The card was not there when it was looked at last.
};

} // namespace dcfctl

#endif
