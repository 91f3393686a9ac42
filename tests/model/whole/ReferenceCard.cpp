#include "ReferenceCard.h"

#include <array>
#include <cstdio>

namespace dcftest {

namespace {

constexpr mode_t kOwnerWrite = 0200;

} // namespace

std::string ModeText(mode_t mode) {
    std::array<char, 16> text{};
    (void)std::snprintf(text.data(), text.size(), "%04o", mode & 07777U);
    return text.data();
}

ReferenceCard::Place ReferenceCard::Find(const std::string& path) {
    Place place;
    const std::string top = root + "/DCIM";
    if (!dcim || path.compare(0, top.size(), top) != 0) {
        return place;
    }
    if (path.size() == top.size()) {
        place.dcim = true;
        return place;
    }
    if (path[top.size()] != '/') {
        return place;
    }
    const std::string rest = path.substr(top.size() + 1);
    const std::size_t slash = rest.find('/');
    place.folderName = rest.substr(0, slash);
    const auto folder = folders.find(place.folderName);
    if (folder == folders.end()) {
        return place;
    }
    if (slash == std::string::npos) {
        place.folder = &folder->second;
        return place;
    }
    place.fileName = rest.substr(slash + 1);
    const auto file = folder->second.files.find(place.fileName);
    if (file != folder->second.files.end()) {
        place.file = &file->second;
    }
    return place;
}

const CardFile* ReferenceCard::File(const std::string& path) const {
    return const_cast<ReferenceCard*>(this)->Find(path).file;
}

std::optional<mode_t> ReferenceCard::Stat(const std::string& path) {
    Note("stat " + path);
    if (faults.Fails("stat")) {
        return std::nullopt;
    }
    const Place place = Find(path);
    if (place.file != nullptr && place.file->special != Special::DanglingLink) {
        return place.file->mode;
    }
    if (place.folder != nullptr && place.folder->special != Special::DanglingLink) {
        return place.folder->mode;
    }
    return std::nullopt;
}

bool ReferenceCard::Chmod(const std::string& path, mode_t mode) {
    Note("chmod " + path + " " + ModeText(mode));
    if (faults.Fails("chmod")) {
        return false;
    }
    const Place place = Find(path);
    if (place.file != nullptr) {
        place.file->mode = mode;
    } else if (place.folder != nullptr) {
        place.folder->mode = mode;
    } else {
        return false;
    }
    faults.Changed();
    return true;
}

/// Removes a file, or also a folder that is empty.
bool ReferenceCard::Take(const std::string& path, bool alsoFolders) {
    const Place place = Find(path);
    if (place.file != nullptr) {
        if (place.file->folder && !alsoFolders) {
            return false;
        }
        folders[place.folderName].files.erase(place.fileName);
        faults.Changed();
        return true;
    }
    if (place.folder != nullptr) {
        if (place.folder->IsFolder() && (!alsoFolders || !place.folder->files.empty())) {
            return false;
        }
        folders.erase(place.folderName);
        faults.Changed();
        return true;
    }
    return false;
}

bool ReferenceCard::Unlink(const std::string& path) {
    Note("unlink " + path);
    return !faults.Fails("unlink") && Take(path, false);
}

bool ReferenceCard::Remove(const std::string& path) {
    Note("remove " + path);
    return !faults.Fails("remove") && Take(path, true);
}

bool ReferenceCard::Rename(const std::string& from, const std::string& to) {
    Note("rename " + from + " " + to);
    if (faults.Fails("rename")) {
        return false;
    }
    const Place source = Find(from);
    const Place target = Find(to);
    if (source.folder == nullptr) {
        return false;
    }
    if (source.folderName == target.folderName) {
        faults.Changed();
        return true;
    }
    if (target.folder != nullptr && (source.folder->IsFolder() != target.folder->IsFolder() ||
                                     (target.folder->IsFolder() && !target.folder->files.empty()))) {
        return false;
    }
    const CardFolder moved = *source.folder;
    folders.erase(source.folderName);
    folders[target.folderName] = moved;
    faults.Changed();
    return true;
}

bool ReferenceCard::Mkdir(const std::string& path, mode_t mode) {
    Note("mkdir " + path + " " + ModeText(mode));
    if (faults.Fails("mkdir")) {
        return false;
    }
    const Place place = Find(path);
    if (path == root + "/DCIM" ? dcim : !dcim || place.folder != nullptr) {
        return false;
    }
    if (path == root + "/DCIM") {
        dcim = true;
    } else {
        folders[place.folderName].mode = mode;
    }
    faults.Changed();
    return true;
}

bool ReferenceCard::OpenDir(const std::string& path) {
    Note("opendir " + path);
    if (faults.Fails("opendir")) {
        return false;
    }
    const Place place = Find(path);
    return place.dcim || (place.folder != nullptr && !place.folder->plain);
}

void ReferenceCard::Umask(mode_t mask) {
    Note("umask " + ModeText(mask));
}

void ReferenceCard::Sync() {
    Note("sync");
}

std::optional<std::vector<std::string>> ReferenceCard::Scan(const std::string& path) {
    Note("scandir " + path);
    if (faults.Fails("scandir")) {
        return std::nullopt;
    }
    const Place place = Find(path);
    std::vector<std::string> names;
    if (place.dcim) {
        for (const auto& [name, folder] : folders) {
            names.push_back(name);
        }
    } else if (place.folder != nullptr && !place.folder->plain) {
        for (const auto& [name, file] : place.folder->files) {
            names.push_back(name);
        }
    } else {
        return std::nullopt;
    }
    return names;
}

bool ReferenceCard::SetProtect(const std::string& path, bool on) {
    const std::optional<mode_t> mode = Stat(path);
    if (!mode) {
        return false;
    }
    const bool done = Chmod(path, on ? *mode & ~kOwnerWrite : *mode | kOwnerWrite);
    Sync();
    return done;
}

bool ReferenceCard::IsProtect(const std::string& path) {
    const std::optional<mode_t> mode = Stat(path);
    return mode && (*mode & kOwnerWrite) == 0;
}

void ReferenceCard::RemoveFile(const std::string& path) {
    if (!Unlink(path)) {
        (void)Remove(path);
    }
}

bool ReferenceCard::MakeDirectory(const std::string& path) {
    Umask(0);
    const bool made = Mkdir(path, 0775);
    Umask(022);
    if (made) {
        Sync();
    }
    return made;
}

bool ReferenceCard::IsDirEmpty(const std::string& path) {
    if (!OpenDir(path)) {
        return true;
    }
    // Three entries are asked for, the two dot entries among them; an error looks like the end.
    const bool unreadable = faults.Fails("readdir") || faults.Fails("readdir") || faults.Fails("readdir");
    const Place place = Find(path);
    return unreadable || place.folder == nullptr || place.folder->files.empty();
}

} // namespace dcftest
