# The arm's description and views: the scripts' install rule and the tests. Included from
# ros/CMakeLists.txt (which names the package `ros_package`); cmake/Install.cmake installs
# urdf/, launch/ and rviz/.
set(_description_dir ${CMAKE_CURRENT_LIST_DIR}/..)

if(TAVCLIENT_INSTALL)
  # Beside the launch files that run them; roslaunch finds run_tavsim as a node type there.
  install(PROGRAMS ${_description_dir}/scripts/run_tavsim ${_description_dir}/scripts/urdf_with_prefix.py
    DESTINATION share/${ros_package}/scripts COMPONENT ros)
endif()

if(TAVCLIENT_BUILD_TESTS)
  set(_tests ${_description_dir}/test)
  add_test(NAME ros_description_files
    COMMAND ${TAVCLIENT_PYTHON_EXECUTABLE} ${_tests}/test_description_files.py)
  set_tests_properties(ros_description_files PROPERTIES TIMEOUT 120 LABELS ros)
  # TF against the simulator's forward, through the Python module (not in sanitizer builds).
  if(TARGET tavclient_python)
    add_test(NAME ros_description_tf
      COMMAND ${TAVCLIENT_PYTHON_EXECUTABLE} ${_tests}/test_description_tf.py)
    set_tests_properties(ros_description_tf PROPERTIES TIMEOUT 120 LABELS ros
      ENVIRONMENT "PYTHONPATH=${TAVCLIENT_PYTHON_DIR}")
  endif()
  # two_arms.launch as a user starts it, with the package and node of this build tree.
  if(TARGET tavclient_python AND TARGET tavclient_node)
    add_test(NAME ros_two_arms COMMAND ${TAVCLIENT_PYTHON_EXECUTABLE} ${_tests}/test_two_arms.py)
    set_tests_properties(ros_two_arms PROPERTIES TIMEOUT 120 LABELS ros ENVIRONMENT
      "PYTHONPATH=${TAVCLIENT_PYTHON_DIR};TAVSIM=${TAVCLIENT_ROS_TAVSIM};ROS_PACKAGE_PATH=${TAVCLIENT_ROS_PACKAGE_PATH};CMAKE_PREFIX_PATH=${TAVCLIENT_ROS_DEVEL}")
  endif()
endif()
