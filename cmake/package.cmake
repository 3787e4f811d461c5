# Read by cpack for each kind of package.

# An archive unpacks into one directory and brings the script that installs it; a .deb begins at the root.
if(CPACK_GENERATOR STREQUAL "TGZ")
  set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
  set(CPACK_COMPONENTS_ALL teamwork archive)
elseif(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
endif()
