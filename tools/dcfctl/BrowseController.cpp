// Keys; see the header.
#include "BrowseController.h"

#include <curses.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <cstdint>
#include <limits>
#include <memory>

#include "Terminal.h"
#include "Text.h"

namespace dcfctl {
namespace {

/// So often the card is looked at when nothing happens.
constexpr int kIdleMilliseconds = 1000;
/// A picture is drawn when no key has come for so long.
constexpr int kPreviewMilliseconds = 40;
constexpr std::size_t kMostTyped = 256;

constexpr std::wint_t kEscape = 0x1b;
constexpr std::wint_t kDelete = 0x7f;
constexpr std::wint_t kRedraw = 0x0c; // Control-L

bool IsDigit(std::wint_t key) {
    return key >= L'0' && key <= L'9';
}

bool IsEnter(const ScreenEvent& event) {
    return event.key == L'\r' || event.key == L'\n' ||
           (event.kind == ScreenEvent::Kind::kKey && event.key == KEY_ENTER);
}

bool IsBackspace(const ScreenEvent& event) {
    return event.kind == ScreenEvent::Kind::kKey ? event.key == KEY_BACKSPACE
                                                 : event.key == kDelete || event.key == L'\b';
}

/// As the bytes that a name on the card would have.
std::string Bytes(const std::wstring& text) {
    std::string bytes;
    std::mbstate_t state = {};
    for (const wchar_t c : text) {
        char buffer[MB_LEN_MAX]; // NOLINT(modernize-avoid-c-arrays): what the conversion takes
        const std::size_t length = std::wcrtomb(buffer, c, &state);
        if (length <= sizeof buffer) {
            bytes.append(buffer, length);
        }
    }
    return bytes;
}

} // namespace

BrowseController::BrowseController(BrowseModel& model, BrowseScreen& screen)
    : m_model(model), m_screen(screen), m_view(screen.HasColours(), screen.HasManyColours()) {
    TellOddities();
}

void BrowseController::Run() {
    bool going = true;
    while (going) {
        Draw();
        const bool busy = IsPreviewMissing() || m_preview.Now() == Preview::State::kWorking;
        const int patience = busy ? kPreviewMilliseconds : kIdleMilliseconds;
        going = Handle(m_screen.Wait(m_preview.Descriptor(), patience));
        going = going && !InterruptGuard::Interrupted();
    }
}

bool BrowseController::Handle(const ScreenEvent& event) {
    switch (event.kind) {
    case ScreenEvent::Kind::kCharacter:
    case ScreenEvent::Kind::kKey:
        return HandleKey(event);
    case ScreenEvent::Kind::kOther:
        m_preview.Take();
        return true;
    case ScreenEvent::Kind::kIdle:
        m_preview.Take();
        FollowPreview();
        LookAtCard();
        return true;
    case ScreenEvent::Kind::kResize:
        (void)clearok(stdscr, TRUE); // what a terminal makes of the old picture is its own business
        return true;
    default:
        return false;
    }
}

// ---- Keys

bool BrowseController::HandleKey(const ScreenEvent& event) {
    if (m_mode == Mode::kQuestion) {
        HandleAnswer(event);
        return true;
    }
    if (m_mode != Mode::kKeys) {
        HandleTyping(event);
        return true;
    }
    if (m_scene.page != BrowsePage::kList) {
        m_scene.page = BrowsePage::kList;
        return true;
    }
    m_scene.message.clear();
    if (event.kind == ScreenEvent::Kind::kKey) {
        HandleMove(event.key);
        return true;
    }
    if (IsDigit(event.key)) {
        BeginTyping(Mode::kPosition, std::wstring(1, static_cast<wchar_t>(event.key)));
        return true;
    }
    return HandleCommand(event.key);
}

void BrowseController::HandleMove(std::wint_t key) {
    const int page = std::max(1, m_view.ListRows());
    const int last = std::max(0, m_model.Count() - 1);
    switch (key) {
    case KEY_DOWN:
    case KEY_RIGHT:
        return Tell(m_model.Next());
    case KEY_UP:
    case KEY_LEFT:
        return Tell(m_model.Previous());
    case KEY_NPAGE:
        return Tell(m_model.To(std::min(last, m_model.Cursor() + page)));
    case KEY_PPAGE:
        return Tell(m_model.To(std::max(0, m_model.Cursor() - page)));
    case KEY_HOME:
        return Tell(m_model.First());
    case KEY_END:
        return Tell(m_model.Last());
    default:
        return;
    }
}

bool BrowseController::HandleCommand(std::wint_t key) {
    if (m_view.IsTooSmall() && key != L'q') {
        return true; // nobody sees what it would do
    }
    switch (key) {
    case L'q':
        return false;
    case L' ':
        Tell(m_model.Select());
        break;
    case L'c':
        Tell(m_model.SelectNone());
        break;
    case L'p':
        Tell(m_model.Protect(Progress("Changing the protection")));
        break;
    case L'w':
        Tell(m_model.MarkForTransfer());
        break;
    case L'd':
        Ask();
        break;
    case L'/':
        BeginTyping(Mode::kPath, {});
        break;
    case L'n':
        Search();
        break;
    case L'r':
        Relist();
        break;
    case L'i':
        m_scene.page = BrowsePage::kNotes;
        break;
    case L'?':
        m_scene.page = BrowsePage::kHelp;
        break;
    case kRedraw:
        (void)clearok(stdscr, TRUE); // has one result for a screen that is there
        break;
    default:
        break;
    }
    m_rowsOld = true;
    return true;
}

// ---- Typing

void BrowseController::BeginTyping(Mode mode, std::wstring typed) {
    m_mode = mode;
    m_scene.prompt = mode == Mode::kPosition ? "Position: " : "Path, or a part of one: ";
    m_scene.typed = std::move(typed);
}

void BrowseController::EndTyping() {
    m_mode = Mode::kKeys;
    m_scene.prompt.reset();
    m_scene.typed.clear();
}

void BrowseController::HandleTyping(const ScreenEvent& event) {
    if (IsEnter(event)) {
        Enter();
    } else if (IsBackspace(event)) {
        if (m_scene.typed.empty()) {
            EndTyping();
        } else {
            m_scene.typed.pop_back();
        }
    } else if (event.kind == ScreenEvent::Kind::kCharacter && event.key == kEscape) {
        EndTyping();
    } else if (event.kind == ScreenEvent::Kind::kCharacter && m_scene.typed.size() < kMostTyped) {
        const bool fits = m_mode == Mode::kPosition ? IsDigit(event.key) : wcwidth(static_cast<wchar_t>(event.key)) > 0;
        if (fits) {
            m_scene.typed += static_cast<wchar_t>(event.key);
        }
    }
}

void BrowseController::Enter() {
    const std::string typed = Bytes(m_scene.typed);
    const Mode mode = m_mode;
    EndTyping();
    if (typed.empty()) {
        return;
    }
    if (mode == Mode::kPath) {
        m_searched = typed;
        Search();
        return;
    }
    constexpr long long kMost = std::numeric_limits<int>::max();
    Tell(m_model.To(static_cast<int>(std::min(kMost, WholeNumber(typed).value_or(kMost)))));
}

void BrowseController::Search() {
    if (m_searched.empty()) {
        Tell({false, "nothing was searched for yet; / begins"});
    } else {
        Tell(m_model.ToPath(m_searched));
    }
}

// ---- Deletion

void BrowseController::Ask() {
    const BrowseReply reply = m_model.PlanDeletion(Progress("Looking at the files"));
    Tell(reply);
    if (reply.done) {
        m_mode = Mode::kQuestion;
        m_scene.prompt = "Delete? [y/N] ";
    }
}

void BrowseController::HandleAnswer(const ScreenEvent& event) {
    const bool yes = event.kind == ScreenEvent::Kind::kCharacter && (event.key == L'y' || event.key == L'Y');
    EndTyping();
    if (yes && !m_view.IsTooSmall()) { // there the question is not to be seen
        m_preview.Drop();              // it may be reading what is deleted
        Tell(m_model.Delete(Progress("Deleting")));
    } else {
        Tell({true, "Nothing was deleted."});
    }
    m_rowsOld = true;
}

// ---- The card

void BrowseController::Relist() {
    m_preview.Drop();
    Tell({true, "Listing the card..."});
    m_view.Draw(m_model, m_scene, m_preview);
    if (const auto refusal = m_model.Open()) {
        Tell({false, refusal->text});
        return;
    }
    m_gone = false;
    Tell({true, "The card was listed anew."});
    TellOddities();
}

void BrowseController::TellOddities() {
    const std::vector<Finding> warnings = m_model.Warnings();
    if (!warnings.empty()) {
        const std::string more =
            warnings.size() > 1 ? " (i tells " + std::to_string(warnings.size() - 1) + " more)" : "";
        Tell({false, warnings.front().text + more});
    }
}

/// A person who pulls the card out reads it here at once, and not only at the next key.
void BrowseController::LookAtCard() {
    const auto gone = m_model.CheckThere();
    if (gone.has_value() && !m_gone && m_mode == Mode::kKeys) {
        Tell({false, gone->text});
    }
    m_rowsOld = m_rowsOld || gone.has_value() != m_gone;
    m_gone = gone.has_value();
}

void BrowseController::Tell(const BrowseReply& reply) {
    m_scene.message = reply.text;
    m_scene.trouble = !reply.done;
}

Tick BrowseController::Progress(const char* what) {
    using Clock = std::chrono::steady_clock;
    const auto next = std::make_shared<Clock::time_point>(Clock::now() + std::chrono::seconds(1));
    return [this, what, next](std::uint64_t done, std::uint64_t all) {
        if (Clock::now() >= *next) {
            *next = Clock::now() + std::chrono::milliseconds(200);
            Tell({true, std::string(what) + ": " + std::to_string(done) + " of " + std::to_string(all)});
            m_view.Draw(m_model, m_scene, m_preview);
        }
    };
}

// ---- Drawing

/// Only what is seen is fetched, and only when it is not there yet.
void BrowseController::FetchRows() {
    const int rows = m_view.ListRows();
    const int count = m_model.Count();
    const int cursor = std::max(0, m_model.Cursor());
    int top = m_scene.top;
    top = cursor < top ? cursor : top;
    top = cursor >= top + rows ? cursor - rows + 1 : top;
    top = std::max(0, std::min(top, count - rows));
    const int wanted = std::min(rows, count - top);
    if (m_rowsOld || top != m_scene.top || static_cast<int>(m_scene.rows.size()) != wanted) {
        m_scene.top = top;
        m_scene.rows = m_model.Rows(top, rows);
        m_photoOf = -1;
        m_rowsOld = false;
    }
}

void BrowseController::FetchPhoto() {
    if (m_photoOf != m_model.Cursor()) {
        m_photoOf = m_model.Cursor();
        m_scene.photo = m_model.Photo();
    }
}

void BrowseController::Draw() {
    FetchRows();
    FetchPhoto();
    m_view.Draw(m_model, m_scene, m_preview);
}

bool BrowseController::IsPreviewMissing() const {
    const PreviewWish& wanted = m_view.Wanted();
    return wanted.columns > 0 && (!(wanted == m_preview.Wish()) || m_preview.Now() == Preview::State::kNothing);
}

void BrowseController::FollowPreview() {
    if (m_view.Wanted().columns == 0) {
        m_preview.Drop();
    } else if (IsPreviewMissing()) {
        m_preview.Begin(m_view.Wanted());
    }
}

} // namespace dcfctl
