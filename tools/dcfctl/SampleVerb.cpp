// sample; see the header. The card is put together in a folder of its own beside its place and renamed into place at
// the end, so that nothing half made is ever found under "DCIM".
#include "SampleVerb.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <set>
#include <system_error>
#include <vector>

#include "DcfNames.h"
#include "Phrases.h"
#include "SampleFiles.h"
#include "Terminal.h"
#include "Text.h"

namespace dcfctl {
namespace {

struct SampleFile {
    const char* folder;
    const char* name;
    int minute; ///< After the start of the sample's day.
    bool locked = false;
};

/// Every kind of file alone, every kind of companion, protected files, a folder with a date in its name, and "Camera".
constexpr SampleFile kFiles[] = {
    {"100PHOTO", "KVR_0001.JPG", 0},         {"100PHOTO", "KVR_0002.JPG", 7},
    {"100PHOTO", "KVR_0002.SRW", 7},         {"100PHOTO", "KVR_0003.JPG", 12, true},
    {"100PHOTO", "KVR_0004.MP4", 31},        {"100PHOTO", "KVR_0005.SRW", 44},
    {"100PHOTO", "KVR_0006.JPG", 58},        {"100PHOTO", "KVR_0006.MPO", 58},
    {"101PHOTO", "KVR_0001.JPG", 95},        {"101PHOTO", "KVR_0002.JPG", 101, true},
    {"101PHOTO", "KVR_0002.SRW", 101, true}, {"101PHOTO", "KVR_0003.MPO", 117},
    {"101PHOTO", "KVR_0004.AVI", 130},       {"101PHOTO", "KVR_0005.JPG", 144},
    {"102_0501", "05010001.JPG", 200},       {"102_0501", "_5010002.JPG", 203},
    {"Camera", "20240501_134500.JPG", 225},  {"Camera", "20240501_134730.JPG", 227},
    {"Camera", "20240501_135015.SRW", 230},
};

constexpr std::time_t kStartOfDay = 1714557600; // 2024-05-01 10:00:00 UTC

/// What went wrong, and where; thrown within this file only.
struct WriteError {
    int error;
    std::string path;
    bool cleared = true; ///< Nothing of the work is left.
};

[[noreturn]] void Fail(const std::string& path) {
    throw WriteError{errno, path, true};
}

void WriteAll(int fd, std::string_view content, const std::string& path) {
    while (!content.empty()) {
        const ssize_t written = write(fd, content.data(), content.size());
        if (written < 0 && errno != EINTR) {
            Fail(path);
        }
        content.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
}

/// Takes all write bits: a card mounted with a wide mask ignores a change of the owner's bit alone. Some file systems
/// have no protection at all. @return whether the file is protected now.
bool Protect(int fd) {
    struct stat info = {};
    constexpr mode_t kPermissions = 07777;
    constexpr mode_t kAllWriters = 0222;
    return fstat(fd, &info) == 0 && fchmod(fd, info.st_mode & kPermissions & ~kAllWriters) == 0 &&
           fstat(fd, &info) == 0 && (info.st_mode & S_IWUSR) == 0;
}

int NumberOf(const SampleFile& file) {
    const auto name = std::strcmp(file.folder, "Camera") == 0 ? CameraFileName(file.name) : DcfFileName(file.name);
    return name.has_value() ? name->number : 0;
}

/// @return whether the file is as protected as it should be.
bool WriteFile(const std::string& path, const SampleFile& file) {
    const std::time_t time = kStartOfDay + std::time_t{file.minute} * 60;
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) {
        Fail(path);
    }
    bool protection = true;
    try {
        WriteAll(fd, SampleFileContent(TypeOfPath(file.name), NumberOf(file), time), path);
        if (file.locked) {
            protection = Protect(fd);
        }
        const timespec times[] = {{time, 0}, {time, 0}};
        if (futimens(fd, times) != 0 || fsync(fd) != 0) {
            Fail(path);
        }
    } catch (...) {
        close(fd);
        throw;
    }
    if (close(fd) != 0) {
        Fail(path);
    }
    return protection;
}

void MakeFolder(const std::string& path) {
    if (mkdir(path.c_str(), 0777) != 0) {
        Fail(path);
    }
}

/// @return whether the card's folder was made and not there before.
bool MakePlace(const std::string& root) {
    if (root.empty() || mkdir(root.c_str(), 0777) == 0) {
        return !root.empty();
    }
    if (errno != EEXIST) {
        Fail(root);
    }
    return false;
}

SampleResult FillCard(const std::string& dcim) {
    SampleResult result;
    std::set<std::string> folders;
    MakeFolder(dcim);
    for (const SampleFile& file : kFiles) {
        if (InterruptGuard::Interrupted()) {
            throw WriteError{EINTR, dcim};
        }
        const std::string folder = dcim + "/" + file.folder;
        if (folders.insert(folder).second) {
            MakeFolder(folder);
        }
        const bool protection = WriteFile(folder + "/" + file.name, file);
        ++result.files;
        result.protectedFiles += file.locked && protection ? 1 : 0;
        result.unprotectedFiles += protection ? 0 : 1;
    }
    result.folders = static_cast<int>(folders.size());
    return result;
}

/// Never over something that is there, not even over an empty folder that came in the meantime.
void MoveIntoPlace(const std::string& from, const std::string& to) {
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return;
    }
    struct stat info = {};
    const bool unknown = errno == EINVAL || errno == ENOSYS; // a file system without that flag
    if (!unknown) {
        Fail(to);
    }
    if (lstat(to.c_str(), &info) == 0) {
        errno = EEXIST;
        Fail(to);
    }
    if (rename(from.c_str(), to.c_str()) != 0) {
        Fail(to);
    }
}

SampleResult Build(const std::string& root) {
    const InterruptGuard guard;
    std::string work = root + "/.DCIM-XXXXXX";
    if (mkdtemp(work.data()) == nullptr) {
        Fail(root);
    }
    std::error_code ignored; // the error that is told is the first one
    const auto clear = [&] {
        std::filesystem::remove_all(work, ignored);
        return !std::filesystem::exists(work, ignored);
    };
    try {
        SampleResult result = FillCard(work + "/DCIM");
        MoveIntoPlace(work + "/DCIM", root + "/DCIM");
        (void)clear(); // an empty folder at the most
        return result;
    } catch (WriteError& failure) {
        failure.cleared = clear();
        throw;
    }
}

std::optional<Finding> CheckPlace(const std::string& root) {
    struct stat info = {};
    if (lstat((root + "/DCIM").c_str(), &info) == 0) {
        return Finding{"dcim-exists", ExitCode::kRefused,
                       Quoted(root) + " already has a 'DCIM', and nothing is ever written over; name another folder"};
    }
    if (stat(root.empty() ? "/" : root.c_str(), &info) == 0 && !S_ISDIR(info.st_mode)) {
        return Finding{"card-not-folder", ExitCode::kRefused, Quoted(root) + " is not a folder; name another one"};
    }
    return std::nullopt;
}

} // namespace

