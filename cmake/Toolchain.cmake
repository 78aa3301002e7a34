# Compiler rules that hold for every target, and the system libraries, each as one imported target.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
# CMake has no standard flags for GCC's Objective-C front ends.
add_compile_options($<$<COMPILE_LANGUAGE:OBJCXX>:-std=gnu++20> $<$<COMPILE_LANGUAGE:OBJC>:-std=gnu11>)
foreach(language C CXX OBJC OBJCXX)
  # Only what is marked for export leaves the bundle: it shares one flat namespace with its host.
  set(CMAKE_${language}_VISIBILITY_PRESET hidden)
endforeach()
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_compile_options(-Wall -Wextra -Werror)
# The PPD interface is what print dialog extensions are made of, however long CUPS has called it deprecated.
add_compile_options(-Wno-deprecated-declarations)
add_compile_options($<$<COMPILE_LANGUAGE:CXX,OBJCXX>:-Wnon-virtual-dtor>)

if(DIRECTFAX_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# For script/fuzz: the plain sources by clang, seen by its fuzzer; the Objective-C ones, which it does not see, by GCC.
if(DIRECTFAX_FUZZ)
  # GCC's own folder has the headers of the Objective-C runtime.
  execute_process(COMMAND ${CMAKE_OBJC_COMPILER} -print-file-name=include OUTPUT_VARIABLE runtime_headers
                  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-idirafter${runtime_headers}>)
  add_compile_options($<$<COMPILE_LANGUAGE:C,CXX>:-fsanitize=fuzzer-no-link,address,undefined>
                      $<$<COMPILE_LANGUAGE:C,CXX>:-fno-sanitize-recover=undefined> -fno-omit-frame-pointer)
endif()

find_package(PkgConfig REQUIRED)
find_package(Cups REQUIRED)

# GNUstep: what `gnustep-config --objc-flags` and `--gui-libs` say, without their dependency-file and warning options.
find_program(GNUSTEP_CONFIG gnustep-config REQUIRED)
function(gnustep_variable result name)
  execute_process(COMMAND ${GNUSTEP_CONFIG} --variable=${name} OUTPUT_VARIABLE value
                  OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(${result} ${value} PARENT_SCOPE)
endfunction()
gnustep_variable(gnustep_headers GNUSTEP_SYSTEM_HEADERS)

set(objc_only $<COMPILE_LANGUAGE:OBJC,OBJCXX>)
add_library(GNUstep::Flags INTERFACE IMPORTED)
target_compile_definitions(GNUstep::Flags INTERFACE
  $<${objc_only}:GNUSTEP> $<${objc_only}:GNUSTEP_BASE_LIBRARY=1> $<${objc_only}:GNU_GUI_LIBRARY=1>
  $<${objc_only}:GNU_RUNTIME=1> $<${objc_only}:_NATIVE_OBJC_EXCEPTIONS>)
target_compile_options(GNUstep::Flags INTERFACE
  $<${objc_only}:-fno-strict-aliasing> $<${objc_only}:-fexceptions> $<${objc_only}:-fobjc-exceptions>
  $<${objc_only}:-fconstant-string-class=NSConstantString>
  # GNUstep's headers are written for C; these say nothing about our own code.
  $<${objc_only}:-Wno-import> $<${objc_only}:-Wno-unused-parameter>)
target_include_directories(GNUstep::Flags SYSTEM INTERFACE ${gnustep_headers})

add_library(GNUstep::Base INTERFACE IMPORTED)
target_link_libraries(GNUstep::Base INTERFACE GNUstep::Flags gnustep-base objc pthread)
add_library(GNUstep::Gui INTERFACE IMPORTED)
target_link_libraries(GNUstep::Gui INTERFACE gnustep-gui GNUstep::Base)
