// The shell's operations that list and browse; see ShellOperations.h.
#include <string>

#include "Metadata.h"
#include "ShellOperations.h"

namespace dcfctl {
namespace {

using enum ArgumentKind;

/// The argument as the interface takes it; null for null. The interface's paths are not const, and not written to.
char* PathOf(Argument& argument) {
    return argument.text.has_value() ? argument.text->data() : nullptr;
}

bool IsNull(const Argument& argument) {
    return argument.number != 0;
}

/// Runs an operation that fills an item, and keeps the item when it did.
template <typename Call>
CallResult Fill(ShellState& state, const Argument& null, Filled filled, Call call) {
    CallResult result;
    if (IsNull(null)) {
        result.value = call(nullptr);
        return result;
    }
    CSFileListItem item;
    const int code = call(&item);
    result.value = code;
    if (code == 0) {
        state.item = item;
        state.hasItem = true;
        result.item = ShownItem{item, filled};
    }
    return result;
}

template <int (ISFileList::*Move)(CSFileListItem*)>
CallResult MoveCursor(ShellState& state, const Arguments& arguments) {
    return Fill(state, arguments[0], Filled::kWhole,
                [&state](CSFileListItem* item) { return (state.list->*Move)(item); });
}

template <int (ISFileList::*Get)(int, CSFileListItem*), Filled Extent>
CallResult GetByPosition(ShellState& state, const Arguments& arguments) {
    return Fill(state, arguments[1], Extent,
                [&](CSFileListItem* item) { return (state.list->*Get)(arguments[0].number, item); });
}

CallResult GetInfo(ShellState& state, const Arguments& arguments) {
    Argument path = arguments[0];
    return Fill(state, arguments[1], Filled::kWhole,
                [&](CSFileListItem* item) { return state.list->GetInfo(PathOf(path), item); });
}

template <int (ISFileList::*Get)()>
CallResult Number(ShellState& state, const Arguments& /*arguments*/) {
    return {(state.list->*Get)(), {}, {}};
}

CallResult Listup(ShellState& state, const Arguments& /*arguments*/) {
    const int count = state.list->Listup();
    state.listed = true;
    state.listedRoot = state.root;
    state.folders = FoldersOnCard(state);
    return {count, {}, {}};
}

CallResult IncludeNonDCF(ShellState& state, const Arguments& arguments) {
    state.camera = arguments[0].number != 0;
    state.list->IncludeNonDCF(state.camera);
    return {};
}

CallResult SetSeriesMode(ShellState& state, const Arguments& arguments) {
    return {state.list->SetSeriesMode(arguments[0].number != 0), {}, {}};
}

CallResult GetSeriesMode(ShellState& state, const Arguments& /*arguments*/) {
    return {state.list->GetSeriesMode(), {}, {}};
}

CallResult GetFileListIndex(ShellState& state, const Arguments& arguments) {
    Argument path = arguments[0];
    return {state.list->GetFileListIndex(PathOf(path)), {}, {}};
}

CallResult IsLast(ShellState& state, const Arguments& arguments) {
    return {state.list->IsLast(IsNull(arguments[0]) ? nullptr : &state.item), {}, {}};
}

CallResult UpdateFirstIndex(ShellState& state, const Arguments& arguments) {
    return {state.list->UpdateFirstIndex(arguments[0].number != 0), {}, {}};
}

CallResult SetCur(ShellState& state, const Arguments& arguments) {
    Argument path = arguments[0];
    return {state.list->SetCur(PathOf(path)), {}, {}};
}

CallResult SetCurIndex(ShellState& state, const Arguments& arguments) {
    return {state.list->SetCurIndex(arguments[0].number), {}, {}};
}

CallResult GetFileCount(ShellState& state, const Arguments& arguments) {
    return {state.list->GetFileCount(static_cast<eFileType>(arguments[0].number)), {}, {}};
}

// ---- Metadata ----

constexpr const char* kDemoDate = "2024:05:01 10:00:00";

/// What the demonstration collector tells about every picture.
PhotoInfo DemoInfo(const std::string& date) {
    PhotoInfo info = {};
    info.attributeByte1 = 1;
    info.attributeByte2 = 2;
    info.attributeWord = 3;
    info.attributeFlag = 4;
    int next = 11;
    for (std::int32_t& word : info.attributeWords) {
        word = next++;
    }
    next = 101;
    for (std::int32_t& word : info.trailingWords) {
        word = next++;
    }
    date.copy(info.date, sizeof info.date - 1);
    return info;
}

int DemoCollector(char* /*path*/, PhotoInfo* info) {
    *info = DemoInfo(kDemoDate);
    return 0;
}

int FailingCollector(char* /*path*/, PhotoInfo* /*info*/) {
    return -1;
}

int DemoVideoCollector(char* /*path*/, VideoInfo* /*info*/) {
    return 0;
}

CallResult RegisterPhotoMetadataCB(ShellState& state, const Arguments& arguments) {
    const std::string& which = *arguments[0].text;
    int (*const collector)(char*, PhotoInfo*) = which == "demo"           ? DemoCollector
                                                : which == kExifCollector ? ExifCollector()
                                                : which == "fail"         ? FailingCollector
                                                                          : nullptr;
    return {state.list->RegisterPhotoMetadataCB(collector), {}, {}};
}

CallResult RegisterVideoMetadataCB(ShellState& state, const Arguments& arguments) {
    const bool none = *arguments[0].text == "none";
    return {state.list->RegisterVideoMetadataCB(none ? nullptr : DemoVideoCollector), {}, {}};
}

CallResult AddPhotoMetadata(ShellState& state, const Arguments& arguments) {
    PhotoInfo info = DemoInfo(arguments[1].text.value_or(kDemoDate));
    const char* path = arguments[0].text.has_value() ? arguments[0].text->c_str() : nullptr;
    return {state.list->AddPhotoMetadata(path, info), {}, {}};
}

} // namespace

std::vector<Operation> ListingOperations() {
    return {
        {"SetSeriesMode", "FLAG", "switch series numbering", {kFlag}, kNone, SetSeriesMode},
        {"GetSeriesMode", "", "is series numbering on?", {}, kNone, GetSeriesMode},
        {"Listup", "", "list the card, cursor on the first file", {}, kRehearse | kListing, Listup},
        {"IncludeNonDCF", "FLAG", "take \"Camera\" into the next listing", {kFlag}, kNone, IncludeNonDCF},
        {"GetCount", "", "number of files", {}, kRehearse, Number<&ISFileList::GetCount>},
        {"GetFileCount", "TYPE", "number of files of a type, companions included", {kType}, kNone, GetFileCount},
        {"UpdateFirstIndex",
         "FLAG",
         "number index of the newest file; true: without the series",
         {kFlag},
         kNone,
         UpdateFirstIndex},
        {"RegisterPhotoMetadataCB",
         "demo|exif|fail|none",
         "choose the photo collector",
         {kCollector},
         kNone,
         RegisterPhotoMetadataCB},
        {"RegisterVideoMetadataCB",
         "demo|none",
         "offer a video collector",
         {kCollector},
         kNone,
         RegisterVideoMetadataCB},
        {"AddPhotoMetadata",
         "PATH|null [DATE]",
         "store the demonstration metadata",
         {kPath, kOptional},
         kRehearse,
         AddPhotoMetadata},
    };
}

std::vector<Operation> BrowsingOperations() {
    return {
        {"GetAt",
         "POSITION [null]",
         "the item at a position",
         {kPosition, kNull},
         kRehearse,
         GetByPosition<&ISFileList::GetAt, Filled::kWhole>},
        {"GetAtSimply",
         "POSITION [null]",
         "its paths and time only",
         {kPosition, kNull},
         kRehearse,
         GetByPosition<&ISFileList::GetAtSimply, Filled::kPathsAndTime>},
        {"GetFileListIndex", "PATH|null", "position of a path", {kPath}, kRehearse, GetFileListIndex},
        {"GetCurIndex", "", "position of the cursor", {}, kRehearse, Number<&ISFileList::GetCurIndex>},
        {"GetCurrent", "[null]", "the item at the cursor", {kNull}, kRehearse, MoveCursor<&ISFileList::GetCurrent>},
        {"GetFirst", "[null]", "cursor to the first file", {kNull}, kRehearse, MoveCursor<&ISFileList::GetFirst>},
        {"GetNext", "[null]", "cursor to the next file", {kNull}, kRehearse, MoveCursor<&ISFileList::GetNext>},
        {"GetPrev", "[null]", "cursor to the previous file", {kNull}, kRehearse, MoveCursor<&ISFileList::GetPrev>},
        {"GetLast", "[null]", "cursor to the last file", {kNull}, kRehearse, MoveCursor<&ISFileList::GetLast>},
        {"IsLast", "[null]", "is it the last? Cursor to the last file", {kNull}, kRehearse | kUsesItem, IsLast},
        {"SetCur", "PATH|null", "cursor to a path", {kPath}, kRehearse, SetCur},
        {"SetCurIndex", "POSITION", "cursor to a position", {kPosition}, kRehearse, SetCurIndex},
        {"GetInfo", "PATH|null [null]", "the item of a path", {kPath, kNull}, kRehearse, GetInfo},
    };
}

} // namespace dcfctl
