# What is measured beside others. "./dev test" needs none of it but the test that measuring works.
add_test(NAME Bench.Works
         COMMAND Python3::Interpreter -B ${CMAKE_SOURCE_DIR}/bench/run.py ${CMAKE_BINARY_DIR} --smoke)
add_test(NAME Bench.run_test COMMAND Python3::Interpreter -B ${CMAKE_SOURCE_DIR}/bench/run_test.py)
add_test(NAME Cost.run_test COMMAND Python3::Interpreter -B ${CMAKE_SOURCE_DIR}/cost/run_test.py)
if(NOT FERNWICK_SANITIZE AND NOT FERNWICK_COVERAGE)  # which cost more by themselves
  add_test(NAME Cost.IsThatOfTheInput
           COMMAND Python3::Interpreter -B ${CMAKE_SOURCE_DIR}/cost/run.py ${CMAKE_BINARY_DIR} --short
                   --memory)
endif()

# All that "./dev bench" measures.
add_custom_target(benchmarks)
add_dependencies(benchmarks fernwick-lab)

option(FERNWICK_BENCH "The benchmarks, which need libbenchmark-dev" OFF)
if(NOT FERNWICK_BENCH)
  return()
endif()
find_package(benchmark REQUIRED)

# fernwick_bench(NAME LIBRARY... [SOURCES SOURCE...]): bench/NAME.cc and what else it consists of.
function(fernwick_bench name)
  cmake_parse_arguments(bench "" "" SOURCES ${ARGN})
  add_executable(${name} bench/${name}.cc ${bench_SOURCES})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
  target_link_libraries(${name} PRIVATE ${bench_UNPARSED_ARGUMENTS})
  add_dependencies(benchmarks ${name})
endfunction()

fernwick_bench(matcher_bench fernwick_personality benchmark::benchmark)

find_package(PkgConfig REQUIRED)
fernwick_bench(reading_bench fernwick_testing SOURCES bench/documents.cc bench/readers.cc)

# fernwick_compare_with(DEFINITION MODULE): another reader, where pkg-config finds it.
function(fernwick_compare_with definition module)
  pkg_check_modules(${definition} IMPORTED_TARGET ${module})
  if(${definition}_FOUND)
    target_link_libraries(reading_bench PRIVATE PkgConfig::${definition})
    target_compile_definitions(reading_bench PRIVATE ${definition})
  endif()
endfunction()

fernwick_compare_with(FERNWICK_BENCH_LIBPLIST libplist-2.0)
fernwick_compare_with(FERNWICK_BENCH_EXPAT expat)
fernwick_compare_with(FERNWICK_BENCH_PUGIXML pugixml)
