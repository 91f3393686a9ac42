// The series value; see the header.
#include "SeriesStore.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdio>

#include "Phrases.h"
#include "Text.h"
#include "pref.h"

namespace dcfctl {
namespace {

constexpr int kGroup = 3;
constexpr int kKey = 512;

/// Collects what is written to standard error while it exists.
class ErrorCapture {
public:
    ErrorCapture() : m_real(dup(STDERR_FILENO)), m_file(memfd_create("dcfctl-said", MFD_CLOEXEC)) {
        if (m_real >= 0 && m_file >= 0) {
            (void)dup2(m_file, STDERR_FILENO); // both are open
        }
    }
    ErrorCapture(const ErrorCapture&) = delete;
    ErrorCapture& operator=(const ErrorCapture&) = delete;
    ~ErrorCapture() {
        if (m_real >= 0) {
            (void)dup2(m_real, STDERR_FILENO); // as above
            close(m_real);
        }
        if (m_file >= 0) {
            close(m_file);
        }
    }

    /// The first line of it, without its end.
    [[nodiscard]] std::string Line() const {
        std::array<char, 1024> text = {};
        const ssize_t size = m_file < 0 ? 0 : pread(m_file, text.data(), text.size(), 0);
        const std::string said(text.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
        return said.substr(0, said.find('\n'));
    }

private:
    int m_real;
    int m_file;
};

Finding Trouble(const char* what, const std::string& said) {
    return Incomplete("series-store", std::string("the series value could not be ") + what +
                                          (said.empty() ? "; look at the store that DCF_PREFERENCES names"
                                                        : " (" + Escaped(said) + ")"));
}

std::optional<long> Digits(const std::string& text) {
    const bool digits = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
    const auto number = digits ? WholeNumber(text) : std::nullopt;
    return number.has_value() && *number <= kLastIndex ? std::optional<long>(static_cast<long>(*number)) : std::nullopt;
}

} // namespace

std::variant<long, Finding> SeriesStore::Read() {
    const ErrorCapture capture;
    const long value = pref_get_long(kGroup, kKey);
    const std::string said = capture.Line();
    if (!said.empty()) {
        return Trouble("read", said);
    }
    return value;
}

std::optional<Finding> SeriesStore::Write(long value) {
    const ErrorCapture capture;
    if (pref_set_long(kGroup, kKey, value) == 0) {
        return std::nullopt;
    }
    return Trouble("stored", capture.Line());
}

std::optional<Finding> CheckStored(long expected) {
    const auto stored = SeriesStore::Read();
    if (const auto* finding = std::get_if<Finding>(&stored)) {
        return *finding;
    }
    const long value = std::get<long>(stored);
    if (value == expected) {
        return std::nullopt;
    }
    return Incomplete("series-not-stored", "the series value is " + SeriesText(value) + " and should be " +
                                               SeriesText(expected) + "; 'dcfctl series set " +
                                               std::to_string(expected) +
                                               "' stores it, or says why it cannot be stored");
}

std::optional<long> ReadIndex(const std::string& text) {
    const std::size_t dash = text.find('-');
    if (dash == std::string::npos) {
        return Digits(text);
    }
    const auto folder = Digits(text.substr(0, dash));
    const auto file = Digits(text.substr(dash + 1));
    constexpr long kLastFolder = 999;
    constexpr long kLastFile = 9999;
    if (!folder.has_value() || !file.has_value() || *folder > kLastFolder || *file > kLastFile) {
        return std::nullopt;
    }
    return *folder * kIndexPerFolder + *file;
}

} // namespace dcfctl
