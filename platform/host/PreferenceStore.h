// The preference store of a workstation: one SQLite file, shared by all processes of a user. Called by Preferences.cpp,
// which lets one thread of a process in at a time.
#ifndef PLATFORM_HOST_PREFERENCE_STORE_H
#define PLATFORM_HOST_PREFERENCE_STORE_H

#include <stdexcept>
#include <string>

namespace host {

/// Why the store cannot be used: a text for a person, which names the cause and the cure.
class StoreError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where the store is: DCF_PREFERENCES, or else "dcffilelist/preferences.sqlite" in the XDG state folder. The path
/// begins with "/" or "./". Throws StoreError where neither can be had.
std::string PreferencePath();

/// Makes the folders that lead to a file, for their owner alone, and has every one of them on the disk when it returns.
void MakeFoldersAbove(const std::string& path);

/// The value stored, 0 when there is none or no store. Makes nothing; changes nothing, but for taking back a write that
/// did not come to its end.
long ReadPreference(const std::string& path, int group, int key);

/// Stores a value and returns when it would survive a power cut. Makes the store if there is none.
void WritePreference(const std::string& path, int group, int key, long value);

} // namespace host

#endif
