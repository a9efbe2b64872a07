# Builds for ARM hard float with Debian's cross compiler, against the sysroot that CANBUS_SYSROOT names: as a
# cache variable (-DCANBUS_SYSROOT=...), or in the environment. Tests run in qemu's user mode.
#
# A root is made by
#   mmdebstrap --variant=extract --architectures=armhf --components=main \
#     --include=libc6-dev,libstdc++-12-dev,linux-libc-dev,qtbase5-dev,libqt5serialport5-dev,qt5-qmake \
#     bookworm FOLDER
# and then its absolute links are made relative to it, moc, rcc and uic in usr/lib/qt5/bin become links to the
# programs of the building machine, and its dev folder is removed.

# The compiler checks of CMake read this file again, in projects of their own: they have to be told.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CANBUS_SYSROOT)
if(NOT CANBUS_SYSROOT)
  set(CANBUS_SYSROOT "$ENV{CANBUS_SYSROOT}")
endif()
if(NOT CANBUS_SYSROOT)
  message(FATAL_ERROR
    "CANBUS_SYSROOT is not set: name the folder of an armhf root with Qt 5's development files, by "
    "-DCANBUS_SYSROOT=FOLDER or in the environment")
endif()
get_filename_component(CANBUS_SYSROOT "${CANBUS_SYSROOT}" ABSOLUTE)
set(CANBUS_SYSROOT "${CANBUS_SYSROOT}" CACHE PATH "The armhf root with Qt 5's development files")
if(NOT EXISTS "${CANBUS_SYSROOT}/usr/lib/arm-linux-gnueabihf/cmake/Qt5Core/Qt5CoreConfig.cmake")
  message(FATAL_ERROR
    "CANBUS_SYSROOT is \"${CANBUS_SYSROOT}\", which holds no Qt 5 for arm-linux-gnueabihf: it takes an armhf "
    "root with qtbase5-dev and libqt5serialport5-dev in it")
endif()

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(CMAKE_SYSROOT "${CANBUS_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH "${CANBUS_SYSROOT}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# For the libraries that the libraries need.
foreach(linked EXE SHARED MODULE)
  string(APPEND CMAKE_${linked}_LINKER_FLAGS_INIT
    " -Wl,-rpath-link,${CANBUS_SYSROOT}/lib/arm-linux-gnueabihf"
    " -Wl,-rpath-link,${CANBUS_SYSROOT}/usr/lib/arm-linux-gnueabihf")
endforeach()

find_program(CANBUS_QEMU qemu-arm PATHS /usr/bin NO_CMAKE_FIND_ROOT_PATH)
if(CANBUS_QEMU)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${CANBUS_QEMU};-L;${CANBUS_SYSROOT}")
endif()
