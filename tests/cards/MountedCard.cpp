// Mounting the machine's cards; see the header.
#include "MountedCard.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace dcftest {

std::string CardFileSystem() {
    const char* name = std::getenv("DCF_CARD_FILE_SYSTEM");
    return name != nullptr ? name : "";
}

void UnmountCard() {
    // EINVAL: nothing was mounted.
    if (::umount(kCardFolder) != 0 && errno != EINVAL) {
        throw std::system_error(errno, std::generic_category(), "umount");
    }
}

void MountCard(const std::string& device, const std::string& options) {
    UnmountCard();
    const bool readOnly = options == "ro";
    if (::mount(device.c_str(), kCardFolder, CardFileSystem().c_str(), readOnly ? MS_RDONLY : 0,
                readOnly ? "" : options.c_str()) != 0) {
        throw std::system_error(errno, std::generic_category(), "mount with \"" + options + "\"");
    }
}

int MountedCardTest::Write(const std::string& path, std::size_t bytes) {
    const int fd = ::open((card->Dcim() + "/" + path).c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) {
        return errno;
    }
    const std::string content(bytes, 'p');
    const ssize_t written = ::write(fd, content.data(), content.size());
    const int error = written < 0 ? errno : written < static_cast<ssize_t>(bytes) ? ENOSPC : 0;
    return ::close(fd) == 0 ? error : errno;
}

} // namespace dcftest
