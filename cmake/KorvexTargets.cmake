# How every target of this project is compiled.

set(KORVEX_SOURCE_DIR ${CMAKE_CURRENT_SOURCE_DIR})

# Settings of all our targets, libraries, tool and tests alike.
function(korvex_target name)
  target_compile_features(${name} PUBLIC cxx_std_20)
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  target_include_directories(${name}
    PUBLIC $<BUILD_INTERFACE:${KORVEX_SOURCE_DIR}/include>
    PRIVATE ${KORVEX_SOURCE_DIR}/src
  )
  target_compile_options(${name} PRIVATE -Wall -Wextra -Wconversion)
  # In unity builds, a name in one file may shadow a name in another.
  if(NOT CMAKE_UNITY_BUILD)
    target_compile_options(${name} PRIVATE -Wshadow)
  endif()
  # For "a" + std::string(...) + "b", the optimiser of g++ 12 wrongly reports overlapping memory.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${name} PRIVATE -Wno-restrict)
  endif()
  # g++ wrongly reports that the destroying operator delete of elements does not match the global operator new.
  if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    target_compile_options(${name} PRIVATE -Wno-mismatched-new-delete)
  endif()
  if(KORVEX_WARNINGS_AS_ERRORS)
    target_compile_options(${name} PRIVATE -Werror)
  endif()
  if(KORVEX_SANITIZE)
    # The vptr check needs type information, which the libraries lack.
    target_compile_options(${name} PRIVATE
      -fsanitize=${KORVEX_SANITIZE} -fno-sanitize=vptr -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${name} PUBLIC -fsanitize=${KORVEX_SANITIZE})
  endif()
endfunction()

# A program that tests or measures code in src/.
function(korvex_program name)
  korvex_target(${name})
  target_include_directories(${name} PRIVATE ${KORVEX_SOURCE_DIR})
endfunction()

# korvex_library(dao SOURCES...) adds the library korvex_dao with the alias korvex::dao. BUILD_SHARED_LIBS decides its
# type, unless STATIC precedes the sources.
function(korvex_library name)
  add_library(korvex_${name} ${ARGN})
  add_library(korvex::${name} ALIAS korvex_${name})
  korvex_target(korvex_${name})
  # Static libraries hide their symbols, too, because they may become part of an app's shared library.
  set_target_properties(korvex_${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON
    CXX_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
  )
  target_compile_options(korvex_${name} PRIVATE $<$<NOT:$<BOOL:${KORVEX_EXCEPTIONS}>>:-fno-exceptions> -fno-rtti)

  get_target_property(type korvex_${name} TYPE)
  if(type STREQUAL SHARED_LIBRARY)
    korvex_shared_library(korvex_${name})
  endif()
endfunction()

function(korvex_shared_library target)
  target_compile_definitions(${target} PUBLIC KORVEX_SHARED)
  # Before 1.0.0, each minor version may change the exported symbols.
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
  )
  if(APPLE OR NOT UNIX)
    return()
  endif()
  # Hides the instances of the standard library's templates, whose visibility the standard library sets.
  set(exports ${KORVEX_SOURCE_DIR}/cmake/exports.map)
  target_link_options(${target} PRIVATE -Wl,--version-script=${exports})
  set_target_properties(${target} PROPERTIES LINK_DEPENDS ${exports})
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
    # Phones with memory pages of 16 KB require that alignment.
    target_link_options(${target} PRIVATE -Wl,-z,max-page-size=16384)
  endif()
endfunction()
