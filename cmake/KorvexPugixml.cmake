# korvex_use_pugixml(TARGET) lets a target include and link pugixml.
#
# Reading a document calls pugixml's accessors for everything. The static library is faster than the shared one, and
# pugixml's sources, compiled into the target, are faster still.
include_guard(GLOBAL)

set(KORVEX_PUGIXML_SOURCE "" CACHE PATH "pugixml's directory src, to be compiled into the loader in place of the library")

if(KORVEX_PUGIXML_SOURCE)
  if(NOT EXISTS ${KORVEX_PUGIXML_SOURCE}/pugixml.cpp)
    message(FATAL_ERROR "KORVEX_PUGIXML_SOURCE: there is no pugixml.cpp in ${KORVEX_PUGIXML_SOURCE}")
  endif()
else()
  find_package(pugixml REQUIRED)
endif()

function(korvex_use_pugixml target)
  get_target_property(type ${target} TYPE)
  if(KORVEX_PUGIXML_SOURCE)
    # A separate namespace, so that an app may link another pugixml.
    target_include_directories(${target} SYSTEM BEFORE PRIVATE ${KORVEX_PUGIXML_SOURCE})
    target_compile_definitions(${target} PRIVATE PUGIXML_HEADER_ONLY PUGIXML_NO_XPATH PUGIXML_NO_STL pugi=korvex_pugi)
  elseif(TARGET pugixml::static AND NOT type STREQUAL SHARED_LIBRARY)
    target_link_libraries(${target} PRIVATE pugixml::static)
  else()
    target_link_libraries(${target} PRIVATE pugixml::pugixml)
  endif()
endfunction()
