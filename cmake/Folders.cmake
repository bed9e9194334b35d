# One library per top-level folder with its subfolders, and one test program for it. The files are found,
# not listed.

# fernwick_folder(NAME [DEPENDENCY...]): the *.cc below NAME as the library fernwick_NAME, and the
# *_test.cc below it as the test program NAME_test.
function(fernwick_folder name)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${name}/*.cc)
  file(GLOB_RECURSE tests CONFIGURE_DEPENDS ${name}/*_test.cc)
  list(REMOVE_ITEM sources ${tests} ${CMAKE_CURRENT_SOURCE_DIR}/${name}/main.cc)
  add_library(fernwick_${name} ${sources})
  target_include_directories(fernwick_${name} PUBLIC ${CMAKE_SOURCE_DIR})
  if(name STREQUAL lab)
    fernwick_compile_quickly(fernwick_lab)
  else()  # what the lab uses of others signals by exceptions
    target_compile_options(fernwick_${name} PRIVATE -fno-exceptions)
  endif()
  list(TRANSFORM ARGN PREPEND fernwick_)
  target_link_libraries(fernwick_${name} PUBLIC ${ARGN})
  if(tests)
    fernwick_tests(${name}_test fernwick_${name} ${tests})
  endif()
endfunction()

# fernwick_tests(PROGRAM LIBRARY SOURCE...): a test program, each of its tests known to ctest. Under the
# sanitizers, where a process takes longer to start than most tests to run, the program is one test.
function(fernwick_tests program library)
  add_executable(${program} ${ARGN})
  fernwick_compile_quickly(${program})
  target_link_libraries(${program} PRIVATE ${library} fernwick_testing GTest::gtest_main)
  set_property(GLOBAL APPEND PROPERTY FERNWICK_TEST_PROGRAMS ${program})
  if(FERNWICK_SANITIZE)
    add_test(NAME ${program} COMMAND ${program})
  else()
    gtest_discover_tests(${program} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES)
  endif()
endfunction()

# fernwick_knows_tests(PROGRAM): defines FERNWICK_TEST_PROGRAMS in a test program as the paths of all
# test programs, in quotes with commas between. Call it after the last fernwick_tests.
function(fernwick_knows_tests program)
  get_property(programs GLOBAL PROPERTY FERNWICK_TEST_PROGRAMS)
  list(TRANSFORM programs REPLACE "(.+)" "\"$<TARGET_FILE:\\1>\"" OUTPUT_VARIABLE paths)
  list(JOIN paths "," paths)
  target_compile_definitions(${program} PRIVATE "FERNWICK_TEST_PROGRAMS=${paths}")
  list(REMOVE_ITEM programs ${program})
  add_dependencies(${program} ${programs})
endfunction()

# fernwick_compile_quickly(TARGET): under the sanitizers, what no fuzz target is about is compiled in half
# the time, neither optimised nor with the counters that guide fuzzing: it is slower to build than
# to run.
function(fernwick_compile_quickly target)
  if(FERNWICK_SANITIZE)
    target_compile_options(${target} PRIVATE -O0 -fno-sanitize=fuzzer-no-link)
  endif()
endfunction()

# fernwick_program_tests(FOLDER): each FOLDER/NAME_test.cc as the test program NAME_test, which runs the
# programs as they are built.
function(fernwick_program_tests folder)
  file(GLOB tests CONFIGURE_DEPENDS ${folder}/*_test.cc)
  foreach(source ${tests})
    cmake_path(GET source STEM program)
    fernwick_tests(${program} fernwick_lab ${source})
    add_dependencies(${program} fernwick fernwick-lab)
    target_compile_definitions(${program} PRIVATE
      FERNWICK_SOURCE_DIRECTORY="${CMAKE_SOURCE_DIR}"
      FERNWICK_BUILD_DIRECTORY="${CMAKE_BINARY_DIR}"
      FERNWICK_GOLDEN_DIRECTORY="${CMAKE_SOURCE_DIR}/golden"
      FERNWICK_PROGRAM="$<TARGET_FILE:fernwick>"
      FERNWICK_LAB_PROGRAM="$<TARGET_FILE:fernwick-lab>")
  endforeach()
endfunction()
