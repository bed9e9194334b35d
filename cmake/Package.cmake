# The Debian package. `./dev package` makes it.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "the developers of fernwick <developers@fernwick.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_SOURCE_DIR}/packaging/same_times.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "parallel, slurm-client")  # for docs/fleet.md
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "plan firmware updates of Thunderbolt and USB-C port controllers")
set(CPACK_PACKAGE_DESCRIPTION
"fernwick is one step of a computer's firmware update. It finds the computer's
own Thunderbolt and USB-C port controllers, decides which firmware of an
update payload applies to them, and prints the plan for the next boot. It
flashes nothing, writes no file and sets no variable.

fernwick-lab runs it over recorded computers, explains why a firmware is
chosen or not, and finds mistakes in payloads.")

include(CPack)
