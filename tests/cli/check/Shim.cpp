// A library that is loaded before all others into a dcfctl under test, and changes the card after it was listed: when a
// numbered folder is opened for the second time, which is for the look at its entries. CLI_CHECK_SHIM_CHANGE says how.
#include <dirent.h>
#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

void Change(const fs::path& folder, const std::string& how) {
    if (how == "add") {
        std::ofstream(folder / "KVR_0009.JPG").put('x');
    } else if (how == "remove") {
        fs::remove(folder / "KVR_0002.JPG");
    } else if (how == "exchange") { // another "DCIM", with all that was in this one
        const fs::path dcim = folder.parent_path();
        const fs::path before = dcim.string() + "_";
        fs::rename(dcim, before);
        fs::create_directory(dcim);
        fs::rename(before / folder.filename(), folder);
    }
}

} // namespace

extern "C" DIR* opendir(const char* path) {
    static int opened = 0;
    const std::string folder = path;
    const char* how = std::getenv("CLI_CHECK_SHIM_CHANGE");
    if (how != nullptr && folder.size() > 9 && folder.substr(folder.size() - 9) == "/100PHOTO" && ++opened == 2) {
        Change(folder, how);
    }
    return reinterpret_cast<DIR* (*)(const char*)>(dlsym(RTLD_NEXT, "opendir"))(path);
}
