#include "ReferenceTree.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <tuple>
#include <utility>

namespace dcftest {

namespace {

constexpr int kCamera = 99;
constexpr int kMovie = 3;
constexpr int kNothing = -1;

const std::vector<std::pair<std::string, int>> kTypes = {{"JPG", 0}, {"MPO", 2}, {"SRW", 1}, {"MP4", 3}, {"AVI", 5}};

std::string Cut(const std::string& path) {
    return path.substr(0, 98);
}

/// The number that a text begins with: blanks, a sign, digits. Nothing where there is no digit.
std::optional<long> Leading(const std::string& text) {
    std::size_t at = 0;
    while (at < text.size() && std::isspace(static_cast<unsigned char>(text[at])) != 0) {
        ++at;
    }
    const bool negative = at < text.size() && text[at] == '-';
    if (at < text.size() && (text[at] == '-' || text[at] == '+')) {
        ++at;
    }
    std::optional<long> number;
    for (; at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0; ++at) {
        number = number.value_or(0) * 10 + (text[at] - '0');
    }
    return number && negative ? -*number : number;
}

int Field(const std::string& text, std::size_t offset, std::size_t width) {
    return offset < text.size() ? static_cast<int>(Leading(text.substr(offset, width)).value_or(0)) : 0;
}

std::string Upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return text;
}

int TypeByExtension(const std::string& name) {
    for (const auto& [text, type] : kTypes) {
        if (name.substr(name.size() - 3) == text) {
            return type;
        }
    }
    return kNothing;
}

int TypeByAnyText(const std::string& name) {
    for (const auto& [text, type] : kTypes) {
        if (name.find(text) != std::string::npos) {
            return type;
        }
    }
    return kNothing;
}

/// The files of a directory that may be listed, in the order in which a listing holds them.
std::vector<PlannedFile> InOrder(const PlannedDirectory& directory, bool camera) {
    std::vector<PlannedFile> files;
    std::copy_if(directory.files.begin(), directory.files.end(), std::back_inserter(files),
                 [&](const PlannedFile& file) { return file.name.size() == (camera ? 19U : 12U); });
    std::sort(files.begin(), files.end(), [&](const PlannedFile& a, const PlannedFile& b) {
        if (camera) {
            return a.name < b.name;
        }
        const std::string numberA = a.name.substr(4, 4);
        const std::string numberB = b.name.substr(4, 4);
        return numberA != numberB ? numberA > numberB : a.name.substr(9) < b.name.substr(9);
    });
    return files;
}

void FillMetadata(const PhotoInfo& info, ReferenceItem& item) {
    item.metaFlag = info.attributeByte1;
    item.metaFlag2 = info.attributeByte2;
    item.metaWord = info.attributeWord;
    item.metaByte = info.attributeFlag;
    item.quad1 = info.attributeWords[1];
    item.quad2 = info.attributeWords[2];
    item.text = std::string(info.date, strnlen(info.date, sizeof info.date));
    item.words = {info.attributeWords[0], info.attributeWords[3]};
    item.words.insert(item.words.end(), info.trailingWords, info.trailingWords + 17);
    // The eighth trailing word goes behind the eleventh.
    std::rotate(item.words.begin() + 2 + 7, item.words.begin() + 2 + 8, item.words.begin() + 2 + 11);
}

PhotoInfo NoMetadata() {
    PhotoInfo info = {};
    std::fill(info.trailingWords + 11, info.trailingWords + 17, -1);
    return info;
}

} // namespace

std::ostream& operator<<(std::ostream& out, const ReferenceItem& item) {
    out << "\n  path \"" << item.path << "\", object \"" << item.object << "\", types " << item.type << "/"
        << item.objectType << (item.isProtected ? ", protected" : "") << (item.wifi ? ", marked" : "") << ", number "
        << item.dirNumber << "-" << item.fileNumber << ", time " << item.time << "\n  metadata " << item.metaFlag << " "
        << item.metaFlag2 << " " << item.metaWord << " " << item.metaByte << " " << item.quad1 << " " << item.quad2
        << " \"" << item.text << "\", words";
    for (const int word : item.words) {
        out << " " << word;
    }
    return out;
}

ReferenceTree::ReferenceTree(std::string root, const CardPlan& plan) : m_root(std::move(root)), m_plan(plan) {
    for (const PlannedDirectory& directory : m_plan) {
        for (const PlannedFile& file : directory.files) {
            modes[m_root + "/DCIM/" + directory.name + "/" + file.name] = file.mode;
        }
    }
}

