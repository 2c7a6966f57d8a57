# The files that `cmake --install` installs: libraries, headers and package files (component Development), and the tool
# with its manual page and completions (component Tool).
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

if(NOT KORVEX_EVALUATOR_TARGET STREQUAL "korvex_evaluator")
  message(FATAL_ERROR "An installed loader needs the evaluator of this project: set KORVEX_INSTALL to OFF")
endif()

set(KORVEX_INCLUDE_DIR ${CMAKE_INSTALL_INCLUDEDIR})
set(KORVEX_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/KorvexDAO)
set(KORVEX_PKGCONFIG_DIR ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(KORVEX_ZSH_COMPLETIONS_DIR ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
  CACHE STRING "Where zsh looks for completions")

install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/korvex DESTINATION ${KORVEX_INCLUDE_DIR} COMPONENT Development)

foreach(library platform evaluator dao plan loader)
  set_target_properties(korvex_${library} PROPERTIES EXPORT_NAME ${library})
  target_include_directories(korvex_${library} INTERFACE $<INSTALL_INTERFACE:${KORVEX_INCLUDE_DIR}>)
  install(TARGETS korvex_${library}
    EXPORT KorvexDAOLibraries
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Development
  )
endforeach()
# The engine has a separate export, because it needs SQLite.
if(TARGET korvex_sqlite)
  set_target_properties(korvex_sqlite PROPERTIES EXPORT_NAME sqlite)
  target_include_directories(korvex_sqlite INTERFACE $<INSTALL_INTERFACE:${KORVEX_INCLUDE_DIR}>)
  install(TARGETS korvex_sqlite
    EXPORT KorvexDAOEngine
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT Development
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Development
  )
  install(EXPORT KorvexDAOEngine NAMESPACE korvex:: DESTINATION ${KORVEX_CMAKE_DIR} COMPONENT Development)
endif()
install(EXPORT KorvexDAOLibraries NAMESPACE korvex:: DESTINATION ${KORVEX_CMAKE_DIR} COMPONENT Development)

# Static libraries do not record their dependencies: only a shared loader hides its parsers.
set(KORVEX_PARSERS "pugixml expat")
if(KORVEX_PUGIXML_SOURCE)
  set(KORVEX_PARSERS expat)
endif()
get_target_property(loader_type korvex_loader TYPE)
if(loader_type STREQUAL "STATIC_LIBRARY")
  set(KORVEX_PARSERS_REQUIRED Requires)
  set(KORVEX_CFLAGS)
else()
  set(KORVEX_PARSERS_REQUIRED Requires.private)
  set(KORVEX_CFLAGS -DKORVEX_SHARED)
  # The libraries find each other, and the tool finds them, even if the tree is moved.
  set(origin $ORIGIN)
  if(APPLE)
    set(origin @loader_path)
  endif()
  file(RELATIVE_PATH libraries_of_tool
    ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR} ${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR})
  set_target_properties(korvex_platform korvex_evaluator korvex_dao korvex_plan korvex_loader PROPERTIES INSTALL_RPATH ${origin})
  if(TARGET korvex_sqlite)
    set_target_properties(korvex_sqlite PROPERTIES INSTALL_RPATH ${origin})
  endif()
  if(TARGET korvex-dao)
    set_target_properties(korvex-dao PROPERTIES INSTALL_RPATH ${origin}/${libraries_of_tool})
  endif()
endif()

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/KorvexDAOConfig.cmake.in
  ${PROJECT_BINARY_DIR}/install/KorvexDAOConfig.cmake
  INSTALL_DESTINATION ${KORVEX_CMAKE_DIR}
  NO_SET_AND_CHECK_MACRO
)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/install/KorvexDAOConfigVersion.cmake
  COMPATIBILITY SameMajorVersion
)
install(FILES
  ${PROJECT_BINARY_DIR}/install/KorvexDAOConfig.cmake
  ${PROJECT_BINARY_DIR}/install/KorvexDAOConfigVersion.cmake
  ${CMAKE_CURRENT_LIST_DIR}/KorvexCheckDefinitions.cmake
  DESTINATION ${KORVEX_CMAKE_DIR}
  COMPONENT Development
)

# The files derive the prefix from their own location, so an installed tree can be moved.
file(RELATIVE_PATH KORVEX_PREFIX_OF_PKGCONFIG
  ${CMAKE_INSTALL_PREFIX}/${KORVEX_PKGCONFIG_DIR} ${CMAKE_INSTALL_PREFIX})
set(KORVEX_PKGCONFIG_NAMES korvex-dao korvex-plan korvex-loader)
if(TARGET korvex_sqlite)
  list(APPEND KORVEX_PKGCONFIG_NAMES korvex-sqlite)
endif()
foreach(name ${KORVEX_PKGCONFIG_NAMES})
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${name}.pc.in ${PROJECT_BINARY_DIR}/install/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/install/${name}.pc
    DESTINATION ${KORVEX_PKGCONFIG_DIR} COMPONENT Development)
endforeach()

if(TARGET korvex-dao)
  install(TARGETS korvex-dao EXPORT KorvexDAOTool
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT Tool)
  install(EXPORT KorvexDAOTool NAMESPACE korvex:: DESTINATION ${KORVEX_CMAKE_DIR} COMPONENT Development)
  install(FILES ${PROJECT_SOURCE_DIR}/dist/man/korvex-dao.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT Tool)
  install(FILES ${PROJECT_SOURCE_DIR}/dist/completions/korvex-dao.bash
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME korvex-dao COMPONENT Tool)
  install(FILES ${PROJECT_SOURCE_DIR}/dist/completions/korvex-dao.zsh
    DESTINATION ${KORVEX_ZSH_COMPLETIONS_DIR} RENAME _korvex-dao COMPONENT Tool)
  install(FILES ${PROJECT_SOURCE_DIR}/dist/completions/korvex-dao.fish
    DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT Tool)
endif()

if(PROJECT_IS_TOP_LEVEL)
  include(${CMAKE_CURRENT_LIST_DIR}/Package.cmake)
endif()
