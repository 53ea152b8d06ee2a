// desktop_test.cpp: the desktop in memory: what a key, a timer, a box and a control are to the program, and
// in which order.

#include "platform/scripted/person.h"
#include "platform/scripted/record.h"
#include "platform/scripted/test_hooks.h"

#include <gtest/gtest.h>

#include <map>

namespace hexlane::platform {
namespace {

const std::map<uint32_t, const char*> MESSAGE_NAMES = {
    {WM_SIZE, "size"},    {WM_PAINT, "paint"},   {WM_SETFOCUS, "focus"}, {WM_KILLFOCUS, "blur"},
    {WM_KEYDOWN, "down"}, {WM_KEYUP, "up"},      {WM_CHAR, "char"},      {WM_COMMAND, "command"},
    {WM_TIMER, "timer"},  {WM_CREATE, "create"},
};

std::string record;    // "down 65, char 97, ..." since it was last taken
int box_on_timer = 0;  // a timer that brings up a box
int box_on_command = 0;
bool posts_on_char = false;

int64_t window_proc(WindowHandle window, uint32_t message, int64_t first, int64_t) {
    const auto name = MESSAGE_NAMES.find(message);
    record += record.empty() ? "" : ", ";
    record += name != MESSAGE_NAMES.end() ? name->second : std::to_string(message);
    if (message >= WM_KEYDOWN && message <= WM_TIMER) {
        record += " " + std::to_string(first);
    }
    if ((message == WM_TIMER && first == box_on_timer) ||
        (message == WM_COMMAND && first == box_on_command)) {
        record += ", shown " + std::to_string(message_box("Stop?", "Test", BoxIcon::STOP, BUTTONS_YES_NO));
    }
    if (message == WM_CHAR && posts_on_char) {
        post_message(window, 0x8001, 0, 0);
    }
    return 0;
}

std::string taken() {
    const std::string all = record;
    record.clear();
    return all;
}

constexpr MenuPopup POPUPS[] = {{1401, "&File", "", false}};
constexpr MenuEntry ENTRIES[] = {{1401, 1001, "&Open", "", false, false},
                                 {1401, 1002, "&Save", "", false, true}};
constexpr Accelerator ACCELERATORS[] = {
    {'O', KEY_WITH_CTRL, 1001}, {'S', KEY_WITH_CTRL, 1002}, {VK_BACK, 0, 1031}};

class DesktopTest : public ::testing::Test {
protected:
    void SetUp() override {
        reset_desktop();
        box_on_timer = box_on_command = 0;
        posts_on_char = false;
        const MainWindowSpec spec = {"Test", "Test", window_proc, POPUPS, 1, ENTRIES, 2, ACCELERATORS, 3};
        window = create_main_window(&spec);
        show_window(window, ShowWindow::NORMAL);
        EXPECT_EQ(taken(), "create, size, paint, focus");
    }
    void TearDown() override { EXPECT_EQ(unused_answers(), 0); }

