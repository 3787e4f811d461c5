# Makes of the installed files what Debian expects of a package: compressed pages, one file with the
# licences, a changelog in its form, and paths below /usr.

set(name ${CPACK_PACKAGE_NAME})
file(GLOB usr ${CPACK_TEMPORARY_DIRECTORY}/usr ${CPACK_TEMPORARY_DIRECTORY}/*/usr)
list(GET usr 0 usr)
set(doc ${usr}/share/doc/${name})

# --- The ready files name the programs where this package has them -------------------------------

file(GLOB_RECURSE files ${usr}/share/${name}/*)
foreach(file ${files})
  file(READ ${file} text)
  string(REPLACE "/usr/local/" "/usr/" fitting "${text}")
  if(NOT fitting STREQUAL text)
    file(WRITE ${file} "${fitting}")
  endif()
endforeach()

# --- Licences --------------------------------------------------------------------------------------

set(copyright "The programs of this package are Quillpost's.\n
They have parts of these libraries built in, each under the licence that follows.\n")
file(GLOB licences ${doc}/licences/*)
foreach(licence ${licences})
  get_filename_component(library ${licence} NAME)
  file(READ ${licence} text)
  string(APPEND copyright "\n---- ${library} ----\n\n${text}")
endforeach()
file(WRITE ${doc}/copyright "${copyright}")
file(REMOVE_RECURSE ${doc}/licences)

# --- Changelog and manual pages --------------------------------------------------------------------

string(TIMESTAMP now "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE ${doc}/changelog "${name} (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * What a user notices stands in CHANGELOG.md beside this file.

 -- ${CPACK_PACKAGE_CONTACT}  ${now}
")
# The page's program is started by a command of the board's, whose manual says how.
if(EXISTS ${usr}/bin/quillpost-page)
  file(WRITE ${usr}/share/man/man1/quillpost-page.1 ".so man1/quillpost-board.1\n")
endif()
file(GLOB pages ${usr}/share/man/man1/*.1)
execute_process(COMMAND gzip -9 -n ${doc}/changelog ${pages} COMMAND_ERROR_IS_FATAL ANY)

# --- What zsh and lintian are told elsewhere on Debian ------------------------------------------------

file(RENAME ${usr}/share/zsh/site-functions ${usr}/share/zsh/vendor-completions)
file(MAKE_DIRECTORY ${usr}/share/lintian/overrides)
file(WRITE ${usr}/share/lintian/overrides/${name}
"# Static on purpose: they start in two thirds of the time and run on every distribution.
${name}: shared-library-lacks-prerequisites *
")
