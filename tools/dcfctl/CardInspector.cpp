// The look at the card beforehand; see the header. Sections: the root, what there is to say, the whole.
#include "CardInspector.h"

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>

#include "CardSurvey.h"
#include "DcfNames.h"
#include "Text.h"

namespace dcfctl {
namespace {

std::string KindOf(mode_t mode) {
    if (S_ISREG(mode)) {
        return "a file";
    }
    return S_ISBLK(mode) || S_ISCHR(mode) ? "a device" : "not a folder";
}

// ---- The root ----

std::string Shown(const std::string& root) {
    return Quoted(root.empty() ? "/" : root);
}

/// How to reach the same card by a path that does no harm.
std::string OtherPathCure(const std::string& root) {
    return "go there with cd " + Shown(root) + " and use --card .";
}

std::optional<Finding> CheckFolder(const std::string& path) {
    struct stat info = {};
    if (stat(path.empty() ? "/" : path.c_str(), &info) != 0) {
        const int error = errno;
        const bool missing = error == ENOENT || error == ENOTDIR;
        return Finding{missing ? "card-missing" : "card-unreadable", ExitCode::kCardUnreadable,
                       missing ? "there is no card at " + Shown(path) +
                                     "; mount it there, or name its folder with --card DIR"
                               : "the card at " + Shown(path) + " cannot be reached (" + std::strerror(error) +
                                     "); check its mount and the permissions on the way to it"};
    }
    if (!S_ISDIR(info.st_mode)) {
        return Finding{"card-not-folder", ExitCode::kCardUnreadable,
                       Shown(path) + " is " + KindOf(info.st_mode) +
                           ", not a card; name the folder at which the card is mounted"};
    }
    return std::nullopt;
}

constexpr const char* kNoHint = "is this the card's folder? 'dcfctl sample DIR' makes a card to try things on";

std::string MissingDcimCure(const std::string& root) {
    const std::size_t slash = root.rfind('/');
    const std::string last = slash == std::string::npos ? root : root.substr(slash + 1);
    if (last == kDcim) {
        return "name the folder above it with --card";
    }
    struct stat info = {};
    if (lstat((root + "/dcim").c_str(), &info) == 0) {
        return "there is a 'dcim' in small letters: rename it to DCIM";
    }
    return kNoHint;
}

std::optional<Finding> CheckDcim(const std::string& root, const std::string& dcim) {
    struct stat info = {};
    if (stat(dcim.c_str(), &info) != 0 && errno == ENOENT && lstat(dcim.c_str(), &info) != 0) {
        return Finding{"dcim-missing", ExitCode::kCardUnreadable,
                       "there is no folder 'DCIM' on the card at " + Shown(root) + "; " + MissingDcimCure(root)};
    }
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(dcim.c_str()), closedir);
    if (folder != nullptr) {
        return std::nullopt;
    }
    const int error = errno;
    if (error == ENOTDIR || error == ENOENT) {
        return Finding{"dcim-not-folder", ExitCode::kCardUnreadable,
                       Quoted(dcim) + (error == ENOENT ? " is a link that leads nowhere" : " is not a folder") +
                           "; move it away, or name the right card with --card DIR"};
    }
    return Finding{"dcim-unreadable", ExitCode::kCardUnreadable,
                   Quoted(dcim) + " cannot be read (" + std::strerror(error) +
                       "); check the card, and the permissions of the folder"};
}

// ---- What there is to say ----

std::string NumberText(int number) {
    return number == kCameraNumber ? "99, the one of 'Camera'" : std::to_string(number);
}

std::string AndMore(std::size_t count, const char* what) {
    return count > 1 ? " (and " + std::to_string(count - 1) + " more " + what + ")" : "";
}

constexpr const char* kRenameFolder = "give one of them a free number, for example by renaming it";

/// The library resolves a path by its number and finds the first of two folders. When that one is empty and the other
/// holds the first file of the list, the listing itself goes wrong.
std::optional<Finding> CheckFirstFile(const std::vector<CardFolder>& folders) {
    const auto filled = std::find_if(folders.begin(), folders.end(), [](const CardFolder& f) { return f.files > 0; });
    if (filled == folders.end()) {
        return std::nullopt;
    }
    const auto found = std::find_if(folders.begin(), folders.end(),
                                    [&](const CardFolder& folder) { return folder.number == filled->number; });
    if (found == filled) {
        return std::nullopt;
    }
    return Finding{kSharedFolderNumber, ExitCode::kRefused,
                   "the card cannot be listed: " + Quoted(found->name) + ", which holds no listed file, and " +
                       Quoted(filled->name) + " share the number " + NumberText(filled->number) +
                       "; rename or remove the empty one"};
}

std::string TooLongText(const std::string& root, std::size_t added, const char* whose) {
    return "the path of the card has " + std::to_string(root.size()) + " characters, and with more than " +
           std::to_string(kMaxPath - added) + " the paths of " + whose + " would be cut at " +
           std::to_string(kMaxPath) + "; ";
}

std::optional<Finding> CheckCameraPaths(const std::string& root, const std::vector<CardFolder>& folders) {
    const bool camera = std::any_of(folders.begin(), folders.end(), [](const CardFolder& folder) {
        return folder.name == kCamera && folder.files > 0;
    });
    if (!camera || root.size() + kCameraPathLength <= kMaxPath) {
        return std::nullopt;
    }
    return Finding{"paths-cut", ExitCode::kRefused,
                   TooLongText(root, kCameraPathLength, "the files in 'Camera'") + "leave 'Camera' out, or " +
                       OtherPathCure(root)};
}

void ReportShared(const SharedNumbers& numbers, CardReport& report) {
    std::size_t count = 0;
    const SharedNumbers::value_type* first = nullptr;
    for (const auto& entry : numbers) {
        if (entry.second.listed.size() > 1) {
            report.ambiguous.insert(entry.second.listed.begin(), entry.second.listed.end());
            first = count++ == 0 ? &entry : first;
        }
    }
    if (first != nullptr) {
        const Names& names = first->second.listed;
        report.warnings.push_back({kSharedFolderNumber, ExitCode::kPartial,
                                   "the folders " + Quoted(names[0]) + " and " + Quoted(names[1]) +
                                       " share the number " + NumberText(first->first) +
                                       AndMore(count, "shared numbers") +
                                       ", so the marks and details of their files cannot be had; " + kRenameFolder});
    }
}

void ReportLeftOut(const SharedNumbers& numbers, const std::string& root, CardReport& report) {
    std::size_t count = 0;
    const SharedNumbers::value_type* first = nullptr;
    for (const auto& entry : numbers) {
        if (!entry.second.leftOut.empty()) {
            first = count++ == 0 ? &entry : first;
        }
    }
    if (first == nullptr) {
        return;
    }
    const bool byRoot = HoldsPhoto(root);
    const std::string which = "the folder " + Quoted(first->second.leftOut[0]) + " is not listed" +
                              AndMore(count, "folders") + ": " + Quoted(first->second.listed.back()) +
                              " has the number " + NumberText(first->first) + " too";
    report.warnings.push_back(
        {byRoot ? "root-photo" : "folder-left-out", ExitCode::kPartial,
         which + (byRoot ? ", and the card's path " + Shown(root) +
                               " contains \"PHOTO\", which lets one folder of a number in; " + kRenameFolder
                         : std::string("; ") + kRenameFolder)});
}

void ReportNumbers(const NumberSurvey& survey, std::vector<Finding>& warnings) {
    const auto files = [](const std::string& example, int count, int missing) {
        return Quoted(example) + AndMore(static_cast<std::size_t>(count), "files") +
               (missing > 0 ? ", " + std::to_string(missing) + " not listed" : "");
    };
    if (survey.oddNumbers > 0) {
        warnings.push_back({"camera-digits", survey.oddMissing > 0 ? ExitCode::kPartial : ExitCode::kSuccess,
                            "characters 10 to 15 of a name in 'Camera' are its number and are not six digits in " +
                                files(survey.oddName, survey.oddNumbers, survey.oddMissing) +
                                "; rename like 20240501_123456.JPG"});
    }
    if (survey.zeroNumbers > 0) {
        warnings.push_back({"file-number-zero", survey.zeroMissing > 0 ? ExitCode::kPartial : ExitCode::kSuccess,
                            "file numbers begin with 1, and 0 is the number of " +
                                files(survey.zeroName, survey.zeroNumbers, survey.zeroMissing) +
                                (survey.zeroMissing > 0 ? "" : ", where browsing stops") +
                                "; rename with a number of 1 or more"});
    }
}

void ReportUnreadable(const std::vector<CardFolder>& folders, std::vector<Finding>& warnings) {
    std::size_t count = 0;
    const CardFolder* first = nullptr;
    for (const CardFolder& folder : folders) {
        if (folder.readError != 0 && folder.readError != ENOTDIR) { // a file with a folder's name holds nothing
            first = count++ == 0 ? &folder : first;
        }
    }
    if (first != nullptr) {
        warnings.push_back({kUnreadableFolder, ExitCode::kPartial,
                            "the folder " + Quoted(first->name) + " cannot be read (" +
                                std::strerror(first->readError) + ")" + AndMore(count, "folders") +
                                ", its files are missing from the list; check its permissions and the card"});
    }
}

} // namespace

