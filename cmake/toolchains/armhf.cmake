# 32-bit Arm with Debian's cross compiler (g++-arm-linux-gnueabihf). Its programs run on this machine where qemu-user or
# qemu-user-static is installed.
find_program(DCF_EMULATOR_armhf NAMES qemu-arm qemu-arm-static)
if(DCF_EMULATOR_armhf)
  set(DEVICE_EMULATOR "${DCF_EMULATOR_armhf};-L;/usr/arm-linux-gnueabihf" CACHE STRING "")
endif()
set(DEVICE_PREFIX "arm-linux-gnueabihf-" CACHE STRING "")
set(DEVICE_PROCESSOR "arm" CACHE STRING "")
include(${CMAKE_CURRENT_LIST_DIR}/device.cmake)
