# A room is one folder, one target. Sources include headers as "room/header.h", and each room sees only the rooms it
# names in USES: a link in the build tree stands for each, so an arrow that the architecture does not know fails to
# compile.
#
#   directfax_room(view USES support platform SOURCES a.cpp b.mm)
function(directfax_room name)
  cmake_parse_arguments(room "SHARED" "" "USES;SOURCES;LIBRARIES" ${ARGN})
  if(room_SHARED)
    add_library(${name} SHARED ${room_SOURCES})
  else()
    add_library(${name} STATIC ${room_SOURCES})
  endif()
  set(door ${CMAKE_BINARY_DIR}/rooms/${name})
  file(MAKE_DIRECTORY ${door})
  file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR} ${door}/${name} SYMBOLIC)
  target_include_directories(${name} PUBLIC ${door})
  target_link_libraries(${name} PUBLIC ${room_USES} ${room_LIBRARIES})
  if(TARGET room_headers AND room_SOURCES MATCHES "\\.mm(;|$)")
    target_precompile_headers(${name} REUSE_FROM room_headers)
    set(others ${room_SOURCES})
    list(FILTER others EXCLUDE REGEX "\\.mm$")
    set_source_files_properties(${others} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
  endif()
endfunction()
