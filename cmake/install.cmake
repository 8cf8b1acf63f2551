# What `cmake --install` copies, and the packages made of it: `orva` for those who use the program, `liborva-dev` for
# those who build on its core library.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# The program, its companions, what they say about themselves.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME program)
install(TARGETS orva orva-surface RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(PROGRAMS tools/orva-grid tools/orva-view DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(page orva.1 orva-surface.1 orva-grid.1 orva-view.1 orva.conf.5)
  string(REGEX MATCH ".$" section ${page})
  install(FILES doc/${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endforeach()
install(DIRECTORY completions/bash/ DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(DIRECTORY completions/zsh/ DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
install(FILES README.md LICENSE CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES doc/aniline.png doc/cookbook.md doc/same-bytes.md DESTINATION ${CMAKE_INSTALL_DOCDIR}/doc)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} USE_SOURCE_PERMISSIONS)

# The core library: find_package(orva) gives orva::core, with headers such as <orva/reader.hpp>.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME library)
set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/orva)
set_target_properties(orvacore PROPERTIES EXPORT_NAME core)
install(TARGETS orvacore EXPORT orva
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(DIRECTORY lib/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/orva FILES_MATCHING PATTERN "*.hpp")
install(EXPORT orva NAMESPACE orva:: FILE orvaConfig.cmake DESTINATION ${package_directory})
write_basic_package_version_file(orvaConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/orvaConfigVersion.cmake DESTINATION ${package_directory})

set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_PACKAGE_FILE_NAME orva-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR})
set(CPACK_STRIP_FILES ON)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)

# Who makes a package for others puts their own name and address here: -D CPACK_DEBIAN_PACKAGE_MAINTAINER="...".
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "ORVA maintainers <maintainers@orva.invalid>" CACHE STRING
  "Maintainer field of the Debian packages")
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian.cmake)

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME orva)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_RECOMMENDS "python3 (>= 3.8)")
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION
"ORVA reads the wavefunction of a molecule from a Gaussian formatted
checkpoint file or a WFN file, reports what it found, and writes the total
electron density, molecular orbitals and the average local ionization
potential as cube files that any molecular viewer opens. orva-surface gives
the potential on a surface of the density as numbers: areas, means, minima.
.
Its companions need Python: orva-grid prints a grid that holds the whole
surface of a molecule, orva-view shows a field on it in a browser.")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME liborva-dev)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION
"The core library of ORVA, static, for C++20: messages and files, command-line
arguments, text and numbers, vectors and matrices, the elements.
.
With CMake, find_package(orva) gives the target orva::core.")
include(CPack)
