// The shell's operations that select, delete, protect and mark; see ShellOperations.h.
#include "ShellOperations.h"

namespace dcfctl {
namespace {

using enum ArgumentKind;

constexpr unsigned kChangesItem = kNeedsListing | kUsesItem | kKnownItem;

CSFileListItem* ItemOf(ShellState& state, const Argument& null) {
    return null.number != 0 ? nullptr : &state.item;
}

template <int (ISFileList::*Run)()>
CallResult Plain(ShellState& state, const Arguments& /*arguments*/) {
    return {(state.list->*Run)(), {}, {}};
}

template <int (ISFileList::*Set)(bool)>
CallResult SetAll(ShellState& state, const Arguments& arguments) {
    return {(state.list->*Set)(arguments[0].number != 0), {}, {}};
}

template <int (ISFileList::*Set)(CSFileListItem*, bool)>
CallResult SetItem(ShellState& state, const Arguments& arguments) {
    return {(state.list->*Set)(ItemOf(state, arguments[1]), arguments[0].number != 0), {}, {}};
}

CallResult Delete(ShellState& state, const Arguments& arguments) {
    return {state.list->Delete(ItemOf(state, arguments[0])), {}, {}};
}

CallResult DeleteAll(ShellState& state, const Arguments& /*arguments*/) {
    const int code = state.list->DeleteAll();
    state.listedRoot = state.root;
    state.folders = FoldersOnCard(state); // it has listed the card again
    return {code, {}, {}};
}

CallResult GetSelectIndecies(ShellState& state, const Arguments& /*arguments*/) {
    return {state.list->GetSelectIndecies(), {}, {}};
}

CallResult IsSel(ShellState& state, const Arguments& arguments) {
    return {state.list->IsSel(arguments[0].number), {}, {}};
}

CallResult SetSel(ShellState& state, const Arguments& arguments) {
    state.list->SetSel(arguments[0].number, arguments[1].number != 0);
    return {};
}

CallResult SelectCancel(ShellState& state, const Arguments& /*arguments*/) {
    state.list->SelectCancel();
    return {};
}

CallResult IsWifiFlag(ShellState& state, const Arguments& arguments) {
    return {state.list->IsWifiFlag(ItemOf(state, arguments[0])), {}, {}};
}

CallResult SetCustomBitAll(ShellState& state, const Arguments& arguments) {
    return {state.list->SetCustomBitAll(arguments[0].number, arguments[1].number != 0), {}, {}};
}

} // namespace

std::vector<Operation> ChangingOperations() {
    return {
        {"Delete", "[null]", "delete the item's file", {kNull}, kChangesItem, Delete},
        {"DeleteSel",
         "",
         "delete the selected files",
         {},
         kNeedsListing | kSelection | kOwnNumbers,
         Plain<&ISFileList::DeleteSel>},
        {"DeleteAll",
         "",
         "delete all files, protected ones too",
         {},
         kNeedsListing | kOwnNumbers | kRelists,
         DeleteAll},
        {"GetSelectIndecies", "", "the selected positions", {}, kNone, GetSelectIndecies},
        {"IsSel", "NUMBER", "is a position selected?", {kNumber}, kNone, IsSel},
        {"SetSel", "NUMBER FLAG", "select or deselect a position", {kNumber, kFlag}, kNone, SetSel},
        {"SelectCancel", "", "empty the selection", {}, kNone, SelectCancel},
        {"GetSelCount", "", "number of selected positions", {}, kNone, Plain<&ISFileList::GetSelCount>},
        {"SetWifiFlag",
         "FLAG [null]",
         "Wi-Fi mark of the item's file",
         {kFlag, kNull},
         kChangesItem,
         SetItem<&ISFileList::SetWifiFlag>},
        {"IsWifiFlag", "[null]", "the item's Wi-Fi mark", {kNull}, kUsesItem, IsWifiFlag},
        {"SetProtect",
         "FLAG [null]",
         "protect the item's file",
         {kFlag, kNull},
         kChangesItem,
         SetItem<&ISFileList::SetProtect>},
        {"SetProtectSel",
         "FLAG",
         "protect the selected files",
         {kFlag},
         kNeedsListing,
         SetAll<&ISFileList::SetProtectSel>},
        {"SetProtectAll", "FLAG", "protect every file", {kFlag}, kNeedsListing, SetAll<&ISFileList::SetProtectAll>},
        {"SetProtectSelToggle",
         "",
         "flip the protection of the selected files",
         {},
         kNeedsListing,
         Plain<&ISFileList::SetProtectSelToggle>},
        {"SetCustomBitAll",
         "NUMBER FLAG",
         "Wi-Fi mark of every file",
         {kNumber, kFlag},
         kNeedsListing,
         SetCustomBitAll},
    };
}

} // namespace dcfctl
