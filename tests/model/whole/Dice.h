// Dice: the random choices of one round, all from one number.
#ifndef TESTS_MODEL_WHOLE_DICE_H
#define TESTS_MODEL_WHOLE_DICE_H

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

namespace dcftest {

class Dice {
public:
    explicit Dice(std::uint32_t seed) : m_engine(seed) {}

    /// Uniform in [low, high].
    int Pick(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(m_engine);
    }
    bool Chance(int percent) {
        return Pick(1, 100) <= percent;
    }
    template <typename Value>
    const Value& Of(const std::vector<Value>& values) {
        return values[static_cast<std::size_t>(Pick(0, static_cast<int>(values.size()) - 1))];
    }

private:
    std::mt19937 m_engine;
};

} // namespace dcftest

#endif
