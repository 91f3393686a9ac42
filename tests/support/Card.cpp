#include "Card.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace dcftest {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Throw(const std::string& what) {
    throw std::system_error(errno, std::generic_category(), what);
}

// A long TMPDIR would leave no room in the library's 99-character path buffers.
std::string MakeBase() {
    constexpr std::size_t kLongestBase = 30;
    const char* wanted = std::getenv("TMPDIR");
    std::string parent = wanted != nullptr && *wanted == '/' ? wanted : "/tmp";
    if (parent.size() > kLongestBase) {
        parent = "/tmp";
    }
    std::string path = parent + "/dcf-XXXXXX";
    if (mkdtemp(path.data()) == nullptr) {
        Throw("mkdtemp " + path);
    }
    return path;
}

// Folder names of at most 20 characters, so that no limit of a name is reached.
std::string PathOfLength(std::string base, std::size_t length) {
    constexpr std::size_t kLongestPart = 20;
    if (length < base.size() + 2 && length != base.size()) {
        throw std::invalid_argument("no root of " + std::to_string(length) + " characters under " + base);
    }
    while (base.size() < length) {
        std::size_t part = std::min(kLongestPart, length - base.size() - 1);
        if (length - base.size() - 1 - part == 1) {
            --part; // a slash alone cannot fill the last character
        }
        base += "/" + std::string(part, 'r');
    }
    return base;
}

void MakeRemovable(const std::string& base) {
    std::error_code ignored;
    (void)::chmod(base.c_str(), 0755);
    for (fs::recursive_directory_iterator it(base, ignored), end; it != end; it.increment(ignored)) {
        if (it->is_directory(ignored) && !it->is_symlink(ignored)) {
            (void)::chmod(it->path().c_str(), 0755);
        }
    }
}

std::vector<std::string> SortedNames(const std::string& path) {
    std::vector<std::string> names;
    std::error_code none;
    for (fs::directory_iterator it(path, none), end; it != end; it.increment(none)) {
        names.push_back(it->path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string Padded(int number, std::size_t width) {
    const std::string digits = std::to_string(number);
    return std::string(width - std::min(width, digits.size()), '0') + digits;
}

} // namespace

Card::Card() : m_base(MakeBase()), m_root(m_base) {}

Card::Card(std::size_t rootLength) : Card() { // made whole first, so that a refused length leaves nothing behind
    m_root = PathOfLength(m_base, rootLength);
    fs::create_directories(m_root);
}

Card::~Card() {
    std::error_code ignored;
    MakeRemovable(m_base);
    fs::remove_all(m_base, ignored);
}

Card& Card::AddDir(const std::string& dir) {
    fs::create_directories(Path(dir));
    return *this;
}

Card& Card::AddFile(const std::string& dir, const std::string& name, const FileTraits& traits) {
    AddDir(dir);
    const std::string path = Path(dir, name);
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0) {
        Throw("open " + path);
    }
    std::size_t written = 0;
    while (written < traits.content.size()) {
        const ssize_t count = ::write(fd, traits.content.data() + written, traits.content.size() - written);
        if (count < 0) {
            (void)::close(fd);
            Throw("write " + path);
        }
        written += static_cast<std::size_t>(count);
    }
    bool done = ::fchmod(fd, traits.mode) == 0;
    if (done && traits.mtime) {
        const std::array<timespec, 2> times{timespec{*traits.mtime, 0}, timespec{*traits.mtime, 0}};
        done = ::futimens(fd, times.data()) == 0;
    }
    (void)::close(fd);
    if (!done) {
        Throw("attributes of " + path);
    }
    return *this;
}

Card& Card::AddFiles(const std::string& dir, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        AddFile(dir, name);
    }
    return *this;
}

Card& Card::Fill(int directories, int filesPerDirectory) {
    for (int d = 0; d < directories; ++d) {
        const std::string dir = DirName(100 + d);
        AddDir(dir);
        for (int f = 1; f <= filesPerDirectory; ++f) {
            const std::string path = Path(dir, DcfName(f));
            const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
            if (fd < 0 || ::close(fd) != 0) {
                Throw("open " + path);
            }
        }
    }
    return *this;
}

bool Card::Exists(const std::string& dir) const {
    return ::access(Path(dir).c_str(), F_OK) == 0;
}

bool Card::Exists(const std::string& dir, const std::string& name) const {
    return ::access(Path(dir, name).c_str(), F_OK) == 0;
}

mode_t Card::Mode(const std::string& dir, const std::string& name) const {
    struct stat status {};
    if (::stat(Path(dir, name).c_str(), &status) != 0) {
        Throw("stat " + Path(dir, name));
    }
    return status.st_mode & 07777U;
}

void Card::SetMode(const std::string& dir, const std::string& name, mode_t mode) {
    if (::chmod(Path(dir, name).c_str(), mode) != 0) {
        Throw("chmod " + Path(dir, name));
    }
}

void Card::Remove(const std::string& dir, const std::string& name) {
    fs::remove_all(Path(dir, name));
}

std::vector<std::string> Card::Names(const std::string& dir) const {
    return SortedNames(Path(dir));
}

std::vector<std::string> Card::DirNames() const {
    return SortedNames(Dcim());
}

std::string DcfName(int fileNumber, const std::string& extension, const std::string& prefix) {
    return prefix + Padded(fileNumber, 4) + "." + extension;
}

std::string CameraName(int fileNumber, const std::string& extension) {
    return "20240131_" + Padded(fileNumber, 6) + "." + extension;
}

std::string DirName(int directoryNumber, const std::string& suffix) {
    return Padded(directoryNumber, 3) + suffix;
}

} // namespace dcftest
