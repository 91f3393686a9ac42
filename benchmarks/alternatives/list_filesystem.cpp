// What one would write with std::filesystem to list the pictures of a card: time and path of each. The order is the
// card's.
#include <cstdio>
#include <filesystem>

int main(int argc, char** argv) {
    namespace fs = std::filesystem;
    if (argc != 2) {
        return 2;
    }
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(argv[1])) {
        if (entry.path().extension() == ".JPG") {
            const auto time = entry.last_write_time().time_since_epoch();
            std::printf("%lld %s\n",
                        static_cast<long long>(std::chrono::duration_cast<std::chrono::seconds>(time).count()),
                        entry.path().c_str());
        }
    }
    return 0;
}
