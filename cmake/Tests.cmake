# One test program a folder. It runs under script/headless: a home and, with DISPLAY, an X server of its own.
#
#   directfax_test(support_test SOURCES cipher_test.cpp USES support)
#   directfax_test(panel_test DISPLAY SOURCES panel_test.mm USES platform LIBRARIES GNUstep::Gui)
#
# A test with the label "once" runs in release only: what it looks at is the same under the sanitizers.
find_package(GTest REQUIRED)

# What a test tries is built as it ships, or with every check; to optimise the test itself, or to look for undefined
# behaviour in it, would take twice as long as to compile it.
set(test_options $<$<CONFIG:Release>:-O0> $<$<BOOL:${DIRECTFAX_SANITIZE}>:-fno-sanitize=undefined>)
add_executable(test_headers ${PROJECT_SOURCE_DIR}/tests/application/main.mm ${owner_sources})
target_link_libraries(test_headers PRIVATE GNUstep::Gui GTest::gmock)
target_compile_options(test_headers PRIVATE ${test_options})
target_precompile_headers(test_headers PRIVATE ${toolkit_headers} $<$<COMPILE_LANGUAGE:CXX,OBJCXX>:<gmock/gmock.h$<ANGLE-R>>)

# Sources of several test programs, compiled once. A program gets them by naming the part in USES, and names the parts that
# this one uses too.
function(directfax_test_part name)
  cmake_parse_arguments(part "" "" "SOURCES;USES" ${ARGN})
  add_library(${name} OBJECT ${part_SOURCES})
  target_include_directories(${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(${name} PUBLIC ${part_USES} GTest::gmock)
  # As the programs are compiled, and as the headers were kept.
  target_compile_options(${name} PRIVATE -fPIE ${test_options})
  target_precompile_headers(${name} REUSE_FROM test_headers)
endfunction()

function(directfax_test name)
  cmake_parse_arguments(test "DISPLAY" "LIMIT" "SOURCES;USES;LIBRARIES;ARGUMENTS;DEPENDS" ${ARGN})
  add_executable(${name} ${test_SOURCES})
  target_link_libraries(${name} PRIVATE ${test_USES} ${test_LIBRARIES} GTest::gmock)
  target_compile_options(${name} PRIVATE ${test_options})
  target_precompile_headers(${name} REUSE_FROM test_headers)
  # A test program may stand in for a platform function: its own is found first only if it is exported.
  set_target_properties(${name} PROPERTIES ENABLE_EXPORTS ON)
  if(test_DISPLAY)
    target_link_libraries(${name} PRIVATE test_application)
    set(display "")
  else()
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
    set(display --no-display)
  endif()
  if(test_DEPENDS)
    add_dependencies(${name} ${test_DEPENDS})
  endif()
  if(NOT test_LIMIT)
    set(test_LIMIT 180)
  endif()
  add_test(NAME ${name}
           COMMAND ${PROJECT_SOURCE_DIR}/script/headless --limit ${test_LIMIT} ${display}
                   $<TARGET_FILE:${name}> ${test_ARGUMENTS})
endfunction()
