# The package in ROS's places under the prefix, all in the `ros` component (its own Debian
# package): the node in lib/<package>, the manifest, message definitions, launch files,
# description and rviz view in share/<package>, the generated headers in include/<package>.
set(ros_share share/${ros_package})
install(TARGETS tavclient_node RUNTIME DESTINATION lib/${ros_package} COMPONENT ros)
install(FILES package.xml DESTINATION ${ros_share} COMPONENT ros)
install(DIRECTORY msg srv action DESTINATION ${ros_share} COMPONENT ros)
# The action's seven messages, as a catkin package installs them.
install(FILES ${tavclient_ros_messages_MESSAGE_FILES} DESTINATION ${ros_share}/msg COMPONENT ros)
install(FILES ${tavclient_ros_messages_HEADERS} DESTINATION include/${ros_package} COMPONENT ros)
install(DIRECTORY launch urdf rviz DESTINATION ${ros_share} COMPONENT ros OPTIONAL)
# Under /usr the system's ROS finds the package as it finds Debian's own; any other prefix is
# marked as a workspace, so that a CMAKE_PREFIX_PATH naming it lets roslaunch find the node.
install(CODE "
  if(NOT CMAKE_INSTALL_PREFIX STREQUAL \"/usr\")
    file(TOUCH \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/.catkin\")
  endif()" COMPONENT ros)
