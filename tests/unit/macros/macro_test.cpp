// Macros: what is recorded, their files, damaged ones among them, and what a pass plays.

#include <algorithm>
#include <filesystem>

#include "edit/held_keys.h"
#include "edit/keyboard.h"
#include "macros/macro_table.h"
#include "macros/recording.h"
#include "platform/keys.h"
#include "platform/messages.h"
#include "platform/scripted/person.h"
#include "platform/scripted/test_hooks.h"
#include "shell/child.h"
#include "shell/ui_timer.h"
#include "store/row_table.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

using namespace platform;
using namespace std::string_literals;

constexpr int PLAY = 1026;
constexpr int RECORD = 1027;
constexpr int END_RECORD = 1028;

class MacroTest : public ProgramTest {
protected:
    std::string macro_path(const std::string& name) const { return home + "/ZOLT/MACROS/" + name; }

    void write_macro_file(const std::string& name, const std::string& text) const {
        std::filesystem::create_directories(home + "/ZOLT/MACROS");
        write_bytes(macro_path(name), text);
    }

    // A file's bytes: name, count, events of 12 bytes each, zeros up to the size of every macro file.
    static std::string macro_bytes(std::string name, int count, const std::string& events) {
        name.resize(MACRO_NAME_SIZE);
        std::string text = name + static_cast<char>(count & 0xFF) + static_cast<char>(count >> 8 & 0xFF);
        text += events;
        text.resize(MACRO_FILE_SIZE);
        return text;
    }

    static std::string event(uint32_t message, int wparam, uint32_t lparam = 1) {
        MacroFileImage image = {};
        put_macro_event(&image, 0, {message, static_cast<uint16_t>(wparam), lparam});
        return {reinterpret_cast<const char*>(image.bytes) + MACRO_RING_OFFSET, MACRO_EVENT_SIZE};
    }

    // Plays `passes` passes of a macro of these events, step by step.
    void play(const std::string& events, int passes = 1) {
        const auto count = static_cast<int>(events.size() / MACRO_EVENT_SIZE);
        write_macro_file("MACRO.001", macro_bytes("M", count, events));
        scan_macros();
        update_menus_by_key();
        answer_box("Step Through");
        for (int i = 0; i < passes; ++i)
            answer_box("Step");
        answer_box("Cancel");
        command(PLAY);
    }

    // The button goes down over a cell and stays down.
    static void hold_button(int col, int row) {
        EXPECT_EQ(person_uses_mouse({.act = MouseAct::DOWN, .col = col, .row = row}), "");
    }

    static void update_menus_by_key() { send_message(child[0].main_window, WM_KEYUP, VK_SHIFT, 1); }

    static std::string table() {
        std::string all;
        for (int32_t i = 0; i < macros.count; ++i)
            all += macros.table[i].file_name + "="s + macros.table[i].name + " ";
        return all;
    }
};

TEST_F(MacroTest, AnEventIsStoredByteForByte) {
    start_with("\r\n");
    macros.recording = true;
    record_event(WM_CHAR, 'G', 0x00220001);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(macros.block.bytes) + MACRO_RING_OFFSET, 12),
              "\x02\x01\0\0G\0\0\0\x01\0\x22\0"s);
    record_event(WM_KEYUP, 0x12347, 0xC0220001);
    const MacroEvent second = get_macro_event(macros.block, 1);
    EXPECT_EQ(second.message, WM_KEYUP);
    EXPECT_EQ(second.wparam, 0x2347);
    EXPECT_EQ(second.lparam, 0xC0220001u);
}

