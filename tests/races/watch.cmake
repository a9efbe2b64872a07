# How the tests run in a build with the thread sanitizer (tests/races/run.sh makes it).
set(CANBUS_THREAD_QT "" CACHE PATH "A Qt that is built with the thread sanitizer, for the tests to run on")

add_custom_target(tests_with_threads)

# canbus_watch_for_races(NAME SOURCES...): each report of the test, and of the programs that it starts, goes
# into a file reports/NAME.PROCESS of the build folder.
function(canbus_watch_for_races name)
  set(options
    exitcode=66
    halt_on_error=0
    report_thread_leaks=1
    detect_deadlocks=1
    second_deadlock_stack=1
    history_size=7 # the longest there is: both sides of a race have their stacks
    external_symbolizer_path=/usr/bin/llvm-symbolizer-14
    log_path=${PROJECT_BINARY_DIR}/reports/${name}
  )
  list(JOIN options ":" options)
  set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT
    "LD_LIBRARY_PATH=${CANBUS_THREAD_QT}/lib" "TSAN_OPTIONS=${options}")
  if(CANBUS_PLANT_RACES)
    set_property(TEST ${name} PROPERTY TIMEOUT 60) # what two threads have broken may never end
  endif()

  # The tests that make threads name them, or a rig that has one; those of the commands, which have theirs, are few.
  foreach(source IN LISTS ARGN)
    file(STRINGS ${source} mentions REGEX "QThread|std::thread|PlayerRig" LIMIT_COUNT 1)
    if(mentions OR name MATCHES "^tst_e2e_(commands|ends)$")
      set_property(TEST ${name} PROPERTY LABELS threads)
      add_dependencies(tests_with_threads ${name})
    endif()
  endforeach()
endfunction()
