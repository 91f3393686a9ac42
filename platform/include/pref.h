/// @file
/// The platform's preference service: integers that outlive the process.
#ifndef PREF_H
#define PREF_H

#ifdef __cplusplus
extern "C" {
#endif

/// Reads a value. The library reads group 3, key 512: the series value, in series mode, whenever it computes the
/// number of the newest file. Called on the controlling thread.
/// @param group the group of the preference.
/// @param key its key in the group.
/// @return the value; what a value that was never stored gives is the platform's choice (0 on a workstation).
long pref_get_long(int group, int key);

/// Stores a value durably. The library stores the series value with each new name, 0 when it renumbers, and in
/// series mode the card's own newest number where the series has come to its end. Called on the controlling thread.
/// @param group the group of the preference.
/// @param key its key in the group.
/// @param value any value.
/// @return the platform's result, 0 for success by convention; the library passes it on unchanged.
int pref_set_long(int group, int key, long value);

#ifdef __cplusplus
}
#endif

#endif
