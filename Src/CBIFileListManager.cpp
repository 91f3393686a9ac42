// The one file list of the process; see the header.
#include "CBIFileListManager.h"

#include <cstddef>

#include "CSFileList.h"
#include "Results.h"

#define KELP_UNIT "CBIFileListManager"
#include "Diagnostics.h"

ISFileList* CBIFileListManager::m_pFileList = nullptr;

int CBIFileListManager::Create(eFileNumberType /*type*/) {
    KELP_LOG(" called");
    if (m_pFileList != nullptr) {
        Destroy(); // Deliberate: a second call replaces the list, so the assertion below never fails.
    }
    KELP_ASSERT(m_pFileList == NULL, "already filelist is created!!");
    m_pFileList = new CSFileList;
    return kelp::kSuccess;
}

ISFileList* CBIFileListManager::GetFileList() {
    KELP_ASSERT(m_pFileList != NULL, "filelist is not created!!");
    return m_pFileList;
}

int CBIFileListManager::Destroy() {
    KELP_LOG(" called");
    delete m_pFileList;
    m_pFileList = nullptr;
    return kelp::kSuccess;
}

int CBIFileListManager::SetBaseURI(const char* uri) {
    KELP_LOG(" called");
    if (m_pFileList == nullptr) {
        return kelp::kFailure;
    }
    return static_cast<CSFileList*>(m_pFileList)->SetBaseURI(uri); // Create makes no other kind of list
}
