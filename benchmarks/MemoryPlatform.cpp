// What the benchmarks put in the place of the host platform layer's durable things: the program's definitions come
// before those of the shared libraries. Preferences live in memory, and a sync is counted.
#include <map>
#include <utility>

#include "BenchmarkCard.h"
#include "pref.h"

namespace {

int s_syncs = 0;

std::map<std::pair<int, int>, long>& Preferences() {
    static std::map<std::pair<int, int>, long> preferences;
    return preferences;
}

} // namespace

int dcfbench::Syncs() {
    return s_syncs;
}

extern "C" {

long pref_get_long(int group, int key) {
    const auto found = Preferences().find({group, key});
    return found == Preferences().end() ? 0 : found->second;
}

int pref_set_long(int group, int key, long value) {
    Preferences()[{group, key}] = value;
    return 0;
}

void sync() noexcept {
    ++s_syncs;
}
}
