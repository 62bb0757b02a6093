# Gives the imported target TavClient::tavclient of an installed tavclient.
include(${CMAKE_CURRENT_LIST_DIR}/TavClientTargets.cmake)
