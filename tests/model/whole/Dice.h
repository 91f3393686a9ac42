// Dice: the random choices of one round, all from one number, or from given bytes.
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
    /// Choices that somebody else has made: each takes as many bytes as it needs. Behind the last byte every choice is
    /// the lowest.
    Dice(const std::uint8_t* bytes, std::size_t size) : m_given(true), m_bytes(bytes), m_left(size) {}

    /// No byte is left.
    bool Exhausted() const {
        return m_given && m_left == 0;
    }

    /// Uniform in [low, high].
    int Pick(int low, int high) {
        if (m_given) {
            return static_cast<int>(low + static_cast<std::int64_t>(Given(std::int64_t{high} - low + 1)));
        }
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
    /// A number below the bound.
    std::uint64_t Given(std::int64_t bound) {
        std::uint64_t value = 0;
        for (std::int64_t most = bound - 1; most > 0; most >>= 8U) {
            value = (value << 8U) | (m_left > 0 ? *m_bytes : 0U);
            m_bytes += m_left > 0 ? 1 : 0;
            m_left -= m_left > 0 ? 1 : 0;
        }
        return value % static_cast<std::uint64_t>(bound);
    }

    std::mt19937 m_engine;
    bool m_given = false;
    const std::uint8_t* m_bytes = nullptr;
    std::size_t m_left = 0;
};

} // namespace dcftest

#endif
