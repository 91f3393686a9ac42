// Card: a memory card in a folder of its own, made for one test or benchmark and removed with the object. Depends on
// the standard library and POSIX alone, so that benchmarks can use it. One thread.
#ifndef TESTS_SUPPORT_CARD_H
#define TESTS_SUPPORT_CARD_H

#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace dcftest {

/// What a made file has beside its name.
struct FileTraits {
    std::string content;              ///< Bytes of the file.
    mode_t mode = 0644;               ///< Permission bits.
    std::optional<std::time_t> mtime; ///< Modification time in seconds; now when absent.
};

class Card {
public:
    /// An empty storage root with a short path. "DCIM" is made by the first AddDir().
    Card();
    /// A storage root whose path is exactly that many characters long, for the limits of the path buffers.
    explicit Card(std::size_t rootLength);
    /// Makes everything removable again and removes it.
    ~Card();
    Card(const Card&) = delete;
    Card& operator=(const Card&) = delete;

    /// Makes a folder under "DCIM" (and "DCIM" itself).
    Card& AddDir(const std::string& dir);
    /// Makes a file in a folder under "DCIM" (and the folder).
    Card& AddFile(const std::string& dir, const std::string& name, const FileTraits& traits = {});
    /// Makes one file per name.
    Card& AddFiles(const std::string& dir, const std::vector<std::string>& names);
    /// Makes a full card: directories from 100 on, "100ABCDE" to "999ABCDE", each with files "KVR_0001.JPG" and up.
    Card& Fill(int directories, int filesPerDirectory);

    const std::string& Root() const {
        return m_root;
    }
    std::string Dcim() const {
        return m_root + "/DCIM";
    }
    std::string Path(const std::string& dir) const {
        return Dcim() + "/" + dir;
    }
    std::string Path(const std::string& dir, const std::string& name) const {
        return Path(dir) + "/" + name;
    }

    bool Exists(const std::string& dir) const;
    bool Exists(const std::string& dir, const std::string& name) const;
    /// Permission bits of a file; throws when there is none.
    mode_t Mode(const std::string& dir, const std::string& name) const;
    void SetMode(const std::string& dir, const std::string& name, mode_t mode);
    void Remove(const std::string& dir, const std::string& name);
    /// The names in a folder under "DCIM", sorted, without the dot entries; empty when there is no such folder.
    std::vector<std::string> Names(const std::string& dir) const;
    /// The names in "DCIM" itself.
    std::vector<std::string> DirNames() const;

private:
    std::string m_base; ///< The folder that is removed.
    std::string m_root; ///< The storage root, m_base or a folder in it.
};

/// A four-digit DCF name, for example DcfName(12) is "KVR_0012.JPG".
std::string DcfName(int fileNumber, const std::string& extension = "JPG", const std::string& prefix = "KVR_");
/// A 19-character name of the "Camera" folder whose file number (six characters from the tenth on) is the given one.
std::string CameraName(int fileNumber, const std::string& extension = "JPG");
/// A directory name, for example DirName(100) is "100ABCDE".
std::string DirName(int directoryNumber, const std::string& suffix = "ABCDE");

} // namespace dcftest

#endif
