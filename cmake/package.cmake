# Read by cpack for each kind of package.

# An archive unpacks into one directory; a .deb begins at the root.
if(CPACK_GENERATOR STREQUAL "TGZ")
  set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
endif()
