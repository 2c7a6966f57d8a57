# How every target of this project is compiled.

set(KORVEX_SOURCE_DIR ${CMAKE_CURRENT_SOURCE_DIR})

# Settings of all our targets, libraries, tool and tests alike.
function(korvex_target name)
  target_compile_features(${name} PUBLIC cxx_std_20)
  set_target_properties(${name} PROPERTIES CXX_EXTENSIONS OFF)
  target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${KORVEX_SOURCE_DIR}>)
  target_compile_options(${name} PRIVATE -Wall -Wextra -Wshadow -Wconversion)
  if(KORVEX_WARNINGS_AS_ERRORS)
    target_compile_options(${name} PRIVATE -Werror)
  endif()
  if(KORVEX_SANITIZE)
    # The libraries carry no type information for the vptr check to read.
    target_compile_options(${name} PRIVATE
      -fsanitize=${KORVEX_SANITIZE} -fno-sanitize=vptr -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${name} PUBLIC -fsanitize=${KORVEX_SANITIZE})
  endif()
endfunction()

# A library of ours: korvex_library(dao SOURCES...) makes korvex_dao, known as korvex::dao.
function(korvex_library name)
  add_library(korvex_${name} STATIC ${ARGN})
  add_library(korvex::${name} ALIAS korvex_${name})
  korvex_target(korvex_${name})
  target_compile_options(korvex_${name} PRIVATE $<$<NOT:$<BOOL:${KORVEX_EXCEPTIONS}>>:-fno-exceptions> -fno-rtti)
endfunction()
