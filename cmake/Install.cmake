# What `cmake --install` puts under the prefix: the shared library with its version links, the
# public headers and the layer headers they reach (keeping their folders, so one include path
# serves), the simulator program, a CMake package and a pkg-config file. Each rule names the
# Debian package it belongs to (cmake/Packaging.cmake); the Python module has its own rules.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/TavClient)

install(TARGETS tavclient EXPORT TavClientTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  COMPONENT runtime NAMELINK_COMPONENT dev)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tavclient
  COMPONENT dev FILES_MATCHING PATTERN "*.h")
install(DIRECTORY ${PROJECT_SOURCE_DIR}/src/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tavclient
  COMPONENT dev FILES_MATCHING PATTERN "*.h")
if(TARGET tavsim)
  install(TARGETS tavsim RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT simulator)
endif()

install(EXPORT TavClientTargets NAMESPACE TavClient:: DESTINATION ${package_dir} COMPONENT dev)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TavClientConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_SOURCE_DIR}/cmake/TavClientConfig.cmake
  ${PROJECT_BINARY_DIR}/TavClientConfigVersion.cmake DESTINATION ${package_dir} COMPONENT dev)

# The .pc file finds the prefix from its own place, so `--prefix` at install time holds.
set(pc_prefix /prefix)
cmake_path(RELATIVE_PATH pc_prefix BASE_DIRECTORY /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig)
configure_file(${PROJECT_SOURCE_DIR}/cmake/tavclient.pc.in ${PROJECT_BINARY_DIR}/tavclient.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tavclient.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
  COMPONENT dev)

include(${CMAKE_CURRENT_LIST_DIR}/Packaging.cmake)
