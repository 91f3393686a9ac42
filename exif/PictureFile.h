// One file of a card, opened for reading at places, with a limit on how much is read of it in all. One thread.
#ifndef DCFEXIF_PICTURE_FILE_H
#define DCFEXIF_PICTURE_FILE_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace dcfexif {

class PictureFile {
public:
    /// Opens a regular file without waiting for anything; see IsOpen().
    explicit PictureFile(const char* path);
    PictureFile(const PictureFile&) = delete;
    PictureFile& operator=(const PictureFile&) = delete;
    ~PictureFile();

    [[nodiscard]] bool IsOpen() const {
        return m_fd >= 0;
    }
    [[nodiscard]] std::uint64_t Size() const {
        return m_size;
    }
    /// A read has failed that should not have.
    [[nodiscard]] bool HasFailed() const {
        return m_failed;
    }
    /// Reads bytes that stand whole in the file. @return false, with out as it was, when they do not, or the limit is
    /// reached, or the file cannot be read.
    bool Read(std::uint64_t offset, std::size_t length, std::string& out);

private:
    bool Load(std::uint64_t offset, std::size_t length);

    int m_fd;
    std::uint64_t m_size = 0;
    std::uint64_t m_left; ///< Bytes that may still be read.
    bool m_failed = false;
    std::string m_window; ///< What was read last.
    std::uint64_t m_windowOffset = 0;
};

/// A part of a file in which offsets count from its beginning.
struct FilePart {
    PictureFile& file;
    std::uint64_t begin;
    std::uint64_t size;

    [[nodiscard]] bool Holds(std::uint64_t offset, std::uint64_t length) const {
        return offset <= size && length <= size - offset;
    }
    [[nodiscard]] bool Read(std::uint64_t offset, std::size_t length, std::string& out) const {
        return Holds(offset, length) && file.Read(begin + offset, length, out);
    }
};

} // namespace dcfexif

#endif
