# How the tests run in a build with the thread sanitizer (tests/races/run.sh makes it).
set(CANBUS_THREAD_QT "" CACHE PATH "A Qt that is built with the thread sanitizer, for the tests to run on")
set(CANBUS_RACES_FOLDER ${CMAKE_CURRENT_LIST_DIR})

add_custom_target(tests_with_threads)

# canbus_report_races_of(NAME): each report of the test, and of the programs that it starts, goes into a file
# reports/NAME.PROCESS of the build folder. The history is the longest there is: both sides of a race have stacks.
function(canbus_report_races_of name)
  set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT
    "LD_LIBRARY_PATH=${CANBUS_THREAD_QT}/lib"
    "TSAN_OPTIONS=include=${CANBUS_RACES_FOLDER}/options:log_path=${PROJECT_BINARY_DIR}/reports/${name}")
endfunction()

# canbus_watch_for_races(NAME SOURCES...)
function(canbus_watch_for_races name)
  canbus_report_races_of(${name})

  # The tests that make threads name them, or a rig that has one; those of the commands, which have theirs, are few.
  foreach(source IN LISTS ARGN)
    file(STRINGS ${source} mentions REGEX "QThread|std::thread|PlayerRig|onAnotherThread" LIMIT_COUNT 1)
    if(mentions OR name MATCHES "^tst_e2e_(commands|ends)$")
      set_property(TEST ${name} PROPERTY LABELS threads)
      add_dependencies(tests_with_threads ${name})
    endif()
  endforeach()
  if(CANBUS_PLANT_RACES AND name IN_LIST CANBUS_TESTS_WITH_PLANTED_RACES)
    canbus_plant_races_in(${name} ${ARGN})
  endif()
endfunction()

if(NOT CANBUS_PLANT_RACES)
  return()
endif()

# Those that have two threads meet at each of the locks that the library lacks then.
set(CANBUS_TESTS_WITH_PLANTED_RACES
  tst_canbusdatamap
  tst_linkhealth_threads
  tst_serialport_transfer
  tst_velcanbusprotocol_threads
)
add_custom_target(tests_with_planted_races)

get_target_property(sources canbusservice_objects SOURCES)
list(FILTER sources INCLUDE REGEX "\\.cpp$")
list(TRANSFORM sources PREPEND ${PROJECT_SOURCE_DIR}/src/)
add_library(canbusservice_planted STATIC EXCLUDE_FROM_ALL ${sources})
target_compile_definitions(canbusservice_planted PUBLIC CANBUS_PLANT_RACES)
target_include_directories(canbusservice_planted PUBLIC
  $<TARGET_PROPERTY:canbusservice_static,INTERFACE_INCLUDE_DIRECTORIES>)
target_link_libraries(canbusservice_planted PUBLIC hostsdk Qt5::Core Qt5::SerialPort)
canbus_compile_options(canbusservice_planted)

# canbus_plant_races_in(NAME SOURCES...): the same test on that library is NAME_planted.
function(canbus_plant_races_in name)
  set(planted ${name}_planted)
  add_executable(${planted} EXCLUDE_FROM_ALL ${ARGN})
  target_link_libraries(${planted} PRIVATE canbusservice_planted Qt5::Test)
  target_include_directories(${planted} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
  set_target_properties(${planted} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/tests")
  add_dependencies(tests_with_planted_races ${planted})
  add_test(NAME ${planted} COMMAND ${planted})
  # What two threads have broken may never end.
  set_tests_properties(${planted} PROPERTIES LABELS planted TIMEOUT 60)
  canbus_report_races_of(${planted})
endfunction()
