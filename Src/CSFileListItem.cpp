// The client's record of one file.
#include "CSFileListItem.h"

CSFileListItem::CSFileListItem()
    : m_strURI(), m_strObject(), m_eFileType(), m_eObjectType(), m_nMetaFlag(0), m_bProtect(false), m_bWifi(false),
      m_nDirNum(0), m_nFileNum(0), m_nMetaQuad1(0), m_nMetaQuad2(0), m_aReserved1(), m_szMetaText(), m_nMetaFlag2(0),
      m_nMetaWord(0), m_nMetaByte(0), m_aMeta(), m_aReserved2(), m_nFileTime(0) {}

CSFileListItem::~CSFileListItem() = default;