// ---- The listing ----

void ReferenceTree::Listup(bool includeCamera) {
    std::sort(m_plan.begin(), m_plan.end(), [](const PlannedDirectory& a, const PlannedDirectory& b) {
        return std::tuple(a.name != "Camera", a.name) > std::tuple(b.name != "Camera", b.name);
    });
    for (const PlannedDirectory& directory : m_plan) {
        const std::string& name = directory.name;
        const bool camera = name == "Camera";
        const long leading = Leading(name).value_or(0);
        if (!camera && (name.size() != 8 || leading < 100 || leading > 999)) {
            continue;
        }
        const int number = camera ? kCamera : Field(name, 0, 3);
        if (number > kCamera || (number == kCamera && includeCamera)) {
            AddDirectory(directory, number);
        }
    }
}

void ReferenceTree::AddDirectory(const PlannedDirectory& directory, int number) {
    const auto registered = m_registered.find(number);
    if (registered != m_registered.end() && registered->second.find("PHOTO") != std::string::npos) {
        return;
    }
    m_registered[number] = Cut(m_root + "/DCIM/" + directory.name);
    ReferenceDirectory& added = directories.emplace_back(ReferenceDirectory{number, directory.name, {}});
    const bool camera = directory.name == "Camera";
    int previous = 0;
    for (const PlannedFile& file : InOrder(directory, camera)) {
        const std::string name = Upper(file.name);
        const int type = TypeByExtension(name);
        const bool digits =
            camera || std::all_of(name.begin() + 4, name.begin() + 8, [](unsigned char c) { return std::isdigit(c); });
        if (type == kNothing || !digits || (camera && type > 2)) {
            continue;
        }
        const int fileNumber = camera ? Field(name, 9, 6) : Field(name, 4, 4);
        if (fileNumber != previous) {
            ReferenceFile listed;
            listed.name = name;
            listed.number = fileNumber;
            listed.dirNumber = number;
            listed.type = TypeByAnyText(name);
            listed.time = file.time;
            added.files.push_back(listed);
            previous = fileNumber;
        } else if ((type == 1 || type == 2) && !added.files.empty()) {
            added.files.back().object = type;
        }
    }
}

void ReferenceTree::Forget() {
    directories.clear();
    cursor = {};
    cursorFile = {};
    m_registered.clear();
}

// ---- Counting and finding ----

int ReferenceTree::CountBefore(int directory) const {
    int count = 0;
    for (int d = 0; d < std::min(directory, static_cast<int>(directories.size())); ++d) {
        count += static_cast<int>(directories[static_cast<std::size_t>(d)].files.size());
    }
    return count;
}

std::vector<ReferenceTree::Place> ReferenceTree::Places() const {
    std::vector<Place> places;
    for (std::size_t d = 0; d < directories.size(); ++d) {
        for (std::size_t f = 0; f < directories[d].files.size(); ++f) {
            places.push_back({static_cast<int>(d), static_cast<int>(f)});
        }
    }
    return places;
}

std::vector<std::string> ReferenceTree::Paths() const {
    std::vector<std::string> paths;
    for (const Place& place : Places()) {
        paths.push_back(PathOf(place.directory, FileAt(place.directory, place.file)));
    }
    return paths;
}

int ReferenceTree::FindDirectory(int number) const {
    for (std::size_t d = 0; d < directories.size(); ++d) {
        if (directories[d].number == number) {
            return static_cast<int>(d);
        }
    }
    throw Fatal{"0", "cannot find dir index = " + std::to_string(number), "CSDCFList",
                "int CSDCFList::GetDirIndex(int)"};
}

int ReferenceTree::FindFile(int directory, int number) const {
    const auto& files = directories.at(static_cast<std::size_t>(directory)).files;
    for (std::size_t f = 0; f < files.size(); ++f) {
        if (files[f].number == number) {
            return static_cast<int>(f);
        }
    }
    throw Fatal{"it != m_itemGroup.end()", "cannot found fnum = " + std::to_string(number), "CSDCFDir",
                "int CSDCFDir::GetFidx(int)"};
}

std::pair<int, int> ReferenceTree::Numbers(const std::string& path) const {
    if (path.find("Camera") != std::string::npos) {
        return {kCamera, Field(path, m_root.size() + 22, 6)};
    }
    return {Field(path, m_root.size() + 6, 3), Field(path, m_root.size() + 19, 4)};
}

