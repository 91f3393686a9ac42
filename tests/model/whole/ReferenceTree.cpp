// The reference's listing, numbers and paths.
#include <algorithm>
#include <cstdlib>

#include "Reference.h"

namespace dcftest {

namespace {

constexpr std::size_t kPathBuffer = 98; // characters that fit

std::string Cut(const std::string& text) {
    return text.substr(0, kPathBuffer);
}

std::string Part(const std::string& text, std::size_t offset, std::size_t length) {
    return offset < text.size() ? text.substr(offset, length) : "";
}

int Decimal(const std::string& text) {
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 10));
}

std::string Upper(std::string text) {
    for (char& c : text) {
        if (c >= 'a' && c <= 'z') {
            c = static_cast<char>(c - 32);
        }
    }
    return text;
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

int TypeOf(const std::string& extension) {
    const std::pair<const char*, int> types[] = {{"SRW", 1}, {"MPO", 2}, {"MP4", 3}, {"JPG", 0}, {"AVI", 5}};
    for (const auto& [text, type] : types) {
        if (extension == text) {
            return type;
        }
    }
    return -1;
}

std::string TypeText(int type) {
    switch (type) {
    case 0:
        return "JPG";
    case 1:
        return "SRW";
    case 2:
        return "MPO";
    case 3:
        return "MP4";
    case 5:
        return "AVI";
    default:
        return "";
    }
}

int DcfTypeOf(const std::string& upperName) {
    for (std::size_t i = 4; i < 8; ++i) {
        if (!IsDigit(upperName[i])) {
            return -1;
        }
    }
    return TypeOf(upperName.substr(9));
}

int CameraTypeOf(const std::string& upperName) {
    const int type = TypeOf(upperName.substr(upperName.size() - 3));
    return type == 3 || type == 5 ? -1 : type;
}

/// The directory-name rule; whitespace and a sign may stand before the number.
bool IsDirectoryName(const std::string& name) {
    if (name == "Camera") {
        return true;
    }
    if (name.size() != 8) {
        return false;
    }
    const char* begin = name.c_str();
    char* end = nullptr;
    const long number = std::strtol(begin, &end, 10);
    return end != begin && number >= 100 && number <= 999;
}

bool FileBefore(const std::string& a, const std::string& b) {
    if (a.size() != 12 || b.size() != 12) {
        return a < b;
    }
    const int byNumber = b.compare(4, 4, a, 4, 4);
    return byNumber != 0 ? byNumber < 0 : a.substr(9) < b.substr(9);
}

} // namespace

RefItem::RefItem() {
    std::fill(std::begin(photo.trailingWords) + 11, std::end(photo.trailingWords), -1);
}

bool Reference::StandsBefore(const std::string& a, const std::string& b) {
    return (a == "Camera") != (b == "Camera") ? b == "Camera" : b < a;
}

void Reference::Met(const std::string& event) {
    if (events != nullptr) {
        ++(*events)[event];
    }
}

// ---- Listing ----

void Reference::ListTree(bool includeCamera) {
    const std::string dcim = Cut(tree->root + "/DCIM");
    (void)card.MakeDirectory(dcim);
    const auto scanned = card.Scan(dcim);
    if (!scanned) {
        return;
    }
    registry.clear();
    std::vector<std::string> names;
    std::copy_if(scanned->begin(), scanned->end(), std::back_inserter(names),
                 [](const std::string& name) { return name.size() == 8 || name == "Camera"; });
    std::sort(names.begin(), names.end(), StandsBefore);
    for (const std::string& name : names) {
        if (!IsDirectoryName(name)) {
            continue;
        }
        const int number = name.substr(0, 6) == "Camera" ? 99 : Decimal(name.substr(0, 3));
        if (number < 99 || number > 999 || (number == 99 && !includeCamera)) {
            continue;
        }
        const std::string path = Cut(tree->root + "/DCIM/" + name);
        const auto registered = registry.find(number);
        if (registered != registry.end()) {
            if (registered->second.find("PHOTO") != std::string::npos) {
                continue;
            }
            Met("second directory of a number");
        }
        tree->dirs.push_back({number, name, {}});
        registry[number] = path;
        ListDirectory(tree->dirs.back(), tree->total);
        tree->total += tree->dirs.back().Count();
    }
    tree->firstIndex = FirstIndex();
    ApplySeries();
}

