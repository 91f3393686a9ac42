#include "Seen.h"

#include <cstring>
#include <iterator>
#include <optional>
#include <string>

#include "CSDCFList.h"

namespace dcftest {

namespace {

std::string Text(const char* field, std::size_t size) {
    return {field, strnlen(field, size)};
}

} // namespace

ReferenceItem Seen(const CSFileListItem& item) {
    ReferenceItem seen;
    seen.path = Text(item.m_strURI, sizeof item.m_strURI);
    seen.object = Text(item.m_strObject, sizeof item.m_strObject);
    seen.type = item.m_eFileType;
    seen.objectType = item.m_eObjectType;
    seen.isProtected = item.m_bProtect;
    seen.wifi = item.m_bWifi;
    seen.dirNumber = item.m_nDirNum;
    seen.fileNumber = item.m_nFileNum;
#ifdef DCF_TEST_FILE_TIMES
    seen.time = item.m_nFileTime;
#endif
    seen.metaFlag = item.m_nMetaFlag;
    seen.metaFlag2 = item.m_nMetaFlag2;
    seen.metaWord = item.m_nMetaWord;
    seen.metaByte = item.m_nMetaByte;
    seen.quad1 = item.m_nMetaQuad1;
    seen.quad2 = item.m_nMetaQuad2;
    seen.text = Text(item.m_szMetaText, sizeof item.m_szMetaText);
    seen.words.assign(std::begin(item.m_aMeta), std::end(item.m_aMeta));
    return seen;
}

ReferenceState Seen(const CSFileList& list) {
    ReferenceState seen = {{}, "", list.m_nCurGetAtIdx, list.m_nList, 0, list.m_bSeriesMode};
    std::optional<bool> isProtected;
    std::string name;
    bool metadata = false;
    if (CSDCFList* const tree = list.m_pDCF) {
        seen.cursor = {tree->m_nCurDnum, tree->m_nCurFnum, tree->m_nCurDidx, tree->m_CurFileIndex,
                       tree->m_nCurListIndex};
        seen.firstIndex = tree->m_nFirstIndex;
        DCFItem& file = tree->m_CurItem;
        isProtected = file.m_bProtectKnown ? std::optional(file.m_bProtect) : std::nullopt;
        name = file.getFileName();
        metadata = file.getMetadata();
    }
    seen.cursorFile = DescribeCursorFile(name, isProtected, metadata);
    return seen;
}

CardPlan Comparable(CardPlan plan) {
#ifndef DCF_TEST_FILE_TIMES
    for (PlannedDirectory& directory : plan) {
        for (PlannedFile& file : directory.files) {
            file.time = 0;
        }
    }
#endif
    return plan;
}

} // namespace dcftest