Report<SampleResult> MakeSample(const std::string& root) {
    if (auto finding = CheckPlace(root)) {
        return Failed<SampleResult>(*finding);
    }
    bool made = false;
    try {
        made = MakePlace(root);
        SampleResult result = Build(root);
        result.root = root;
        std::vector<Finding> warnings;
        if (result.unprotectedFiles > 0) {
            warnings.push_back({"protection-ignored", ExitCode::kSuccess,
                                "the file system takes no protection, so " + std::to_string(result.unprotectedFiles) +
                                    " files of the sample are without it; look at the options of its mount"});
        }
        return {result, std::nullopt, warnings};
    } catch (const WriteError& failure) {
        if (made) {
            (void)rmdir(root.c_str()); // what stays behind is an empty folder
        }
        const char* left = failure.cleared ? "nothing of it was left" : "what was written of it is still there";
        if (failure.error == EINTR) {
            return Failed<SampleResult>(
                Incomplete("interrupted", "the work was interrupted, and " + std::string(left) + "; run it again"));
        }
        return Failed<SampleResult>({"write-failed", ExitCode::kIncomplete,
                                     "the sample card could not be written at " + Quoted(failure.path) + " (" +
                                         std::strerror(failure.error) + "), and " + left +
                                         "; make room or name another folder"});
    }
}

} // namespace dcfctl
