// The two sides that an operation is done on: the reference and the real library, each with the client's three items
// and its buffer, and the same names for everything an operation needs.
#ifndef TESTS_MODEL_WHOLE_SIDES_H
#define TESTS_MODEL_WHOLE_SIDES_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "CSFileList.h"
#include "Reference.h"

namespace dcftest {

constexpr int kSlots = 3;
constexpr int kNoSlot = -1; ///< Stands for a null item.

using Path = std::optional<std::string>; ///< Nothing stands for a null path.

/// A record that a client adds by itself.
PhotoInfo ClientInfo(int number);

struct Client {
    std::array<CSFileListItem, kSlots> items;
    NameBuffer buffer{};

    CSFileListItem* Item(int slot) {
        return slot == kNoSlot ? nullptr : &items[static_cast<std::size_t>(slot)];
    }
};

struct Expected : Client {
    Reference list;

    int NewName(int type) {
        return list.GetNewFileName(buffer, type);
    }
    int Latest(bool noBuffer, int type) {
        return list.GetLatestFileName(noBuffer ? nullptr : &buffer, type);
    }
    void FileNameMake(int mode) {
        list.SetFileNameMake(mode);
    }
    void FolderNameMake(int mode) {
        list.SetFolderNameMake(mode);
    }
    void Color(int mode) {
        list.SetFileNameColor(mode);
    }
    void ImageType(int type) {
        list.SetImageType(type);
    }
    int FileCount(int type) {
        return list.GetFileCount(type);
    }
    int Prefix(const Path& prefix) {
        return list.SetFilePrefix(prefix ? prefix->c_str() : nullptr);
    }
    int SetCur(const Path& path) {
        return list.SetCur(path ? path->c_str() : nullptr);
    }
    int ListIndex(const Path& path) {
        return list.GetFileListIndex(path ? path->c_str() : nullptr);
    }
    int Info(const Path& path, int slot) {
        return list.GetInfo(path ? path->c_str() : nullptr, Item(slot));
    }
    int RegisterPhoto(Collector kind) {
        return list.RegisterPhotoMetadataCB(kind);
    }
    int RegisterVideo() {
        return list.RegisterVideoMetadataCB();
    }
    int AddPhoto(const Path& path, int number) {
        return list.AddPhotoMetadata(path ? path->c_str() : nullptr, ClientInfo(number));
    }

    // What happens to the card and the store from outside.
    void PutFile(const std::string& folder, const std::string& name, const CardFile& file);
    void TakeFile(const std::string& folder, const std::string& name);
    void ChangeMode(const std::string& folder, const std::string& name, mode_t mode);
    void PutFolder(const std::string& name);
    void TakeFolder(const std::string& name);
    void Series(long value);
    void StoreFails(bool fails);
};

struct Actual : Client {
    CSFileList list;
    std::string dcim;

    int NewName(int type);
    int Latest(bool noBuffer, int type);
    void FileNameMake(int mode);
    void FolderNameMake(int mode);
    void Color(int mode);
    void ImageType(int type);
    int FileCount(int type);
    int Prefix(const Path& prefix);
    int SetCur(const Path& path);
    int ListIndex(const Path& path);
    int Info(const Path& path, int slot);
    int RegisterPhoto(Collector kind);
    int RegisterVideo();
    int AddPhoto(const Path& path, int number);

    void PutFile(const std::string& folder, const std::string& name, const CardFile& file);
    void TakeFile(const std::string& folder, const std::string& name);
    void ChangeMode(const std::string& folder, const std::string& name, mode_t mode);
    void PutFolder(const std::string& name);
    void TakeFolder(const std::string& name);
    void Series(long value);
    void StoreFails(bool fails);
};

/// The paths for which the real collector was asked since the last call.
std::vector<std::string> TakeCollected();

/// What differs between the two sides; empty when they are the same. The effects of the last operation are not looked
/// at.
std::string StateDifference(const Expected& expected, const Actual& actual);

/// What the reference shall expect of a file's time, from what it expects and what the list has found.
using AdoptTime = std::uint32_t (*)(std::uint32_t expected, std::uint32_t found);

/// Takes over times of the list's files and of its current one where the file system alone knows them.
void AdoptTimes(Expected& expected, const Actual& actual, AdoptTime adopt);

/// The same behind an operation that has listed, in a build that reads the times behind the names of the entries: they
/// are what the file system left there. Nothing in any other.
void AdoptTimesBehindNames(Expected& expected, const Actual& actual);

} // namespace dcftest

#endif
