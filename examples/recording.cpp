// Records a picture as a camera does: takes the next name, writes the file, makes it durable, and takes the name back
// out of the list when the writing fails. Usage: recording CARD [PREFIX] < picture
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "CBIFileListManager.h"

namespace {

// The file number is found behind four characters, so the prefix of a DCF name has exactly four. The list takes up to
// eight and relies on its client here.
const std::size_t kPrefixLength = 4;

bool WriteAll(int file) {
    char block[65536];
    ssize_t length = 0;
    while ((length = read(STDIN_FILENO, block, sizeof block)) > 0) {
        for (ssize_t done = 0; done < length;) {
            const ssize_t written = write(file, block + done, static_cast<std::size_t>(length - done));
            if (written < 0) {
                return false;
            }
            done += written;
        }
    }
    return length == 0;
}

// The picture is safe when both its bytes and its name are on the card.
bool SyncFolder(const std::string& path) {
    const int folder = open(path.substr(0, path.rfind('/')).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool safe = folder >= 0 && fsync(folder) == 0;
    if (folder >= 0) {
        close(folder);
    }
    return safe;
}

bool WritePicture(const std::string& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file < 0) {
        return false;
    }
    const bool written = WriteAll(file) && fsync(file) == 0;
    return (close(file) == 0) && written && SyncFolder(path);
}

// The new file stands in the list and under the cursor before it is on the card. When it never gets there, it has to
// leave the list again; Delete also removes what was written of it.
void TakeBack(ISFileList* list) {
    CSFileListItem item;
    if (list->GetCurrent(&item) == 0) {
        list->Delete(&item);
    }
}

int Record(ISFileList* list) {
    char path[396] = "";
    if (list->GetNewFileName(path, FILE_TYPE_JPG) != 0) {
        std::fprintf(stderr, "The card's numbers are used up: renumber it.\n");
        return 1;
    }
    if (!WritePicture(path)) {
        const int error = errno;
        std::fprintf(stderr, "%s: %s\n", path, std::strerror(error));
        if (error != EEXIST) { // somebody else's picture stays
            TakeBack(list);
        }
        return 1;
    }
    std::printf("%s\n", path);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2 || (argc > 2 && std::strlen(argv[2]) != kPrefixLength)) {
        std::fprintf(stderr, "Usage: recording CARD [PREFIX] < picture\nA prefix has exactly four characters.\n");
        return 2;
    }
    CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT);
    if (CBIFileListManager::SetBaseURI(argv[1]) != 0) {
        std::fprintf(stderr, "The path of a card has at most 97 characters.\n");
        return 2;
    }
    ISFileList* list = CBIFileListManager::GetFileList();
    list->Listup();
    if (argc > 2) {
        list->SetFilePrefix(argv[2]); // after the colour mode, which would replace it
    }
    const int result = Record(list);
    CBIFileListManager::Destroy();
    return result;
}
