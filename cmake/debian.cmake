# Run by CPack between copying the files and packing them: what Debian wants in other places than other systems do.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
foreach(component PROGRAM LIBRARY)
  set(name ${CPACK_DEBIAN_${component}_PACKAGE_NAME})
  string(TOLOWER ${component} directory)
  set(share ${CPACK_TEMPORARY_DIRECTORY}/${directory}/usr/share)
  set(doc ${share}/doc/${name})
  file(MAKE_DIRECTORY ${doc})
  file(COPY_FILE ${CPACK_RESOURCE_FILE_LICENSE} ${doc}/copyright)
  file(WRITE ${doc}/changelog
    "${name} (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n"
    "  * Packaged by its own build; CHANGELOG.md tells what is new.\n\n"
    " -- ${CPACK_DEBIAN_PACKAGE_MAINTAINER}  ${date}\n")
  file(GLOB pages ${share}/man/man*/*)
  run(gzip -9n ${doc}/changelog ${pages})
endforeach()

set(share ${CPACK_TEMPORARY_DIRECTORY}/program/usr/share)
# Debian has the licence under a name of its own, and the links to it follow.
file(REMOVE ${share}/doc/orva/LICENSE)
file(READ ${share}/doc/orva/README.md readme)
string(REPLACE "[LICENSE](LICENSE)" "[copyright](copyright)" readme "${readme}")
file(WRITE ${share}/doc/orva/README.md "${readme}")
file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
# Lintian takes programs that load nothing for libraries.
file(WRITE ${share}/lintian/overrides/orva "orva: shared-library-lacks-prerequisites\n")
# Whatever the umask of who builds it.
run(chmod -R u=rwX,go=rX ${CPACK_TEMPORARY_DIRECTORY})
