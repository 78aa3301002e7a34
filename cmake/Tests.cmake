# One test program a folder. It runs under script/headless: a home and, with DISPLAY, an X server of its own.
#
#   directfax_test(support_test SOURCES cipher_test.cpp USES support)
#   directfax_test(panel_test DISPLAY SOURCES panel_test.mm USES platform LIBRARIES GNUstep::Gui)
#
# A test with the label "once" runs in release only: what it looks at is the same under the sanitizers.
find_package(GTest REQUIRED)

function(directfax_test name)
  cmake_parse_arguments(test "DISPLAY" "LIMIT" "SOURCES;USES;LIBRARIES;ARGUMENTS;DEPENDS" ${ARGN})
  add_executable(${name} ${test_SOURCES})
  target_link_libraries(${name} PRIVATE ${test_USES} ${test_LIBRARIES} GTest::gmock)
  # What a test tries is built as it ships; the test itself would take twice as long to optimise as to build.
  target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O0>)
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