    WindowHandle window = NO_WINDOW;
};

TEST_F(DesktopTest, KeysBecomeTheMessagesOfTheirPress) {
    const struct {
        const char* chord;
        const char* messages;
    } cases[] = {
        {"A", "down 65, char 97, up 65"},
        {"Shift+A", "down 16, down 65, char 65, up 65, up 16"},
        {"Ctrl+Shift+End", "down 16, down 17, down 35, up 35, up 17, up 16"},
        {"Ctrl+B", "down 17, down 66, char 2, up 66, up 17"},
        {"Alt+F", ""},
        {"F10", ""},                                        // the menu bar's
        {"Ctrl+O", "down 17, command 1001, up 79, up 17"},  // accelerator
        {"Ctrl+Shift+O", "down 16, down 17, down 79, char 15, up 79, up 17, up 16"},
        {"Ctrl+S", "down 17, up 83, up 17"},  // of a grayed entry: taken, and nothing done
        {"Backspace", "command 1031, up 8"},  // of a command without an entry
        {"Shift+Backspace", "down 16, down 8, char 8, up 8, up 16"},
    };
    for (const auto& c : cases) {
        press_key(c.chord);
        EXPECT_EQ(taken(), c.messages) << c.chord;
        EXPECT_FALSE(key_is_down(VK_SHIFT) || key_is_down(VK_CONTROL)) << c.chord;
    }
}

TEST_F(DesktopTest, PostedMessagesAreServedBeforeTheRelease) {
    posts_on_char = true;
    press_key("A");
    EXPECT_EQ(taken(), "down 65, char 97, 32769, up 65");
}

TEST_F(DesktopTest, BoxTakesTheRestOfThePressAndTheFocus) {
    box_on_command = 1001;
    answer_box("No");
    press_key("Ctrl+O");
    EXPECT_EQ(taken(), "down 17, command 1001, up 79, up 17, blur, focus, shown 1")
        << "what is held is let go in front of the loss";
    EXPECT_FALSE(key_is_down(VK_CONTROL));
    ASSERT_EQ(shown_boxes().size(), 1U);
    EXPECT_EQ(shown_boxes()[0].pressed, "No");
}

TEST_F(DesktopTest, TheButtonIsLetGoOutsideWhenTheKeyboardGoes) {
    const struct {
        const char* label;
        Refusal (*act)();
        const char* messages;
    } cases[] = {
        {"a box", [] { return person_presses("Backspace"); },
         "command 1031, up 8, 162, blur, focus, shown 0"},
        {"the menu by a key", [] { return person_presses("F10"); }, "162"},
        {"the menu", [] { return person_points_at_menu(1401); }, "162, 287, 287"},
        {"another window", [] { return person_leaves_window(); }, "162, blur"},
    };
    box_on_command = 1031;
    answer_box("Yes");
    for (const auto& c : cases) {
        ASSERT_EQ(person_uses_mouse({.act = MouseAct::DOWN, .col = 1, .row = 1}), "") << c.label;
        EXPECT_EQ(taken(), "513") << c.label;
        EXPECT_EQ(c.act(), "") << c.label;
        EXPECT_EQ(taken(), c.messages) << c.label;
        EXPECT_EQ(person_uses_mouse({.act = MouseAct::UP, .col = 1, .row = 1}), "the button is not down");
    }
}

TEST_F(DesktopTest, AReleaseOutsideOfTheWindowIsToldAsSuch) {
    ASSERT_EQ(person_uses_mouse({.act = MouseAct::DOWN, .col = 1, .row = 1}), "");
    ASSERT_EQ(person_uses_mouse({.act = MouseAct::UP, .col = -3, .row = 1}), "");
    EXPECT_EQ(taken(), "513, 162");
}

TEST_F(DesktopTest, TimersFallDueInTimeAndThenInOrderOfCreation) {
    start_timer(window, 7, 100);
    start_timer(window, 3, 50);
    start_timer(window, 5, 100);
    advance_clock(100);
    EXPECT_EQ(taken(), "timer 3, timer 7, timer 3, timer 5");
    start_timer(window, 7, 30);  // a new period counts from now, and the timer keeps its place
    kill_timer(window, 3);
    advance_clock(60);
    EXPECT_EQ(taken(), "timer 7, timer 7");
    advance_clock(40);
    EXPECT_EQ(taken(), "timer 7, timer 5");
}

TEST_F(DesktopTest, BoxStopsTheClock) {
    start_timer(window, 1, 40);
    start_timer(window, 2, 100);
    box_on_timer = 2;
    answer_box("Yes");
    advance_clock(1000);
    EXPECT_EQ(taken(), "timer 1, timer 1, timer 2, blur, focus, shown 0");
    EXPECT_EQ(shown_lines().back(), "stopped after 100");
    advance_clock(20);
    EXPECT_EQ(taken(), "timer 1");
}

void ask() {
    message_box("Stop?", "Test", BoxIcon::STOP, BUTTONS_YES_NO);
}

void ask_with_answer(const char* label) {
    answer_box(label);
    ask();
}

TEST_F(DesktopTest, WhatCannotBeServedEndsTheTest) {
    EXPECT_DEATH(ask(), "nothing answers message \"Stop\\?\"");
    EXPECT_DEATH(ask_with_answer("Cancel"), "has no \"Cancel\"");
    EXPECT_DEATH(set_menu_enabled(99, true), "no entry 99");
    EXPECT_DEATH(view_set_text(77, ""), "there is no view 77");
}

}  // namespace
}  // namespace hexlane::platform
