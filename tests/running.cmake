# How tests are run, here or as programs of another machine.

# How many times longer they may take than where nothing slows them down.
set(CANBUS_TEST_PATIENCE 1)
if(CMAKE_CROSSCOMPILING OR CANBUS_SANITIZE STREQUAL "thread")
  set(CANBUS_TEST_PATIENCE 5)
endif()

# In a cross build ctest starts the tests in the emulator, and they start programs of the build there too, by a script:
# one word, which becomes the emulator's own process. What they build themselves is for the target as well.
set(CANBUS_TEST_ENVIRONMENT "")
if(CMAKE_CROSSCOMPILING)
  list(APPEND CANBUS_TEST_ENVIRONMENT
    "CMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}" "CANBUS_SYSROOT=${CMAKE_SYSROOT}")
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    list(JOIN CMAKE_CROSSCOMPILING_EMULATOR "' '" canbus_emulator_words)
    foreach(kind qml plugins)
      find_path(canbus_root_${kind} NAMES QtQuick.2 platforms NO_CACHE NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
        PATHS "${CMAKE_SYSROOT}/usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/qt5/${kind}" "${CMAKE_SYSROOT}/usr/lib/qt5/${kind}"
          "${CMAKE_SYSROOT}/usr/lib/${kind}" "${CMAKE_SYSROOT}/usr/${kind}")
    endforeach()
    configure_file("${CMAKE_CURRENT_LIST_DIR}/emulator.sh.in" "${PROJECT_BINARY_DIR}/emulator" @ONLY
      FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    set(CMAKE_CROSSCOMPILING_EMULATOR "${PROJECT_BINARY_DIR}/emulator")
    list(APPEND CANBUS_TEST_ENVIRONMENT "CANBUS_EMULATOR=${CMAKE_CROSSCOMPILING_EMULATOR}")
  else()
    message(WARNING "There is no emulator for the tests: they are built, and do not run here. On Debian it is in qemu-user")
  endif()
endif()
# Tests in Python are run by this machine's interpreter, which CMake takes for a program like the others.
find_package(Python3 3.9 REQUIRED COMPONENTS Interpreter)
set_target_properties(Python3::Interpreter PROPERTIES CROSSCOMPILING_EMULATOR "")

if(CANBUS_TEST_PATIENCE GREATER 1)
  # QtTest gives each function five minutes.
  math(EXPR canbus_function_limit_ms "300000 * ${CANBUS_TEST_PATIENCE}")
  list(APPEND CANBUS_TEST_ENVIRONMENT
    "QTEST_FUNCTION_TIMEOUT=${canbus_function_limit_ms}" "CANBUS_TEST_PATIENCE=${CANBUS_TEST_PATIENCE}")
endif()
if(CANBUS_SANITIZE STREQUAL "address")
  list(APPEND CANBUS_TEST_ENVIRONMENT
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/leaks.supp:print_suppressions=0")
endif()

# What a processor makes different shows in these first: the sign of char, the size of numbers, alignment.
# packaging/cross/cross.sh --short builds and runs them alone.
set(CANBUS_SHORT_CROSS_TESTS
  tst_bytes
  tst_framedecoder
  tst_frameformat
  tst_grouptexts
  tst_hostilepayloads
  tst_receivepath
  tst_recording
  tst_text
)
add_custom_target(short_cross_tests)

# canbus_run_test(NAME SECONDS [VARIABLE=VALUE...]): how each test that was added is run. So long may it take where
# nothing slows it down, and with these variables in its environment, which come after those of all tests.
function(canbus_run_test name seconds)
  math(EXPR limit "${seconds} * ${CANBUS_TEST_PATIENCE}")
  set_tests_properties(${name} PROPERTIES TIMEOUT ${limit})
  set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT ${CANBUS_TEST_ENVIRONMENT} ${ARGN})
  if(name IN_LIST CANBUS_SHORT_CROSS_TESTS)
    set_property(TEST ${name} APPEND PROPERTY LABELS short)
    add_dependencies(short_cross_tests ${name})
  endif()
endfunction()

# canbus_add_test_with(PROGRAM PACKAGE NAME COMMAND...): a test that is a script, and takes a program which not every
# machine has. It is looked for when the test runs: a missing one skips the test, or fails it where
# CANBUS_REQUIRE_PROGRAMS is set in the environment.
function(canbus_add_test_with program package name)
  add_test(NAME ${name}
    COMMAND "${PROJECT_SOURCE_DIR}/tests/programs/with_program.sh" "${program}" "${package}" ${ARGN})
  set_tests_properties(${name} PROPERTIES SKIP_RETURN_CODE 77)
endfunction()