// The limit of the whole list is far from what a small card reaches.
void Reference::ListDirectory(RefDir& dir, int /*base*/) {
    const std::string path = Cut(tree->root + "/DCIM/" + dir.name);
    const auto scanned = card.Scan(path);
    if (!scanned) {
        return;
    }
    const bool camera = dir.name.substr(0, 6) == "Camera";
    std::vector<std::string> names;
    std::copy_if(scanned->begin(), scanned->end(), std::back_inserter(names),
                 [camera](const std::string& name) { return name.size() == (camera ? 19U : 12U); });
    std::sort(names.begin(), names.end(), FileBefore);
    const bool timeless = !names.empty() && !ReadTimes(names.size());
    int previous = 0;
    for (const std::string& name : names) {
        const std::string upper = Upper(name);
        const int type = camera ? CameraTypeOf(upper) : DcfTypeOf(upper);
        const int number = camera ? Decimal(upper.substr(9, 6)) : Decimal(upper.substr(4, 4));
        if (type < 0) {
            continue;
        }
        if (number != previous) {
            const std::uint32_t time = timeless ? 0 : card.folders.at(dir.name).files.at(name).time;
            AddItem(dir, upper, number, false, time, dir.number);
            previous = number;
        } else if ((type == 1 || type == 2) && !dir.items.empty()) {
            dir.items.back().object = type;
        }
    }
}

/// Which file loses its time by a look that fails depends on the order in which the folder holds them, so that is not
/// foreseen.
bool Reference::ReadTimes(std::size_t files) {
#ifndef DCF_ENTRY_TIME_DIRENT
    if (card.faults.Fails("open")) {
        return false;
    }
    for (std::size_t i = 0; i < files; ++i) {
        (void)card.faults.Fails("fstatat");
    }
#else
    (void)files;
#endif
    return true;
}

void Reference::AddItem(RefDir& dir, const std::string& name, int number, bool atHead, std::uint32_t time,
                        int dirNumber) {
    RefItem item;
    item.number = number;
    item.time = time;
    item.dirNumber = dirNumber;
    if (dirNumber == 99 ? name.size() >= 30 : name.size() != 12) {
        throw Fatal{dirNumber == 99 ? "len < MAX_FILE_SIZE" : "len == 12",
                    std::string("more than ") + (dirNumber == 99 ? "non " : "") +
                        "dcf filename length = " + std::to_string(name.size()),
                    "CSDCFItemList", "void DCFItem::setFileName(const char*)"};
    }
    item.name = name;
    const std::pair<const char*, int> types[] = {{"JPG", 0}, {"MPO", 2}, {"SRW", 1}, {"MP4", 3}, {"AVI", 5}};
    for (const auto& [text, type] : types) {
        if (name.find(text) != std::string::npos) {
            item.type = type;
            break;
        }
    }
    dir.items.insert(atHead ? dir.items.begin() : dir.items.end(), item);
}

// ---- Places ----

int Reference::DirIndex(int dnum) {
    for (std::size_t didx = 0; didx < tree->dirs.size(); ++didx) {
        if (tree->dirs[didx].number == dnum) {
            return static_cast<int>(didx);
        }
    }
    throw Fatal{"0", "cannot find dir index = " + std::to_string(dnum), "CSDCFList", "int CSDCFList::GetDirIndex(int)"};
}

int Reference::DirIndexByName(const std::string& path) {
    if (path.size() < 24) {
        return -1;
    }
    const std::size_t last = path.rfind('/');
    const std::size_t second = last == std::string::npos || last == 0 ? last : path.rfind('/', last - 1);
    if (second == std::string::npos) {
        return -1;
    }
    const std::string name = path.substr(second + 1, 8);
    for (std::size_t didx = 0; didx < tree->dirs.size(); ++didx) {
        const std::string& known = tree->dirs[didx].name;
        if (known == name || known.substr(0, 6) == name.substr(0, 6)) {
            return static_cast<int>(didx);
        }
    }
    return -1;
}

int Reference::FileIndex(const RefDir& dir, int fnum) {
    for (std::size_t fidx = 0; fidx < dir.items.size(); ++fidx) {
        if (dir.items[fidx].number == fnum) {
            return static_cast<int>(fidx);
        }
    }
    throw Fatal{"it != m_itemGroup.end()", "cannot found fnum = " + std::to_string(fnum), "CSDCFDir",
                "int CSDCFDir::GetFidx(int)"};
}

