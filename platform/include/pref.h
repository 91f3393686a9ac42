/// @file
/// The platform's preference service: integers that outlive the process.
#ifndef PREF_H
#define PREF_H

#ifdef __cplusplus
extern "C" {
#endif

/// Reads a value. The library reads group 3, key 512: the series value.
/// @return the value; what a value that was never stored gives is the platform's choice (0 on a workstation).
long pref_get_long(int group, int key);

/// Stores a value durably.
/// @return the platform's result, 0 for success by convention; the library passes it on unchanged.
int pref_set_long(int group, int key, long value);

#ifdef __cplusplus
}
#endif

#endif
