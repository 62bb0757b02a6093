# The arm's description and views: install rules and tests. Included from ros/CMakeLists.txt.
include(GNUInstallDirs)

set(_description_dir ${CMAKE_CURRENT_LIST_DIR}/..)
file(READ ${_description_dir}/package.xml _package_xml)
string(REGEX MATCH "<name>([^<]+)</name>" _ ${_package_xml})
set(_package_share ${CMAKE_INSTALL_DATADIR}/${CMAKE_MATCH_1})

if(TAVCLIENT_INSTALL)
  install(DIRECTORY ${_description_dir}/urdf ${_description_dir}/launch ${_description_dir}/rviz
    DESTINATION ${_package_share})
  # Found by roslaunch as the package's node types (run_tavsim) and run by launch files.
  install(PROGRAMS ${_description_dir}/scripts/run_tavsim ${_description_dir}/scripts/urdf_with_prefix.py
    DESTINATION ${_package_share}/scripts)
endif()

if(TAVCLIENT_BUILD_TESTS)
  set(_tests ${_description_dir}/test)
  add_test(NAME ros_description_files
    COMMAND ${TAVCLIENT_PYTHON_EXECUTABLE} ${_tests}/test_description_files.py)
  set_tests_properties(ros_description_files PROPERTIES TIMEOUT 120)
  # TF against the simulator's forward, through the Python module (not in sanitizer builds).
  if(TARGET tavclient_python)
    add_test(NAME ros_description_tf
      COMMAND ${TAVCLIENT_PYTHON_EXECUTABLE} ${_tests}/test_description_tf.py)
    set_tests_properties(ros_description_tf PROPERTIES TIMEOUT 120
      ENVIRONMENT "PYTHONPATH=${TAVCLIENT_PYTHON_DIR}")
  endif()
endif()