ReferenceTree::Place ReferenceTree::Find(const std::string& path) const {
    const auto [dirNumber, fileNumber] = Numbers(path);
    const int directory = FindDirectory(dirNumber);
    return {directory, FindFile(directory, fileNumber)};
}

const ReferenceFile& ReferenceTree::FileAt(int directory, int file) const {
    const auto& files = directories.at(static_cast<std::size_t>(directory)).files;
    if (file < 0 || file >= static_cast<int>(files.size())) {
        throw Fatal{"m_itemGroup.size() > index", "vector index overflow = " + std::to_string(file), "CSDCFDir",
                    "DCFItem CSDCFDir::GetItem(int)"};
    }
    return files[static_cast<std::size_t>(file)];
}

int ReferenceTree::FirstIndex() const {
    if (Count() == 0) {
        return 0;
    }
    const ReferenceDirectory& front = directories.front();
    if (front.files.empty()) {
        return front.number * 100000;
    }
    return front.number == kCamera ? 0 : front.number * 100000 + front.files.front().number;
}

// ---- A file as the client sees it ----

std::string ReferenceTree::PathOf(int directory, const ReferenceFile& file) const {
    return Cut(m_root + "/DCIM/" + directories.at(static_cast<std::size_t>(directory)).name + "/" + file.name);
}

std::string ReferenceTree::ObjectPathOf(int directory, const ReferenceFile& file) const {
    if (file.object == kNothing) {
        return "";
    }
    const std::string extension = file.object == 1 ? "SRW" : "MPO";
    return Cut(m_root + "/DCIM/" + directories.at(static_cast<std::size_t>(directory)).name + "/" +
               file.name.substr(0, 9) + extension);
}

bool ReferenceTree::IsProtectedOnCard(const ReferenceFile& file) const {
    const auto found = modes.find(Cut(m_registered.at(file.dirNumber) + "/" + file.name));
    return found != modes.end() && (found->second & 0200U) == 0;
}

/// @return the copy that was handed out, as far as it has come to know of itself.
ReferenceFile ReferenceTree::Convert(int directory, int file, ReferenceItem* item) {
    ReferenceFile copy = FileAt(directory, file);
    if (item == nullptr) {
        throw Fatal{"pItem != NULL", "now pItem == NULL(0) !!!", "CSDCFList",
                    "void CSDCFList::ConvertFileItem(DCFItem&, CSFileListItem*, int)"};
    }
    item->path = PathOf(directory, copy);
    item->object = ObjectPathOf(directory, copy);
    if (!copy.metadata) {
        const Place place = Find(item->path);
        if (copy.type != kMovie && collector) {
            collected.push_back(item->path);
            if (const auto answer = collector(item->path)) {
                directories[static_cast<std::size_t>(place.directory)]
                    .files[static_cast<std::size_t>(place.file)]
                    .metadata = answer;
            }
        }
    }
    if (!copy.isProtected) {
        copy.isProtected = IsProtectedOnCard(copy);
    }
    item->type = copy.type;
    item->objectType = copy.object;
    item->isProtected = *copy.isProtected;
    item->wifi = copy.wifi;
    item->dirNumber = copy.dirNumber;
    item->fileNumber = copy.number;
    item->time = copy.time;
    FillMetadata(copy.metadata.value_or(NoMetadata()), *item);
    return copy;
}

// ---- The tree's moves ----

int ReferenceTree::MoveTo(int directory, int file, ReferenceItem* item) {
    cursorFile = Convert(directory, file, item);
    cursor.dirNumber = directories[static_cast<std::size_t>(directory)].number;
    cursor.fileNumber = cursorFile.number;
    cursor.dirPosition = directory;
    cursor.filePosition = file;
    cursor.listPosition = CountBefore(directory) + file;
    return 0;
}

int ReferenceTree::GetFirst(ReferenceItem* item) {
    const std::vector<Place> places = Places();
    return places.empty() ? -1 : MoveTo(places.front().directory, places.front().file, item);
}

int ReferenceTree::GetLast(ReferenceItem* item) {
    const std::vector<Place> places = Places();
    return places.empty() ? -1 : MoveTo(places.back().directory, places.back().file, item);
}

bool ReferenceTree::IsDirectoryGone() const {
    return cursor.dirPosition < 0 || cursor.dirPosition >= static_cast<int>(directories.size());
}

void ReferenceTree::CheckCursor(const char* signature) const {
    if (cursor.dirNumber != kCamera && (cursor.dirNumber <= 0 || cursor.fileNumber <= 0 || cursor.filePosition < 0)) {
        throw Fatal{"m_nCurDnum > 0 && m_nCurFnum > 0 && m_CurFileIndex >= 0", "invalid cursor", "CSDCFList",
                    signature};
    }
}

