# The fuzz targets: one program for each fuzz/TARGET_fuzzer.cc, and what makes their seeds. The files
# are found, not listed.

# fernwick_fuzzers(LIBRARY...): the target "fuzzers" builds them all. ctest runs each once over its
# seeds and over every input that is kept for it in fuzz/regressions/.
function(fernwick_fuzzers)
  file(GLOB fuzzers CONFIGURE_DEPENDS fuzz/*_fuzzer.cc)
  file(GLOB sources CONFIGURE_DEPENDS fuzz/*.cc)
  file(GLOB tests CONFIGURE_DEPENDS fuzz/*_test.cc)
  list(REMOVE_ITEM sources ${fuzzers} ${tests} ${CMAKE_CURRENT_SOURCE_DIR}/fuzz/seed_maker.cc)
  add_library(fernwick_fuzz ${sources})
  target_link_libraries(fernwick_fuzz PUBLIC fernwick_testing ${ARGN})
  if(tests)
    fernwick_tests(fuzz_test fernwick_fuzz ${tests})
    target_compile_definitions(fuzz_test PRIVATE FERNWICK_SOURCE_DIRECTORY="${CMAKE_SOURCE_DIR}")
  endif()
  add_executable(seed_maker fuzz/seed_maker.cc)
  target_link_libraries(seed_maker PRIVATE fernwick_fuzz)
  add_custom_target(fuzzers)
  add_dependencies(fuzzers seed_maker)
  foreach(source ${fuzzers})
    get_filename_component(program ${source} NAME_WE)
    fernwick_fuzzer(${program} ${source})
  endforeach()
endfunction()

function(fernwick_fuzzer program source)
  add_executable(${program} ${source})
  target_link_libraries(${program} PRIVATE fernwick_fuzz)
  target_link_options(${program} PRIVATE -fsanitize=fuzzer)
  add_dependencies(fuzzers ${program})
  string(REGEX REPLACE "_fuzzer$" "" target ${program})
  add_test(NAME Fuzz.${target} COMMAND ${CMAKE_SOURCE_DIR}/fuzz/run ${CMAKE_BINARY_DIR} 0 ${target})
endfunction()
