# Debian packages of the installed files, one per component, built by `cpack -G DEB` in the
# build directory (scripts/packages.sh): libtavclient0, libtavclient-dev, python3-tavclient,
# tavsim and, with the ROS driver built, tavclient-ros, all under /usr.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tavclient)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Client library for the robot-arm controller")
set(CPACK_PACKAGE_CONTACT "tavclient developers <tavclient@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
# dpkg-shlibdeps finds what the binaries need of the system; the library of this project is
# named by the packages below, and read from the build tree meanwhile.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src)

set(library_package "libtavclient${PROJECT_VERSION_MAJOR}")
set(exact_library "${library_package} (= ${PROJECT_VERSION})")
set(CPACK_COMPONENTS_ALL runtime dev)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library_package})
set(CPACK_COMPONENT_RUNTIME_DESCRIPTION "Client library for the robot-arm controller (shared library)")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libtavclient-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${exact_library}")
set(CPACK_COMPONENT_DEV_DESCRIPTION
  "Client library for the robot-arm controller (headers, CMake package, pkg-config file)")

if(TARGET tavclient_python)
  list(APPEND CPACK_COMPONENTS_ALL python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-tavclient)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "${exact_library}, ${TAVCLIENT_PYTHON_DEPENDS}")
  set(CPACK_COMPONENT_PYTHON_DESCRIPTION
    "Client library for the robot-arm controller (Python module tavclient, with its simulator)")
endif()
if(TARGET tavsim)
  list(APPEND CPACK_COMPONENTS_ALL simulator)
  set(CPACK_DEBIAN_SIMULATOR_PACKAGE_NAME tavsim)
  set(CPACK_DEBIAN_SIMULATOR_PACKAGE_SECTION misc)
  set(CPACK_COMPONENT_SIMULATOR_DESCRIPTION "Simulated robot-arm controller for the tavclient library")
endif()
if(TARGET tavsim_view)
  # The live view's page loads three.js from the system; without it the page shows no 3D.
  set(CPACK_DEBIAN_SIMULATOR_PACKAGE_RECOMMENDS libjs-three)
  set(CPACK_DEBIAN_PYTHON_PACKAGE_RECOMMENDS libjs-three)
endif()
if(TARGET tavclient_node)
  # The ROS package in ROS's places: /usr/lib/tavclient_ros, /usr/share/tavclient_ros and the
  # message headers in /usr/include/tavclient_ros. The ROS libraries come from dpkg-shlibdeps.
  list(APPEND CPACK_COMPONENTS_ALL ros)
  set(CPACK_DEBIAN_ROS_PACKAGE_NAME tavclient-ros)
  set(CPACK_DEBIAN_ROS_PACKAGE_SECTION misc)
  set(CPACK_DEBIAN_ROS_PACKAGE_DEPENDS "${exact_library}, ros-message-runtime")
  set(CPACK_DEBIAN_ROS_PACKAGE_RECOMMENDS "tavsim, ros-robot-state-publisher, rviz")
  set(CPACK_COMPONENT_ROS_DESCRIPTION
    "ROS 1 driver for the robot-arm controller (package tavclient_ros: node, action, services, description)")
endif()

include(CPack)
