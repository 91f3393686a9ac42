// Prints what a listing costs when the kernel remembers no file: nanoseconds per file, which are instructions in a
// machine whose clock counts them. Beside it the cost of what a listing must not do: asking for the files in the order
// of the list instead of the folder's.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "CSFileList.h"
#include "Card.h"
#include "FullFolder.h"

namespace {

std::string FolderOf(const std::string& root) {
    return root + "/DCIM/" + dcftest::kFullFolder;
}

// The blocks of the folder are in memory, its files are not known.
void Forget(const std::string& root) {
    (void)std::distance(std::filesystem::directory_iterator(FolderOf(root)), {});
    ::sync();
    constexpr char kDentriesAndInodes[] = "2\n";
    const int fd = ::open("/proc/sys/vm/drop_caches", O_WRONLY | O_CLOEXEC);
    if (fd < 0 || ::write(fd, kDentriesAndInodes, 2) != 2 || ::close(fd) != 0) {
        throw std::runtime_error("the kernel does not forget");
    }
}

long Now() {
    timespec now{};
    (void)::clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000000000L + now.tv_nsec;
}

long PerFile(const std::string& root, int count, const std::function<int()>& work) {
    std::vector<long> costs;
    for (int round = 0; round < 3; ++round) {
        Forget(root);
        const long start = Now();
        if (work() != count) {
            throw std::runtime_error(root + " is not listed whole");
        }
        costs.push_back((Now() - start) / count);
    }
    std::sort(costs.begin(), costs.end());
    return costs[costs.size() / 2];
}

int ByTheLibrary(const char* root) {
    CSFileList list;
    (void)list.SetBaseURI(root); // a short path
    return list.Listup();
}

int InTheOrderOfTheList(const char* root, int count) {
    int found = 0;
    for (int number = count; number > 0; --number) {
        struct stat status {};
        found += ::stat((FolderOf(root) + "/" + dcftest::DcfName(number)).c_str(), &status) == 0 ? 1 : 0;
    }
    return found;
}

void Print(const char* way, const char* root, int count, const std::function<int()>& work) {
    std::printf("%s %d %ld\n", way, count, PerFile(root, count, work));
    (void)std::fflush(stdout); // the next one may take minutes
}

} // namespace

int main() {
    using dcftest::kLargeCount;
    using dcftest::kLargeRoot;
    using dcftest::kSmallCount;
    using dcftest::kSmallRoot;
    try {
        Print("library", kSmallRoot, kSmallCount, [] { return ByTheLibrary(kSmallRoot); });
        Print("library", kLargeRoot, kLargeCount, [] { return ByTheLibrary(kLargeRoot); });
        Print("list-order", kSmallRoot, kSmallCount, [] { return InTheOrderOfTheList(kSmallRoot, kSmallCount); });
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
