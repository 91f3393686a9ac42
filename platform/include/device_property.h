/// @file
/// The platform's device properties.
#ifndef DEVICE_PROPERTY_H
#define DEVICE_PROPERTY_H

#ifdef __cplusplus
extern "C" {
#endif

/// Sets a property of the device. The library calls it with 17, 8, 0, 0 once for every tree that it makes.
/// @return ignored by the library.
int device_set_property(int property, int value, int arg1, int arg2);

#ifdef __cplusplus
}
#endif

#endif
