// Entries of the card; see the header.
#include "CardFiles.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "DcfNames.h"
#include "Text.h"

namespace dcfctl {

std::optional<EntryState> LookAt(const std::string& path) {
    struct stat info = {};
    if (lstat(path.c_str(), &info) != 0) {
        return std::nullopt;
    }
    return EntryState{info.st_dev, info.st_ino,   info.st_mode,
                      info.st_uid, info.st_nlink, static_cast<std::uint64_t>(info.st_size)};
}

const char* KindText(mode_t mode) {
    switch (mode & S_IFMT) {
    case S_IFREG:
        return "a file";
    case S_IFDIR:
        return "a folder";
    case S_IFLNK:
        return "a link";
    case S_IFBLK:
    case S_IFCHR:
        return "a device";
    default:
        return "a pipe or socket";
    }
}

int WriteObstacle(const std::string& folder) {
    return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0 ? 0 : errno;
}

FolderContents::FolderContents(const std::string& path, bool camera) {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), closedir);
    if (folder == nullptr) {
        m_error = errno;
        return;
    }
    errno = 0;
    while (const dirent* entry = readdir(folder.get())) {
        std::string name = entry->d_name;
        if (name == "." || name == "..") {
            continue;
        }
        const auto read = camera ? CameraFileName(name) : DcfFileName(name);
        if (read.has_value()) {
            m_byNumber[read->number].push_back(name);
        }
        m_names.push_back(std::move(name));
    }
    m_error = errno;
}

const std::vector<std::string>& FolderContents::OfNumber(int number) const {
    static const std::vector<std::string> none;
    const auto found = m_byNumber.find(number);
    return found == m_byNumber.end() ? none : found->second;
}

std::string UpperCased(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(), UpperCase);
    return name;
}

} // namespace dcfctl
