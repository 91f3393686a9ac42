# A toolchain file to start from, for a 32-bit ARM device with Debian's cross compiler (g++-arm-linux-gnueabihf):
#
#   cmake -S . -B build-device --toolchain cmake/toolchain-example.cmake -DDCF_HOST_PLATFORM=OFF
#
# For another device: -DDEVICE_PREFIX=... (what stands before "g++" in the name of its compiler, with or without a
# folder), -DDEVICE_SYSROOT=... (a copy of its file system; empty for what the compiler brings),
# -DDEVICE_PROCESSOR=..., or a copy of this file.
set(DEVICE_PREFIX "arm-linux-gnueabihf-" CACHE STRING "What stands before g++ in the name of the device's compiler")
set(DEVICE_SYSROOT "" CACHE PATH "Copy of the device's file system; empty for what the compiler brings")
set(DEVICE_PROCESSOR "arm" CACHE STRING "The device's processor, as uname -m names it there")
# CMake tries the compiler in small projects of their own, which must know these, too.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES DEVICE_PREFIX DEVICE_SYSROOT DEVICE_PROCESSOR)

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${DEVICE_PROCESSOR})
set(CMAKE_CXX_COMPILER ${DEVICE_PREFIX}g++)
if(DEVICE_SYSROOT)
  set(CMAKE_SYSROOT ${DEVICE_SYSROOT})
endif()

# Programs that run during the build are this machine's; everything else is the device's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
