// Fills the card that is mounted at /card: see FullFolder.h. As on a camera, the numbers ascend.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

#include "Card.h"
#include "FullFolder.h"

namespace {

bool MakeFile(const std::string& path, std::time_t time) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0) {
        return false;
    }
    const std::array<timespec, 2> times{timespec{time, 0}, timespec{time, 0}};
    const bool done = ::futimens(fd, times.data()) == 0;
    return ::close(fd) == 0 && done;
}

} // namespace

int main() {
    for (const auto& [root, count] :
         {std::pair(dcftest::kSmallRoot, dcftest::kSmallCount), std::pair(dcftest::kLargeRoot, dcftest::kLargeCount)}) {
        const std::string folder = std::string(root) + "/DCIM/" + dcftest::kFullFolder;
        std::filesystem::create_directories(folder);
        for (int number = 1; number <= count; ++number) {
            const std::string path = folder + "/" + dcftest::DcfName(number);
            if (!MakeFile(path, dcftest::TimeOf(number))) {
                std::perror(path.c_str());
                return 1;
            }
        }
        std::printf("%s: %d files\n", root, count);
    }
    return 0;
}
