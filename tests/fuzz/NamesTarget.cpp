// Names of directories and files: an input is a list of names, one a line. Each one is put to every rule of the
// library; then a card is made of them and listed. Accepted or refused, number, kind, companion, order and paths have
// to be what the rules say as NameRules.h states them.
//
// A line that begins with '/' is a folder under "DCIM"; any other line is a file in the folder before it, and of the
// line "/" on, of "Camera".
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "CSDCFDir.h"
#include "CSDCFList.h"
#include "Card.h"
#include "FakePlatform.h"
#include "NameRules.h"
#include "Target.h"

namespace dcffuzz {
namespace {

constexpr std::size_t kMostFolders = 8;
constexpr std::size_t kMostFiles = 48;

struct Folder {
    std::string name;
    std::vector<std::string> files;
};

bool CanStandOnCard(const std::string& name) {
    return !name.empty() && name.size() <= 255 && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

/// A name as the library takes it: its own memory, not a byte more, so that a look beyond the end is seen.
class Argument {
public:
    explicit Argument(const std::string& name) : m_text(std::make_unique<char[]>(name.size() + 1)) {
        std::copy(name.begin(), name.end(), m_text.get());
    }
    char* Get() {
        return m_text.get();
    }

private:
    std::unique_ptr<char[]> m_text;
};

std::vector<Folder> FoldersOf(const std::vector<std::string>& lines) {
    std::vector<Folder> folders = {{"100ABCDE", {}}};
    std::size_t files = 0;
    for (const std::string& line : lines) {
        if (!line.empty() && line.front() == '/') {
            const std::string name = line == "/" ? "Camera" : line.substr(1);
            const bool known = std::any_of(folders.begin(), folders.end(),
                                           [&name](const Folder& folder) { return folder.name == name; });
            if (CanStandOnCard(name) && !known && folders.size() < kMostFolders) {
                folders.push_back({name, {}});
            }
            continue;
        }
        std::vector<std::string>& names = folders.back().files;
        if (CanStandOnCard(line) && files < kMostFiles && std::find(names.begin(), names.end(), line) == names.end()) {
            names.push_back(line);
            ++files;
        }
    }
    return folders;
}

// ---- One name and the rules ----

void CheckFileName(const std::string& name) {
    static CSDCFDir dir(100, Argument("100ABCDE").Get());
    Argument dcf(name);
    Require(dir.CheckFileNameSyntax(dcf.Get()) == DcfKind(name), "the DCF rule takes " + Visible(name) + " otherwise");
    Require(dcf.Get() == (name.size() == 12 ? Upper(name) : name), "the DCF rule changed " + Visible(name));
    Argument camera(name);
    Require(dir.CheckFileNameSyntaxNonDCF(camera.Get()) == CameraKind(name),
            "the rule of \"Camera\" takes " + Visible(name) + " otherwise");
    Require(camera.Get() == (name.size() >= 12 && name.size() <= 40 ? Upper(name) : name),
            "the rule of \"Camera\" changed " + Visible(name));
    if (name.size() == 12) {
        DCFItem item;
        item.setDirNum(100);
        item.setFileName(Argument(name).Get());
        Require(item.getFileType() == ShownKind(name), Visible(name) + " is shown as another kind");
    }
}

void CheckDirectoryName(const std::string& name) {
    static CSDCFList tree;
    Require(tree.CheckDirNameSyntax(name) == IsDirectoryName(name),
            "the directory rule takes " + Visible(name) + " otherwise");
    Require(tree.GetDnum(Argument(name).Get()) == DirectoryNumber(name),
            "the directory " + Visible(name) + " has another number");
}

// ---- A card of such names ----

void MakeCard(const std::string& dcim, const std::vector<Folder>& folders) {
    (void)::mkdir(dcim.c_str(), 0755);
    for (const Folder& folder : folders) {
        const std::string path = dcim + "/" + folder.name;
        (void)::mkdir(path.c_str(), 0755);
        for (const std::string& file : folder.files) {
            const int fd = ::open((path + "/" + file).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
            Require(fd >= 0, "the card cannot hold " + Visible(file));
            (void)::close(fd);
        }
    }
}

void RemoveCard(const std::string& dcim, const std::vector<Folder>& folders) {
    for (const Folder& folder : folders) {
        const std::string path = dcim + "/" + folder.name;
        for (const std::string& file : folder.files) {
            (void)::unlink((path + "/" + file).c_str());
        }
        (void)::rmdir(path.c_str());
    }
    Require(::rmdir(dcim.c_str()) == 0, "the card holds more than what was put there");
}

std::string Shown(const std::string& folder, const DCFItem& item) {
    return Visible(folder) + "/" + Visible(item.m_fileName);
}

void CheckItem(const std::string& folder, int number, const ListedFile& expected, const DCFItem& item) {
    const std::string shown = Shown(folder, item);
    Require(std::find(expected.names.begin(), expected.names.end(), item.m_fileName) != expected.names.end(),
            shown + " is listed in the place of " + Visible(expected.names.front()));
    Require(item.m_nFileNum == expected.number, shown + " has another number");
    Require(item.m_nDirNum == number, shown + " has another directory's number");
    Require(item.m_eFileType == ShownKind(item.m_fileName), shown + " is of another kind");
    Require(item.m_eObjectType == expected.companion, shown + " has another companion");
}

int CheckDirectory(const Folder& folder, const CSDCFDir& dir) {
    const int number = DirectoryNumber(folder.name);
    // "0999ABCD" and the like have the number of "Camera", and none of its rules.
    const auto expected = ListedFiles(folder.files, folder.name == "Camera");
    Require(dir.m_nDnum == number, Visible(folder.name) + " has another number");
    Require(dir.m_itemGroup.size() == expected.size(), Visible(folder.name) + " lists " +
                                                           std::to_string(dir.m_itemGroup.size()) + " files and not " +
                                                           std::to_string(expected.size()));
    for (std::size_t i = 0; i < expected.size(); ++i) {
        CheckItem(folder.name, number, expected[i], dir.m_itemGroup[i]);
    }
    return static_cast<int>(expected.size());
}

int FirstIndex(const CSDCFList& tree, int files) {
    if (files == 0) {
        return 0;
    }
    const CSDCFDir& front = *tree.m_dirGroup.front();
    if (front.m_itemGroup.empty()) {
        return front.m_nDnum * 100000;
    }
    return front.m_nDnum == kCameraNumber ? 0 : front.m_nDnum * 100000 + front.m_itemGroup.front().m_nFileNum;
}

const char* ExtensionOf(int kind) {
    static const char* const kExtensions[] = {"JPG", "SRW", "MPO", "MP4", "", "AVI"};
    return kind == kNoKind ? "" : kExtensions[kind];
}

void CheckPaths(CSDCFList& tree, const std::string& dcim) {
    int position = 0;
    for (const CSDCFDir* dir : tree.m_dirGroup) {
        for (const DCFItem& file : dir->m_itemGroup) {
            CSFileListItem item;
            Require(tree.GetAtSimply(position++, &item) == 0, "a position of the list cannot be read");
            const std::string name = file.m_fileName;
            const std::string folder = dcim + "/" + dir->m_strDirName + "/";
            Require(item.m_strURI == (folder + name).substr(0, 98), "the path of " + Visible(name) + " differs");
            const std::string companion =
                file.m_eObjectType == kNoKind ? "" : folder + name.substr(0, 9) + ExtensionOf(file.m_eObjectType);
            Require(item.m_strObject == companion.substr(0, 98),
                    "the companion's path of " + Visible(name) + " differs");
        }
    }
}

void CheckListing(const std::string& root, const std::vector<Folder>& folders, bool includeCamera) {
    CSDCFList tree;
    Require(tree.SetBaseURI(root.c_str()) == 0, "the root is refused");
    Require(tree.Listup(includeCamera) == 0, "the listing fails");
    std::vector<std::string> names;
    std::transform(folders.begin(), folders.end(), std::back_inserter(names),
                   [](const Folder& folder) { return folder.name; });
    const auto expected = ListedDirectories(names, includeCamera, root.find("PHOTO") != std::string::npos);
    Require(tree.m_dirGroup.size() == expected.size() && tree.m_nDirCount == static_cast<int>(expected.size()),
            "the card lists " + std::to_string(tree.m_dirGroup.size()) + " directories and not " +
                std::to_string(expected.size()));
    int files = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        Require(expected[i] == tree.m_dirGroup[i]->m_strDirName,
                Visible(tree.m_dirGroup[i]->m_strDirName) + " stands in the place of " + Visible(expected[i]));
        const auto folder = std::find_if(folders.begin(), folders.end(),
                                         [&](const Folder& known) { return known.name == expected[i]; });
        files += CheckDirectory(*folder, *tree.m_dirGroup[i]);
    }
    Require(tree.GetCount() == files, "the count differs");
    Require(tree.GetFirstIndex() == FirstIndex(tree, files), "the first index differs");
    CheckPaths(tree, root + "/DCIM");
}

} // namespace
} // namespace dcffuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace dcffuzz;
    SetUpOnce();
    static const dcftest::Card card;
    dcftest::FakePlatform::Get().Reset();
    const std::vector<std::string> lines = Lines(data, size);
    for (const std::string& line : lines) {
        CheckFileName(line);
        CheckDirectoryName(line);
        CheckDirectoryName(line.substr(std::min<std::size_t>(line.size(), 1)));
    }
    const std::vector<Folder> folders = FoldersOf(lines);
    const std::string dcim = card.Dcim();
    MakeCard(dcim, folders);
    CheckListing(card.Root(), folders, true);
    CheckListing(card.Root(), folders, false);
    RemoveCard(dcim, folders);
    return 0;
}
