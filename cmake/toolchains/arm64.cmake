# 64-bit Arm with Debian's cross compiler (g++-aarch64-linux-gnu). Its programs run on this machine where qemu-user or
# qemu-user-static is installed.
find_program(DCF_EMULATOR_arm64 NAMES qemu-aarch64 qemu-aarch64-static)
if(DCF_EMULATOR_arm64)
  set(DEVICE_EMULATOR "${DCF_EMULATOR_arm64};-L;/usr/aarch64-linux-gnu" CACHE STRING "")
endif()
set(DEVICE_PREFIX "aarch64-linux-gnu-" CACHE STRING "")
set(DEVICE_PROCESSOR "aarch64" CACHE STRING "")
include(${CMAKE_CURRENT_LIST_DIR}/device.cmake)
