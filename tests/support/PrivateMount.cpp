#include "PrivateMount.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace dcftest {

namespace {

bool WriteText(const char* path, const std::string& text) {
    const int fd = ::open(path, O_WRONLY | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    const bool done = ::write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    return ::close(fd) == 0 && done;
}

// An ordinary user may have mounts of his own only as root of a user namespace of his own.
bool EnterNamespace() {
    if (::unshare(CLONE_NEWNS) == 0) {
        return true;
    }
    const std::string uid = std::to_string(::getuid());
    const std::string gid = std::to_string(::getgid());
    return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && WriteText("/proc/self/setgroups", "deny") &&
           WriteText("/proc/self/uid_map", "0 " + uid + " 1") && WriteText("/proc/self/gid_map", "0 " + gid + " 1");
}

[[noreturn]] void Refuse(const char* step) {
    RefuseInChild(std::string(step) + ": " + std::strerror(errno));
}

void MountAsDefaultRoot(const std::string& folder) {
    EnterPrivateMounts();
    if (::mount("tmpfs", "/mnt", "tmpfs", 0, "mode=0755") != 0 || ::mkdir(kDefaultRoot, 0755) != 0) {
        Refuse("an own /mnt");
    }
    if (::mount(folder.c_str(), kDefaultRoot, nullptr, MS_BIND, nullptr) != 0) {
        Refuse("the card at the default root");
    }
}

} // namespace

void EnterPrivateMounts() {
    if (!EnterNamespace()) {
        Refuse("unshare");
    }
    // Nothing mounted from here on may reach the machine's own tree.
    if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
        Refuse("making the mounts private");
    }
}

Ending RunWithDefaultRoot(const std::string& folder, const std::function<void()>& piece) {
    return RunInChild([&] {
        MountAsDefaultRoot(folder);
        piece();
    });
}

} // namespace dcftest
