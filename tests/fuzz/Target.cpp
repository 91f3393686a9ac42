#include "Target.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

namespace dcffuzz {

void Require(bool holds, const std::string& otherwise) {
    if (!holds) {
        (void)std::fprintf(stderr, "FINDING: %s\n", otherwise.c_str());
        std::abort();
    }
}

void SetUpOnce() {
    static const bool done = [] {
        if (std::getenv("TMPDIR") == nullptr && ::access("/dev/shm", W_OK) == 0) {
            (void)::setenv("TMPDIR", "/dev/shm", 1);
        }
        Require(std::freopen("/dev/null", "w", stdout) != nullptr, "standard output cannot be put away");
        ::umask(022);
        return true;
    }();
    (void)done;
}

std::string Visible(const std::string& text) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string shown;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7f && c != '\\') {
            shown += c;
        } else {
            shown += {'\\', 'x', kDigits[byte >> 4U], kDigits[byte & 0xfU]};
        }
    }
    return shown;
}

std::vector<std::string> Lines(const std::uint8_t* data, std::size_t size) {
    std::vector<std::string> lines(1);
    for (std::size_t i = 0; i < size; ++i) {
        if (data[i] == '\n') {
            lines.emplace_back();
        } else if (data[i] != '\0') {
            lines.back() += static_cast<char>(data[i]);
        }
    }
    return lines;
}

} // namespace dcffuzz
