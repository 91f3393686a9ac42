// What every fuzz target shares: its entry, the way it tells a finding, and the card's place. A target is a program of
// its own: with libFuzzer, or with Replay.cpp, which feeds it the files of a corpus. One thread.
#ifndef TESTS_FUZZ_TARGET_H
#define TESTS_FUZZ_TARGET_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace dcffuzz {

/// Ends the process with a text unless the condition holds: that is a finding.
void Require(bool holds, const std::string& otherwise);

/// Once for each program, before anything else: cards in memory where that can be had, nothing on standard output,
/// files with the modes that are asked for.
void SetUpOnce();

/// The text with every byte outside of ASCII's visible ones as \xNN.
std::string Visible(const std::string& text);

/// An input as lines, at least one, without the bytes 0.
std::vector<std::string> Lines(const std::uint8_t* data, std::size_t size);

} // namespace dcffuzz

#endif
