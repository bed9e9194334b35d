# How everything here is compiled.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Release or Debug" FORCE)
endif()
set(CMAKE_CXX_FLAGS_RELEASE "-O2")

# A product and a sum are rounded each on its own on every processor: firmware versions are compared
# to the last bit.
add_compile_options(-ffp-contract=off)
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
