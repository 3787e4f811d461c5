# What `cmake --install` puts where, and what `cpack` packs: the component "teamwork".

include(GNUInstallDirs)
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

install(TARGETS quillpost-teamwork qp quillpost-board RUNTIME COMPONENT teamwork)

if(TARGET quillpost-page)
  install(TARGETS quillpost-page RUNTIME COMPONENT teamwork)
endif()

install(FILES man/quillpost-teamwork.1 man/qp.1 man/quillpost-board.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT teamwork)

file(GLOB pages CONFIGURE_DEPENDS *.md)
install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT teamwork)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT teamwork
  FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.png")
foreach(folder .claude-plugin antigravity claude claude-plugin codex copilot cursor gemini
    gemini-extension git launchd opencode systemd)
  install(DIRECTORY contrib/${folder} DESTINATION ${CMAKE_INSTALL_DATADIR}/quillpost-teamwork
    COMPONENT teamwork USE_SOURCE_PERMISSIONS)
endforeach()

# What the shells complete, as the program prints it.
set(completions "")
foreach(pair bash:bash-completion/completions/qp zsh:zsh/site-functions/_qp
    fish:fish/vendor_completions.d/qp.fish)
  string(REGEX REPLACE ":.*" "" shell ${pair})
  string(REGEX REPLACE ".*:" "" place ${pair})
  set(made ${PROJECT_BINARY_DIR}/completions/${place})
  get_filename_component(folder ${made} DIRECTORY)
  file(MAKE_DIRECTORY ${folder})
  add_custom_command(OUTPUT ${made} COMMAND qp completion ${shell} > ${made} DEPENDS qp)
  list(APPEND completions ${made})
endforeach()
add_custom_target(completions DEPENDS ${completions})
add_dependencies(programs completions)
install(DIRECTORY ${PROJECT_BINARY_DIR}/completions/ DESTINATION ${CMAKE_INSTALL_DATADIR}
  COMPONENT teamwork)

# --- The licences of what is linked in, as the installed packages have them ----------------------

# Cuts the one text that covers what is linked in here out of a file that has those of a whole
# distribution's package, two megabytes for Boost, and gives the path of the cut.
function(quillpost_only title file output)
  file(READ ${file} whole)
  string(FIND "${whole}" "\n ${title}" begin)
  if(begin EQUAL -1)
    set(${output} ${file} PARENT_SCOPE)
    return()
  endif()
  string(SUBSTRING "${whole}" ${begin} 4096 text)
  string(FIND "${text}" "\n\n" end)
  string(SUBSTRING "${text}" 1 ${end} text)
  string(REGEX REPLACE "\n \\.\n" "\n\n" text "${text}")
  string(REGEX REPLACE "(^|\n) " "\\1" text "${text}")
  set(cut ${PROJECT_BINARY_DIR}/licences/${title})
  file(WRITE ${cut} "${text}")
  set(${output} ${cut} PARENT_SCOPE)
endfunction()

# Finds the licence of one library among `candidates`, patterns of paths, and takes of it the text that
# begins with a third argument where there is one; -DQUILLPOST_LICENCE_<NAME> names it where none fits. Without one the program is still built, and who packs it is told.
function(quillpost_licence name candidates)
  set(title ${ARGV2})
  set(variable QUILLPOST_LICENCE_${name})
  string(TOUPPER ${variable} variable)
  if(NOT DEFINED ${variable})
    file(GLOB found ${candidates})
    list(LENGTH found count)
    if(count GREATER 0)
      list(GET found 0 first)
      file(REAL_PATH ${first} first)
      set(${variable} ${first} CACHE FILEPATH "The licence of ${name}")
    endif()
  endif()
  if(${variable})
    set(text ${${variable}})
    if(title)
      quillpost_only("${title}" ${text} text)
    endif()
    install(FILES ${text} DESTINATION ${CMAKE_INSTALL_DOCDIR}/licences RENAME ${name}
      COMPONENT teamwork)
  else()
    message(WARNING "No licence of ${name} found; name it with -D${variable}=FILE before packing")
  endif()
endfunction()

get_filename_component(utf8procPrefix ${UTF8PROC_INCLUDE_DIR} DIRECTORY)
list(GET Boost_INCLUDE_DIRS 0 boostInclude)
get_filename_component(boostPrefix ${boostInclude} DIRECTORY)
quillpost_licence(boost "${boostPrefix}/share/doc/libboost1.*-dev/copyright;\
${boostPrefix}/opt/boost/LICENSE*;${boostPrefix}/LICENSE*" "Boost Software License")
# Its file covers the Unicode data that is compiled into it too.
quillpost_licence(utf8proc "${utf8procPrefix}/share/doc/libutf8proc-dev/copyright;\
${utf8procPrefix}/opt/utf8proc/LICENSE*;${utf8procPrefix}/LICENSE*")
if(QUILLPOST_STATIC_BOARD AND staticPie)
  quillpost_licence(sqlite "/usr/share/doc/libsqlite3-dev/copyright")
endif()
if(TARGET quillpost-page AND NOT HTTPLIB_LIBRARY)
  get_filename_component(httplibPrefix ${HTTPLIB_INCLUDE_DIR} DIRECTORY)
  quillpost_licence(httplib "${httplibPrefix}/opt/cpp-httplib/LICENSE*;\
/usr/share/doc/libcpp-httplib-dev/copyright")
endif()
if(NOT APPLE)
  # The C++ runtime is linked in too; on macOS it belongs to the system.
  execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=libstdc++.a
    OUTPUT_VARIABLE runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
  set(gcc "*")
  if(runtime MATCHES "/gcc/[^/]+/([0-9]+)/")
    set(gcc ${CMAKE_MATCH_1})
  endif()
  quillpost_licence(libstdc++ "/usr/share/doc/gcc-${gcc}-base/copyright")
  if(staticPie)
    quillpost_licence(libc "/usr/share/doc/libc6-dev/copyright;/usr/share/doc/musl-dev/copyright")
  endif()
endif()

# An archive brings the script that installs it.
install(PROGRAMS scripts/install.sh DESTINATION . COMPONENT archive EXCLUDE_FROM_ALL)

# --- Packages -------------------------------------------------------------------------------------

set(CPACK_PACKAGE_NAME quillpost-teamwork)
set(CPACK_PACKAGE_VENDOR Quillpost)
set(CPACK_PACKAGE_CONTACT "Quillpost <teamwork@quillpost.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Shared work board for AI coding agents: board, seat, command line")
set(CPACK_PACKAGE_DESCRIPTION
"Coding agents that run in terminals of one machine share a board: a goal, a
 backlog that anyone can claim from, discussions, and questions that wait for
 the person. quillpost-teamwork is an agent's seat for its harness and its
 stop hook, qp is the same seat from a shell, and quillpost-board keeps a
 board where the Quillpost app does not run.")
set(CPACK_PACKAGE_FILE_NAME
  quillpost-teamwork-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_COMPONENTS_ALL teamwork)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_GENERATOR TGZ)
find_program(DPKG_DEB dpkg-deb)
if(DPKG_DEB)
  list(APPEND CPACK_GENERATOR DEB)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION devel)
  find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
  # The board uses the system's database library, the other two nothing where they are static.
  if(DPKG_SHLIBDEPS)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  else()
    set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6, libsqlite3-0")
  endif()
endif()
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/package.cmake)
include(CPack)
