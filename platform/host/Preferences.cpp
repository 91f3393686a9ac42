// pref_get_long and pref_set_long for a workstation. A store that cannot be used costs one line on standard error per
// call; the library goes on without it. Any thread may call them.
#include "pref.h"

#include <unistd.h>

#include <exception>
#include <mutex>
#include <string>

#include "Line.h"
#include "PreferenceStore.h"

namespace {

// One thread at a time, see PreferenceStore.cpp. Other processes are kept apart by SQLite's locks.
std::mutex g_oneAtATime;

void Complain(const char* failed, int group, int key, const std::string& path, const char* cause) {
    host::Line line;
    line.Format("dcfplatform-host: preference %d/%d", group, key).Add(failed).Add("the store");
    if (!path.empty()) {
        line.Add(" \"").Add(path).Add("\"");
    }
    (void)line.Add(": ").Add(cause).WriteTo(STDERR_FILENO); // there is nowhere else to say it
}

// @return whether the access succeeded; nothing is thrown into the library.
template <typename Access>
bool Try(const char* failed, int group, int key, Access access) {
    std::string path;
    try {
        const std::lock_guard<std::mutex> lock(g_oneAtATime);
        path = host::PreferencePath();
        access(path);
        return true;
    } catch (const std::exception& error) {
        Complain(failed, group, key, path, error.what());
        return false;
    }
}

} // namespace

long pref_get_long(int group, int key) {
    long value = 0;
    (void)Try(" cannot be read from ", group, key,
              [&](const std::string& path) { value = host::ReadPreference(path, group, key); }); // value stays 0
    return value;
}

int pref_set_long(int group, int key, long value) {
    const bool stored = Try(" cannot be written to ", group, key,
                            [&](const std::string& path) { host::WritePreference(path, group, key, value); });
    return stored ? 0 : -1;
}
