// document_fixture.h: a document of given rows in the test desktop's main window, for tests that look at the
// screen and press keys. Folder and files are the test's own.
#pragma once

#include "frame/child.h"
#include "frame/directories.h"
#include "frame/main_window.h"
#include "input/block.h"
#include "input/keyboard.h"
#include "platform/scripted/test_hooks.h"
#include "platform/text.h"
#include "store/load.h"
#include "store/row_table.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace hexlane {

using Rows = std::vector<std::string>;

class DocumentTest : public testing::Test {
protected:
    void SetUp() override {
        char folder[] = "/tmp/hexlane-view-XXXXXX";
        ASSERT_NE(mkdtemp(folder), nullptr);
        home = folder;
        platform::reset_desktop();
        reset_child();
        caret_past_end = false;
        platform::copy_text(directories.start_dir, platform::PATH_SIZE, folder);
        platform::copy_text(directories.temp_dir, platform::PATH_SIZE, folder);
        platform::copy_text(directories.temp_prefix, sizeof directories.temp_prefix, "TEST");
        platform::format_text(child[0].change_path, platform::PATH_SIZE, "%s/TESTchng.txt", folder);
        child[0].main_window = platform::make_test_window(main_window_proc);
        set_rows_shown(9);
    }

    void TearDown() override {
        close_document();
        std::filesystem::remove_all(home);
    }

    // The window's height, so that screen rows 0 to `last` show.
    static void set_rows_shown(int last, int cols = 40) { platform::set_window_size(cols, last + 3); }

    // Opens a document of these rows, the last one without line end, the caret at its start.
    void open_rows(const Rows& rows) {
        if (child[0].file_open)
            close_document();
        const std::string path = home + "/TEST.NC";
        std::ofstream file(path, std::ios::binary | std::ios::trunc);
        for (size_t i = 0; i < rows.size(); ++i)
            file << (i == 0 ? "" : "\r\n") << rows[i];
        file.close();
        platform::copy_text(child[0].file_path, platform::PATH_SIZE, path.c_str());
        child[0].modified = 0;
        ASSERT_EQ(load_file(), 1);
        set_caret(0, 0);
        repaint_now();
    }

    // Rows "0", "1" and so on, and the end row behind them.
    void open_numbered_rows(int count) {
        Rows rows;
        for (int i = 0; i < count; ++i)
            rows.push_back(std::to_string(i));
        rows.push_back("");
        open_rows(rows);
    }

    // Puts the caret into a row; it shows on screen row `caret_row`, or on its own if that is -1.
    static void set_caret(int32_t row, int32_t col, int32_t caret_row = -1) {
        child[0].current_row = row;
        child[0].caret_col = col;
        child[0].caret_row = caret_row < 0 ? row : caret_row;
        place_caret_now();
    }

    // A press is a key ("Ctrl+Enter"), or text when it starts with an apostrophe.
    static void press(const std::vector<std::string>& presses) {
        for (const std::string& one : presses) {
            if (one[0] == '\'')
                platform::type_text(one.c_str() + 1);
            else
                platform::press_key(one.c_str());
        }
    }

    // The rows of the document, the pending one with its pending text. Disturbs nothing.
    static Rows rows() {
        const std::string text = child[0].row_text;
        const char origin = child[0].row_origin;
        Rows all;
        for (int32_t row = 0; row <= child[0].last_file_row; ++row) {
            if (row != child[0].pending_row)
                fetch_row(row);
            all.push_back(row == child[0].pending_row ? text : child[0].row_text);
        }
        platform::copy_text(child[0].row_text, sizeof child[0].row_text, text.c_str());
        child[0].row_origin = origin;
        return all;
    }

    // The same with a '|' at the caret, a row that is too short for it filled up.
    static Rows rows_with_caret() {
        Rows all = rows();
        put_caret(&all.at(static_cast<size_t>(child[0].current_row)));
        return all;
    }

    // A screen row with a '|' at the caret.
    static std::string screen_with_caret(int y) {
        std::string shown = platform::screen_row(y);
        put_caret(&shown);
        return shown;
    }

    std::string home;

private:
    static void put_caret(std::string* text) {
        const auto col = static_cast<size_t>(child[0].caret_col);
        if (text->size() < col)
            text->resize(col, ' ');
        text->insert(col, "|");
    }
};

}  // namespace hexlane
