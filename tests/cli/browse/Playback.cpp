// The screen; see the header.
#include "Playback.h"

#include <chrono>
#include <cstdlib>

namespace clitest {
namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::seconds kPatience(10);

Words Arguments(const std::string& root, const Words& words) {
    Words arguments = {"--card", root, "browse"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    return arguments;
}

void AppendUtf8(std::string& text, std::uint32_t c) {
    const auto byte = [&text](std::uint32_t value) { text += static_cast<char>(static_cast<unsigned char>(value)); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xc0 | c >> 6);
        byte(0x80 | (c & 0x3f));
    } else if (c < 0x10000) {
        byte(0xe0 | c >> 12);
        byte(0x80 | (c >> 6 & 0x3f));
        byte(0x80 | (c & 0x3f));
    } else {
        byte(0xf0 | c >> 18);
        byte(0x80 | (c >> 12 & 0x3f));
        byte(0x80 | (c >> 6 & 0x3f));
        byte(0x80 | (c & 0x3f));
    }
}

} // namespace

Options ColourTerminal() {
    Options options;
    options.environment = {{"TERM", "screen-256color"}, {"LC_ALL", "C.UTF-8"}};
    return options;
}

Playback::Playback(const std::string& root, Options options, TerminalSize size, const Words& words)
    : m_terminal(Arguments(root, words), options, size), m_size(size), m_glass(vterm_new(size.rows, size.columns)),
      m_screen(vterm_obtain_screen(m_glass)) {
    vterm_set_utf8(m_glass, 1);
    m_callbacks.settermprop = TakeProperty;
    vterm_screen_set_callbacks(m_screen, &m_callbacks, this);
    vterm_screen_enable_altscreen(m_screen, 1);
    vterm_screen_reset(m_screen, 1);
}

Playback::~Playback() {
    vterm_free(m_glass);
}

int Playback::TakeProperty(VTermProp property, VTermValue* value, void* self) {
    auto* playback = static_cast<Playback*>(self);
    if (property == VTERM_PROP_ALTSCREEN) {
        playback->m_otherScreen = value->boolean != 0;
    }
    if (property == VTERM_PROP_CURSORVISIBLE) {
        playback->m_cursorShown = value->boolean != 0;
    }
    return 1;
}

void Playback::Feed() {
    const std::string& all = m_terminal.Screen();
    if (m_fed < all.size()) {
        vterm_input_write(m_glass, all.data() + m_fed, all.size() - m_fed);
        m_fed = all.size();
    }
}

void Playback::Type(const std::string& keys) {
    m_terminal.Type(keys);
}

bool Playback::Comes(const std::function<bool()>& condition) {
    const auto limit = Clock::now() + kPatience;
    bool open = true;
    while (true) {
        Feed();
        if (condition()) {
            return true;
        }
        if (!open || Clock::now() > limit) {
            return false;
        }
        open = m_terminal.Take(100);
    }
}

bool Playback::Shows(const std::string& text) {
    return Comes([&] { return Text().find(text) != std::string::npos || Flowing().find(text) != std::string::npos; });
}

bool Playback::Hides(const std::string& text) {
    return Comes([&] { return Text().find(text) == std::string::npos; });
}

bool Playback::Answers(const std::string& keys, const std::string& text) {
    Type(keys);
    return Shows(text);
}

bool Playback::IsAt(int position) {
    return Shows("Position   " + std::to_string(position) + " of ");
}

bool Playback::HasMarks(int position, const std::string& marks) {
    std::string number = std::to_string(position);
    number.insert(0, number.size() < 3 ? 3 - number.size() : 0, ' ');
    return Shows("\n" + marks + " " + number + " ");
}

int Playback::Quit() {
    Type("q");
    return End();
}

int Playback::End() {
    const int exit = m_terminal.End();
    Feed();
    return exit;
}

void Playback::Resize(TerminalSize size) {
    m_size = size;
    vterm_set_size(m_glass, size.rows, size.columns);
    m_terminal.Resize(size);
}

VTermScreenCell Playback::Cell(int row, int column) const {
    VTermScreenCell cell = {};
    (void)vterm_screen_get_cell(m_screen, {row, column}, &cell); // the place is on the screen
    return cell;
}

std::string Playback::Line(int row) const {
    std::string line;
    for (int column = 0; column < m_size.columns;) {
        const VTermScreenCell cell = Cell(row, column);
        if (cell.chars[0] == 0) {
            line += ' ';
        }
        for (std::size_t i = 0; i < VTERM_MAX_CHARS_PER_CELL && cell.chars[i] != 0; ++i) {
            AppendUtf8(line, cell.chars[i]);
        }
        column += cell.width > 1 ? cell.width : 1;
    }
    return line;
}

std::string Playback::Text() const {
    std::string text;
    for (int row = 0; row < m_size.rows; ++row) {
        text += Line(row) + "\n";
    }
    return text;
}

std::string Playback::Flowing() const {
    std::string text;
    for (int row = 0; row < m_size.rows; ++row) {
        const std::string line = Line(row);
        text += line.substr(0, line.find_last_not_of(' ') + 1) + " ";
    }
    return text;
}

bool Playback::HasColour() const {
    for (int row = 0; row < m_size.rows; ++row) {
        for (int column = 0; column < m_size.columns; ++column) {
            const VTermScreenCell cell = Cell(row, column);
            if (!VTERM_COLOR_IS_DEFAULT_FG(&cell.fg) || !VTERM_COLOR_IS_DEFAULT_BG(&cell.bg)) {
                return true;
            }
        }
    }
    return false;
}

int Playback::TintWidth(dcfctl::Colour colour) const {
    const auto is = [&](VTermColor shown) {
        constexpr int kNear = 48; // a palette of 256 has none that is further off
        vterm_screen_convert_color_to_rgb(m_screen, &shown);
        return std::abs(shown.rgb.red - colour.red) <= kNear && std::abs(shown.rgb.green - colour.green) <= kNear &&
               std::abs(shown.rgb.blue - colour.blue) <= kNear;
    };
    int columns = 0;
    for (int column = 0; column < m_size.columns; ++column) {
        bool here = false;
        for (int row = 0; row < m_size.rows && !here; ++row) {
            const VTermScreenCell cell = Cell(row, column);
            here = is(cell.fg) || is(cell.bg);
        }
        columns += here ? 1 : 0;
    }
    return columns;
}

} // namespace clitest
