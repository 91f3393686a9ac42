// The prediction of new names; see the header. It follows the library step by step, its oddities included.
#include "Numbering.h"

#include <dirent.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <limits>

#include "ChangeSafety.h"
#include "DcfNames.h"
#include "Phrases.h"
#include "SeriesStore.h"
#include "Text.h"

namespace dcfctl {
namespace {

constexpr int kFirstFolder = 100;
constexpr int kLastFolder = 999;
constexpr int kLastFile = 9999;
constexpr std::size_t kNumberLength = 3;
constexpr std::size_t kLongestFolderName = 9; // a longer one is cut when it is made

std::string FileNameOf(const NameParts& parts, int number) {
    std::array<char, 16> digits = {};
    std::snprintf(digits.data(), digits.size(), "%04d", number);
    return parts.prefix + digits.data() + "." + parts.extension;
}

std::string FolderNameOf(int number, const std::string& suffix) {
    return (std::to_string(number) + suffix).substr(0, kLongestFolderName);
}

} // namespace

Numbering::Numbering(Start start, const CardReport& report) : m_start(std::move(start)), m_report(report) {
    for (const CardFolder& folder : report.folders) {
        m_folders.push_back({folder.name, folder.number});
    }
}

void Numbering::RaiseToSeries() {
    if (!m_start.series) {
        return;
    }
    if (m_start.seriesValue != kLastIndex) {
        const long highest = std::numeric_limits<int>::max();
        m_start.firstIndex = static_cast<int>(std::clamp<long>(m_start.seriesValue, m_start.firstIndex, highest));
    } else if (m_start.firstIndex != kLastIndex) {
        m_start.seriesValue = m_start.firstIndex;
    }
}

bool Numbering::TakenByOther(int number, const std::string& suffix) const {
    bool taken = false;
    for (const Folder& folder : m_folders) {
        if (folder.number == number) {
            taken = true;
            if (folder.name.substr(std::min(kNumberLength, folder.name.size())) == suffix) {
                return false;
            }
        }
    }
    return taken;
}

std::optional<Finding> Numbering::UsedUp() const {
    return Refused("numbers-used-up", "there is no number left for a new file, the newest one being " +
                                          IndexText(m_start.firstIndex) +
                                          "; 'dcfctl renumber' frees numbers, or take another card");
}

std::optional<Finding> Numbering::ChooseNumber(const std::string& suffix, NewName& name, bool& required) const {
    name.folderNumber = std::max(m_start.firstIndex / kIndexPerFolder, kFirstFolder);
    name.fileNumber = m_start.firstIndex % kIndexPerFolder + 1;
    required = name.fileNumber > kLastFile;
    if (required) {
        name.fileNumber = 1;
        ++name.folderNumber;
    }
    if (name.folderNumber > kLastFolder) {
        return UsedUp();
    }
    if (!TakenByOther(name.folderNumber, suffix)) {
        return std::nullopt;
    }
    required = true;
    name.fileNumber = 1;
    if (++name.folderNumber <= kLastFolder) {
        return std::nullopt;
    }
    return Refused("numbers-used-up",
                   "the last folder, 999, is in use with another kind of name than " + Quoted("999" + suffix) +
                       "; name folders as it is named (with or without --date-folders), or 'dcfctl renumber'");
}

bool Numbering::Exists(const std::string& folder) const {
    if (m_made.contains(folder)) {
        return true;
    }
    DIR* opened = opendir((m_start.dcim + "/" + folder).c_str());
    if (opened == nullptr) {
        return false;
    }
    closedir(opened);
    return true;
}

/// A folder that is to be made, or taken as it is.
std::optional<Finding> Numbering::PrepareFolder(const std::string& wanted, NewName& name) {
    const std::string path = m_start.dcim + "/" + wanted;
    const auto state = LookAt(path);
    if (state.has_value() && !state->IsFolder()) {
        return Refused("folder-link", Quoted(path) + " is " + KindText(state->mode) +
                                          " and no folder, so no picture can be put there; move it away first");
    }
    name.makesFolder = !state.has_value() && m_made.insert(wanted).second;
    m_folders.push_front({wanted, name.folderNumber});
    const bool dcimIsThere = LookAt(m_start.dcim).has_value(); // else it is made as well
    return name.makesFolder && dcimIsThere ? CheckWritable(m_start.dcim, "made") : std::nullopt;
}

std::optional<Finding> Numbering::ChooseFolder(const std::string& wanted, bool required, NewName& name) {
    if (required || !Exists(wanted)) {
        if (auto finding = PrepareFolder(wanted, name)) {
            return finding;
        }
    } else if (m_folders.empty() || m_folders.front().number == kCameraNumber) {
        // The file would go into the first folder of the list, which is none for numbered files.
        return Refused("no-place", Quoted(m_start.dcim + "/" + wanted) +
                                       " is on the card and not at the head of the list, so a new file would get a "
                                       "name in the wrong folder; look at the other names in " +
                                       Quoted(m_start.dcim) + " and move away what is no folder of pictures");
    }
    name.folder = m_folders.front().name; // whatever number was chosen
    return std::nullopt;
}

/// The list looks at one number only: behind a folder of another kind it takes the next number, whoever has that.
std::optional<Finding> Numbering::CheckNewFolder(const NewName& name) const {
    const auto other = std::find_if(m_folders.begin(), m_folders.end(), [&name](const auto& folder) {
        return folder.number == name.folderNumber && folder.name != name.folder;
    });
    if (other == m_folders.end()) {
        return std::nullopt;
    }
    return Refused(kSharedFolderNumber, "the new file would need the new folder " +
                                            Quoted(m_start.dcim + "/" + name.folder) +
                                            ", which would share its number with " + Quoted(other->name) +
                                            "; give that one another number first");
}

std::optional<Finding> Numbering::CheckPlace(const NewName& name) {
    const std::string folder = m_start.dcim + "/" + name.folder;
    if (m_made.contains(name.folder)) {
        return CheckNewFolder(name); // it will be empty
    }
    if (m_report.ambiguous.contains(name.folder)) {
        return Refused(kSharedFolderNumber, "the new file would go into " + Quoted(folder) +
                                                ", which shares its number with another folder; rename one of them "
                                                "first");
    }
    const FolderContents& contents = m_contents.try_emplace(name.folder, folder, name.folder == kCamera).first->second;
    if (contents.Error() != 0) {
        return Refused("folder-unreadable", Quoted(folder) + " cannot be read (" + std::strerror(contents.Error()) +
                                                "), so nobody knows which numbers are free; check its permissions");
    }
    const std::vector<std::string>& taken = contents.OfNumber(name.fileNumber);
    if (!taken.empty() || LookAt(name.path).has_value()) {
        return Refused("number-taken",
                       "the next number is taken on the card by " +
                           Quoted(folder + "/" + (taken.empty() ? name.file : taken.front())) +
                           "; rename that file, or raise the number with --series and 'dcfctl series set'");
    }
    return CheckWritable(folder, "made");
}

std::variant<NewName, Finding> Numbering::Take(const NameParts& parts) {
    if (m_start.files >= kMaxFiles) {
        return Refused("list-full", "the list holds " + std::to_string(m_start.files) +
                                        " files and takes no more; move some of them to another card");
    }
    RaiseToSeries();
    NewName name;
    bool required = false;
    if (auto finding = ChooseNumber(parts.folderSuffix, name, required)) {
        return *finding;
    }
    if (auto finding = ChooseFolder(FolderNameOf(name.folderNumber, parts.folderSuffix), required, name)) {
        return *finding;
    }
    name.file = FileNameOf(parts, name.fileNumber);
    name.path = m_start.dcim + "/" + name.folder + "/" + name.file;
    name.stored = static_cast<long>(name.folderNumber) * kIndexPerFolder + name.fileNumber;
    if (auto finding = CheckPlace(name)) {
        return *finding;
    }
    m_start.firstIndex = static_cast<int>(name.stored);
    m_start.seriesValue = name.stored;
    ++m_start.files;
    return name;
}

} // namespace dcfctl
