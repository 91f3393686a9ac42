// DCFItem and the texts of the file types; see the header.
#include "CSDCFItemList.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "BoundedText.h"
#include "CSDCFList.h"
#include "DcfRules.h"
#include "PCSDCFFSIO.h"

#define KELP_UNIT "CSDCFItemList"
#include "Diagnostics.h"

namespace {

/// The type of a name: the first of these texts that occurs anywhere in it.
/// Deliberate: not the extension alone. A movie called JPG_0001.MP4 is taken for a picture; clients know it so.
constexpr std::pair<const char*, eFileType> kTypeTexts[] = {
    {"JPG", FILE_TYPE_JPG}, {"MPO", FILE_TYPE_MPO}, {"SRW", FILE_TYPE_SRW},
    {"MP4", FILE_TYPE_MP4}, {"AVI", FILE_TYPE_AVI},
};

/// The last trailing words of the metadata mean "unknown" until a collector says otherwise.
constexpr int kFirstUnknownWord = 11;
constexpr std::int32_t kUnknownWord = -1;

} // namespace

std::string fileTypeToString(eFileType type) {
    for (const auto& [text, textType] : kTypeTexts) {
        if (textType == type) {
            return text;
        }
    }
    return "";
}

DCFItem::DCFItem()
    : m_fileName(), m_bProtectKnown(false), m_bProtect(false), m_bWifi(false), m_nFileTime(0), m_nFileNum(0),
      m_nDirNum(0), m_eFileType(FILE_TYPE_NONE), m_eObjectType(FILE_TYPE_NONE), m_bMetadata(false), m_photo() {
    std::fill(std::begin(m_photo.trailingWords) + kFirstUnknownWord, std::end(m_photo.trailingWords), kUnknownWord);
}

char* DCFItem::getFileName() {
    return m_fileName;
}

void DCFItem::setFileName(const char* name) {
    const int len = static_cast<int>(std::strlen(name));
    if (m_nDirNum == kelp::kCameraDirNumber) {
        KELP_ASSERT_AS(len < static_cast<int>(sizeof m_fileName), "len < MAX_FILE_SIZE", "len < 30",
                       "more than non dcf filename length = %d", len);
    } else {
        KELP_ASSERT_AS(len == static_cast<int>(kelp::kFileNameLength), "len == 12", "len == 12",
                       "more than dcf filename length = %d", len);
    }
    kelp::CopyText(m_fileName, name);
    for (const auto& [text, type] : kTypeTexts) {
        if (std::strstr(m_fileName, text) != nullptr) {
            m_eFileType = type;
            return;
        }
    }
}

int DCFItem::getFileNum() {
    return m_nFileNum;
}

void DCFItem::setFileNum(int fileNum) {
    m_nFileNum = fileNum;
}

short DCFItem::getDirNum() {
    return m_nDirNum;
}

void DCFItem::setDirNum(short dirNum) {
    m_nDirNum = dirNum;
}

unsigned int DCFItem::getFileTime() {
    return m_nFileTime;
}

void DCFItem::setFileTime(unsigned int fileTime) {
    m_nFileTime = fileTime;
}

eFileType DCFItem::getFileType() {
    return m_eFileType;
}

eFileType DCFItem::getObjectType() {
    return m_eObjectType;
}

void DCFItem::setObjectType(eFileType type) {
    m_eObjectType = type;
}

bool DCFItem::getWifi() {
    return m_bWifi;
}

void DCFItem::setWifi(bool on) {
    m_bWifi = on;
}

bool DCFItem::getProtect() {
    // Deliberate: asked once, by this copy alone, and through the registry: a directory that is not registered, or a
    // file that cannot be examined, is known as unprotected from then on.
    if (!m_bProtectKnown) {
        char path[KELP_DCF_MAX_FILE_NAME_LEN];
        kelp::Join(path, sizeof path, {DirPathMapper::getInstance()->getPath(m_nDirNum).c_str(), "/", m_fileName});
        setProtect(PCSDCFFSIO::IsProtect(path));
    }
    return m_bProtect;
}

void DCFItem::setProtect(bool on) {
    m_bProtect = on;
    m_bProtectKnown = true;
}

bool DCFItem::getMetadata() {
    return m_bMetadata;
}

void DCFItem::setPhotoData(const PhotoInfo& info) {
    m_bMetadata = true;
    m_photo = info;
    kelp::CopyField(m_photo.date, info.date); // a text: what stands behind its end stays with the collector
}

void DCFItem::setVideoData(const VideoInfo& /*info*/) {
    // Deliberate: no video metadata is kept.
}