TEST_F(MacroTest, TheRingBeginsAnewBehindItsLastEntry) {
    const struct { int events, count; } cases[] = {{0, 0}, {999, 999}, {1000, 0}, {1005, 5}, {2001, 1}};
    start_with("\r\n");
    for (const auto& c : cases) {
        macros.recording = true;
        macros.event_count = 0;
        for (int i = 0; i < c.events; ++i)
            record_event(WM_KEYDOWN, i, i);
        EXPECT_EQ(macros.event_count, c.count) << c.events;
        if (c.count > 0) {
            EXPECT_EQ(get_macro_event(macros.block, c.count - 1).wparam, c.events - 1);
        }
        macros.recording = false;
    }
}

TEST_F(MacroTest, TheTableHoldsTheFilesInTheOrderOfTheirNames) {
    write_macro_file("MACRO.002", macro_bytes("SECOND", 0, ""));
    write_macro_file("macro.old", macro_bytes("SMALL", 0, ""));
    write_macro_file("MACRO.001", macro_bytes(std::string(34, 'A'), 0, ""));
    write_macro_file("MACRO.010", "CUT");
    write_macro_file("MACRO.003", "");
    write_macro_file("MACRO.WITH.A.LONG.NAME", macro_bytes("LONG", 0, ""));
    write_macro_file("OTHER.001", macro_bytes("OTHER", 0, ""));
    std::filesystem::create_directories(macro_path("MACRO.004"));
    start();
    EXPECT_EQ(table(), "MACRO.001=" + std::string(33, 'A') +
                           " MACRO.002=SECOND MACRO.003= MACRO.010=CUT macro.old=SMALL ");
    EXPECT_EQ(find_macro("SECOND"), 1);
    EXPECT_EQ(find_macro("SECON"), -1);
    EXPECT_EQ(delete_macro(1), 1);
    EXPECT_FALSE(std::filesystem::exists(macro_path("MACRO.002")));
    EXPECT_EQ(macros.count, 4);
    ASSERT_EQ(new_macro_file(macros.count), 1);
    EXPECT_EQ(macros.table[macros.count].file_name, "MACRO.002"s);
    macros.count++;
    ASSERT_EQ(new_macro_file(macros.count), 1);
    EXPECT_EQ(macros.table[macros.count].file_name, "MACRO.005"s)
        << "an entry without a file counts, a folder too";
}

TEST_F(MacroTest, TheFiftyFirstMacroIsRefused) {
    for (int i = 1; i <= 50; ++i) {
        char name[20];
        format_text(name, sizeof name, "MACRO.%03d", i);
        write_macro_file(name, macro_bytes("M" + std::to_string(i), 0, ""));
    }
    write_macro_file("MACRO.XYZ", macro_bytes("UNLISTED", 0, ""));
    start_with("\r\n");
    EXPECT_EQ(macros.count, MAX_MACROS);
    EXPECT_EQ(new_macro_file(0), 0);
}

TEST_F(MacroTest, OnlyEndRecordWritesTheFile) {
    start_with("\r\n");
    for (const bool first : {true, false}) {
        macros.count = 1;
        macros.table[0] = {"NAME", ""};
        macros.active = 0;
        ASSERT_EQ(new_macro_file(0), 1);
        macros.event_count = 0;
        macros.recording = true;
        type_text(first ? "A" : "B");
        EXPECT_EQ(std::filesystem::exists(macro_path("MACRO.001")), !first);
        command(END_RECORD);
        EXPECT_FALSE(macros.recording);
        EXPECT_EQ(read_bytes(macro_path(macros.table[0].file_name)).size(), 12036u);
    }
    // Shift down, A down, A, A up, Shift up.
    EXPECT_EQ(read_bytes(macro_path("MACRO.001")).substr(0, 36 + 3 * 12),
              "NAME"s + std::string(30, '\0') + "\x05\0"s + event(WM_KEYDOWN, VK_SHIFT, 0x2A0001) +
                  event(WM_KEYDOWN, 'A', 0x1E0001) + event(WM_CHAR, 'A', 0x1E0001));
}

