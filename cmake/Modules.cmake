# Each layer of the library is a static archive of position-independent objects, so that
# tests link exactly the layers they exercise; the shared library is their union.
function(tav_add_module name dir)
  file(GLOB sources CONFIGURE_DEPENDS ${dir}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/include ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARGN})
  tav_enable_warnings(${name})
  set_property(GLOBAL APPEND PROPERTY TAVCLIENT_MODULES ${name})
endfunction()
