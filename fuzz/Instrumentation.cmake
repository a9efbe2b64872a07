# What the fuzz targets need of everything that they run: coverage for the fuzzer, and sanitizers that end
# the process at the first finding.
include(CheckCXXSourceCompiles)
set(CMAKE_REQUIRED_FLAGS -fsanitize=fuzzer)
check_cxx_source_compiles(
  "#include <cstddef>
   #include <cstdint>
   extern \"C\" int LLVMFuzzerTestOneInput(const std::uint8_t *, std::size_t) { return 0; }"
  CANBUS_COMPILER_HAS_LIBFUZZER)
unset(CMAKE_REQUIRED_FLAGS)
if(NOT CANBUS_COMPILER_HAS_LIBFUZZER)
  message(FATAL_ERROR
    "CANBUS_BUILD_FUZZ is ON and ${CMAKE_CXX_COMPILER} has no libFuzzer: take clang, for example "
    "-DCMAKE_CXX_COMPILER=clang++-14, in a build folder of its own")
endif()
if(CANBUS_SANITIZE)
  message(FATAL_ERROR
    "CANBUS_BUILD_FUZZ is ON and CANBUS_SANITIZE is \"${CANBUS_SANITIZE}\": the fuzz targets bring their own "
    "sanitizers, so leave CANBUS_SANITIZE empty")
endif()
# No tracing of comparisons: nearly all are those of the sanitizers' own checks, and they cost a fifth of the
# time. Qt's assertions find what the sanitizers do not: an index within the memory but behind the list's end.
add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all
  -fno-sanitize-coverage=trace-cmp,trace-div,trace-gep
  "-fsanitize-ignorelist=${CMAKE_CURRENT_LIST_DIR}/ignored.txt" -fno-omit-frame-pointer -gline-tables-only)
add_compile_definitions(QT_FORCE_ASSERTS)
add_link_options(-fsanitize=address,undefined)