RefItem Reference::ItemOf(int didx, int fidx) {
    const RefDir& dir = tree->dirs[static_cast<std::size_t>(didx)];
    if (fidx < 0 || fidx >= dir.Count()) {
        throw Fatal{"m_itemGroup.size() > index", "vector index overflow = " + std::to_string(fidx), "CSDCFDir",
                    "DCFItem CSDCFDir::GetItem(int)"};
    }
    return dir.items[static_cast<std::size_t>(fidx)];
}

int Reference::CountBefore(int didx) const {
    int count = 0;
    for (int before = 0; before < didx && before < static_cast<int>(tree->dirs.size()); ++before) {
        count += tree->dirs[static_cast<std::size_t>(before)].Count();
    }
    return count;
}

int Reference::FilesInTree() const {
    return tree ? CountBefore(static_cast<int>(tree->dirs.size())) : 0;
}

std::string Reference::PathAt(int position) const {
    for (std::size_t didx = 0; tree && didx < tree->dirs.size(); ++didx) {
        const RefDir& dir = tree->dirs[didx];
        if (position < dir.Count()) {
            return FilePath(static_cast<int>(didx), dir.items[static_cast<std::size_t>(position)]);
        }
        position -= dir.Count();
    }
    return "";
}

int Reference::Count() {
    tree->total = FilesInTree();
    return tree->total;
}

// ---- Numbers ----

void Reference::Numbers(const char* path, int& dnum, int& fnum) const {
    if (path == nullptr) {
        return;
    }
    const std::string text = path;
    const std::size_t root = tree->root.size();
    if (text.find("Camera") != std::string::npos) {
        dnum = 99;
        fnum = Decimal(Part(text, root + 22, 6));
    } else {
        dnum = Decimal(Part(text, root + 6, 3));
        fnum = Decimal(Part(text, root + 19, 4));
    }
}

int Reference::FirstIndex() {
    if (Count() < 1) {
        return 0;
    }
    const RefDir& front = tree->dirs.front();
    if (front.items.empty()) {
        return front.number * 100000;
    }
    return front.number == 99 ? 0 : front.number * 100000 + front.items.front().number;
}

long Reference::ReadSeries() {
    const long value = card.faults.Fails("pref_get") ? card.faults.value : storedSeries.value_or(0);
    effects.prefCalls.push_back({false, 3, 512, value});
    return value;
}

void Reference::StoreSeries(int value) {
    Store(value <= 99909999 ? value : 10000000);
}

void Reference::Store(long value) {
    effects.prefCalls.push_back({true, 3, 512, value});
    if (!card.faults.Fails("pref_set") && !storeFails) {
        storedSeries = value;
        card.faults.Changed();
    }
}

void Reference::ApplySeries() {
    if (!tree->series) {
        return;
    }
    const long value = ReadSeries();
    if (value != 99909999) {
        if (value > tree->firstIndex) {
            Met("first index raised by the series");
            tree->firstIndex = value > 2147483647L ? 2147483647 : static_cast<int>(value);
        }
    } else if (tree->firstIndex != 99909999) {
        Met("exhausted series restarted");
        StoreSeries(tree->firstIndex);
    }
}

int Reference::TreeUpdateFirstIndex(bool ignoreSeries) {
    tree->firstIndex = FirstIndex();
    if (!ignoreSeries) {
        ApplySeries();
    }
    return tree->firstIndex;
}

// ---- Paths ----

std::string Reference::DirPath(const std::string& name) const {
    return Cut(tree->root + "/DCIM/" + name);
}

std::string Reference::FilePath(int didx, const RefItem& item) const {
    return Cut(tree->root + "/DCIM/" + tree->dirs[static_cast<std::size_t>(didx)].name + "/" + item.name);
}

std::string Reference::ObjectPath(int didx, const RefItem& item) const {
    return Cut(tree->root + "/DCIM/" + tree->dirs[static_cast<std::size_t>(didx)].name + "/" + item.name.substr(0, 9) +
               TypeText(item.object));
}

bool Reference::ProtectOf(RefItem& item) {
    if (!item.known) {
        const std::string path = Cut(registry[item.dirNumber] + "/" + item.name);
        item.protect = card.IsProtect(path);
        item.known = true;
    }
    return item.protect;
}

} // namespace dcftest
