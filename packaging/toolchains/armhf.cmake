# 32-bit ARM with hard float. What can be set is told in sysroot.cmake.
set(CMAKE_SYSTEM_PROCESSOR arm)
set(canbus_default_cross_prefix arm-linux-gnueabihf-)
set(canbus_emulator_name qemu-arm)
include("${CMAKE_CURRENT_LIST_DIR}/sysroot.cmake")
# What gcc notes of each call that its version 6 compiled otherwise is news to nobody.
string(APPEND CMAKE_CXX_FLAGS_INIT " -Wno-psabi")
