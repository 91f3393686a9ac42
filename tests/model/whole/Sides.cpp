#include "Sides.h"

#include <algorithm>
#include <cstring>
#include <sstream>
#include <string_view>
#include <utility>

#include "CSDCFList.h"
#include "FakePlatform.h"
#include "RandomCard.h"

namespace dcftest {

namespace {

std::vector<std::string> g_collected;

bool IsZero(const PhotoInfo& info) {
    const PhotoInfo zero{};
    return info.attributeByte1 == 0 && info.attributeByte2 == 0 && info.attributeWord == 0 && info.attributeFlag == 0 &&
           std::memcmp(info.attributeWords, zero.attributeWords, sizeof zero.attributeWords) == 0 &&
           std::memcmp(info.date, zero.date, sizeof zero.date) == 0 &&
           std::memcmp(info.trailingWords, zero.trailingWords, sizeof zero.trailingWords) == 0;
}

int DescribingCollector(char* path, PhotoInfo* info) {
    g_collected.emplace_back(IsZero(*info) ? path : "a record that is not zeroed");
    return Describe(path, *info) ? 0 : -1;
}

int FailingCollector(char* path, PhotoInfo* info) {
    g_collected.emplace_back(IsZero(*info) ? path : "a record that is not zeroed");
    info->attributeByte1 = 1; // must not reach the item
    return 1;
}

int VideoCollector(char* /*path*/, VideoInfo* /*info*/) {
    g_collected.emplace_back("a video collector was called");
    return 0;
}

/// A path as the library takes it.
class Argument {
public:
    explicit Argument(const Path& path) : m_path(path) {}
    char* Get() {
        return m_path ? m_path->data() : nullptr;
    }

private:
    Path m_path;
};

} // namespace

PhotoInfo ClientInfo(int number) {
    PhotoInfo info{};
    (void)Describe("client " + std::to_string(number), info);
    info.attributeByte1 = static_cast<std::uint8_t>(number);
    return info;
}

std::vector<std::string> TakeCollected() {
    return std::exchange(g_collected, {});
}

// ---- From outside ----

void Expected::PutFile(const std::string& folder, const std::string& name, const CardFile& file) {
    list.card.folders.at(folder).files[name] = file;
}

void Expected::TakeFile(const std::string& folder, const std::string& name) {
    list.card.folders.at(folder).files.erase(name);
}

void Expected::ChangeMode(const std::string& folder, const std::string& name, mode_t mode) {
    list.card.folders.at(folder).files.at(name).mode = mode;
}

void Expected::PutFolder(const std::string& name) {
    list.card.folders[name] = CardFolder{};
}

void Expected::TakeFolder(const std::string& name) {
    list.card.folders.erase(name);
}

void Expected::Series(long value) {
    list.storedSeries = value;
}

void Expected::StoreFails(bool fails) {
    list.storeFails = fails;
}

void Actual::PutFile(const std::string& folder, const std::string& name, const CardFile& file) {
    MakeRealFile(dcim + "/" + folder + "/" + name, file);
}

void Actual::TakeFile(const std::string& folder, const std::string& name) {
    RemoveReal(dcim + "/" + folder + "/" + name);
}

void Actual::ChangeMode(const std::string& folder, const std::string& name, mode_t mode) {
    SetRealMode(dcim + "/" + folder + "/" + name, mode);
}

void Actual::PutFolder(const std::string& name) {
    MakeRealFolder(dcim + "/" + name, {});
}

void Actual::TakeFolder(const std::string& name) {
    RemoveReal(dcim + "/" + name);
}

void Actual::Series(long value) {
    FakePlatform::Get().SetPreference(kSeriesGroup, kSeriesKey, value);
}

void Actual::StoreFails(bool fails) {
    FakePlatform::Get().SetPrefSetResult(fails ? -1 : 0);
}

// ---- The library's operations whose arguments differ from the reference's ----

int Actual::NewName(int type) {
    return list.GetNewFileName(buffer.data(), type);
}

int Actual::Latest(bool noBuffer, int type) {
    return list.GetLatestFileName(noBuffer ? nullptr : buffer.data(), static_cast<eFileType>(type));
}

void Actual::FileNameMake(int mode) {
    list.SetFileNameMake(static_cast<eFILE_NAME_MAKE>(mode));
}

void Actual::FolderNameMake(int mode) {
    list.SetFolderNameMake(static_cast<eFILE_NAME_MAKE>(mode));
}

void Actual::Color(int mode) {
    list.SetFileNameColor(static_cast<eFileListColorMode>(mode));
}

void Actual::ImageType(int type) {
    list.SetImageType(static_cast<eFileListImageType>(type));
}

int Actual::FileCount(int type) {
    return list.GetFileCount(static_cast<eFileType>(type));
}

int Actual::Prefix(const Path& prefix) {
    return list.SetFilePrefix(Argument(prefix).Get());
}

int Actual::SetCur(const Path& path) {
    return list.SetCur(Argument(path).Get());
}

int Actual::ListIndex(const Path& path) {
    return list.GetFileListIndex(Argument(path).Get());
}

int Actual::Info(const Path& path, int slot) {
    return list.GetInfo(Argument(path).Get(), Item(slot));
}

int Actual::RegisterPhoto(Collector kind) {
    switch (kind) {
    case Collector::Describing:
        return list.RegisterPhotoMetadataCB(DescribingCollector);
    case Collector::Failing:
        return list.RegisterPhotoMetadataCB(FailingCollector);
    default:
        return list.RegisterPhotoMetadataCB(nullptr);
    }
}

int Actual::RegisterVideo() {
    return list.RegisterVideoMetadataCB(VideoCollector);
}

int Actual::AddPhoto(const Path& path, int number) {
    PhotoInfo info = ClientInfo(number);
    return list.AddPhotoMetadata(Argument(path).Get(), info);
}

// ---- Comparison ----

namespace {

/// Collects differences by name.
class Differences {
public:
    template <typename A, typename B>
    void Compare(const char* what, const A& expected, const B& actual) {
        if (!(expected == actual)) {
            m_text << "  " << what << ": expected " << expected << ", got " << actual << "\n";
        }
    }
    void CompareText(const char* what, const std::string& expected, const char* actual) {
        Compare(what, std::string_view(expected), std::string_view(actual));
    }
    void Add(const std::string& text) {
        if (!text.empty()) {
            m_text << "  " << text << "\n";
        }
    }
    std::string Text() const {
        return m_text.str();
    }

private:
    std::ostringstream m_text;
};

bool SamePhoto(const PhotoInfo& a, const PhotoInfo& b) {
    return a.attributeByte1 == b.attributeByte1 && a.attributeByte2 == b.attributeByte2 &&
           a.attributeWord == b.attributeWord && a.attributeFlag == b.attributeFlag &&
           std::equal(std::begin(a.attributeWords), std::end(a.attributeWords), b.attributeWords) &&
           std::equal(std::begin(a.date), std::end(a.date), b.date) &&
           std::equal(std::begin(a.trailingWords), std::end(a.trailingWords), b.trailingWords);
}

bool SameItem(const RefItem& a, const DCFItem& b) {
    return a.name == b.m_fileName && a.known == b.m_bProtectKnown && a.protect == b.m_bProtect && a.wifi == b.m_bWifi &&
           a.time == b.m_nFileTime && a.number == b.m_nFileNum && a.dirNumber == b.m_nDirNum &&
           a.type == b.m_eFileType && a.object == b.m_eObjectType && a.described == b.m_bMetadata &&
           SamePhoto(a.photo, b.m_photo);
}

std::string Show(const RefItem& item) {
    std::ostringstream text;
    text << item.name << " known " << item.known << " protect " << item.protect << " wifi " << item.wifi << " time "
         << item.time << " number " << item.number << " in " << item.dirNumber << " type " << item.type << " object "
         << item.object << " described " << item.described;
    return text.str();
}

std::string Show(const DCFItem& item) {
    std::ostringstream text;
    text << item.m_fileName << " known " << item.m_bProtectKnown << " protect " << item.m_bProtect << " wifi "
         << item.m_bWifi << " time " << item.m_nFileTime << " number " << item.m_nFileNum << " in " << item.m_nDirNum
         << " type " << item.m_eFileType << " object " << item.m_eObjectType << " described " << item.m_bMetadata;
    return text.str();
}

bool SameClientItem(const CSFileListItem& a, const CSFileListItem& b) {
    return std::strcmp(a.m_strURI, b.m_strURI) == 0 && std::strcmp(a.m_strObject, b.m_strObject) == 0 &&
           a.m_eFileType == b.m_eFileType && a.m_eObjectType == b.m_eObjectType && a.m_nMetaFlag == b.m_nMetaFlag &&
           a.m_bProtect == b.m_bProtect && a.m_bWifi == b.m_bWifi && a.m_nDirNum == b.m_nDirNum &&
           a.m_nFileNum == b.m_nFileNum && a.m_nMetaQuad1 == b.m_nMetaQuad1 && a.m_nMetaQuad2 == b.m_nMetaQuad2 &&
           std::equal(std::begin(a.m_aReserved1), std::end(a.m_aReserved1), b.m_aReserved1) &&
           std::equal(std::begin(a.m_szMetaText), std::end(a.m_szMetaText), b.m_szMetaText) &&
           a.m_nMetaFlag2 == b.m_nMetaFlag2 && a.m_nMetaWord == b.m_nMetaWord && a.m_nMetaByte == b.m_nMetaByte &&
           std::equal(std::begin(a.m_aMeta), std::end(a.m_aMeta), b.m_aMeta) &&
           std::equal(std::begin(a.m_aReserved2), std::end(a.m_aReserved2), b.m_aReserved2) &&
           a.m_nFileTime == b.m_nFileTime;
}

std::string Show(const CSFileListItem& item) {
    std::ostringstream text;
    text << item.m_strURI << " + " << item.m_strObject << " types " << item.m_eFileType << " " << item.m_eObjectType
         << " protect " << item.m_bProtect << " wifi " << item.m_bWifi << " numbers " << item.m_nDirNum << " "
         << item.m_nFileNum << " time " << item.m_nFileTime << " flag " << int{item.m_nMetaFlag} << " text "
         << std::string(item.m_szMetaText, strnlen(item.m_szMetaText, 20));
    return text.str();
}

void CompareDirectory(Differences& differences, const RefDir& expected, const CSDCFDir& actual) {
    differences.CompareText("directory name", expected.name, actual.m_strDirName);
    differences.Compare("directory number", expected.number, actual.m_nDnum);
    differences.Compare("items", expected.items.size(), actual.m_itemGroup.size());
    for (std::size_t i = 0; i < std::min(expected.items.size(), actual.m_itemGroup.size()); ++i) {
        if (!SameItem(expected.items[i], actual.m_itemGroup[i])) {
            differences.Add("item in " + expected.name + ": expected " + Show(expected.items[i]) + ", got " +
                            Show(actual.m_itemGroup[i]));
        }
    }
}

void CompareTree(Differences& differences, const RefTree& expected, const CSDCFList& actual) {
    differences.Compare("first index", expected.firstIndex, actual.m_nFirstIndex);
    differences.Compare("directory count", static_cast<int>(expected.dirs.size()), actual.m_nDirCount);
    differences.Compare("directories", expected.dirs.size(), actual.m_dirGroup.size());
    differences.CompareText("tree's root", expected.root, actual.m_szBaseURI);
    differences.Compare("total", expected.total, actual.m_nTotalCount);
    differences.Compare("cursor's directory number", expected.curDnum, actual.m_nCurDnum);
    differences.Compare("cursor's file number", expected.curFnum, actual.m_nCurFnum);
    differences.Compare("cursor's file position", expected.curFidx, actual.m_CurFileIndex);
    differences.Compare("cursor's directory position", expected.curDidx, actual.m_nCurDidx);
    differences.Compare("cursor's list position", expected.curPosition, actual.m_nCurListIndex);
    differences.Compare("tree's series mode", expected.series, actual.m_bSeriesMode);
    if (!SameItem(expected.curItem, actual.m_CurItem)) {
        differences.Add("cursor's item: expected " + Show(expected.curItem) + ", got " + Show(actual.m_CurItem));
    }
    for (std::size_t i = 0; i < std::min(expected.dirs.size(), actual.m_dirGroup.size()); ++i) {
        CompareDirectory(differences, expected.dirs[i], *actual.m_dirGroup[i]);
    }
}

void CompareList(Differences& differences, const Reference& expected, const CSFileList& actual) {
    differences.CompareText("root", expected.baseURI, actual.m_szBaseURI);
    differences.Compare("file-name mode", expected.fileNameMake, static_cast<int>(actual.m_eFileNameMake));
    differences.Compare("folder-name mode", expected.folderNameMake, static_cast<int>(actual.m_eFolderNameMake));
    differences.Compare("colour mode", expected.colorMode, static_cast<int>(actual.m_eColorMode));
    differences.Compare("image type", expected.imageType, static_cast<int>(actual.m_eImageType));
    differences.Compare("include Camera", expected.includeNonDCF, actual.m_bIncludeNonDCF);
    differences.Compare("cached cursor", expected.curGetAtIdx, actual.m_nCurGetAtIdx);
    differences.Compare("cached count", expected.listCount, actual.m_nList);
    differences.CompareText("default path", "/mnt/mmc", actual.m_szDefaultPath);
    differences.CompareText("default folder", "PHOTO", actual.m_szDefaultFolder);
    differences.CompareText("default prefix", "KVR_", actual.m_szDefaultPrefix);
    differences.Compare("series mode", expected.seriesMode, actual.m_bSeriesMode);
    differences.CompareText("prefix", expected.filePrefix, actual.m_szFilePrefix);
    differences.CompareText("date prefix", expected.datePrefix, actual.m_szDatePrefix);
    differences.CompareText("date folder", expected.dateFolder, actual.m_szDateFolder);
    differences.CompareText("stereoscopic prefix", expected.stereoPrefix, actual.m_sz3DPrefix);
    differences.Compare("listing done", expected.listupDone, actual.listupDone);
    if (expected.selection != actual.m_vecSel) {
        differences.Add("the selection differs");
    }
    differences.Compare("tree", expected.tree.has_value(), actual.m_pDCF != nullptr);
    if (expected.tree && actual.m_pDCF != nullptr) {
        CompareTree(differences, *expected.tree, *actual.m_pDCF);
    }
}

} // namespace

std::string StateDifference(const Expected& expected, const Actual& actual) {
    Differences differences;
    CompareList(differences, expected.list, actual.list);
    if (expected.list.registry != DirPathMapper::getInstance()->m_mapPath) {
        differences.Add("the directory registry differs");
    }
    if (expected.list.storedSeries != FakePlatform::Get().Preference(kSeriesGroup, kSeriesKey)) {
        differences.Add("the stored series value differs");
    }
    for (std::size_t slot = 0; slot < expected.items.size(); ++slot) {
        if (!SameClientItem(expected.items[slot], actual.items[slot])) {
            differences.Add("item " + std::to_string(slot) + ": expected " + Show(expected.items[slot]) + ", got " +
                            Show(actual.items[slot]));
        }
    }
    if (expected.buffer != actual.buffer) {
        differences.Add(std::string("the client's buffer: expected ") + expected.buffer.data() + ", got " +
                        actual.buffer.data());
    }
    differences.Add(CardDifference(expected.list.card));
    return differences.Text();
}

void AdoptTimes(Expected& expected, const Actual& actual, AdoptTime adopt) {
    if (!expected.list.tree || actual.list.m_pDCF == nullptr) {
        return;
    }
    RefTree& tree = *expected.list.tree;
    const CSDCFList& real = *actual.list.m_pDCF;
    for (std::size_t d = 0; d < std::min(tree.dirs.size(), real.m_dirGroup.size()); ++d) {
        auto& items = tree.dirs[d].items;
        for (std::size_t f = 0; f < std::min(items.size(), real.m_dirGroup[d]->m_itemGroup.size()); ++f) {
            items[f].time = adopt(items[f].time, real.m_dirGroup[d]->m_itemGroup[f].m_nFileTime);
        }
    }
    tree.curItem.time = adopt(tree.curItem.time, real.m_CurItem.m_nFileTime);
}

void AdoptTimesBehindNames([[maybe_unused]] Expected& expected, [[maybe_unused]] const Actual& actual) {
#ifdef DCF_ENTRY_TIME_DIRENT
    if (expected.list.effects.trees > 0) {
        AdoptTimes(expected, actual, [](std::uint32_t /*expected*/, std::uint32_t found) { return found; });
    }
#endif
}

} // namespace dcftest
