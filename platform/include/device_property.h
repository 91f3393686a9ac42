/// @file
/// The platform's device properties.
#ifndef DEVICE_PROPERTY_H
#define DEVICE_PROPERTY_H

#ifdef __cplusplus
extern "C" {
#endif

/// Sets a property of the device. The library calls it with 17, 8, 0, 0 once for every tree that it makes, on the
/// thread that lists.
/// @param property which one; the library sets 17.
/// @param value its value; the library gives 8.
/// @param arg1 what the property needs besides; the library gives 0.
/// @param arg2 likewise.
/// @return ignored by the library.
int device_set_property(int property, int value, int arg1, int arg2);

#ifdef __cplusplus
}
#endif

#endif
