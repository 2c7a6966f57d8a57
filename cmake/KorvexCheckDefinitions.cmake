# korvex_check_definitions(TARGET PATH... [WARNINGS_AS_ERRORS] [SCHEMA SOURCE] [MODELS FILE]
#                          [OPTIONS OPTION...])
#
# Runs `korvex-dao check` on definition documents before TARGET is built. An error in a document fails the build, with its
# line and column; with WARNINGS_AS_ERRORS, a warning does, too. The check runs again when a document is changed, added or
# removed. A PATH is a file, or a directory with *.xml files. A file that the build generates is recognised by its property
# GENERATED, which an earlier add_custom_command sets. With SCHEMA, the SQL is checked against the schema of that SOURCE:
# "upgrades" for that of the upgrades in the documents, an SQL script, or a database. With MODELS, classes and properties are
# checked against those of a C++ FILE with model classes, or of the JSON that `korvex-dao models` prints. OPTIONS are passed
# to `korvex-dao check`.
#
# The command is that of this package. KORVEX_DAO_EXECUTABLE names another one, which is needed when cross-compiling.
# Without either, the command is searched on the path.
include_guard(GLOBAL)

function(korvex_check_definitions target)
  cmake_parse_arguments(PARSE_ARGV 1 ARG "WARNINGS_AS_ERRORS" "SCHEMA;MODELS" "OPTIONS")
  if(ARG_WARNINGS_AS_ERRORS)
    list(APPEND ARG_OPTIONS --werror)
  endif()
  set(schema_file)
  if(ARG_SCHEMA AND NOT ARG_SCHEMA STREQUAL upgrades)
    cmake_path(ABSOLUTE_PATH ARG_SCHEMA NORMALIZE OUTPUT_VARIABLE schema_file)
    set(ARG_SCHEMA ${schema_file})
  endif()
  if(ARG_SCHEMA)
    list(APPEND ARG_OPTIONS --schema ${ARG_SCHEMA})
  endif()
  if(ARG_MODELS)
    cmake_path(ABSOLUTE_PATH ARG_MODELS NORMALIZE)
    list(APPEND ARG_OPTIONS --models ${ARG_MODELS})
  endif()
  set(paths ${ARG_UNPARSED_ARGUMENTS})
  if(NOT TARGET ${target})
    message(FATAL_ERROR "korvex_check_definitions: '${target}' is no target")
  elseif(NOT paths)
    message(FATAL_ERROR "korvex_check_definitions: no definitions are given for '${target}'")
  endif()

  # A directory is passed as such, because some warnings need all definitions.
  set(checked)
  set(documents)
  foreach(path IN LISTS paths)
    cmake_path(ABSOLUTE_PATH path NORMALIZE)
    list(APPEND checked ${path})
    get_source_file_property(generated ${path} GENERATED)
    if(IS_DIRECTORY ${path})
      file(GLOB_RECURSE found CONFIGURE_DEPENDS ${path}/*.xml)
      if(NOT found)
        message(FATAL_ERROR "korvex_check_definitions: no *.xml in ${path}")
      endif()
      list(APPEND documents ${found})
    elseif(generated OR EXISTS ${path})
      list(APPEND documents ${path})
    else()
      message(FATAL_ERROR "korvex_check_definitions: there is no ${path}, and no command before makes it; "
        "the keywords are WARNINGS_AS_ERRORS, SCHEMA, MODELS and OPTIONS")
    endif()
  endforeach()

  if(TARGET korvex::korvex-dao AND NOT CMAKE_CROSSCOMPILING AND NOT KORVEX_DAO_EXECUTABLE)
    set(command $<TARGET_FILE:korvex::korvex-dao>)
  else()
    find_program(KORVEX_DAO_EXECUTABLE korvex-dao DOC "The command that checks definitions" NO_CMAKE_FIND_ROOT_PATH)
    if(NOT KORVEX_DAO_EXECUTABLE)
      message(FATAL_ERROR "korvex_check_definitions: there is no korvex-dao; set KORVEX_BUILD_TOOL to ON to build it, "
        "or KORVEX_DAO_EXECUTABLE to its path")
    endif()
    set(command ${KORVEX_DAO_EXECUTABLE})
  endif()

  # The function may be called several times for a target.
  get_property(count TARGET ${target} PROPERTY KORVEX_DEFINITION_CHECKS)
  if(NOT count)
    set(count 0)
  endif()
  math(EXPR count "${count} + 1")
  set_property(TARGET ${target} PROPERTY KORVEX_DEFINITION_CHECKS ${count})
  set(name ${target}_definitions_${count})
  set(stamp ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/${name}.stamp)
  # A removed document is not newer than the stamp, but the list of documents is.
  set(documents_list ${CMAKE_CURRENT_BINARY_DIR}/CMakeFiles/${name}.txt)
  list(JOIN documents "\n" lines)
  file(GENERATE OUTPUT ${documents_list} CONTENT "${lines}\n")
  add_custom_command(OUTPUT ${stamp}
    COMMAND ${command} check --format text ${ARG_OPTIONS} -- ${checked}
    COMMAND ${CMAKE_COMMAND} -E touch ${stamp}
    DEPENDS ${documents} ${documents_list} ${schema_file} ${ARG_MODELS} ${command}
    COMMENT "Checking the definitions of ${target}"
    VERBATIM
  )
  add_custom_target(${name} DEPENDS ${stamp})
  add_dependencies(${target} ${name})
endfunction()