std::string NormalisedRoot(std::string root) {
    while (!root.empty() && root.back() == '/') {
        root.pop_back();
    }
    return root;
}

CardInspector::CardInspector(std::string root, bool camera)
    : m_root(std::move(root)), m_dcim(m_root + "/" + std::string(kDcim)), m_camera(camera) {}

std::optional<Finding> CardInspector::CheckRoot() const {
    if (m_root.size() > kMaxRoot) {
        return Finding{"root-too-long", ExitCode::kRefused,
                       "the path of the card has " + std::to_string(m_root.size()) + " characters, " +
                           std::to_string(kMaxRoot) + " are the most that the file list takes; " +
                           OtherPathCure(m_root)};
    }
    if (auto finding = CheckFolder(m_root)) {
        return finding;
    }
    if (m_root.find(kCamera) != std::string::npos) {
        return Finding{"root-camera", ExitCode::kRefused,
                       "the path of the card, " + Shown(m_root) +
                           R"(, contains "Camera", which would make every folder a "Camera" folder; )" +
                           OtherPathCure(m_root)};
    }
    if (m_root.size() + kDcfPathLength > kMaxPath) {
        return Finding{"paths-cut", ExitCode::kRefused,
                       TooLongText(m_root, kDcfPathLength, "its files") + OtherPathCure(m_root)};
    }
    return std::nullopt;
}

