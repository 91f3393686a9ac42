// Lists a memory card: every picture and movie in the library's order, with its companion file.
#include <cstdio>

#include "CBIFileListManager.h"

int main(int argc, char** argv) {
    CBIFileListManager::Create(FILE_NUMBER_TYPE_DEFAULT);
    if (argc > 1 && CBIFileListManager::SetBaseURI(argv[1]) != 0) {
        std::fprintf(stderr, "The path of a card has at most 97 characters.\n");
        return 2;
    }

    ISFileList* list = CBIFileListManager::GetFileList();
    std::printf("%d files\n", list->Listup());

    CSFileListItem item;
    for (int result = list->GetFirst(&item); result == 0; result = list->GetNext(&item)) {
        std::printf("%s %s\n", item.m_strURI, item.m_strObject);
    }

    CBIFileListManager::Destroy();
    return 0;
}
