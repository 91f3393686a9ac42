# A toolchain file for any device on which Linux runs. Name its compiler:
#
#   cmake -S . -B build-device --toolchain cmake/toolchains/device.cmake -DDCF_HOST_PLATFORM=OFF
#       -DDEVICE_PREFIX=/opt/device/bin/arm-device-linux-gnueabi- -DDEVICE_SYSROOT=/opt/device/sysroot
#
# armhf.cmake and arm64.cmake beside it say that for Debian's cross compilers.
set(DEVICE_PREFIX "arm-linux-gnueabihf-" CACHE STRING "What stands before g++ in the name of the device's compiler")
set(DEVICE_SYSROOT "" CACHE PATH "Copy of the device's file system; empty for what the compiler brings")
set(DEVICE_PROCESSOR "arm" CACHE STRING "The device's processor, as uname -m names it there")
set(DEVICE_EMULATOR "" CACHE STRING "Command that runs the device's programs on this machine, as a list; empty for none")
# CMake tries the compiler in small projects of their own, which must know these, too.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES DEVICE_PREFIX DEVICE_SYSROOT DEVICE_PROCESSOR)

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ${DEVICE_PROCESSOR})
set(CMAKE_CXX_COMPILER ${DEVICE_PREFIX}g++)
if(DEVICE_SYSROOT)
  set(CMAKE_SYSROOT ${DEVICE_SYSROOT})
endif()
if(DEVICE_EMULATOR)
  set(CMAKE_CROSSCOMPILING_EMULATOR ${DEVICE_EMULATOR})
endif()

# Programs that run during the build are this machine's; everything else is the device's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
