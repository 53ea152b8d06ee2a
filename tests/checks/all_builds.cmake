# Read by ctest alone, from the file that `./test` writes: puts the tests of several builds into one run. The
# same tests exist in each build, so every name gets a prefix in front ("dev.store_test.Reload"). A test file
# is a list of calls of add_test and set_tests_properties; both are replaced here by a version that changes the
# name and hands every other argument on as it is, blanks, semicolons and all.

function(tests_of_build prefix folder)
  subdirs(${folder})
endfunction()

function(add_test)
  set(rest "")
  math(EXPR last "${ARGC} - 1")
  foreach(i RANGE 1 ${last})
    string(APPEND rest " [====[${ARGV${i}}]====]")
  endforeach()
  cmake_language(EVAL CODE "_add_test([====[${prefix}${ARGV0}]====]${rest})")
endfunction()

function(set_tests_properties)
  set(rest "")
  math(EXPR last "${ARGC} - 1")
  foreach(i RANGE 1 ${last})
    string(APPEND rest " [====[${ARGV${i}}]====]")
  endforeach()
  cmake_language(EVAL CODE "_set_tests_properties([====[${prefix}${ARGV0}]====]${rest})")
endfunction()
