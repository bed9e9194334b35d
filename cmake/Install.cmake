# What is installed, and where. Nothing else is in the package either.

include(GNUInstallDirs)

# fernwick_compress(OUTPUT FILE NAME): FILE as NAME.gz in the build directory, the same bytes from the
# same file, whenever it is made. Its path is appended to the list OUTPUT.
function(fernwick_compress output file name)
  set(result ${CMAKE_BINARY_DIR}/installed/${name}.gz)
  add_custom_command(
    OUTPUT ${result}
    COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/installed
    COMMAND gzip -9n < ${file} > ${result}
    DEPENDS ${file} VERBATIM)
  set(${output} ${${output}} ${result} PARENT_SCOPE)
endfunction()

file(GLOB pages CONFIGURE_DEPENDS man/*)
foreach(page ${pages})
  cmake_path(GET page FILENAME name)
  fernwick_compress(compressed ${page} ${name})
  string(REGEX REPLACE ".*\\." "" section ${name})
  install(FILES ${CMAKE_BINARY_DIR}/installed/${name}.gz
          DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endforeach()
fernwick_compress(compressed ${CMAKE_SOURCE_DIR}/packaging/changelog changelog)
install(FILES ${CMAKE_BINARY_DIR}/installed/changelog.gz packaging/copyright README.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR})
add_custom_target(compressed_files ALL DEPENDS ${compressed})

install(TARGETS fernwick fernwick-lab)
install(DIRECTORY docs examples DESTINATION ${CMAKE_INSTALL_DOCDIR})

install(FILES completion/fernwick-lab.bash RENAME fernwick-lab
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
# Debian has directories of their own for what packages bring and for what is installed by hand.
if(CMAKE_INSTALL_PREFIX STREQUAL /usr)
  set(zsh_functions vendor-completions)
else()
  set(zsh_functions site-functions)
endif()
install(FILES completion/_fernwick-lab DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/${zsh_functions})

# All that is installed, without the tests.
add_custom_target(installed DEPENDS fernwick fernwick-lab compressed_files)
