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
        {"Ctrl+S", "down 17, up 83, up 17"},                // of a grayed entry: taken, and nothing done
        {"Backspace", "command 1031, up 8"},                // of a command without an entry
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
    EXPECT_EQ(taken(), "down 17, command 1001, blur, focus, shown 1");
    EXPECT_FALSE(key_is_down(VK_CONTROL));
    ASSERT_EQ(shown_boxes().size(), 1U);
    EXPECT_EQ(shown_boxes()[0].pressed, "No");
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

// ---- Views -------------------------------------------------------------------------------------------

constexpr InputRule ROW_RULE = {3, "0123456789", 1, 50, nullptr, "Bad row", "Row"};
constexpr ControlSpec CONTROLS[] = {
    {10, ControlKind::TEXT, "&First", 0, 0, 1, 1, 0, 0, nullptr},
    {11, ControlKind::FIELD, "", 0, 1, 1, 1, 0, 0, &ROW_RULE},
    {12, ControlKind::TEXT, "&Last", 1, 0, 1, 1, 0, 0, nullptr},
    {13, ControlKind::FIELD, "", 1, 1, 1, 1, 0, 0, nullptr},
    {20, ControlKind::RADIO, "A", 2, 0, 1, 1, 0, CONTROL_GROUP | CONTROL_CHECKED, nullptr},
    {21, ControlKind::RADIO, "B", 2, 1, 1, 1, 0, 0, nullptr},
    {22, ControlKind::RADIO, "A", 3, 0, 1, 1, 0, CONTROL_GROUP, nullptr},
    {23, ControlKind::RADIO, "B", 3, 1, 1, 1, 0, CONTROL_CHECKED, nullptr},
    {30, ControlKind::BUTTON, "&OK", 4, 0, 1, 1, 0, CONTROL_DEFAULT, nullptr},
    {31, ControlKind::BUTTON, "Off", 4, 1, 1, 1, 0, CONTROL_DISABLED, nullptr},
    {32, ControlKind::BUTTON, "Cancel", 4, 2, 1, 1, 0, CONTROL_CANCEL, nullptr},
};
constexpr ViewSpec VIEW = {"IDD_TEST", "Test", 1, CONTROLS, sizeof CONTROLS / sizeof CONTROLS[0]};

std::string view_texts;
void (*while_up)(ViewHandle view) = nullptr;

int64_t view_proc(ViewHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    if (message == WM_INITDIALOG) {
        while_up(view);
    } else if (message == WM_COMMAND) {
        EXPECT_NE(low_word(second), 0);
        view_texts += " " + std::to_string(first);
        if (first == 30) {
            view_end(view, 5);
        }
    }
    return view_default(view, message, first, second);
}

int run_view(void (*acts)(ViewHandle view)) {
    while_up = acts;
    view_texts.clear();
    return view_run(view_create(&VIEW, NO_WINDOW, view_proc));
}

std::string field(ViewHandle view, int id) {
    char text[16];
    view_get_text(view, id, text, sizeof text);
    return text;
}

TEST_F(DesktopTest, ControlsAreFoundByLabelNumberAndId) {
    const int result = run_view([](ViewHandle view) {
        EXPECT_EQ(person_fills({"First", 1, -1}, "2x3456"), "");
        EXPECT_EQ(field(view, 11), "234");  // the letter and what is too long are refused
        EXPECT_EQ(person_fills({"First", 1, -1}, "7"), "");
        EXPECT_EQ(person_fills({"Last", 1, -1}, "end"), "");
        EXPECT_EQ(field(view, 13), "end");
        EXPECT_NE(person_fills({"Last", 2, -1}, ""), "");
        EXPECT_NE(person_clicks({"Off", 1, -1}), "");
        EXPECT_NE(person_clicks({"", 1, 11}), "");  // no button
        EXPECT_NE(person_cancels(), "");
        EXPECT_NE(person_types("x"), "");
        EXPECT_EQ(person_picks({"A", 2, -1}), "");
        EXPECT_TRUE(view_checked(view, 22) && view_checked(view, 20));
        EXPECT_FALSE(view_checked(view, 23) || view_checked(view, 21));
        EXPECT_EQ(person_presses("Enter"), "");
    });
    EXPECT_EQ(result, 5);
    EXPECT_EQ(view_texts, " 22 30");
    EXPECT_EQ(taken(), "blur, focus");
}

TEST_F(DesktopTest, BadValueKeepsTheFocusButNotFromCancel) {
    answer_box("OK");
    const int result = run_view([](ViewHandle) {
        person_fills({"First", 1, -1}, "51");
        EXPECT_EQ(person_clicks({"OK", 1, -1}), "");
        EXPECT_EQ(shown_boxes().back().text, "Bad row");
        EXPECT_EQ(person_presses("Esc"), "");
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(view_texts, " 32");
    EXPECT_EQ(taken(), "blur, focus");  // once, although a box came up over the view
    EXPECT_EQ(shown_lines().back(), "view IDD_TEST closed");
}

}  // namespace
}  // namespace hexlane::platform