TEST_F(MacroTest, ADamagedFileLeavesTheRingAsItWas) {
    const std::string good = macro_bytes("GOOD", 1, event(WM_CHAR, 'Z'));
    const struct {
        const char* label;
        std::string text;
    } cases[] = {
        {"empty", ""},
        {"a byte short", good.substr(0, MACRO_FILE_SIZE - 1)},
        {"a negative count", macro_bytes("BAD", -1, event(WM_CHAR, 'Y'))},
        {"a count of the whole ring", macro_bytes("BAD", 1000, event(WM_CHAR, 'Y'))},
        {"the largest count", macro_bytes("BAD", 0x7FFF, event(WM_CHAR, 'Y'))},
    };
    write_macro_file("MACRO.001", good);
    start_with("\r\n");
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        write_macro_file("MACRO.002", c.text);
        scan_macros();
        ASSERT_EQ(read_macro(0), MacroRead::DONE);
        EXPECT_EQ(read_macro(1), MacroRead::DAMAGED);
        EXPECT_EQ(macros.event_count, 1);
        EXPECT_EQ(get_macro_event(macros.block, 0).wparam, 'Z');
    }
    EXPECT_EQ(read_macro(0), MacroRead::DONE);
    delete_file(macro_path("MACRO.001").c_str());
    EXPECT_EQ(read_macro(0), MacroRead::FAILED);
    EXPECT_EQ(last_file_error(), FileError::NOT_FOUND);
    EXPECT_EQ(macros.event_count, 1);
}

TEST_F(MacroTest, OnlyTheFiveMessagesAreEverPlayed) {
    start_with("AB\r\nCD\r\n");
    play(event(WM_CLOSE, 0) + event(WM_COMMAND, 1002) + event(WM_COMMAND, 1011, 0) + event(0, 0) +
         event(0xFFFFFFFF, 0xFFFF, 0xFFFFFFFF) + event(WM_CHAR, 'X') + event(WM_KEYDOWN, 0xFFFF) +
         event(WM_LBUTTONDOWN, 1, 0x7FFF8000) + event(WM_LBUTTONUP, 0xFFFF, 0xFFFFFFFF));
    EXPECT_EQ(rows()[0], "XAB");
    EXPECT_TRUE(child[0].file_open);
}

