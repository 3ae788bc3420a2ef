# Build options and the compiler flags that every target shares.

option(QUORVEL_BENCHMARKS "Build the benchmark programs" OFF)
option(QUORVEL_FUZZ "Build the programs that libFuzzer drives; needs clang" OFF)
option(QUORVEL_WHOLE_SUITES "Make one test of ctest of a suite, not of each case" OFF)
set(QUORVEL_SANITIZE "" CACHE STRING "Value for -fsanitize, for example address,undefined")

# The folder of the platform's definitions, beside the portable files of a folder.
set(QUORVEL_PLATFORM_DIR Posix)
if(WIN32)
  set(QUORVEL_PLATFORM_DIR Windows)
endif()

if(NOT MSVC)
  add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wformat=2 -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12, optimising, sees an overlap in "text" + std::string that is not there.
  add_compile_options(-Wno-restrict)
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  add_compile_options(-Wthread-safety -Wreserved-identifier -Wreserved-macro-identifier)
endif()

if(QUORVEL_SANITIZE)
  add_compile_options(-fsanitize=${QUORVEL_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${QUORVEL_SANITIZE})
  if(QUORVEL_SANITIZE MATCHES undefined AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # clang 14 cannot mark the functions that coroutines are made into for this check, which GCC lacks.
    add_compile_options(-fno-sanitize=function)
  endif()
endif()

# quorvel_spare_the_optimiser(): compiles what follows in a folder without optimisation where it is
# watched. To optimise what is watched of the libraries in there takes the compiler longer than all the
# tests run.
macro(quorvel_spare_the_optimiser)
  if(QUORVEL_SANITIZE)
    add_compile_options(-O0)
  endif()
endmacro()

# It links the test programs in a fraction of the time of the compilers' own linker. What is shipped is
# linked by that.
find_program(LLD_PROGRAM ld.lld)
if(LLD_PROGRAM AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  add_link_options(-fuse-ld=lld)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  # ccache has to be told that a precompiled header may stand for its text; what a source includes it
  # learns from the compiler's list for ninja, without a preprocessor's run of its own.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
      CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
      CCACHE_DEPEND=true ${CCACHE_PROGRAM})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    add_compile_options(-fpch-preprocess)
  elseif(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
  endif()
endif()

# What nearly every source includes, compiled once: reading it takes the compiler half of its time. A source
# includes what it needs all the same, and clang-tidy reads it without this.
set(QUORVEL_COMMON_HEADERS
  <algorithm> <array> <atomic> <chrono> <cstdint> <exception> <filesystem> <functional> <map> <memory> <optional>
  <set> <span> <string> <string_view> <system_error> <utility> <vector>)
