// view_test.cpp: views in the person's hands: what controls, keys, panes and their scroll bar are to the
// view's procedure, and which acts are refused.

#include "platform/scripted/person.h"
#include "platform/scripted/test_hooks.h"
#include "platform/surface.h"

#include <gtest/gtest.h>

#include <map>

namespace hexlane::platform {
namespace {

constexpr InputRule ROW_RULE = {3, "0123456789", 1, 50, nullptr, "Bad row", "Row"};
constexpr InputRule NAME_RULE = {4, nullptr, 0, 0, nullptr, nullptr, nullptr, true};
constexpr ControlSpec CONTROLS[] = {
    {10, ControlKind::TEXT, "&First", 0, 0, 1, 1, 0, 0, nullptr},
    {11, ControlKind::FIELD, "", 0, 1, 1, 1, 0, 0, &ROW_RULE},
    {12, ControlKind::TEXT, "&Last", 1, 0, 1, 1, 0, 0, nullptr},
    {13, ControlKind::FIELD, "", 1, 1, 1, 1, 0, 0, &NAME_RULE},
    {20, ControlKind::RADIO, "A", 2, 0, 1, 1, 0, CONTROL_GROUP | CONTROL_CHECKED, nullptr},
    {21, ControlKind::RADIO, "&B", 2, 1, 1, 1, 0, 0, nullptr},
    {22, ControlKind::RADIO, "A", 3, 0, 1, 1, 0, CONTROL_GROUP, nullptr},
    {23, ControlKind::RADIO, "B", 3, 1, 1, 1, 0, CONTROL_CHECKED, nullptr},
    {25, ControlKind::CHECK, "Bo&x", 3, 2, 1, 1, 0, 0, nullptr},
    {26, ControlKind::LIST, "Rows", 3, 3, 1, 1, 0, 0, nullptr},
    {27, ControlKind::CHOICE, "Size", 3, 4, 1, 1, 0, CONTROL_EDITABLE, &NAME_RULE},
    {30, ControlKind::BUTTON, "&OK", 4, 0, 1, 1, 0, CONTROL_DEFAULT, nullptr},
    {31, ControlKind::BUTTON, "Off", 4, 1, 1, 1, 0, CONTROL_DISABLED, nullptr},
    {32, ControlKind::BUTTON, "Cancel", 4, 2, 1, 1, 0, CONTROL_CANCEL, nullptr},
};
constexpr ViewSpec VIEW = {"IDD_TEST", "Test", 1, CONTROLS, sizeof CONTROLS / sizeof CONTROLS[0], 300, 80};

constexpr ControlSpec PANE_CONTROLS[] = {
    {5, ControlKind::BUTTON, "Go", 0, 0, 1, 1, 0, CONTROL_DEFAULT, nullptr},
    {7, ControlKind::PANE, "", 1, 0, 3, 2, 10, 0, nullptr},
    {8, ControlKind::TEXT, "Detail", 4, 0, 1, 1, 0, 0, nullptr},
    {9, ControlKind::PANE, "", 5, 0, 1, 2, 20, 0, nullptr},
};
constexpr ViewSpec PANE_VIEW = {"IDD_PANES", "Panes", 2, PANE_CONTROLS, 4};

std::string window_record;
std::string view_record;
void (*while_up)(ViewHandle view) = nullptr;
bool closes_on_key = false;
bool leaves_on_key = false;  // gives the focus to the button

const std::map<uint32_t, const char*> MESSAGE_NAMES = {
    {WM_KEYDOWN, "down"},      {WM_KEYUP, "up"},          {WM_CHAR, "char"},
    {WM_VSCROLL, "scroll"},    {WM_MOUSEMOVE, "move"},    {WM_LBUTTONDOWN, "press"},
    {WM_LBUTTONUP, "release"}, {WM_RBUTTONDOWN, "right"}, {WM_RBUTTONUP, "let go"},
};

int64_t window_proc(WindowHandle, uint32_t message, int64_t, int64_t) {
    window_record += message == WM_KILLFOCUS ? " blur" : message == WM_SETFOCUS ? " focus" : "";
    return 0;
}

// Controls as their id, a pane's messages as "pane message first".
int64_t view_proc(ViewHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    if (message == WM_INITDIALOG) {
        while_up(view);
    } else if (message == WM_COMMAND) {
        EXPECT_NE(low_word(second), 0);
        view_record += " " + std::to_string(first);
        if (first == 30) {
            view_end(view, 5);
        }
    } else if (const auto name = MESSAGE_NAMES.find(message); name != MESSAGE_NAMES.end()) {
        view_record +=
            " " + std::to_string(high_word(first)) + name->second + std::to_string(low_word(first));
        if (message >= WM_MOUSEMOVE) {
            view_record +=
                "@" + std::to_string(signed_low(second)) + "," + std::to_string(signed_high(second));
        }
        view_record += message == WM_VSCROLL ? "=" + std::to_string(second) : "";
        if (message == WM_KEYDOWN && closes_on_key) {
            view_end(view, 1);
        }
        if (message == WM_KEYDOWN && leaves_on_key) {
            view_focus_control(view, 5);
        }
    }
    return view_default(view, message, first, second);
}

std::string taken() {
    const std::string all = view_record.empty() ? "" : view_record.substr(1);
    view_record.clear();
    return all;
}

class ViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        reset_desktop();
        closes_on_key = leaves_on_key = false;
        make_test_window(window_proc);
        window_record.clear();
        view_record.clear();
    }
    void TearDown() override { EXPECT_EQ(unused_answers(), 0); }

