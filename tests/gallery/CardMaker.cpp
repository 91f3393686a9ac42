// Making awkward cards; see the header.
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "AwkwardCard.h"
#include "Card.h"
#include "ChildProcess.h"

namespace dcftest {
namespace {

using namespace std::string_literals;

/// The null device: nothing happens to who opens it.
constexpr unsigned kNullMajor = 1;
constexpr unsigned kNullMinor = 3;

void Need(bool done, const std::string& what) {
    if (!done) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

/// What a file of that name begins with.
std::string BeginningOf(const std::string& name) {
    const std::string extension = name.size() < 3 ? name : name.substr(name.size() - 3);
    if (extension == "SRW") {
        return "II*\0"s;
    }
    if (extension == "MP4") {
        return "\0\0\0\x18"
               "ftypisom"s;
    }
    return extension == "AVI" ? "RIFF\0\0\0\0AVI "s : "\xff\xd8\xff\xd9"s;
}

} // namespace

CardMaker& CardMaker::Folder(const std::string& dir) {
    std::filesystem::create_directories(Path(dir));
    return *this;
}

CardMaker& CardMaker::File(const std::string& dir, const std::string& name) {
    Folder(dir);
    const std::string path = Path(dir) + "/" + name;
    const std::string content = BeginningOf(name);
    const int handle = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    const bool written =
        handle >= 0 && ::write(handle, content.data(), content.size()) == static_cast<ssize_t>(content.size());
    Need(written && ::close(handle) == 0, path);
    return *this;
}

CardMaker& CardMaker::Files(const std::string& dir, int count) {
    Folder(dir);
    for (int number = 1; number <= count; ++number) {
        const std::string path = Path(dir) + "/" + DcfName(number);
        Need(::mknod(path.c_str(), S_IFREG | 0644, 0) == 0, path);
    }
    return *this;
}

CardMaker& CardMaker::Protected(const std::string& dir, const std::string& name) {
    File(dir, name);
    return SetMode(dir + "/" + name, 0444);
}

CardMaker& CardMaker::Link(const std::string& dir, const std::string& name, const std::string& target) {
    Folder(dir);
    std::filesystem::create_symlink(target, Path(dir) + "/" + name);
    return *this;
}

CardMaker& CardMaker::Special(const std::string& dir, const std::string& name, mode_t kind) {
    Folder(dir);
    const std::string path = Path(dir) + "/" + name;
    const bool made = ::mknod(path.c_str(), kind | 0644, makedev(kNullMajor, kNullMinor)) == 0;
    if (!made && errno == EPERM) {
        RefuseInChild("making a device: " + std::string(std::strerror(errno)));
    }
    Need(made, path);
    return *this;
}

CardMaker& CardMaker::SetMode(const std::string& dir, mode_t mode) {
    Need(::chmod(Path(dir).c_str(), mode) == 0, dir);
    return *this;
}

} // namespace dcftest
