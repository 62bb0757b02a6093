# C++ headers for a package's messages, services and actions, made by Debian's genmsg and gencpp
# without catkin: genaction.py splits each action into its seven messages, gen_cpp.py writes one
# header per message or service under <OUTPUT>/<package>/.
#
#   tav_ros_messages(<target> <package> OUTPUT <dir> MESSAGES ... SERVICES ... ACTIONS ...
#                    DEPENDS <message packages>)
#
# makes an INTERFACE target whose include directory is <dir>, and sets <target>_MESSAGE_FILES
# to every message definition (those of the actions among them) for installing.
function(tav_ros_messages target package)
  cmake_parse_arguments(arg "" "OUTPUT" "MESSAGES;SERVICES;ACTIONS;DEPENDS" ${ARGN})
  find_file(TAV_GENCPP gen_cpp.py PATHS /usr/lib/gencpp NO_DEFAULT_PATH REQUIRED)
  find_file(TAV_GENACTION genaction.py PATHS /usr/lib/actionlib_msgs NO_DEFAULT_PATH REQUIRED)
  find_path(TAV_GENCPP_TEMPLATES msg.h.template PATHS /usr/share/gencpp NO_DEFAULT_PATH REQUIRED)
  set(templates ${TAV_GENCPP_TEMPLATES})
  set(python ${TAVCLIENT_PYTHON_EXECUTABLE})

  set(action_msg_dir ${CMAKE_CURRENT_BINARY_DIR}/action_msg)
  set(include_flags -I ${package}:${CMAKE_CURRENT_SOURCE_DIR}/msg -I ${package}:${action_msg_dir})
  foreach(dependency IN LISTS arg_DEPENDS)
    find_path(${dependency}_MSG_DIR NAMES package.xml PATHS /usr/share/${dependency}
      NO_DEFAULT_PATH REQUIRED)
    list(APPEND include_flags -I ${dependency}:${${dependency}_MSG_DIR}/msg)
  endforeach()

  set(messages)
  foreach(message IN LISTS arg_MESSAGES)
    list(APPEND messages ${CMAKE_CURRENT_SOURCE_DIR}/${message})
  endforeach()
  foreach(action IN LISTS arg_ACTIONS)
    get_filename_component(name ${action} NAME_WE)
    set(parts)
    foreach(part Action ActionGoal ActionResult ActionFeedback Goal Result Feedback)
      list(APPEND parts ${action_msg_dir}/${name}${part}.msg)
    endforeach()
    add_custom_command(OUTPUT ${parts}
      COMMAND ${python} ${TAV_GENACTION} -o ${action_msg_dir} ${CMAKE_CURRENT_SOURCE_DIR}/${action}
      DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${action}
      COMMENT "Splitting ${package}/${action} into its messages")
    list(APPEND messages ${parts})
  endforeach()

  set(headers)
  set(header_dir ${arg_OUTPUT}/${package})
  file(MAKE_DIRECTORY ${header_dir})
  foreach(definition IN LISTS messages arg_SERVICES)
    if(NOT IS_ABSOLUTE ${definition})
      set(definition ${CMAKE_CURRENT_SOURCE_DIR}/${definition})
    endif()
    get_filename_component(name ${definition} NAME_WE)
    # A message may embed the package's other messages, the action's among them.
    add_custom_command(OUTPUT ${header_dir}/${name}.h
      COMMAND ${python} ${TAV_GENCPP} ${definition} ${include_flags} -p ${package} -o ${header_dir}
        -e ${templates}
      DEPENDS ${definition} ${messages}
      COMMENT "Generating C++ code from ${package}/${name}")
    list(APPEND headers ${header_dir}/${name}.h)
  endforeach()

  add_custom_target(${target}_generate DEPENDS ${headers})
  add_library(${target} INTERFACE)
  add_dependencies(${target} ${target}_generate)
  target_include_directories(${target} INTERFACE ${arg_OUTPUT})
  set(${target}_MESSAGE_FILES ${messages} PARENT_SCOPE)
  set(${target}_HEADERS ${headers} PARENT_SCOPE)
endfunction()
