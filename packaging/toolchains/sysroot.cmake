# Builds for another machine against a root of that machine: what armhf.cmake and arm64.cmake have in common. Debian,
# Yocto and Buildroot roots differ in where their libraries lie, and in whether their Qt brings programs for the
# building machine along.
#
# Each of these is a cache variable (-DNAME=VALUE); all but the last may stand in the environment instead:
#   CANBUS_SYSROOT       the root of the target, with Qt 5's development files. Nothing is written there
#   CANBUS_CROSS_PREFIX  what stands before g++ in the name of the cross compiler, with or without a path
#   CANBUS_HOST_QT_BIN   the folder of moc and rcc that run on the building machine, where they are not found
#   CANBUS_QEMU          the emulator that runs the tests; empty for none
# Further flags of the target's, such as -mcpu, are CMake's own CMAKE_CXX_FLAGS.

# The compiler checks of CMake read this file again, in projects of their own: they have to be told.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES CANBUS_SYSROOT CANBUS_CROSS_PREFIX CANBUS_HOST_QT_BIN CANBUS_QEMU)

foreach(setting CANBUS_SYSROOT CANBUS_CROSS_PREFIX CANBUS_HOST_QT_BIN)
  if(NOT ${setting})
    set(${setting} "$ENV{${setting}}")
  endif()
endforeach()

if(NOT CANBUS_SYSROOT)
  message(FATAL_ERROR
    "CANBUS_SYSROOT is not set: name the folder of a root of the target with Qt 5's development files, by "
    "-DCANBUS_SYSROOT=FOLDER or in the environment")
endif()
get_filename_component(CANBUS_SYSROOT "${CANBUS_SYSROOT}" ABSOLUTE)
set(CANBUS_SYSROOT "${CANBUS_SYSROOT}" CACHE PATH "The root of the target, with Qt 5's development files")
if(NOT IS_DIRECTORY "${CANBUS_SYSROOT}")
  message(FATAL_ERROR "CANBUS_SYSROOT is \"${CANBUS_SYSROOT}\", and there is no such folder")
endif()

# --- the compiler ---

if(NOT CANBUS_CROSS_PREFIX)
  set(CANBUS_CROSS_PREFIX "${canbus_default_cross_prefix}")
endif()
set(CANBUS_CROSS_PREFIX "${CANBUS_CROSS_PREFIX}" CACHE STRING "What stands before g++ in the cross compiler's name")
find_program(CANBUS_CROSS_CXX "${CANBUS_CROSS_PREFIX}g++" NO_CMAKE_FIND_ROOT_PATH)
mark_as_advanced(CANBUS_CROSS_CXX)
if(NOT CANBUS_CROSS_CXX)
  message(FATAL_ERROR
    "there is no compiler ${CANBUS_CROSS_PREFIX}g++: install it, or name another by -DCANBUS_CROSS_PREFIX=PREFIX")
endif()

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_CXX_COMPILER "${CANBUS_CROSS_CXX}")
set(CMAKE_SYSROOT "${CANBUS_SYSROOT}")
# What the usual -DCMAKE_PREFIX_PATH names is for the target too, wherever it lies.
set(CMAKE_FIND_ROOT_PATH "${CANBUS_SYSROOT}" ${CMAKE_PREFIX_PATH})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# --- where the root has its libraries ---

