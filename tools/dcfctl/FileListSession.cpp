// Making and destroying the file list; see the header.
#include "FileListSession.h"

#include "CBIFileListManager.h"

namespace dcfctl {

namespace {

ISFileList* MakeList() {
    (void)CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT); // has one result
    return CBIFileListManager::GetFileList();
}

} // namespace

FileListSession::FileListSession(const std::string& root, bool camera) : m_list(MakeList()) {
    (void)CBIFileListManager::SetBaseURI(root.c_str()); // the inspector knows the limit
    m_list->IncludeNonDCF(camera);
}

FileListSession::~FileListSession() {
    (void)CBIFileListManager::Destroy(); // has one result
}

} // namespace dcfctl
