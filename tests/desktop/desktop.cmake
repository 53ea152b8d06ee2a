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

# The terminal's window in one process with its machine, on no display: its texts, its files, its counters.
add_executable(terminal_window_test ${desktop}/terminal_window_test.cpp
                                    ${PROJECT_SOURCE_DIR}/src/terminal/terminal_window.cpp)
target_include_directories(terminal_window_test PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
target_link_libraries(terminal_window_test PRIVATE hexlane_terminal_line hexlane_core hexlane_qt hexlane_posix
                                                   hexlane_platform_common GTest::gtest)
add_test(NAME desktop.terminal COMMAND terminal_window_test)
set_tests_properties(desktop.terminal PROPERTIES TIMEOUT 300 ENVIRONMENT QT_QPA_PLATFORM=offscreen)

# The program itself: typing, saving, blocks, macros, colors, second start, file dialogs, end.
add_test(NAME desktop.program
         COMMAND Python3::Interpreter ${desktop}/desktop_test.py --program $<TARGET_FILE:hexlane>
                 --examples ${PROJECT_SOURCE_DIR}/examples --pictures ${pictures})

# Every dialog comes up by its keys and goes by Esc. The target docs_pictures puts its picture into the manual.
set(keep_pictures Python3::Interpreter ${desktop}/pictures.py --program $<TARGET_FILE:hexlane>
    --examples ${PROJECT_SOURCE_DIR}/examples --out)
add_test(NAME desktop.dialogs COMMAND ${keep_pictures} ${pictures}/manual)
add_custom_target(docs_pictures
                  COMMAND ${keep_pictures} ${PROJECT_SOURCE_DIR}/docs/pictures --folder /tmp/hexlane-shop VERBATIM)
add_dependencies(docs_pictures hexlane hexlane-terminal)

# The tour of ./run, so that it stays as the program is.
add_test(NAME desktop.tour
         COMMAND Python3::Interpreter ${desktop}/tour.py --program $<TARGET_FILE:hexlane>
                 --simulator $<TARGET_FILE:control-simulator> --example ${PROJECT_SOURCE_DIR}/examples/pocket-plate.nc
                 --out ${pictures}/tour)

# Two ports at work while editing goes on, against two simulated controls.
add_test(NAME desktop.transfers
         COMMAND Python3::Interpreter ${desktop}/desktop_transfers.py --program $<TARGET_FILE:hexlane>
                 --cli $<TARGET_FILE:hexlane-cli> --simulator $<TARGET_FILE:control-simulator>
                 --examples ${PROJECT_SOURCE_DIR}/examples --pictures ${pictures})

set_tests_properties(desktop.messages desktop.program desktop.dialogs desktop.tour desktop.transfers
                     PROPERTIES TIMEOUT 600)

# Compare and Print, into PDF files, and through a print service of the test's own where one can be set up.
add_test(NAME desktop.compare
         COMMAND Python3::Interpreter ${desktop}/compare_test.py --program $<TARGET_FILE:hexlane>
                 --examples ${PROJECT_SOURCE_DIR}/examples --pictures ${pictures})
add_test(NAME desktop.print
         COMMAND Python3::Interpreter ${desktop}/print_test.py --program $<TARGET_FILE:hexlane>
                 --examples ${PROJECT_SOURCE_DIR}/examples --pictures ${pictures})
set_tests_properties(desktop.compare desktop.print PROPERTIES TIMEOUT 600 SKIP_RETURN_CODE 77)
