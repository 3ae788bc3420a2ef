# Read by ctest for each program of quorvel_discover_suites, which sets: the program, the emulator that
# runs it where there is one, the filter of its cases, whether each is a test, the properties of the tests, the folder that they
# run in, and the file that keeps the list of tests.

if(NOT EXISTS ${program})
  add_test(${program}_NOT_BUILT ${program})
  return()
endif()

if("${program}" IS_NEWER_THAN "${list}")
  execute_process(COMMAND ${emulator} ${program} --gtest_list_tests --gtest_filter=${filter}
                  WORKING_DIRECTORY ${folder} OUTPUT_VARIABLE listing RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${program} does not list its tests: ${result}\n${listing}")
  endif()
  # A suite stands at the begin of its line and ends with a dot; its cases are indented. Behind either
  # may stand a comment.
  string(REPLACE "\r" "" listing "${listing}")
  string(REPLACE ";" "," listing "${listing}")
  string(REPLACE "\n" ";" lines "${listing}")
  set(command "[==[${program}]==]")
  if(emulator)
    string(PREPEND command "[==[${emulator}]==] ")
  endif()
  set(script "")
  set(name "")
  set(cases "")
  set(count 0)
  macro(add_cases)
    if(cases)
      string(REGEX REPLACE "^:" "" cases "${cases}")
      string(APPEND script "add_test([==[${name}]==] ${command} "
                           "[==[--gtest_filter=${cases}]==])\n"
                           "set_tests_properties([==[${name}]==] PROPERTIES "
                           "WORKING_DIRECTORY [==[${folder}]==] "
                           "FAIL_REGULAR_EXPRESSION [==[Running 0 tests]==] ${properties})\n")
      set(cases "")
    endif()
  endmacro()
  foreach(line IN LISTS lines)
    string(REGEX REPLACE " *#.*" "" line "${line}")
    if(line MATCHES "^  ([^ ]+)")
      string(APPEND cases ":${suite}.${CMAKE_MATCH_1}")
      math(EXPR count "${count} + 1")
      if(each_case)
        set(name "${suite}.${CMAKE_MATCH_1}")
        add_cases()
      endif()
    elseif(line MATCHES "^([^ ]+)\\.$")
      set(suite "${CMAKE_MATCH_1}")
      if(NOT each_case)
        add_cases()
      endif()
      set(name "${suite}")
    endif()
  endforeach()
  add_cases()
  # At once: another ctest may be reading it, and one that was killed must not leave a part.
  file(WRITE ${list}.new "# cases: ${count}\n${script}")
  file(RENAME ${list}.new ${list})
endif()
include(${list})
