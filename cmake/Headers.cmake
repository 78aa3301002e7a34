# The toolkit's header and GoogleMock's are most of what the compiler reads for a small source, so each is read once and
# kept. GCC takes what is kept only under the flags that it was kept with: rooms (-fPIC) and tests (-fPIE, never optimised)
# have an owner each. A source still includes what it uses: script/lint, script/fuzz and the package's build read it as it
# stands.
set(owner_sources "")
foreach(kind cpp m mm)
  set(owner_source ${CMAKE_BINARY_DIR}/headers/nothing.${kind})
  file(CONFIGURE OUTPUT ${owner_source} CONTENT "")
  list(APPEND owner_sources ${owner_source})
endforeach()
# CMake wants a header for each language of a target; only Objective-C++ gains by it in a room.
set(toolkit_headers
  $<$<COMPILE_LANGUAGE:OBJCXX>:<AppKit/AppKit.h$<ANGLE-R>>
  $<$<COMPILE_LANGUAGE:OBJC>:<Foundation/Foundation.h$<ANGLE-R>>
  $<$<COMPILE_LANGUAGE:CXX>:<string$<ANGLE-R>>)

add_library(room_headers STATIC ${owner_sources})
target_link_libraries(room_headers PRIVATE GNUstep::Gui)
target_precompile_headers(room_headers PRIVATE ${toolkit_headers})
