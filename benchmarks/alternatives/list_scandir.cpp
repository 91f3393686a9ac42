// What one would write with scandir and stat to list the pictures of a card: time and path of each, in the order of the
// names.
#include <dirent.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

bool IsPicture(const char* name) {
    const std::size_t length = std::strlen(name);
    return length > 4 && std::strcmp(name + length - 4, ".JPG") == 0;
}

/// Calls with the path and the name of every entry of a folder.
template <typename Visit>
bool ForEachEntry(const std::string& folder, Visit visit) {
    dirent** entries = nullptr;
    const int count = scandir(folder.c_str(), &entries, nullptr, alphasort);
    for (int entry = 0; entry < count; ++entry) {
        const char* name = entries[entry]->d_name;
        visit(folder + "/" + name, name);
        std::free(entries[entry]);
    }
    std::free(static_cast<void*>(entries));
    return count >= 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        return 2;
    }
    const bool read = ForEachEntry(argv[1], [](const std::string& folder, const char* folderName) {
        if (folderName[0] == '.') {
            return;
        }
        ForEachEntry(folder, [](const std::string& path, const char* name) {
            struct stat status = {};
            if (IsPicture(name) && stat(path.c_str(), &status) == 0) {
                std::printf("%lld %s\n", static_cast<long long>(status.st_mtime), path.c_str());
            }
        });
    });
    return read ? 0 : 1;
}
