# Read by ctest, which has no more of CMake than it needs; see Suites.cmake.

# Asks the program for its suites when it is newer than what it answered the last time.
function(zv32_list_suites program list filter)
  if(EXISTS ${list} AND ${list} IS_NEWER_THAN ${program} AND ${list} IS_NEWER_THAN ${CMAKE_CURRENT_LIST_FILE})
    return()
  endif()
  execute_process(COMMAND ${program} --gtest_list_tests --gtest_filter=${filter}
    OUTPUT_VARIABLE tests RESULT_VARIABLE result TIMEOUT 60)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${program} can't list its tests: ${result}")
  endif()
  file(WRITE ${list} "${tests}")
endfunction()

function(zv32_suites_of program prefix without properties)
  if(NOT EXISTS ${program})
    add_test(${prefix}NOT_BUILT ${program})
    return()
  endif()
  set(list ${CMAKE_CURRENT_LIST_FILE}.suites) # beside the file that calls this
  zv32_list_suites(${program} ${list} "*-${without}")
  file(STRINGS ${list} lines REGEX "^[^ ]+[.]( *#.*)?$")
  foreach(line ${lines})
    string(REGEX REPLACE "[.]( *#.*)?$" "" suite ${line})
    add_test(${prefix}${suite} ${program} "--gtest_filter=${suite}.*-${without}")
    set_tests_properties(${prefix}${suite} PROPERTIES TIMEOUT 300 ${properties})
  endforeach()
endfunction()
