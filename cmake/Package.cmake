# Two Debian packages of what is installed: `cpack -G DEB` in the build directory, or scripts/package.
set(KORVEX_PACKAGE_CONTACT "Developers of Korvex DAO <developers@korvex.invalid>"
  CACHE STRING "Whom users of the packages turn to")

foreach(package_component "korvex-dao Tool" "libkorvex-dao-dev Development")
  separate_arguments(package_component)
  list(POP_FRONT package_component package component)
  set(documents ${CMAKE_INSTALL_DATADIR}/doc/${package})
  install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION ${documents} RENAME changelog COMPONENT ${component})
  install(FILES ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION ${documents} RENAME copyright COMPONENT ${component})
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME korvex-dao)
set(CPACK_PACKAGE_CONTACT "${KORVEX_PACKAGE_CONTACT}")
set(CPACK_PACKAGING_INSTALL_PREFIX ${CMAKE_INSTALL_PREFIX})
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/CompressDocuments.cmake)
set(CPACK_COMPONENTS_ALL Tool Development)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each component has its own, in the first line of its description
set(CPACK_COMPONENT_TOOL_DESCRIPTION
"check the mapping definitions of a data-access library
The command korvex-dao finds every mistake in XML documents with mapping
definitions, at its line and column, and shows their element trees and what
packed columns of a database hold.")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION
"mapping definitions of a data-access library, for C++ programs
The libraries give typed element trees of mapping definitions in XML. With
headers, and files for CMake and pkg-config.")

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_TOOL_PACKAGE_NAME korvex-dao)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkorvex-dao-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "korvex-dao (= ${PROJECT_VERSION}), libexpat1-dev, libpugixml-dev, libsqlite3-dev, libstdc++-dev | libc++-dev")
include(CPack)
