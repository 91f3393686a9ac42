// The local date for date-made names. Called by CSFileList; uses localtime, so by one thread at a time.
#ifndef LOCAL_DATE_H
#define LOCAL_DATE_H

#include <cstdint>
#include <ctime>

namespace kelp {

struct LocalDate {
    std::uint16_t year;
    std::uint16_t month; // 1 to 12
    std::uint16_t day;
    std::uint16_t hour;
    std::uint16_t minute;
    std::uint16_t second;
};

/// The present local date; the first day of 1900, 1:01:01, when the clock cannot be converted.
inline LocalDate ReadLocalDate() {
    constexpr int kFirstYear = 1900;
    const std::time_t now = std::time(nullptr);
    const std::tm* local = std::localtime(&now);
    if (local == nullptr) {
        return {kFirstYear, 1, 1, 1, 1, 1};
    }
    const auto narrow = [](int value) { return static_cast<std::uint16_t>(value); };
    return {narrow(local->tm_year + kFirstYear),
            narrow(local->tm_mon + 1),
            narrow(local->tm_mday),
            narrow(local->tm_hour),
            narrow(local->tm_min),
            narrow(local->tm_sec)};
}

} // namespace kelp

#endif
