#include "RandomCard.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

namespace dcftest {

namespace {

void Check(bool done, const std::string& what) {
    if (!done) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

std::string Number(int number, int width) {
    std::array<char, 16> text{};
    (void)std::snprintf(text.data(), text.size(), "%0*d", width, number);
    return text.data();
}

std::string Lower(std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    }
    return text;
}

void AddCompanion(Dice& dice, CardFolder& folder, const std::string& name) {
    std::string companion = name;
    companion.replace(companion.size() - 3, 3, dice.Chance(70) ? "SRW" : "MPO");
    if (dice.Chance(15)) {
        companion.replace(0, 4, "ABCD"); // a companion by number that the list composes under another name
    }
    if (CanHold(folder, companion)) {
        folder.files[companion] = RandomFile(dice);
    }
}

void FillRandomFolder(Dice& dice, const std::string& name, CardFolder& folder) {
    const int files = dice.Chance(15) ? 0 : dice.Pick(1, 6);
    for (int i = 0; i < files; ++i) {
        const std::string file = RandomFileName(dice, name);
        if (!CanHold(folder, file)) {
            continue;
        }
        folder.files[file] = RandomFile(dice);
        if (dice.Chance(30)) {
            AddCompanion(dice, folder, file);
        }
    }
    if (dice.Chance(8)) {
        folder.files["notes.txt"] = RandomFile(dice);
    }
}

} // namespace

std::string RandomFolderName(Dice& dice) {
    if (dice.Chance(20)) {
        return "Camera";
    }
    if (dice.Chance(8)) {
        return dice.Of<std::string>(
            {"099ABCDE", "1000ABCD", "+100ABCD", " 100ABCD", "0999ABCD", "ABCDEFGH", "120", "104ABCDEF", "CAMERA"});
    }
    const int number = dice.Of<int>({100, 100, 101, 102, 103, 110, 300, 997, 998, 999});
    return std::to_string(number) + dice.Of<std::string>({"PHOTO", "PHOTO", "PHOTO", "ABCDE", "_1224", "photo"});
}

// One draw per statement: in one expression the order would be the compiler's, and a seed would not mean the same card.
std::string RandomFileName(Dice& dice, const std::string& folder) {
    std::string name;
    if (folder == "Camera") {
        name = "2024013";
        name += std::to_string(dice.Pick(0, 1));
        name += "_";
        name += Number(dice.Pick(0, 5), 6);
        if (dice.Chance(5)) {
            name[dice.Chance(50) ? 9 : 14] = 'X';
        }
        name += ".";
        name += dice.Of<std::string>({"JPG", "JPG", "JPG", "SRW", "MPO", "MP4"});
    } else {
        name = dice.Of<std::string>({"KVR_", "KVR_", "KVR_", "_KVR", "1224", "AB-D"});
        name += Number(dice.Chance(8) ? dice.Of<int>({0, 9998, 9999}) : dice.Pick(1, 9), 4);
        name += ".";
        name += dice.Of<std::string>({"JPG", "JPG", "JPG", "JPG", "SRW", "MPO", "MP4", "AVI", "MOV"});
    }
    return dice.Chance(4) ? Lower(name) : name;
}

CardFile RandomFile(Dice& dice) {
    CardFile file;
    file.mode = dice.Chance(75) ? 0644U : dice.Of<mode_t>({0444, 0444, 0555, 0600, 0666});
    file.time = static_cast<std::uint32_t>(dice.Pick(1, 2000000000));
    file.folder = dice.Chance(2);
    return file;
}

bool CanHold(const CardFolder& folder, const std::string& name) {
    for (const auto& [other, file] : folder.files) {
        if (other == name || (other.size() == 12 && name.size() == 12 && other.compare(4, 4, name, 4, 4) == 0 &&
                              other.compare(9, 3, name, 9, 3) == 0)) {
            return false;
        }
    }
    return true;
}

void MakeRandomCard(Dice& dice, ReferenceCard& card) {
    card.dcim = !dice.Chance(3);
    card.folders.clear();
    if (!card.dcim) {
        return;
    }
    const int folders = dice.Pick(0, 5);
    for (int i = 0; i < folders; ++i) {
        const std::string name = RandomFolderName(dice);
        if (card.folders.count(name) > 0) {
            continue;
        }
        CardFolder& folder = card.folders[name];
        folder.plain = name != "Camera" && dice.Chance(3);
        folder.mode = folder.plain ? 0644 : 0755;
        if (!folder.plain) {
            FillRandomFolder(dice, name, folder);
        }
    }
}

// ---- The real card ----

namespace {

/// A place beside "DCIM" for what a link on the card names.
std::string LinkTarget(const std::string& path) {
    static int number = 0;
    const std::string folder = path.substr(0, path.find("/DCIM/")) + "/named";
    Check(::mkdir(folder.c_str(), 0755) == 0 || errno == EEXIST, "mkdir " + folder);
    return folder + "/" + std::to_string(++number);
}

/// @return whether it is one that has no mode and no time of its own.
bool MakeSpecial(const std::string& path, Special special) {
    if (special == Special::Pipe) {
        Check(::mkfifo(path.c_str(), 0600) == 0, "mkfifo " + path);
    } else if (special == Special::DanglingLink) {
        Check(::symlink("nowhere", path.c_str()) == 0, "symlink " + path);
    }
    return special == Special::DanglingLink;
}

} // namespace

void MakeRealFile(const std::string& path, const CardFile& file) {
    if (file.special == Special::Link) {
        const std::string target = LinkTarget(path);
        MakeRealFile(target, {file.mode, file.time, file.folder});
        Check(::symlink(target.c_str(), path.c_str()) == 0, "symlink " + path);
        return;
    }
    if (MakeSpecial(path, file.special)) {
        return;
    }
    if (file.folder) {
        Check(::mkdir(path.c_str(), 0755) == 0, "mkdir " + path);
    } else if (file.special == Special::None) {
        const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        Check(fd >= 0, "open " + path);
        (void)::close(fd);
    }
    Check(::chmod(path.c_str(), file.mode) == 0, "chmod " + path);
    const std::array<timespec, 2> times = {timespec{file.time, 0}, timespec{file.time, 0}};
    Check(::utimensat(AT_FDCWD, path.c_str(), times.data(), 0) == 0, "utimensat " + path);
}

void MakeRealFolder(const std::string& path, const CardFolder& folder) {
    if (folder.plain) {
        MakeRealFile(path, {folder.mode, 0, false, folder.special});
        return;
    }
    if (folder.special == Special::Link) {
        const std::string target = LinkTarget(path);
        MakeRealFolder(target, {folder.mode, false, folder.files});
        Check(::symlink(target.c_str(), path.c_str()) == 0, "symlink " + path);
        return;
    }
    Check(::mkdir(path.c_str(), 0755) == 0, "mkdir " + path);
    for (const auto& [name, file] : folder.files) {
        MakeRealFile(path + "/" + name, file);
    }
    Check(::chmod(path.c_str(), folder.mode) == 0, "chmod " + path);
}

void MakeRealCard(const ReferenceCard& card) {
    const std::string dcim = card.root + "/DCIM";
    if (!card.dcim) {
        return;
    }
    Check(::mkdir(dcim.c_str(), 0755) == 0, "mkdir " + dcim);
    for (const auto& [name, folder] : card.folders) {
        MakeRealFolder(dcim + "/" + name, folder);
    }
}

void RemoveReal(const std::string& path) {
    std::filesystem::remove_all(path);
}

void SetRealMode(const std::string& path, mode_t mode) {
    Check(::chmod(path.c_str(), mode) == 0, "chmod " + path);
}

namespace {

/// The entries of a folder, handle and all.
class Folder {
public:
    explicit Folder(const std::string& path) : m_dir(::opendir(path.c_str())) {}
    ~Folder() {
        if (m_dir != nullptr) {
            (void)::closedir(m_dir);
        }
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    explicit operator bool() const {
        return m_dir != nullptr;
    }
    /// Null behind the last one.
    const char* Next() {
        for (const dirent* entry = ::readdir(m_dir); entry != nullptr; entry = ::readdir(m_dir)) {
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..") {
                return entry->d_name;
            }
        }
        return nullptr;
    }
    /// Of what a link names, where it names something.
    struct stat Status(const char* name, Special special) const {
        struct stat status {};
        Check(::fstatat(::dirfd(m_dir), name, &status, AT_SYMLINK_NOFOLLOW) == 0, std::string("fstatat ") + name);
        if (special == Special::Link && S_ISLNK(status.st_mode)) {
            Check(::fstatat(::dirfd(m_dir), name, &status, 0) == 0, std::string("fstatat ") + name);
        }
        return status;
    }

private:
    DIR* m_dir;
};

std::string FileDifference(const std::string& name, const CardFile& file, const struct stat& status) {
    if (S_ISDIR(status.st_mode) != file.folder || S_ISFIFO(status.st_mode) != (file.special == Special::Pipe) ||
        S_ISLNK(status.st_mode) != (file.special == Special::DanglingLink)) {
        return name + " is of another kind";
    }
    if (file.special == Special::DanglingLink) {
        return "";
    }
    if ((status.st_mode & 07777U) != file.mode) {
        return name + " has the mode " + ModeText(status.st_mode) + " instead of " + ModeText(file.mode);
    }
    if (static_cast<std::uint32_t>(status.st_mtime) != file.time) {
        return name + " has another time";
    }
    return "";
}

std::string FolderDifference(const std::string& path, const std::string& name, const CardFolder& folder) {
    Folder real(path);
    std::size_t count = 0;
    for (const char* entry = real.Next(); entry != nullptr; entry = real.Next()) {
        const auto file = folder.files.find(entry);
        if (file == folder.files.end()) {
            return "the card has " + name + "/" + entry;
        }
        const std::string difference =
            FileDifference(name + "/" + entry, file->second, real.Status(entry, file->second.special));
        if (!difference.empty()) {
            return difference;
        }
        ++count;
    }
    return count == folder.files.size() ? "" : "the card lacks files of " + name;
}

} // namespace

std::string CardDifference(const ReferenceCard& card) {
    const std::string dcim = card.root + "/DCIM";
    Folder top(dcim);
    if (static_cast<bool>(top) != card.dcim) {
        return card.dcim ? "the card lacks DCIM" : "the card has DCIM";
    }
    std::size_t count = 0;
    for (const char* entry = top ? top.Next() : nullptr; entry != nullptr; entry = top.Next()) {
        const auto folder = card.folders.find(entry);
        if (folder == card.folders.end()) {
            return std::string("the card has ") + entry;
        }
        const struct stat status = top.Status(entry, folder->second.special);
        if (S_ISDIR(status.st_mode) == folder->second.plain) {
            return std::string(entry) + " is of another kind";
        }
        if (!S_ISLNK(status.st_mode) && (status.st_mode & 07777U) != folder->second.mode) {
            return std::string(entry) + " has the mode " + ModeText(status.st_mode) + " instead of " +
                   ModeText(folder->second.mode);
        }
        const std::string difference =
            folder->second.plain ? "" : FolderDifference(dcim + "/" + entry, entry, folder->second);
        if (!difference.empty()) {
            return difference;
        }
        ++count;
    }
    return count == card.folders.size() ? "" : "the card lacks a folder";
}

} // namespace dcftest
