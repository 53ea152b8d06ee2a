# The serial station end to end: hexlane-cli and control-simulator, two programs that share no code, over ptys.
# Included by tests/CMakeLists.txt.
set(peers ${CMAKE_CURRENT_SOURCE_DIR}/peers)

add_executable(console_test ${peers}/console_test.cpp)
target_link_libraries(console_test PRIVATE hexlane_console hexlane_posix hexlane_platform_common GTest::gtest_main)
gtest_discover_tests(console_test TEST_PREFIX console_test. DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)

# Both slots of the engine at once, over ptys, without a window.
add_executable(two_slots_test ${peers}/two_slots_test.cpp)
target_include_directories(two_slots_test PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(two_slots_test PRIVATE hexlane_core hexlane_console hexlane_posix hexlane_platform_common
                                             GTest::gtest_main)
gtest_discover_tests(two_slots_test TEST_PREFIX two_slots_test. DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)

# Not sanitized: they are loaded ahead of a sanitizer's own library.
foreach(name flush_fails bytes_lost)
  add_library(${name} MODULE ${peers}/${name}.cpp)
  target_compile_options(${name} PRIVATE -fno-sanitize=all)
  target_link_options(${name} PRIVATE -fno-sanitize=all)
endforeach()

foreach(name send receive random tools machines simulator wire_forms readme files)
  add_test(NAME peers.${name}
           COMMAND Python3::Interpreter ${peers}/${name}_test.py --cli $<TARGET_FILE:hexlane-cli>
                   --simulator $<TARGET_FILE:control-simulator> --flush-fails $<TARGET_FILE:flush_fails>
                   --bytes-lost $<TARGET_FILE:bytes_lost>)
  set_tests_properties(peers.${name} PROPERTIES TIMEOUT 600)
endforeach()