# Debian has them in a folder for each kind of machine, which its compilers know by name; others do not.
execute_process(COMMAND "${CANBUS_CROSS_CXX}" -print-multiarch
  OUTPUT_VARIABLE canbus_multiarch OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
if(canbus_multiarch AND IS_DIRECTORY "${CANBUS_SYSROOT}/usr/lib/${canbus_multiarch}")
  set(CMAKE_LIBRARY_ARCHITECTURE "${canbus_multiarch}")
endif()

set(canbus_has_qt FALSE)
foreach(folder "lib/${CMAKE_LIBRARY_ARCHITECTURE}" lib64 lib)
  if(EXISTS "${CANBUS_SYSROOT}/usr/${folder}/cmake/Qt5Core/Qt5CoreConfig.cmake")
    set(canbus_has_qt TRUE)
  endif()
  # For the libraries that the libraries need.
  foreach(place "${folder}" "usr/${folder}")
    if(IS_DIRECTORY "${CANBUS_SYSROOT}/${place}")
      foreach(linked EXE SHARED MODULE)
        string(APPEND CMAKE_${linked}_LINKER_FLAGS_INIT " -Wl,-rpath-link,${CANBUS_SYSROOT}/${place}")
      endforeach()
    endif()
  endforeach()
endforeach()
# A Qt of its own place (/opt, say) is named by the usual -DCMAKE_PREFIX_PATH or -DQt5_DIR.
if(NOT canbus_has_qt AND NOT CMAKE_PREFIX_PATH AND NOT Qt5_DIR)
  message(FATAL_ERROR
    "CANBUS_SYSROOT is \"${CANBUS_SYSROOT}\", which holds no Qt 5 for ${CANBUS_CROSS_PREFIX}g++: there is no "
    "cmake/Qt5Core in its usr/lib/${canbus_multiarch}, usr/lib64 or usr/lib. On Debian the root takes qtbase5-dev "
    "and libqt5serialport5-dev; a Qt elsewhere in the root is named by -DCMAKE_PREFIX_PATH=FOLDER")
endif()

# --- Qt's programs of the build ---

# Qt's package in the root may name those of the root, which are programs of the target. Then the ones of the
# building machine take their place: Qt's package makes no target that is there already, and what moc writes is the
# same for each Qt 5.
find_program(canbus_root_moc moc NO_CACHE NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
  PATHS "${CANBUS_SYSROOT}/usr/lib/qt5/bin" "${CANBUS_SYSROOT}/usr/bin/qt5" "${CANBUS_SYSROOT}/usr/bin")
set(canbus_root_moc_status 0)
if(canbus_root_moc)
  execute_process(COMMAND "${canbus_root_moc}" -v RESULT_VARIABLE canbus_root_moc_status OUTPUT_QUIET ERROR_QUIET)
endif()
if(CANBUS_HOST_QT_BIN)
  set(canbus_qt_places PATHS "${CANBUS_HOST_QT_BIN}" NO_DEFAULT_PATH)
else()
  # Before the search path, where Debian has a chooser that may choose another Qt.
  set(canbus_qt_places HINTS /usr/lib/qt5/bin /usr/lib64/qt5/bin)
endif()
if(CANBUS_HOST_QT_BIN OR NOT canbus_root_moc_status EQUAL 0)
  foreach(tool moc rcc uic)
    string(TOUPPER ${tool} setting)
    find_program(CANBUS_HOST_${setting} NAMES ${tool} ${tool}-qt5 ${canbus_qt_places} NO_CMAKE_FIND_ROOT_PATH)
    mark_as_advanced(CANBUS_HOST_${setting})
    if(NOT CANBUS_HOST_${setting})
      message(FATAL_ERROR
        "there is no ${tool} of Qt 5 that runs on this machine: on Debian install qtbase5-dev-tools; elsewhere name the "
        "folder that holds moc, rcc and uic by -DCANBUS_HOST_QT_BIN=FOLDER")
    endif()
    if(NOT TARGET Qt5::${tool})
      add_executable(Qt5::${tool} IMPORTED)
      set_target_properties(Qt5::${tool} PROPERTIES IMPORTED_LOCATION "${CANBUS_HOST_${setting}}")
    endif()
  endforeach()
endif()

# --- what runs the tests ---

if(NOT DEFINED CANBUS_QEMU)
  find_program(CANBUS_QEMU ${canbus_emulator_name} NO_CMAKE_FIND_ROOT_PATH)
endif()
if(CANBUS_QEMU)
  set(CMAKE_CROSSCOMPILING_EMULATOR "${CANBUS_QEMU};-L;${CANBUS_SYSROOT}")
endif()
