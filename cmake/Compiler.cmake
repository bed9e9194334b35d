# How everything here is compiled.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)  # for clang-tidy

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Release or Debug" FORCE)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2")

# A product and a sum are rounded each on its own on every processor: firmware versions are compared
# to the last bit.
add_compile_options(-ffp-contract=off)
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)

option(FERNWICK_SANITIZE "Address, undefined-behaviour and leak sanitizers, and the fuzz targets" OFF)
if(FERNWICK_SANITIZE)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL Clang)
    message(FATAL_ERROR "FERNWICK_SANITIZE needs clang++, whose fuzzing engine it uses")
  endif()
  set(CMAKE_CXX_FLAGS_RELEASE "-O1 -gline-tables-only")
  add_compile_options(-fsanitize=address,undefined,fuzzer-no-link -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

option(FERNWICK_COVERAGE "Count which lines and branches are reached" OFF)
if(FERNWICK_COVERAGE)
  set(CMAKE_CXX_FLAGS_RELEASE "-O0")
  # The lab and its tests are not counted, and do signal by exceptions. All else is compiled without
  # them: what the headers add to the tests must not count edges that the libraries do not have. The
  # lab runs the tool on several threads, which count at once.
  set(name $<TARGET_PROPERTY:NAME>)
  set(isLab $<OR:$<STREQUAL:${name},fernwick_lab>,$<STREQUAL:${name},lab_test>>)
  add_compile_options("$<$<NOT:${isLab}>:--coverage;-fprofile-update=atomic;-fno-exceptions>")
  add_compile_definitions(FERNWICK_COVERAGE)
  # The counters' own library calls what --wrap replaces, and comes last.
  add_link_options(--coverage
                   -Wl,--wrap=abort,--wrap=_exit,--wrap=_Exit,--undefined=__wrap_abort)
  add_library(fernwick_keep_counters STATIC ${CMAKE_SOURCE_DIR}/quality/keep_counters.cc)
  link_libraries(fernwick_keep_counters)
endif()