bool CardInspector::HasDcim() const {
    struct stat info = {};
    return lstat(m_dcim.c_str(), &info) == 0;
}

std::optional<Finding> CardInspector::CheckNewDcim() const {
    return MissingDcimCure(m_root) == kNoHint ? std::nullopt : CheckDcim(m_root, m_dcim);
}

std::optional<Finding> CardInspector::CheckCard() const {
    if (auto finding = CheckRoot()) {
        return finding;
    }
    return CheckDcim(m_root, m_dcim);
}

std::vector<std::string> CardInspector::FolderNames() const {
    std::vector<CardFolder> folders;
    (void)ListFolders(m_dcim, m_camera, folders); // which of them share a number is not asked here
    Names names;
    for (const CardFolder& folder : folders) {
        names.push_back(folder.name);
    }
    return names;
}

CardReport CardInspector::Inspect() const {
    CardReport report;
    report.refusal = CheckCard();
    if (report.refusal.has_value()) {
        return report;
    }
    const SharedNumbers shared = ListFolders(m_dcim, m_camera, report.folders);
    ReportShared(shared, report);
    ReportLeftOut(shared, m_root, report);
    NumberSurvey numbers;
    long long total = 0;
    for (CardFolder& folder : report.folders) {
        const Names names = FileNames(m_dcim + "/" + folder.name, folder.name == kCamera, folder.readError);
        folder.files = SurveyFiles(names, folder.name, numbers);
        total += folder.files;
    }
    ReportNumbers(numbers, report.warnings);
    ReportUnreadable(report.folders, report.warnings);
    if (total > kMaxFiles) {
        report.warnings.push_back({"list-full", ExitCode::kPartial,
                                   "there are " + std::to_string(total) + " files to list, and the list stops at " +
                                       std::to_string(kMaxFiles) + "; move some of them to another card"});
    }
    report.refusal = CheckCameraPaths(m_root, report.folders);
    if (!report.refusal.has_value()) {
        report.refusal = CheckFirstFile(report.folders);
    }
    return report;
}

} // namespace dcfctl
