// A run with DCF_TEST_LOCALE set is made under that locale: every test of the program then shows that the library does
// not depend on it. The time zone needs no help, it is the environment's.
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <locale>

// There with AddressSanitizer alone.
extern "C" {
__attribute__((weak)) void __lsan_disable();
__attribute__((weak)) void __lsan_enable();
}

namespace {

/// The C library does not release its copy of LOCPATH: no leak of ours.
class LeaksOfTheSystem {
public:
    LeaksOfTheSystem() {
        if (__lsan_disable != nullptr) {
            __lsan_disable();
        }
    }
    ~LeaksOfTheSystem() {
        if (__lsan_enable != nullptr) {
            __lsan_enable();
        }
    }
    LeaksOfTheSystem(const LeaksOfTheSystem&) = delete;
    LeaksOfTheSystem& operator=(const LeaksOfTheSystem&) = delete;
};

struct LocaleFromEnvironment {
    LocaleFromEnvironment() {
        const char* name = std::getenv("DCF_TEST_LOCALE");
        if (name == nullptr) {
            return;
        }
        const LeaksOfTheSystem accepted;
        if (std::setlocale(LC_ALL, name) == nullptr) {
            (void)std::fprintf(stderr, "the locale %s cannot be had\n", name);
            std::_Exit(EXIT_FAILURE);
        }
        std::locale::global(std::locale(name));
        // The system's own failure line would be translated, and the tests compare it.
        (void)std::setlocale(LC_MESSAGES, "C");
    }
};

const LocaleFromEnvironment g_locale;

} // namespace
