// The result codes of the operations, by name. Successful commands give kSuccess; counts and positions are 0 or more.
#ifndef RESULTS_H
#define RESULTS_H

namespace kelp {

constexpr int kSuccess = 0;
constexpr int kFailure = -1;  // no tree, an empty list, the end of the list, a refused request
constexpr int kNotFound = -1; // a path whose directory is not in the list
constexpr int kNoPath = -2;
constexpr int kTooLong = -2;
constexpr int kNoItem = -3;
constexpr int kNoTree = -6;
constexpr int kNoType = -200;
constexpr int kNumbersUsedUp = -9999;
constexpr int kRegistered = 1;

} // namespace kelp

#endif
