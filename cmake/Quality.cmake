# Checks of the source itself, and the tests of the scripts in quality/.
# Only the system's Python is sure to have its complete standard library.
set(Python3_ROOT_DIR /usr)
set(Python3_FIND_STRATEGY LOCATION)
find_package(Python3 REQUIRED COMPONENTS Interpreter)

add_test(NAME Source.IncludesFollowTheOrderOfTheFolders
         COMMAND Python3::Interpreter ${CMAKE_SOURCE_DIR}/quality/include_order.py)

# quality/NAME_test.py tests quality/NAME.py. No byte code is left in the source.
file(GLOB quality_tests CONFIGURE_DEPENDS quality/*_test.py)
foreach(script ${quality_tests})
  cmake_path(GET script STEM name)
  add_test(NAME Quality.${name} COMMAND Python3::Interpreter -B ${script})
endforeach()
