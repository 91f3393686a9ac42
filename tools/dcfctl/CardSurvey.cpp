// The walk over the names; see the header. The rules are the library's, down to their oddities.
#include "CardSurvey.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

#include "DcfNames.h"

namespace dcfctl {
namespace {

int KeepFolderEntry(const dirent* entry) {
    return std::strlen(entry->d_name) == 8 || entry->d_name == kCamera ? 1 : 0;
}

/// The library's own order: "Camera" last, the others from the highest name down.
int CompareFolderEntries(const dirent** a, const dirent** b) {
    const bool cameraA = (*a)->d_name == kCamera;
    const bool cameraB = (*b)->d_name == kCamera;
    return cameraA || cameraB ? static_cast<int>(cameraA) - static_cast<int>(cameraB)
                              : std::strcmp((*b)->d_name, (*a)->d_name);
}

bool IsCompanionType(eFileType type) {
    return type == FILE_TYPE_SRW || type == FILE_TYPE_MPO;
}

bool DcfOrder(const std::string& a, const std::string& b) {
    const int numbers = b.compare(4, 4, a, 4, 4);
    return numbers != 0 ? numbers < 0 : a.compare(9, 3, b, 9, 3) < 0;
}

void Note(NumberSurvey& survey, const FileName& file, const std::string& name, bool missing) {
    int& count = file.digits ? survey.zeroNumbers : survey.oddNumbers;
    int& missed = file.digits ? survey.zeroMissing : survey.oddMissing;
    std::string& example = file.digits ? survey.zeroName : survey.oddName;
    if (count == 0 || (missing && missed == 0)) {
        example = name;
    }
    ++count;
    missed += missing ? 1 : 0;
}

} // namespace

Names NamesInDcim(const std::string& dcim) {
    dirent** entries = nullptr;
    const int count = scandir(dcim.c_str(), &entries, KeepFolderEntry, CompareFolderEntries);
    Names names;
    for (int i = 0; i < count; ++i) {
        names.emplace_back(entries[i]->d_name);
        std::free(entries[i]);
    }
    std::free(entries);
    return names;
}

bool HoldsPhoto(const std::string& text) {
    return text.find("PHOTO") != std::string::npos;
}

SharedNumbers ListFolders(const std::string& dcim, bool camera, std::vector<CardFolder>& folders) {
    return ChooseFolders(NamesInDcim(dcim), dcim, camera, folders);
}

/// Decides as the library's registry does: a folder whose path holds "PHOTO" keeps later ones of its number out.
SharedNumbers ChooseFolders(Names names, const std::string& dcim, bool camera, std::vector<CardFolder>& folders) {
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return (a == kCamera) != (b == kCamera) ? b == kCamera : b < a;
    });
    SharedNumbers numbers;
    for (const std::string& name : names) {
        const auto number = FolderNumber(name);
        if (!number.has_value() || (*number == kCameraNumber && !camera)) {
            continue;
        }
        SharedNumber& shared = numbers[*number];
        const bool free = shared.listed.empty() || !(HoldsPhoto(dcim) || HoldsPhoto(shared.listed.back()));
        (free ? shared.listed : shared.leftOut).push_back(name);
        if (free) {
            folders.push_back({name, *number});
        }
    }
    for (auto it = numbers.begin(); it != numbers.end();) {
        it = it->second.listed.size() + it->second.leftOut.size() < 2 ? numbers.erase(it) : std::next(it);
    }
    return numbers;
}

/// A file whose number is the one before it is a companion or is left out, and the number before the first is 0.
int SurveyFiles(const Names& sorted, const std::string& folder, NumberSurvey& numbers) {
    const bool camera = folder == kCamera;
    const bool numberedLikeCamera = FolderNumber(folder) == kCameraNumber;
    int listed = 0;
    int previous = 0;
    for (const std::string& name : sorted) {
        const auto file = camera ? CameraFileName(name) : DcfFileName(name);
        if (!file.has_value()) {
            continue;
        }
        const bool item = file->number != previous;
        const bool companion = !item && IsCompanionType(file->type) && listed > 0;
        listed += item ? 1 : 0;
        previous = file->number;
        const bool missing = !item && !companion;
        // In "Camera" the number 0 is midnight, and does no harm where the file is listed; nor does it in a folder that
        // has the number of "Camera", by which the list goes.
        if (!file->digits || (file->number == 0 && (!numberedLikeCamera || missing))) {
            Note(numbers, *file, std::string(folder).append("/").append(name), missing);
        }
    }
    return listed;
}

Names FileNames(const std::string& path, bool camera, int& error) {
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), closedir);
    if (folder == nullptr) {
        error = errno;
        return {};
    }
    const std::size_t length = camera ? 19 : 12;
    Names names;
    errno = 0;
    while (const dirent* entry = readdir(folder.get())) {
        if (std::strlen(entry->d_name) == length) {
            names.emplace_back(entry->d_name);
        }
    }
    error = errno;
    if (camera) {
        std::sort(names.begin(), names.end());
    } else {
        std::sort(names.begin(), names.end(), DcfOrder);
    }
    return names;
}

} // namespace dcfctl
