// Runs of numbers; see the header.
#include "NumberMap.h"

#include <array>
#include <cstddef>
#include <cstdio>

#include "Phrases.h"

namespace dcfctl {
namespace {

std::string Padded(int number, int digits) {
    std::array<char, 16> text = {};
    std::snprintf(text.data(), text.size(), "%0*d", digits, number);
    return text.data();
}

} // namespace

std::vector<NumberRange> UsedRuns(const std::set<int>& numbers, NumberRange within) {
    std::vector<NumberRange> runs;
    for (auto it = numbers.lower_bound(within.first); it != numbers.end() && *it <= within.last; ++it) {
        if (!runs.empty() && runs.back().last + 1 == *it) {
            runs.back().last = *it;
        } else {
            runs.push_back({*it, *it});
        }
    }
    return runs;
}

std::vector<NumberRange> FreeRuns(const std::vector<NumberRange>& used, NumberRange within) {
    std::vector<NumberRange> runs;
    int next = within.first;
    for (const NumberRange& run : used) {
        if (run.first > next) {
            runs.push_back({next, run.first - 1});
        }
        next = run.last + 1;
    }
    if (next <= within.last) {
        runs.push_back({next, within.last});
    }
    return runs;
}

int CountOf(const std::vector<NumberRange>& runs) {
    int count = 0;
    for (const NumberRange& run : runs) {
        count += run.Count();
    }
    return count;
}

std::string RunsText(const std::vector<NumberRange>& runs, int digits) {
    constexpr std::size_t kShown = 12;
    std::string text;
    for (std::size_t i = 0; i < runs.size() && i < kShown; ++i) {
        text += (i == 0 ? "" : ", ") + Padded(runs[i].first, digits);
        if (runs[i].last > runs[i].first) {
            text += "\u2013" + Padded(runs[i].last, digits);
        }
    }
    if (runs.size() > kShown) {
        text += " and " + CountText(runs.size() - kShown, "more run", "more runs");
    }
    return runs.empty() ? "none" : text;
}

} // namespace dcfctl
