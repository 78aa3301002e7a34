# The print dialog extension as macOS loads it: the rooms of the bundle in one loadable bundle, with compiled nibs. The
# programs and tests are for Linux. Not run on a Mac so far; what it leans on is public documentation:
#   - PDEPlugIn Protocol Reference: the class of NSPrincipalClass is the factory, and the PPD file's APDialogExtension
#     names the path of the bundle, below /Library/Printers,
#   - ibtool(1): --compile makes a nib of a xib,
#   - ld(1): -exported_symbols_list, whose names carry the underscore of C.
set(CMAKE_OSX_DEPLOYMENT_TARGET 10.15 CACHE STRING "The first macOS whose C++ library has std::filesystem")
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_OBJCXX_STANDARD 20)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_OBJCXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
add_compile_options(-Wall -Wextra -Werror -Wno-deprecated-declarations -Wno-unused-parameter)
add_compile_options($<$<COMPILE_LANGUAGE:OBJCXX>:-fno-objc-arc>)
include(Rooms)

# What platform/ is on Linux the system is here; the text encodings are plain C++ on both.
add_library(platform_text STATIC platform/text_encoding.cpp)
set(text_door ${CMAKE_BINARY_DIR}/rooms/platform_text)
file(MAKE_DIRECTORY ${text_door})
file(CREATE_LINK ${CMAKE_CURRENT_SOURCE_DIR}/platform ${text_door}/platform SYMBOLIC)
target_include_directories(platform_text PUBLIC ${text_door})
target_link_libraries(platform_text PUBLIC iconv)
add_library(platform INTERFACE)
target_include_directories(platform INTERFACE platform/mac)
target_compile_options(platform INTERFACE
  "SHELL:-iframework ${CMAKE_OSX_SYSROOT}/System/Library/Frameworks/Carbon.framework/Frameworks")
target_link_libraries(platform INTERFACE platform_text cups
  "-framework Cocoa" "-framework ApplicationServices" "-framework Carbon" "-framework CoreServices"
  "-framework SystemConfiguration")

foreach(room support view addressbook faxsetting plugin)
  add_subdirectory(${room})
endforeach()

# One list of exported names for both systems: that of the GNU linker, which has one name a line before "local".
set(export_map ${CMAKE_CURRENT_SOURCE_DIR}/resources/exports.map)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${export_map})
file(READ ${export_map} map)
string(REGEX REPLACE "^.*global:|local:.*$" "" map "${map}")
string(REGEX MATCHALL "[A-Za-z_][A-Za-z0-9_]*" names "${map}")
list(TRANSFORM names PREPEND "_")
list(APPEND names "_OBJC_CLASS_$_com_norvalt_tk_o_pde_vexolinddirectfax_*")
list(JOIN names "\n" exported)
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/exported-symbols CONTENT "@exported@\n" @ONLY)

set(objects "")
foreach(room plugin faxsetting addressbook view support support_cipher platform_text)
  list(APPEND objects $<TARGET_OBJECTS:${room}>)
endforeach()
add_library(DirectFax MODULE ${objects})
target_link_libraries(DirectFax PRIVATE platform)
set_target_properties(DirectFax PROPERTIES
  LINKER_LANGUAGE OBJCXX
  BUNDLE ON
  BUNDLE_EXTENSION bundle
  MACOSX_BUNDLE_INFO_PLIST ${CMAKE_CURRENT_SOURCE_DIR}/resources/Info.plist.in
  LINK_DEPENDS ${CMAKE_BINARY_DIR}/exported-symbols)
target_link_options(DirectFax PRIVATE "LINKER:-exported_symbols_list,${CMAKE_BINARY_DIR}/exported-symbols")

set(contents $<TARGET_BUNDLE_CONTENT_DIR:DirectFax>/Resources)
find_program(IBTOOL ibtool REQUIRED)
file(GLOB xibs CONFIGURE_DEPENDS resources/*.xib)
foreach(xib ${xibs})
  get_filename_component(nib ${xib} NAME_WE)
  add_custom_command(TARGET DirectFax POST_BUILD VERBATIM
    COMMAND ${IBTOOL} --errors --warnings --target-device mac --compile ${contents}/${nib}.nib ${xib})
endforeach()
file(GLOB languages CONFIGURE_DEPENDS resources/*.lproj)
foreach(language ${languages})
  get_filename_component(folder ${language} NAME)
  add_custom_command(TARGET DirectFax POST_BUILD VERBATIM
    COMMAND ${CMAKE_COMMAND} -E copy_directory ${language} ${contents}/${folder})
endforeach()

# Beside the driver, where the PPD file's APDialogExtension looks for it.
install(TARGETS DirectFax LIBRARY DESTINATION /Library/Printers/Norvalt)
