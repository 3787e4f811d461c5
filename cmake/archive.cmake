# What an archive has beside the installed files: the script that installs them.
file(GLOB programs ${CPACK_TEMPORARY_DIRECTORY}/bin ${CPACK_TEMPORARY_DIRECTORY}/*/bin)
foreach(folder ${programs})
  get_filename_component(top ${folder} DIRECTORY)
  file(COPY ${CMAKE_CURRENT_LIST_DIR}/../scripts/install.sh DESTINATION ${top})
endforeach()