TEST_F(MacroTest, TheEventBehindABackspaceIsSkippedWhateverItIs) {
    const std::string backspace = event(WM_CHAR, VK_BACK);
    const struct {
        const char* label;
        std::string events;
        const char* row;
    } cases[] = {
        {"its own Delete", backspace + event(WM_KEYDOWN, VK_DELETE) + event(WM_CHAR, 'X'), "aXc"},
        {"a character", backspace + event(WM_CHAR, 'X') + event(WM_CHAR, 'Y'), "aYc"},
        {"another backspace", backspace + backspace + event(WM_CHAR, 'Y'), "aYc"},
        {"nothing", backspace, "ac"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        reset_desktop();
        start_with("abc\r\n");
        child[0].caret_col = 2;
        play(c.events);
        EXPECT_EQ(rows()[0], c.row);
        close_document();
    }
}

TEST_F(MacroTest, ShiftAndCtrlAreThoseOfTheMacro) {
    const std::string ctrl_down = event(WM_KEYDOWN, VK_CONTROL), ctrl_up = event(WM_KEYUP, VK_CONTROL);
    const std::string insert = event(WM_KEYDOWN, VK_INSERT);
    start_with("abcdef\r\nx\r\n");
    hold_keys(true, true);
    play(ctrl_down + event(WM_KEYDOWN, VK_END) + ctrl_up + event(WM_CHAR, 'Z') + insert);
    EXPECT_EQ(rows(), (std::vector<std::string>{"abcdef", "x", "Z", ""}));
    EXPECT_EQ(child[0].overwrite_mode, 1);
    EXPECT_FALSE(held_key(VK_CONTROL)) << "the view that closed has taken the keyboard's state";
    hold_keys(false, true);
    EXPECT_TRUE(held_key(VK_CONTROL)) << "behind a pass the keyboard counts again";

    // A Ctrl that is never let go ends with the pass.
    child[0].current_row = child[0].caret_row = 0;
    child[0].caret_col = 3;
    play(event(WM_CHAR, 'Y') + ctrl_down + event(WM_CHAR, '\r'), 2);
    EXPECT_EQ(rows()[0], "abcYY");
}

// Each act takes the keyboard or the button away before the release; the macro gets that all the same.
TEST_F(MacroTest, WhatIsHeldWhenTheKeyboardGoesIsRecordedAsLetGo) {
    const struct {
        const char* label;
        void (*act)();
        const char* last_events;  // message, first parameter
    } cases[] = {
        {"a dialog under Ctrl", [] { press_key("Ctrl+O"); }, "256 17, 257 79, 257 17"},
        {"a dialog behind a press of the button",
         [] {
             hold_button(2, 0);
             press_key("Ctrl+O");
         },
         "513 1, 256 17, 257 79, 257 17, 514 0"},
        {"a release outside of the text",
         [] {
             hold_button(2, 0);
             send_message(child[0].main_window, WM_NCLBUTTONUP, 0, make_parameter(-50, -50));
         },
         "513 1, 514 0"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        begin_anew();
        start_with("abc\r\n");
        macros.recording = true;
        if (std::string(c.label).find("dialog") != std::string::npos)
            cancel_file_dialog();
        c.act();
        std::string events;
        for (int32_t i = 0; i < macros.event_count; ++i) {
            const MacroEvent stored = get_macro_event(macros.block, i);
            events +=
                (i > 0 ? ", " : "") + std::to_string(stored.message) + " " + std::to_string(stored.wparam);
        }
        EXPECT_EQ(events, c.last_events);
        macros.recording = false;
    }
}

TEST_F(MacroTest, APassLeavesButtonAndTimerAsTheyWere) {
    const std::string press = event(WM_LBUTTONDOWN, MK_LBUTTON, 0), release = event(WM_LBUTTONUP, 0, 0);
    start_with("abc\r\nd\r\n");
    for (const std::string& events : {press, press + release, press + release + press}) {
        set_ui_timer(UI_TIMER_SLOW);
        advance_clock(700);
        play(events);
        EXPECT_TRUE(slow_timer_running());
        EXPECT_TRUE(caret_shown()) << "it is hidden while the button is down";
        advance_clock(300);  // the tick comes when it would have come, and finds no transfer
        EXPECT_FALSE(timer_running(UI_TIMER));
        play(events);
        EXPECT_FALSE(timer_running(UI_TIMER));
    }
}

TEST_F(MacroTest, ARunEndsBehindTheLastRow) {
    start_with("a\r\nb\r\nc\r\n");
    child[0].overwrite_mode = 1;
    caret_past_end = true;  // left from typing: it says nothing about this run
    write_macro_file("MACRO.001", macro_bytes("M", 2, event(WM_CHAR, 'X') + event(WM_CHAR, '\r')));
    scan_macros();
    answer_box("Step Through");
    for (int i = 0; i < 3; ++i)
        answer_box("Step");
    answer_box("Cancel");
    command(PLAY);
    EXPECT_EQ(rows(), (std::vector<std::string>{"X", "X", "X", ""}));
    EXPECT_EQ(unused_answers(), 0);

    // The pass on the end row sets the mark (its text makes a new end row); the Step behind it closes.
    write_macro_file("MACRO.001", macro_bytes("M", 1, event(WM_CHAR, '\r')));
    answer_box("Step Through");
    answer_box("Step");
    answer_box("Step");
    command(PLAY);
    EXPECT_EQ(unused_answers(), 0);
    EXPECT_EQ(shown_lines().back(), "view IDD_STEP_MACRO closed");
    EXPECT_EQ(child[0].current_row, 3);
}

}  // namespace
}  // namespace hexlane
