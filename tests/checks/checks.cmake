# Checks of the code's own rules, included by tests/CMakeLists.txt. Those that need no desktop run in every build with
# tests, so that the build that people use notices what a change has forgotten.

set(checks ${CMAKE_CURRENT_SOURCE_DIR}/checks)
set(top ${PROJECT_SOURCE_DIR})

add_test(NAME check.includes
         COMMAND Python3::Interpreter ${checks}/check_includes.py ${checks}/includes.txt ${top}/src)

find_program(CLANG_FORMAT NAMES clang-format-14 clang-format REQUIRED)
add_test(NAME check.format COMMAND Python3::Interpreter ${checks}/check_format.py ${CLANG_FORMAT} ${top})

add_test(NAME check.readme
         COMMAND Python3::Interpreter ${checks}/check_readme.py $<TARGET_FILE:hexlane-script> ${top})

add_test(NAME check.manual
         COMMAND Python3::Interpreter ${checks}/check_manual.py $<TARGET_FILE:hexlane-script> ${top}/docs/manual.md)

add_test(NAME check.letters COMMAND Python3::Interpreter ${checks}/check_letters.py ${top}/tests/scripted)

add_test(NAME check.numbers
         COMMAND Python3::Interpreter ${checks}/check_numbers.py ${top}/src ${top}/docs/manual.md)

# What is left looks at programs as they are shipped.
if(NOT HEXLANE_DESKTOP)
  return()
endif()

add_test(NAME check.core_symbols
         COMMAND Python3::Interpreter ${checks}/check_symbols.py ${CMAKE_NM} $<TARGET_FILE:hexlane_core>
                 ${checks}/core_symbols.txt)

add_test(NAME check.install
         COMMAND Python3::Interpreter ${checks}/check_install.py ${CMAKE_COMMAND} ${CMAKE_BINARY_DIR}
                 ${CMAKE_BINARY_DIR}/installed)

add_test(NAME check.packages COMMAND Python3::Interpreter ${checks}/check_packages.py ${top} ${CMAKE_BINARY_DIR}/packages)
set_tests_properties(check.packages PROPERTIES SKIP_RETURN_CODE 77)

# Each header compiles alone, and twice in a row: one source file for each header, part of every build.
file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${top}/src ${top}/src/*.h)
set(header_sources)
foreach(header ${headers})
  string(MAKE_C_IDENTIFIER ${header} name)
  set(file ${CMAKE_CURRENT_BINARY_DIR}/headers/${name}.cpp)
  file(CONFIGURE OUTPUT ${file} CONTENT "#include \"${header}\"\n#include \"${header}\"\n")
  list(APPEND header_sources ${file})
endforeach()
add_library(headers_alone OBJECT ${header_sources})
target_link_libraries(headers_alone PRIVATE hexlane_qt)
