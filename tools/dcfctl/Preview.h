// A picture in characters. Decoding runs in a child process with bounds of time and memory, because the picture may be
// anything: a broken or hostile one costs its preview and nothing else. The browser goes on meanwhile. One thread.
#ifndef DCFCTL_PREVIEW_H
#define DCFCTL_PREVIEW_H

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace dcfctl {

struct PreviewWish {
    std::string path;
    int columns = 0;
    int rows = 0;
    bool colours = false; ///< 256 of them.
    bool utf8 = false;    ///< Blocks and half blocks instead of ASCII.

    bool operator==(const PreviewWish& other) const {
        return path == other.path && columns == other.columns && rows == other.rows && colours == other.colours &&
               utf8 == other.utf8;
    }
};

/// One character of the picture.
struct PreviewCell {
    std::uint32_t symbol;    ///< As Unicode has it.
    std::int16_t foreground; ///< Number in the terminal's palette, -1 for its own colour.
    std::int16_t background;
};

struct PreviewImage {
    int columns = 0;
    int rows = 0;
    std::vector<PreviewCell> cells; ///< Row by row.
};

/// Whether this program was built with what decodes and draws pictures.
[[nodiscard]] bool IsPreviewBuilt();

/// Decodes and draws at once, without any protection. @return false when there is nothing to draw.
[[nodiscard]] bool DrawPreview(const PreviewWish& wish, PreviewImage& image);

class Preview {
public:
    enum class State { kNothing, kWorking, kReady, kNone };

    Preview() = default;
    Preview(const Preview&) = delete;
    Preview& operator=(const Preview&) = delete;
    ~Preview();

    /// Begins a picture; gives up the one before.
    void Begin(const PreviewWish& wish);
    /// Gives up what is being drawn, and forgets what was.
    void Drop();
    /// Takes up what has come; ends a work that takes too long.
    void Take();

    [[nodiscard]] State Now() const {
        return m_state;
    }
    [[nodiscard]] const PreviewWish& Wish() const {
        return m_wish;
    }
    [[nodiscard]] const PreviewImage& Image() const {
        return m_image;
    }
    /// Can be read when there is something to take; -1 when nothing is going on.
    [[nodiscard]] int Descriptor() const {
        return m_fd;
    }

private:
    void EndChild();
    void Finish();

    State m_state = State::kNothing;
    PreviewWish m_wish;
    PreviewImage m_image;
    std::string m_bytes;
    pid_t m_child = -1;
    int m_fd = -1;
    std::chrono::steady_clock::time_point m_limit;
};

} // namespace dcfctl

#endif
