#include "Aftermath.h"

#include <dirent.h>

#include <algorithm>
#include <cctype>

#include "CSDCFList.h"

namespace dcftest {

namespace {

std::string Upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

/// Paths as the list has them, which are in upper case.
std::set<std::string> PathsOf(const ReferenceCard& card) {
    std::set<std::string> paths;
    for (const auto& [folder, content] : card.folders) {
        for (const auto& [name, file] : content.files) {
            paths.insert(card.root + "/DCIM/" + folder + "/" + Upper(name));
        }
    }
    return paths;
}

} // namespace

int OpenDescriptors() {
    DIR* const folder = ::opendir("/proc/self/fd");
    int count = 0;
    while (folder != nullptr && ::readdir(folder) != nullptr) {
        ++count;
    }
    (void)::closedir(folder);
    return count;
}

std::string LostFiles(const Scene& scene, const ReferenceCard& now, const std::string& failing) {
    if (scene.operation.name == "RenameDCFFullStorage") {
        return FilesByFolder(scene.before.list.card) == FilesByFolder(now) ? "" : "  a directory's files are gone\n";
    }
    const bool takenOut = failing == PosixSeam::kEveryCardCall;
    if (!NamesWhatItDeletes(scene, takenOut || failing == "opendir" || failing == "readdir")) {
        return "";
    }
    CallFaults blind;
    blind.name = "stat";
    blind.nth = 1;
    blind.persistent = true;
    const std::set<std::string> after = FilesOf(now);
    std::string lost;
    for (const std::string& file :
         FilesOf(Foresee(scene, takenOut || failing == "stat" ? blind : CallFaults{}).after.list.card)) {
        if (after.count(file) == 0) {
            lost += "  " + file + " is gone\n";
        }
    }
    return lost;
}

std::string WrongPositions(const Scene& scene, const ReferenceCard& now, Actual& actual) {
    if (actual.list.m_pDCF == nullptr) {
        return "";
    }
    const int count = actual.list.GetCount();
    const std::set<std::string> before = PathsOf(scene.before.list.card);
    const std::set<std::string> after = PathsOf(now);
    std::string wrong;
    for (int position = 0; position < count; ++position) {
        CSFileListItem item;
        const int result = actual.list.GetAtSimply(position, &item);
        const bool explained = scene.operation.name == "GetNewFileName" || before.count(item.m_strURI) == 0;
        if (result != 0 || (after.count(item.m_strURI) == 0 && !explained)) {
            wrong += "  position " + std::to_string(position) + " is " + item.m_strURI + ", which is not there\n";
        }
    }
    return wrong;
}

} // namespace dcftest
