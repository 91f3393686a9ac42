// Seed: where random tests begin. A run prints its seed on failure; DCF_TEST_SEED takes it back.
#ifndef TESTS_SUPPORT_SEED_H
#define TESTS_SUPPORT_SEED_H

#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>

namespace dcftest {

class Seed {
public:
    Seed() {
        const char* given = std::getenv("DCF_TEST_SEED");
        m_value = given != nullptr ? static_cast<std::uint32_t>(std::stoul(given)) : std::random_device{}();
        m_engine.seed(m_value);
    }

    std::mt19937& Engine() {
        return m_engine;
    }
    /// Uniform in [low, high].
    int Pick(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(m_engine);
    }
    bool Chance(double probability) {
        return std::bernoulli_distribution(probability)(m_engine);
    }
    char PickFrom(const std::string& characters) {
        return characters[static_cast<std::size_t>(Pick(0, static_cast<int>(characters.size()) - 1))];
    }
    /// For SCOPED_TRACE.
    std::string Text() const {
        return "run again with DCF_TEST_SEED=" + std::to_string(m_value);
    }

private:
    std::uint32_t m_value = 0;
    std::mt19937 m_engine;
};

} // namespace dcftest

#endif
