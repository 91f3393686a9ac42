// The shell's operations that name files, and those of the manager; see ShellOperations.h.
#include <array>
#include <cstring>

#include "CBIFileListManager.h"
#include "ShellOperations.h"

namespace dcfctl {
namespace {

using enum ArgumentKind;

/// What GetNewFileName may write.
using NameBuffer = std::array<char, 396>;

std::optional<std::string> Written(const NameBuffer& buffer) {
    const std::string text(buffer.data(), strnlen(buffer.data(), buffer.size()));
    return text.empty() ? std::nullopt : std::optional<std::string>(text);
}

CallResult SetFileNameMake(ShellState& state, const Arguments& arguments) {
    state.dateNames = arguments[0].number != 0;
    state.list->SetFileNameMake(static_cast<eFILE_NAME_MAKE>(arguments[0].number));
    return {};
}

CallResult SetFileNameColor(ShellState& state, const Arguments& arguments) {
    state.prefix = arguments[0].number == 0 ? kStandardPrefix : kOptionalPrefix;
    state.list->SetFileNameColor(static_cast<eFileListColorMode>(arguments[0].number));
    return {};
}

template <typename Mode, void (ISFileList::*Set)(Mode)>
CallResult SetMode(ShellState& state, const Arguments& arguments) {
    (state.list->*Set)(static_cast<Mode>(arguments[0].number));
    return {};
}

CallResult GetNewFileName(ShellState& state, const Arguments& arguments) {
    NameBuffer buffer = {};
    const int code = state.list->GetNewFileName(buffer.data(), arguments[0].number);
    state.folders = FoldersOnCard(state); // the list knows a folder that it made itself
    return {code, {}, Written(buffer)};
}

CallResult GetLatestFileName(ShellState& state, const Arguments& arguments) {
    NameBuffer buffer = {};
    const int code = state.list->GetLatestFileName(buffer.data(), static_cast<eFileType>(arguments[0].number));
    return {code, {}, Written(buffer)};
}

CallResult SetFilePrefix(ShellState& state, const Arguments& arguments) {
    std::optional<std::string> prefix = arguments[0].text;
    const int code = state.list->SetFilePrefix(prefix.has_value() ? prefix->data() : nullptr);
    if (code == 0) {
        state.prefix = *arguments[0].text;
    }
    return {code, {}, {}};
}

CallResult GetAvailNumOfPhoto(ShellState& state, const Arguments& /*arguments*/) {
    return {state.list->GetAvailNumOfPhoto(), {}, {}};
}

CallResult RenameDCFFullStorage(ShellState& state, const Arguments& /*arguments*/) {
    const int code = state.list->RenameDCFFullStorage();
    state.listedRoot = state.root;
    state.folders = FoldersOnCard(state); // it has listed the card again
    return {code, {}, {}};
}

CallResult Create(ShellState& state, const Arguments& /*arguments*/) {
    const int code = CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT);
    state.list = CBIFileListManager::GetFileList();
    state.listed = false;
    state.camera = true;
    state.prefix = kStandardPrefix;
    state.dateNames = false;
    (void)CBIFileListManager::SetBaseURI(state.root.c_str()); // taken before
    return {code, {}, {}};
}

CallResult Destroy(ShellState& state, const Arguments& /*arguments*/) {
    state.list = nullptr;
    state.listed = false;
    return {CBIFileListManager::Destroy(), {}, {}};
}

CallResult SetBaseURI(ShellState& state, const Arguments& arguments) {
    const char* root = arguments[0].text.has_value() ? arguments[0].text->c_str() : nullptr;
    const int code = CBIFileListManager::SetBaseURI(root);
    if (code == 0) {
        state.root = *arguments[0].text;
    }
    return {code, {}, {}};
}

} // namespace

std::vector<Operation> NamingOperations() {
    return {
        {"SetFileNameMake", "fixed|date", "how new file names are made", {kNameMake}, kNone, SetFileNameMake},
        {"SetFolderNameMake",
         "fixed|date",
         "how new folder names are made",
         {kNameMake},
         kNone,
         SetMode<eFILE_NAME_MAKE, &ISFileList::SetFolderNameMake>},
        {"SetFileNameColor",
         "standard|optional",
         "colour mode, which sets the prefix",
         {kColour},
         kNone,
         SetFileNameColor},
        {"SetImageType",
         "ordinary|stereoscopic",
         "image type of new files",
         {kImage},
         kNone,
         SetMode<eFileListImageType, &ISFileList::SetImageType>},
        {"SetFilePrefix", "TEXT|null", "prefix of new file names", {kText}, kNone, SetFilePrefix},
        {"GetNewFileName",
         "TYPE",
         "take the next file number; gives the path to write to",
         {kType},
         kNewName,
         GetNewFileName},
        {"GetLatestFileName",
         "TYPE",
         "path of the first file with another extension",
         {kType},
         kFirstFile,
         GetLatestFileName},
        {"GetAvailNumOfPhoto", "", "how many more files the numbers allow", {}, kNeedsListing, GetAvailNumOfPhoto},
        {"RenameDCFFullStorage",
         "",
         "renumber the folders and list again",
         {},
         kNeedsListing | kRelists,
         RenameDCFFullStorage},
    };
}

std::vector<Operation> ManagerOperations() {
    return {
        {"Create", "", "make a new file list in the place of the one there is", {}, kNoList, Create},
        {"Destroy", "", "destroy the file list", {}, kNoList, Destroy},
        {"SetBaseURI", "PATH|null", "choose another card for the next Listup", {kPath}, kNoList, SetBaseURI},
    };
}

const std::vector<Operation>& Operations() {
    static const std::vector<Operation> operations = [] {
        std::vector<Operation> all;
        for (const auto& family : {ListingOperations(), BrowsingOperations(), ChangingOperations(), NamingOperations(),
                                   ManagerOperations()}) {
            all.insert(all.end(), family.begin(), family.end());
        }
        return all;
    }();
    return operations;
}

const Operation* FindOperation(std::string_view name) {
    for (const Operation& operation : Operations()) {
        if (operation.name == name) {
            return &operation;
        }
    }
    return nullptr;
}

} // namespace dcfctl
