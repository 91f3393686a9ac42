// FullFolder: two storage roots on one card, "small" with a folder of 1,000 pictures and "large" with one of 9,999,
// which is all that the numbers of a folder allow. Making them takes the kernel minutes, so scripts/card-tests keeps
// the card and every test starts from it. One thread.
#ifndef TESTS_CARDS_FULL_FOLDER_H
#define TESTS_CARDS_FULL_FOLDER_H

#include <ctime>

namespace dcftest {

inline constexpr char kSmallRoot[] = "/card/small";
inline constexpr char kLargeRoot[] = "/card/large";
inline constexpr char kFullFolder[] = "100PHOTO";
inline constexpr int kSmallCount = 1000;
inline constexpr int kLargeCount = 9999;

/// The time of a picture, which every card can hold.
constexpr std::time_t TimeOf(int fileNumber) {
    return 1000000000 + 2 * static_cast<std::time_t>(fileNumber);
}

} // namespace dcftest

#endif