    static int run(void (*acts)(ViewHandle view), const ViewSpec& spec = VIEW) {
        while_up = acts;
        return view_run(view_create(&spec, NO_WINDOW, view_proc));
    }
};

std::string field(ViewHandle view, int id) {
    char text[16];
    view_get_text(view, id, text, sizeof text);
    return text;
}

TEST_F(ViewTest, ControlsAreFoundByLabelNumberAndId) {
    const int result = run([](ViewHandle view) {
        EXPECT_EQ(person_fills({"First", 1, -1}, "2x3456"), "");
        EXPECT_EQ(field(view, 11), "234");  // the letter and what is too long are refused
        EXPECT_EQ(person_fills({"First", 1, -1}, "7"), "");
        EXPECT_EQ(person_fills({"Last", 1, -1}, "end2x"), "");
        EXPECT_EQ(field(view, 13), "END2");
        EXPECT_EQ(person_fills({"Last", 1, -1}, ""), "");
        EXPECT_EQ(taken(), "11 11 11 11 13 13 13 13 13");  // the view hears of each character
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
    EXPECT_EQ(taken(), "22 30");
    EXPECT_EQ(window_record, " blur focus");
}

TEST_F(ViewTest, BadValueKeepsTheFocusButNotFromCancel) {
    answer_box("OK");
    answer_box("OK");
    const int result = run([](ViewHandle) {
        person_fills({"First", 1, -1}, "51");
        taken();
        EXPECT_EQ(person_clicks({"OK", 1, -1}), "");
        EXPECT_EQ(shown_boxes().back().text, "Bad row");
        EXPECT_EQ(person_presses("Tab"), "");
        EXPECT_EQ(shown_boxes().size(), 2U);
        EXPECT_EQ(person_presses("Esc"), "");
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(taken(), "32");
    EXPECT_EQ(window_record, " blur focus");  // once, although a box came up over the view
    EXPECT_EQ(shown_lines().back(), "view IDD_TEST closed");
}

TEST_F(ViewTest, ListsTellOfAnotherRowAndSomeTakeTyping) {
    run([](ViewHandle view) {
        for (const char* row : {"one", "two"}) {
            view_add_to_list(view, 26, row);
        }
        view_select(view, 26, 0);
        person_fills({"First", 1, -1}, "1");
        taken();
        EXPECT_EQ(person_selects({"Rows", 1, -1}, "one"), "");
        EXPECT_EQ(taken(), "");
        EXPECT_EQ(person_selects({"Rows", 1, -1}, 1), "");
        EXPECT_EQ(taken(), "26");
        EXPECT_NE(person_selects({"Rows", 1, -1}, 2), "");
        EXPECT_NE(person_fills({"Rows", 1, -1}, "two"), "");

        view_add_to_list(view, 27, "A5");
        EXPECT_EQ(person_selects({"Size", 1, -1}, 0), "");
        EXPECT_EQ(field(view, 27), "A5");
        EXPECT_EQ(person_fills({"Size", 1, -1}, "b4"), "");
        EXPECT_EQ(field(view, 27), "B4");
        EXPECT_EQ(taken(), "27 27 27");
        view_end(view, 0);
    });
}

// A label leads to its field, a button is pressed, a box and a radio button change.
TEST_F(ViewTest, TabAndMnemonicsGoThroughTheControls) {
    const struct {
        const char* keys;
        const char* told;
        int focus;  // id that the view shows behind it
    } cases[] = {
        {"Alt+L", "", 13},   {"Tab", "", 20},       {"Tab", "", 23},     {"Tab", "", 25},
        {"Tab", "", 26},     {"Tab", "", 27},       {"Tab", "", 30},     {"Tab", "", 32},
        {"Tab", "", 11},     {"Shift+Tab", "", 32}, {"Alt+B", "21", 21}, {"Shift+Tab", "", 13},
        {"Alt+X", "25", 25}, {"Alt+F", "", 11},
    };
    static const auto* all = &cases;
    run([](ViewHandle view) {
        person_fills({"First", 1, -1}, "1");
        taken();
        for (const auto& c : *all) {
            EXPECT_EQ(person_presses(c.keys), "") << c.keys;
            EXPECT_EQ(taken(), c.told) << c.keys;
            EXPECT_EQ(focused_control(view), c.focus) << c.keys;
        }
        EXPECT_NE(person_presses("Alt+Q"), "");
        EXPECT_NE(person_presses("A"), "");
        EXPECT_EQ(person_presses("Alt+O"), "");
    });
    EXPECT_EQ(taken(), "30");
}

TEST_F(ViewTest, HiddenOrDisabledControlLosesTheFocus) {
    run([](ViewHandle view) {
        EXPECT_EQ(focused_control(view), 11);
        view_hide_control(view, 11);
        EXPECT_EQ(focused_control(view), 13);
        view_enable_control(view, 13, false);
        EXPECT_EQ(focused_control(view), 20);
        view_end(view, 0);
    });
}

TEST_F(ViewTest, PaneTellsItsViewOfKeysMouseAndScrollBar) {
    run(
        [](ViewHandle view) {
            EXPECT_NE(person_presses("Down"), "");  // the focus is on the button
            EXPECT_EQ(person_uses_mouse({MouseAct::DOWN, true, {"", 1, 7}, 2, 1, false, true}), "");
            EXPECT_EQ(focused_control(view), 7);
            EXPECT_NE(person_uses_mouse({MouseAct::MOVE, true, {"Detail", 1, -1}, 0, 0}),
                      "");                                                                // held elsewhere
            EXPECT_EQ(person_uses_mouse({MouseAct::MOVE, true, {"", 1, 7}, -1, 4}), "");  // held: may leave
            EXPECT_EQ(person_uses_mouse({MouseAct::UP, true, {"", 1, 7}, 0, 0}), "");
            EXPECT_EQ(taken(), "7press9@16,16 7move1@-8,64 7release0@0,0");
            EXPECT_NE(person_uses_mouse({MouseAct::MOVE, true, {"", 1, 7}, 10, 0}), "");
            EXPECT_EQ(person_uses_mouse({MouseAct::RIGHT, true, {"Detail", 1, -1}, 19, 0, true}), "");
            EXPECT_EQ(taken(), "9right6@152,0 9let go4@152,0");
            EXPECT_NE(person_uses_mouse({MouseAct::MOVE, false, {}, 0, 0}), "");

            EXPECT_EQ(person_presses("Shift+Down"), "");
            EXPECT_EQ(person_types("a"), "");
            EXPECT_EQ(taken(), "9down16 9down40 9up40 9up16 9down65 9char97 9up65");
            EXPECT_EQ(person_presses("Enter"), "");  // the view's own, also from a pane
            EXPECT_EQ(taken(), "5");

            set_scroll_range(view_pane(view, 7), 0, 30000);
            view_focus_control(view, 7);
            EXPECT_EQ(person_scrolls(SB_THUMBPOSITION, 30000), "");
            EXPECT_NE(person_scrolls(SB_THUMBPOSITION, 30001), "");
            EXPECT_EQ(person_scrolls(SB_PAGEDOWN, 0), "");
            EXPECT_EQ(taken(), "7scroll4=30000 7scroll3=0");
            leaves_on_key = true;
            EXPECT_EQ(person_types("ab"), "");
            EXPECT_EQ(taken(), "7down65 7char97");  // what is left of the typing finds the focus elsewhere
            EXPECT_EQ(shown_lines().back(), "stopped after 1");
            leaves_on_key = false;
            EXPECT_EQ(person_uses_mouse({MouseAct::DOWN, true, {"", 1, 7}, 0, 0}), "");
            taken();
            closes_on_key = true;
            EXPECT_EQ(person_presses("Ctrl+A"), "");
        },
        PANE_VIEW);
    EXPECT_EQ(taken(), "7down17");  // the rest of the press finds the view closed
    EXPECT_FALSE(key_is_down(VK_CONTROL));
    EXPECT_EQ(person_uses_mouse({MouseAct::DOWN, false, {}, 0, 0}), "");  // and the button is up again
}

}  // namespace
}  // namespace hexlane::platform
