# 64-bit ARM. What can be set is told in sysroot.cmake.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(canbus_default_cross_prefix aarch64-linux-gnu-)
set(canbus_emulator_name qemu-aarch64)
include("${CMAKE_CURRENT_LIST_DIR}/sysroot.cmake")
