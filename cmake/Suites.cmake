# Tests on GoogleTest: ctest knows a program's suites, not its single tests. The start of a process costs more than most
# tests take; which test of a suite failed stands in what the suite printed.

# zv32_suites(TARGET PREFIX [WITHOUT FILTER] [PROPERTIES ...]): the tests are called PREFIX and the suite's name; a
# program may have several prefixes. WITHOUT leaves out what the filter of GoogleTest names.
function(zv32_suites target prefix)
  cmake_parse_arguments(ARG "" "WITHOUT" "PROPERTIES" ${ARGN})
  set(file ${CMAKE_CURRENT_BINARY_DIR}/${prefix}${target}.cmake)
  file(GENERATE OUTPUT ${file} CONTENT
"include([==[${PROJECT_SOURCE_DIR}/cmake/SuitesOfProgram.cmake]==])
zv32_suites_of([==[$<TARGET_FILE:${target}>]==] [==[${prefix}]==] [==[${ARG_WITHOUT}]==] [==[${ARG_PROPERTIES}]==])
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${file})
endfunction()
