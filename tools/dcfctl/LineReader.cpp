// The two sources of lines; see the header.
#include "LineReader.h"

#include <histedit.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <system_error>

#include "ShellParser.h"
#include "Text.h"

extern "C" void __lsan_disable(void) __attribute__((weak));
extern "C" void __lsan_enable(void) __attribute__((weak));

namespace dcfctl {
namespace {

std::string WithoutEnd(std::string line) {
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
        line.pop_back();
    }
    return line;
}

class ScriptReader : public LineReader {
public:
    ScriptReader() = default;
    ScriptReader(const ScriptReader&) = delete;
    ScriptReader& operator=(const ScriptReader&) = delete;
    ~ScriptReader() override {
        std::free(m_line);
    }

    std::optional<std::string> Next() override {
        errno = 0;
        const ssize_t length = getline(&m_line, &m_size, stdin);
        if (length < 0) {
            m_error = std::ferror(stdin) != 0 ? errno : 0;
            return std::nullopt;
        }
        return WithoutEnd(std::string(m_line, static_cast<std::size_t>(length)));
    }

    [[nodiscard]] bool IsInteractive() const override {
        return false;
    }

    [[nodiscard]] int Error() const override {
        return m_error;
    }

private:
    char* m_line = nullptr;
    std::size_t m_size = 0;
    int m_error = 0;
};

volatile std::sig_atomic_t g_interrupted = 0;

extern "C" void NoteInterrupt(int /*signal*/) {
    g_interrupted = 1;
}

char kPrompt[] = "dcfctl> ";

char* Prompt(EditLine* /*editor*/) {
    return kPrompt;
}

/// @return never null: what cannot be had ends the shell before it began.
EditLine* MakeEditor(FILE* out) {
    std::setlocale(LC_CTYPE, ""); // the editor must know how wide the typed characters are
    EditLine* editor = out == nullptr ? nullptr : el_init("dcfctl", stdin, out, out);
    if (editor == nullptr) {
        throw std::system_error(errno, std::generic_category(), "the terminal cannot be used");
    }
    return editor;
}

/// The editor never gives back the copies that it makes of the two texts; a leak checker, where there is one, need not
/// tell of it.
void AddCompletion(EditLine* editor, unsigned char (*complete)(EditLine*, int)) {
    const bool checked = __lsan_disable != nullptr;
    if (checked) {
        __lsan_disable();
    }
    el_set(editor, EL_ADDFN, "complete", "complete the word", complete);
    if (checked) {
        __lsan_enable();
    }
}

std::string CommonStart(const std::vector<std::string>& words) {
    std::string common = words.front();
    for (const std::string& word : words) {
        const auto end = std::mismatch(common.begin(), common.end(), word.begin(), word.end()).first;
        common.erase(end, common.end());
    }
    return common;
}

class PromptReader : public LineReader {
public:
    PromptReader(int out, Completer completer)
        : m_out(fdopen(dup(out), "w")), m_completer(std::move(completer)), m_history(history_init()),
          m_editor(MakeEditor(m_out)) {
        HistEvent event;
        constexpr int kLinesKept = 500;
        history(m_history, &event, H_SETSIZE, kLinesKept);
        history(m_history, &event, H_SETUNIQUE, 1);
        el_set(m_editor, EL_CLIENTDATA, this);
        el_set(m_editor, EL_PROMPT, &Prompt);
        el_set(m_editor, EL_EDITOR, "emacs");
        el_set(m_editor, EL_HIST, history, m_history);
        AddCompletion(m_editor, &PromptReader::Complete);
        el_set(m_editor, EL_BIND, "^I", "complete", nullptr);
        el_set(m_editor, EL_SIGNAL, 1); // the terminal is given back before a signal ends the process
        struct sigaction action = {};
        action.sa_handler = NoteInterrupt;
        sigemptyset(&action.sa_mask);
        (void)sigaction(SIGINT, &action, nullptr); // SIGINT can always be caught
    }

    PromptReader(const PromptReader&) = delete;
    PromptReader& operator=(const PromptReader&) = delete;
    ~PromptReader() override {
        el_end(m_editor);
        history_end(m_history);
        std::fclose(m_out);
    }

    std::optional<std::string> Next() override {
        while (true) {
            g_interrupted = 0;
            int length = 0;
            const char* line = el_gets(m_editor, &length);
            if (line != nullptr && length > 0) {
                return Keep(std::string(line, static_cast<std::size_t>(length)));
            }
            if (g_interrupted == 0) {
                std::fputs("\n", m_out);
                std::fflush(m_out);
                return std::nullopt;
            }
            std::fputs("^C\n", m_out); // an interrupt gives the line up, not the shell
            std::fflush(m_out);
            el_reset(m_editor);
        }
    }

    [[nodiscard]] bool IsInteractive() const override {
        return true;
    }

private:
    std::string Keep(const std::string& line) {
        const std::string text = WithoutEnd(line);
        if (text.find_first_not_of(" \t") != std::string::npos) {
            HistEvent event;
            history(m_history, &event, H_ENTER, line.c_str());
        }
        return text;
    }

    static unsigned char Complete(EditLine* editor, int /*key*/) {
        PromptReader* reader = nullptr;
        el_get(editor, EL_CLIENTDATA, &reader);
        return reader->CompleteWord();
    }

    unsigned char CompleteWord() {
        const LineInfo* line = el_line(m_editor);
        const std::string_view typed(line->buffer, static_cast<std::size_t>(line->cursor - line->buffer));
        const std::size_t blank = typed.find_last_of(" \t");
        const std::string start(blank == std::string_view::npos ? typed : typed.substr(blank + 1));
        std::vector<std::string> before;
        for (const Word& word : ParseLine(typed.substr(0, typed.size() - start.size())).words) {
            before.push_back(word.text);
        }
        std::vector<std::string> fitting;
        for (const std::string& word : m_completer(before)) {
            if (word.size() >= start.size() && EqualNoCase(word.substr(0, start.size()), start)) {
                fitting.push_back(word);
            }
        }
        return Insert(start, fitting);
    }

    unsigned char Insert(const std::string& start, const std::vector<std::string>& fitting) {
        if (fitting.empty()) {
            return CC_REFRESH_BEEP;
        }
        const std::string common = CommonStart(fitting);
        if (common.size() > start.size() || fitting.size() == 1) {
            const std::string whole = common + (fitting.size() == 1 ? " " : "");
            el_deletestr(m_editor, static_cast<int>(start.size())); // the case may differ
            el_insertstr(m_editor, whole.c_str());
            return CC_REFRESH;
        }
        std::fputs("\n", m_out);
        constexpr std::size_t kShown = 60;
        for (std::size_t i = 0; i < std::min(fitting.size(), kShown); ++i) {
            std::fprintf(m_out, "%s\n", fitting[i].c_str());
        }
        if (fitting.size() > kShown) {
            std::fprintf(m_out, "... and %zu more\n", fitting.size() - kShown);
        }
        std::fflush(m_out);
        return CC_REDISPLAY;
    }

    FILE* m_out;
    Completer m_completer;
    History* m_history;
    EditLine* m_editor;
};

} // namespace

std::unique_ptr<LineReader> MakeScriptReader() {
    return std::make_unique<ScriptReader>();
}

std::unique_ptr<LineReader> MakePromptReader(int out, Completer completer) {
    return std::make_unique<PromptReader>(out, std::move(completer));
}

} // namespace dcfctl
