# Counts which lines run. script/coverage builds so, and reads the counts.
add_library(coverage_dumps SHARED ${CMAKE_CURRENT_LIST_DIR}/coverage/dumps.c)
set_target_properties(coverage_dumps PROPERTIES C_VISIBILITY_PRESET default)
add_library(coverage_module OBJECT ${CMAKE_CURRENT_LIST_DIR}/coverage/module.c)
add_compile_options(--coverage -fprofile-update=atomic)
# Each module has counters of its own, so none may take another's functions for them; and copied programs find the library.
add_link_options(--coverage LINKER:--exclude-libs,libgcov.a LINKER:-rpath,${CMAKE_BINARY_DIR})
set(is_module $<NOT:$<IN_LIST:$<TARGET_PROPERTY:TYPE>,STATIC_LIBRARY$<SEMICOLON>OBJECT_LIBRARY>>)
link_libraries($<${is_module}:coverage_dumps> $<${is_module}:$<TARGET_OBJECTS:coverage_module>>)
