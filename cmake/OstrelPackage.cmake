# `cpack` in a build folder makes a Debian package of what `cmake --install` installs.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ostrel-sensor-manager)
set(CPACK_PACKAGE_CONTACT "the Ostrel developers <ostrel@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_DESCRIPTION "A library that feeds the sensors of a scene from trackers, input devices, networks and
other processes and sends their values back, with its node modules, the program ostrel-host that runs a scene file, and
what is needed to build on it.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
# Depends and Recommends are found out from the installed files.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/DebianDependencies.cmake)
include(CPack)
