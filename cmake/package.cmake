# Read by cpack for each kind of package.

# An archive unpacks into one directory; a .deb begins at the root.
if(CPACK_GENERATOR STREQUAL "TGZ")
  set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
  set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/archive.cmake)
elseif(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
endif()