int ReferenceTree::GetNext(ReferenceItem* item) {
    CheckCursor("int CSDCFList::GetNext(CSFileListItem*)");
    if (IsDirectoryGone()) {
        return -1;
    }
    for (const Place& place : Places()) {
        const bool behind = place.directory > cursor.dirPosition ||
                            (place.directory == cursor.dirPosition && place.file > cursor.filePosition);
        if (behind) {
            return MoveTo(place.directory, place.file, item);
        }
    }
    return -1;
}

int ReferenceTree::GetPrev(ReferenceItem* item) {
    CheckCursor("int CSDCFList::GetPrev(CSFileListItem*)");
    if (cursor.filePosition > 0) {
        return IsDirectoryGone() ? -1 : MoveTo(cursor.dirPosition, cursor.filePosition - 1, item);
    }
    std::vector<Place> places = Places();
    while (!places.empty() && places.back().directory >= cursor.dirPosition) {
        places.pop_back();
    }
    return places.empty() ? -1 : MoveTo(places.back().directory, places.back().file, item);
}

int ReferenceTree::GetCur(ReferenceItem* item) {
    if (cursor.dirNumber != kCamera && (cursor.dirNumber <= 0 || cursor.fileNumber <= 0)) {
        throw Fatal{"m_nCurDnum > 0 && m_nCurFnum > 0", "need to setting cur file", "CSDCFList",
                    "int CSDCFList::GetCur(CSFileListItem*)"};
    }
    return cursor.fileNumber < 0 || IsDirectoryGone() ? -1 : MoveTo(cursor.dirPosition, cursor.filePosition, item);
}

ReferenceTree::Place ReferenceTree::At(int position, const char* signature) const {
    const std::vector<Place> places = Places();
    if (position >= static_cast<int>(places.size())) {
        throw Fatal{"0", "invalid", "CSDCFList", signature};
    }
    return places[static_cast<std::size_t>(position)];
}

void ReferenceTree::SetCur(const std::string& path) {
    const Place place = Find(path);
    cursorFile = FileAt(place.directory, place.file);
    std::tie(cursor.dirNumber, cursor.fileNumber) = Numbers(path);
    cursor.dirPosition = place.directory;
    cursor.filePosition = place.file;
    cursor.listPosition = CountBefore(place.directory) + place.file;
}

void ReferenceTree::GetAt(int position, ReferenceItem* item) {
    const Place place = At(position, "int CSDCFList::GetAt(int, CSFileListItem*)");
    (void)Convert(place.directory, place.file, item);
}

void ReferenceTree::GetAtSimply(int position, ReferenceItem* item) const {
    const Place place = At(position, "int CSDCFList::GetAtSimply(int, CSFileListItem*)");
    const ReferenceFile& file = FileAt(place.directory, place.file);
    item->path = PathOf(place.directory, file);
    item->object = ObjectPathOf(place.directory, file);
    item->time = file.time;
}

// The path may be the item's own, and is then what the conversion makes of it.
int ReferenceTree::GetInfo(const std::string& path, ReferenceItem* item) {
    const Place place = Find(path);
    (void)Convert(place.directory, place.file, item);
    if (path.size() > 98) {
        return -1;
    }
    item->path = path;
    return 0;
}

void ReferenceTree::AddPhotoMetadata(const std::string& path, const PhotoInfo& info) {
    const Place place = Find(path);
    directories[static_cast<std::size_t>(place.directory)].files[static_cast<std::size_t>(place.file)].metadata = info;
}

int ReferenceTree::GetListIndex(const std::string& path) const {
    if (path.size() < 24) {
        return -1;
    }
    const std::size_t last = path.rfind('/');
    const std::string name = path.substr(path.rfind('/', last - 1) + 1, 8);
    for (std::size_t d = 0; d < directories.size(); ++d) {
        if (directories[d].name == name || directories[d].name.substr(0, 6) == name.substr(0, 6)) {
            return CountBefore(static_cast<int>(d)) + FindFile(static_cast<int>(d), Numbers(path).second);
        }
    }
    return -1;
}

int ReferenceTree::Count(const std::function<bool(const ReferenceFile&)>& counts) const {
    int count = 0;
    for (const ReferenceDirectory& directory : directories) {
        count += static_cast<int>(std::count_if(directory.files.begin(), directory.files.end(), counts));
    }
    return count;
}

} // namespace dcftest
