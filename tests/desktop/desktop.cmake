# The real window on a virtual display, included by tests/CMakeLists.txt. Pictures stay in the build folder.
if(NOT HEXLANE_DESKTOP)
  return()
endif()

set(desktop ${CMAKE_CURRENT_SOURCE_DIR}/desktop)
set(pictures ${CMAKE_BINARY_DIR}/pictures)

# What reaches a window procedure from real keys, mouse, menus and boxes.
add_executable(message_probe ${desktop}/message_probe.cpp)
target_link_libraries(message_probe PRIVATE hexlane_qt hexlane_posix hexlane_platform_common)
add_test(NAME desktop.messages
         COMMAND Python3::Interpreter ${desktop}/messages_test.py --probe $<TARGET_FILE:message_probe>
                 --pictures ${pictures})

# The program itself: start, type, save, second start, file dialog, end.
add_test(NAME desktop.program
         COMMAND Python3::Interpreter ${desktop}/desktop_test.py --program $<TARGET_FILE:hexlane>
                 --examples ${PROJECT_SOURCE_DIR}/examples --pictures ${pictures})
set_tests_properties(desktop.messages desktop.program PROPERTIES TIMEOUT 600)
