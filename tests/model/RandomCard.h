// Random cards for the model tests: made from a seed alone, with everything that a card in the field may hold: empty
// and doubled directories, "Camera", companions, odd names, protected files.
#ifndef TESTS_MODEL_RANDOM_CARD_H
#define TESTS_MODEL_RANDOM_CARD_H

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "Card.h"

namespace dcftest {

class Random {
public:
    explicit Random(std::uint32_t seed) : m_engine(seed) {}

    /// From 0 to below the limit, which is above 0.
    int Below(int limit) {
        return static_cast<int>(m_engine() % static_cast<std::uint32_t>(limit));
    }
    bool Chance(int percent) {
        return Below(100) < percent;
    }
    template <typename Value>
    const Value& Pick(const std::vector<Value>& values) {
        return values[static_cast<std::size_t>(Below(static_cast<int>(values.size())))];
    }
    std::string Letters(int count, const std::string& from);

private:
    std::mt19937 m_engine;
};

struct PlannedFile {
    std::string name;
    mode_t mode;
    std::uint32_t time;
};

struct PlannedDirectory {
    std::string name;
    bool isFolder; ///< Else a file where a folder is expected.
    std::vector<PlannedFile> files;
};

using CardPlan = std::vector<PlannedDirectory>;

/// No two files of a directory compare equal in its listing order, so that there is one right list.
CardPlan MakePlan(Random& random);
void WriteCard(Card& card, const CardPlan& plan);

} // namespace dcftest

#endif
