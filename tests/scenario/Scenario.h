// What the scenarios share: trees and file lists over a card, the cursor as one value, the log of one operation, and
// records with known content. Everything is one test's own; one thread unless a test says otherwise.
#ifndef TESTS_SCENARIO_SCENARIO_H
#define TESTS_SCENARIO_SCENARIO_H

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include "AssertionDeath.h"
#include "CSDCFList.h"
#include "CSFileList.h"
#include "Card.h"
#include "ChildProcess.h"
#include "FakePlatform.h"

namespace dcftest {

/// The cursor of a tree as one value.
struct Cursor {
    int dnum;
    int fnum;
    int didx;
    int fidx;
    int position;

    bool operator==(const Cursor&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Cursor& cursor) {
    return out << "directory " << cursor.dnum << ", file " << cursor.fnum << ", at " << cursor.didx << "/"
               << cursor.fidx << ", list position " << cursor.position;
}

inline Cursor CursorOf(const CSDCFList& tree) {
    return {tree.m_nCurDnum, tree.m_nCurFnum, tree.m_nCurDidx, tree.m_CurFileIndex, tree.m_nCurListIndex};
}

inline constexpr Cursor kUnsetCursor = {-1, -1, -1, -1, -1};

/// The bytes of a field, so that "as it was" can be compared whatever the field is.
template <typename Field>
std::string Bytes(const Field& field) {
    static_assert(std::is_trivially_copyable_v<Field> && !std::is_pointer_v<Field>);
    std::string bytes(sizeof field, '\0');
    std::memcpy(bytes.data(), &field, sizeof field);
    return bytes;
}

/// Every field of an item's conversion, each followed by "|": equal texts mean equal items, padding aside.
inline std::string Fields(const CSFileListItem& item) {
    std::string all;
    const auto add = [&all](const auto& field) { all += Bytes(field) + "|"; };
    add(item.m_strURI);
    add(item.m_strObject);
    add(item.m_eFileType);
    add(item.m_eObjectType);
    add(item.m_nMetaFlag);
    add(item.m_bProtect);
    add(item.m_bWifi);
    add(item.m_nDirNum);
    add(item.m_nFileNum);
    add(item.m_nMetaQuad1);
    add(item.m_nMetaQuad2);
    add(item.m_aReserved1);
    add(item.m_szMetaText);
    add(item.m_nMetaFlag2);
    add(item.m_nMetaWord);
    add(item.m_nMetaByte);
    add(item.m_aMeta);
    add(item.m_aReserved2);
    add(item.m_nFileTime);
    return all;
}

/// An item that a client has used for something else: every byte is 1, no text in it ends.
inline CSFileListItem UsedItem() {
    CSFileListItem item;
    std::memset(static_cast<void*>(&item), 1, sizeof item);
    return item;
}

/// A record whose fields all differ. The date fills its field whole, without a terminator.
inline PhotoInfo DistinctPhotoInfo() {
    PhotoInfo info = {};
    info.attributeByte1 = 0x11;
    info.attributeByte2 = 0x22;
    info.attributeWord = 0x81000003U;
    info.attributeFlag = 0x44;
    for (int i = 0; i < 4; ++i) {
        info.attributeWords[i] = 1001 + i;
    }
    std::memcpy(info.date, "2024:02:29 23:59:58Z", sizeof info.date);
    for (int i = 0; i < 17; ++i) {
        info.trailingWords[i] = 2001 + i;
    }
    return info;
}

/// The log since the last call as "file function message"; what every line has in common is checked here.
inline std::vector<std::string> TakeLog() {
    for (const LogLine& line : FakePlatform::Get().Lines()) {
        EXPECT_EQ(line.logId, 3);
        EXPECT_EQ(line.priority, 4);
        EXPECT_EQ(line.tag, "MM_FLIST");
        EXPECT_EQ(line.format, "%s: %s(%d) > %s");
        EXPECT_GT(line.line, 0);
        EXPECT_EQ(line.buffer, LogBuffer(line.Message()));
    }
    std::vector<std::string> texts = FakePlatform::Get().Texts();
    FakePlatform::Get().ForgetLines();
    return texts;
}

using Log = std::vector<std::string>;

/// The start of every scenario: nothing logged, nothing stored, no collector.
inline void StartAfresh() {
    FakePlatform::Get().Reset();
    CSDCFList::m_PhotoInfoCollector = nullptr;
    CSDCFList::m_VideoInfoCollector = nullptr;
}

inline std::unique_ptr<CSDCFList> ListTree(const Card& card, bool includeCamera = true) {
    auto tree = std::make_unique<CSDCFList>();
    EXPECT_EQ(tree->SetBaseURI(card.Root().c_str()), 0);
    EXPECT_EQ(tree->Listup(includeCamera), 0);
    return tree;
}

/// Scenarios over the bare tree.
class TreeTest : public testing::Test {
protected:
    TreeTest() {
        StartAfresh();
    }

    void List(bool includeCamera = true) {
        tree = ListTree(card, includeCamera);
    }

    /// The path of a file on the card.
    std::string Path(const std::string& dir, const std::string& name) const {
        return card.Path(dir, name);
    }

    Card card;
    std::unique_ptr<CSDCFList> tree;
};

/// Scenarios over the façade. The log starts behind the construction.
class FileListTest : public testing::Test {
protected:
    FileListTest() {
        StartAfresh();
        list = std::make_unique<CSFileList>();
        EXPECT_EQ(list->SetBaseURI(card.Root().c_str()), 0);
        (void)TakeLog();
    }

    /// Lists the card and forgets the log of it.
    int List() {
        const int count = list->Listup();
        (void)TakeLog();
        return count;
    }

    std::string Path(const std::string& dir, const std::string& name) const {
        return card.Path(dir, name);
    }

    Card card;
    std::unique_ptr<CSFileList> list;
};

} // namespace dcftest

#endif
