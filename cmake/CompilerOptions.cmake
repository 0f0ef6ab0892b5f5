# Interface targets that every target of this project links: pos_options for the language and the arithmetic, and what
# it brings along, pos_warnings and pos_sanitizers.

add_library(pos_warnings INTERFACE)
target_compile_options(
  pos_warnings
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wshadow
            -Wconversion
            -Wsign-conversion
            -Wold-style-cast
            -Wnon-virtual-dtor
            -Woverloaded-virtual
            -Wdouble-promotion
            -Wformat=2
            $<$<BOOL:${POS_WARNINGS_AS_ERRORS}>:-Werror>)

add_library(pos_sanitizers INTERFACE)
if(POS_SANITIZE)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "The sanitizers need clang: use the preset \"asan\"")
  endif()
  # Lines are enough for a report. Coverage is for the fuzzing engine, which only the fuzzers themselves link.
  target_compile_options(pos_sanitizers INTERFACE -fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=all
                                                  -fno-omit-frame-pointer -g1)
  target_link_options(pos_sanitizers INTERFACE -fsanitize=address,undefined)
  target_compile_definitions(pos_sanitizers INTERFACE _GLIBCXX_ASSERTIONS)
endif()

add_library(pos_options INTERFACE)
target_compile_features(pos_options INTERFACE cxx_std_20)
# No fused arithmetic: the same input gives the same bits on every machine of an architecture.
target_compile_options(pos_options INTERFACE -ffp-contract=off $<$<BOOL:${POS_COVERAGE}>:--coverage>)
target_link_options(pos_options INTERFACE $<$<BOOL:${POS_COVERAGE}>:--coverage>)
target_link_libraries(pos_options INTERFACE pos_warnings pos_sanitizers)

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
