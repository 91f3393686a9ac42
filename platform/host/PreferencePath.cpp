// Where the preference store is, and the way there.
#include "PreferenceStore.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace host {

namespace {

constexpr char kNameInStateFolder[] = "/dcffilelist/preferences.sqlite";

// secure_getenv: a program that runs with more rights than its caller must not write where the caller says.
std::string Setting(const char* name) {
    const char* value = ::secure_getenv(name);
    return value == nullptr ? "" : value;
}

std::string HomeFolder() {
    const std::string home = Setting("HOME");
    if (!home.empty()) {
        return home;
    }
    std::array<char, 16384> room{};
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::geteuid(), &entry, room.data(), room.size(), &found) == 0 && found != nullptr) {
        return found->pw_dir;
    }
    return "";
}

std::string StateFolder() {
    const std::string state = Setting("XDG_STATE_HOME");
    if (!state.empty() && state.front() == '/') { // the XDG rule: a relative one is to be ignored
        return state;
    }
    const std::string home = HomeFolder();
    if (home.empty() || home.front() != '/') {
        throw StoreError("there is no place for it; name a file in DCF_PREFERENCES");
    }
    return home + "/.local/state";
}

// "/a/b/file" gives "/", "/a" and "/a/b".
std::vector<std::string> FoldersAbove(const std::string& path) {
    std::vector<std::string> folders;
    for (std::size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
        folders.push_back(path.substr(0, std::max<std::size_t>(slash, 1)));
    }
    return folders;
}

bool IsFolder(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void SyncFolder(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return; // a folder that may be passed but not read is not one that was made here
    }
    const int error = ::fsync(fd) == 0 ? 0 : errno;
    (void)::close(fd); // nothing was written through it
    // EINVAL and EROFS: a file system that has nothing to sync for a folder.
    if (error != 0 && error != EINVAL && error != EROFS) {
        throw StoreError("its folder \"" + path + "\" cannot be brought to the disk: " + std::strerror(error));
    }
}

} // namespace

std::string PreferencePath() {
    const std::string named = Setting("DCF_PREFERENCES");
    if (named.empty()) {
        return StateFolder() + kNameInStateFolder;
    }
    // SQLite gives names such as ":memory:" and "file:..." a meaning of their own; behind "./" they are plain names.
    return named.front() == '/' ? named : "./" + named;
}

void MakeFoldersAbove(const std::string& path) {
    const std::vector<std::string> folders = FoldersAbove(path);
    for (const std::string& folder : folders) {
        if (::mkdir(folder.c_str(), 0700) != 0) {
            const int error = errno;
            if (!IsFolder(folder)) {
                throw StoreError("its folder \"" + folder + "\" cannot be made: " + std::strerror(error));
            }
        }
    }
    // A new file is safe only when the entries of all the folders that lead to it are. Also the folders that were
    // there: another process may have made them a moment ago, or have died before it could do this.
    std::for_each(folders.rbegin(), folders.rend(), SyncFolder);
}

} // namespace host
