# What every target of this project is compiled with: canbus_compile_options(TARGET) applies it.

# Log lines and assertions name a source file by its path in the project, whatever folder it was built in.
add_compile_options("-fmacro-prefix-map=${PROJECT_SOURCE_DIR}/=")

if(CANBUS_SANITIZE)
  if(NOT CANBUS_SANITIZE MATCHES "^(address|undefined|thread)$")
    message(FATAL_ERROR
      "CANBUS_SANITIZE is \"${CANBUS_SANITIZE}\": it takes address, undefined or thread, or nothing")
  endif()
  add_compile_options(-fsanitize=${CANBUS_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${CANBUS_SANITIZE})
endif()

if(CANBUS_PLANT_RACES AND NOT CANBUS_SANITIZE STREQUAL "thread")
  message(FATAL_ERROR
    "CANBUS_PLANT_RACES is ON and CANBUS_SANITIZE is \"${CANBUS_SANITIZE}\": races are planted for the thread "
    "sanitizer alone")
endif()

if(CANBUS_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

function(canbus_compile_options target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
  if(CANBUS_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()
