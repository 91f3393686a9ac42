// The host layer's library exports the platform interfaces and nothing else.
#include <gtest/gtest.h>

#include <cstdio>
#include <set>
#include <string>

namespace {

// The demangled names of the dynamic symbols that the library defines.
std::set<std::string> ExportedNames() {
    std::set<std::string> names;
    FILE* listing = ::popen(DCF_NM " --dynamic --defined-only --demangle " DCF_HOST_LIBRARY, "r");
    if (listing == nullptr) {
        return names;
    }
    char line[1024];
    while (std::fgets(line, sizeof line, listing) != nullptr) { // "0000000000001234 T name"
        std::string name(line);
        name.erase(name.find_last_not_of('\n') + 1);
        names.insert(name.substr(name.find(' ') + 3));
    }
    ::pclose(listing);
    return names;
}

TEST(Exports, AreThePlatformInterfacesAndNothingElse) {
    const std::set<std::string> expected = {
        "__dlog_print",
        "device_set_property",
        "pref_get_long",
        "pref_set_long",
        "vell::ScopedLock::ScopedLock(pthread_mutex_t*)",
        "vell::ScopedLock::~ScopedLock()",
        "vell_print_backtrace",
    };
    EXPECT_EQ(ExportedNames(), expected);
}

} // namespace
