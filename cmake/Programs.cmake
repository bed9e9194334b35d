# The programs, and how they are linked.
include(CheckLinkerFlag)

# Most of a short run is starting the process: finding and relocating shared libraries is slower
# than a plan. A static program has none, and as a position-independent one it is still loaded at
# another address each time. The sanitizers and the counting of coverage come as shared libraries or
# replace some, and shared folders would be more of them.
set(FERNWICK_STATIC_LINKING -static-pie LINKER:--gc-sections)
check_linker_flag(CXX -static-pie FERNWICK_LINKS_STATICALLY)
check_linker_flag(CXX LINKER:-z,pack-relative-relocs FERNWICK_PACKS_RELOCATIONS)
if(FERNWICK_PACKS_RELOCATIONS)
  list(APPEND FERNWICK_STATIC_LINKING LINKER:-z,pack-relative-relocs)
endif()
if(BUILD_SHARED_LIBS OR FERNWICK_SANITIZE OR FERNWICK_COVERAGE)
  set(FERNWICK_LINKS_STATICALLY OFF)
endif()

# fernwick_program(NAME SOURCE LIBRARY)
function(fernwick_program name source library)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE ${library})
  if(FERNWICK_LINKS_STATICALLY)
    target_link_options(${name} PRIVATE ${FERNWICK_STATIC_LINKING})
  endif()
endfunction()
