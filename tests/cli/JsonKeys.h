// The keys of a JSON object, in its order where the type keeps one.
#ifndef TESTS_CLI_JSON_KEYS_H
#define TESTS_CLI_JSON_KEYS_H

#include "Cli.h"

namespace clitest {

template <typename Json>
Words Keys(const Json& json) {
    Words keys;
    for (const auto& [key, value] : json.items()) {
        keys.push_back(key);
    }
    return keys;
}

} // namespace clitest

#endif
