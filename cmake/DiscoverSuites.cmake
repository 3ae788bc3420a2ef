# Tests of programs that an emulator runs, or a sanitizer watches. To start one costs more than most of the
# cases, so that a test of ctest is a suite with all its cases, not one case.

# quorvel_discover_suites(TARGET [EACH_CASE] [TEST_FILTER FILTER] [PROPERTIES ...]): adds a test for each
# suite of a GoogleTest program, or for each case, when ctest starts and the program has changed. FILTER is
# GoogleTest's, PROPERTIES are those of the tests.
function(quorvel_discover_suites target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "EACH_CASE" "TEST_FILTER" "PROPERTIES")
  if(NOT arg_TEST_FILTER)
    set(arg_TEST_FILTER *)
  endif()
  get_property(number GLOBAL PROPERTY QUORVEL_SUITE_LISTS)
  math(EXPR number "0${number} + 1")
  set_property(GLOBAL PROPERTY QUORVEL_SUITE_LISTS ${number})
  set(include ${CMAKE_CURRENT_BINARY_DIR}/${target}-${number}-suites.cmake)
  file(GENERATE OUTPUT ${include} CONTENT
"set(program [==[$<TARGET_FILE:${target}>]==])
set(emulator [==[${CMAKE_CROSSCOMPILING_EMULATOR}]==])
set(filter [==[${arg_TEST_FILTER}]==])
set(each_case [==[${arg_EACH_CASE}]==])
set(properties [==[${arg_PROPERTIES}]==])
set(folder [==[${CMAKE_CURRENT_BINARY_DIR}]==])
set(list [==[${include}.list]==])
include([==[${PROJECT_SOURCE_DIR}/cmake/AddSuites.cmake]==])
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${include})
endfunction()
