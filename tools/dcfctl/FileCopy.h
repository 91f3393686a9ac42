// Puts a file on the card whole or not at all: it is written under a name that no listing takes for a picture, brought
// to the disk, and only then given its own name, never over something that is there. One thread.
#ifndef DCFCTL_FILE_COPY_H
#define DCFCTL_FILE_COPY_H

#include <sys/stat.h>

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>

namespace dcfctl {

/// Why a file could not be put in place: a cause.
class CopyError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class StagedFile {
public:
    /// Called for every piece with its size. @return false to stop.
    using Piece = std::function<bool(std::uint64_t bytes)>;

    /// Copies a file, its modification time included, into a folder under a temporary name.
    /// @param expected what the source looked like when it was accepted.
    StagedFile(const std::string& source, const struct stat& expected, const std::string& folder, const Piece& piece);
    /// An empty file in a folder under a temporary name, to be written through Fd().
    explicit StagedFile(std::string folder);
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;
    /// Removes what was not put in place.
    ~StagedFile();

    /// Stays this object's.
    [[nodiscard]] int Fd() const {
        return m_fd;
    }
    /// Gives the file its name.
    /// @param replace whether a file that has this name may go.
    void PutInPlace(const std::string& path, bool replace = false);
    /// Removes it again, if it is still the one that was put there.
    void TakeBack();

private:
    void Create(const std::string& folder);
    void Copy(const std::string& source, const struct stat& expected, const Piece& piece);
    void CopyContent(int from, std::uint64_t expected, const Piece& piece) const;
    void Finish(const struct stat& source);
    void Rename(const std::string& path) const;
    void Discard();

    std::string m_folder;
    std::string m_temporary; ///< Empty once it is in place.
    std::string m_placed;
    int m_fd = -1;
    struct stat m_state = {};
};

/// Removes what an earlier run that was killed has left in a folder under such a temporary name.
void RemoveLeftovers(const std::string& folder);

} // namespace dcfctl

#endif
