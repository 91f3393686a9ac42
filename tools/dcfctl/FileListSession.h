// The one file list of the process, made for a card and destroyed with this object. One at a time, one thread.
#ifndef DCFCTL_FILE_LIST_SESSION_H
#define DCFCTL_FILE_LIST_SESSION_H

#include <string>

#include "ISFileList.h"

namespace dcfctl {

class FileListSession {
public:
    /// @param root a storage root that CardInspector has let pass.
    FileListSession(const std::string& root, bool camera);
    FileListSession(const FileListSession&) = delete;
    FileListSession& operator=(const FileListSession&) = delete;
    ~FileListSession();

    [[nodiscard]] ISFileList& List() const {
        return *m_list;
    }

private:
    ISFileList* m_list;
};

} // namespace dcfctl

#endif
