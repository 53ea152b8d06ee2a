// document_fixture.h: a document of given rows in the test desktop's main window, for tests that look at the
// screen and press keys. Folder and files are the test's own.
#pragma once

#include "edit/keyboard.h"
#include "frame/main_window.h"
#include "platform/scripted/test_hooks.h"
#include "platform/text.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "shell/window.h"
#include "store/load.h"
#include "store/row_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace hexlane {

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

    // Opens a document of these rows; the caret goes to the mark, or to the start.
    void open_rows(std::string text) {
        if (child[0].file_open)
            close_document();
        const size_t mark = std::min(text.find('|'), text.size());
        const auto row_start = text.rfind('/', mark) + 1;  // 0 on the first row
        const auto row =
            static_cast<int32_t>(std::count(text.begin(), text.begin() + static_cast<long>(mark), '/'));
        const bool marked = mark < text.size();
        if (marked)
            text.erase(mark, 1);
        std::ofstream file(home + "/TEST.NC", std::ios::binary | std::ios::trunc);
        for (const char c : text)
            file << (c == '/' ? "\r\n" : std::string(1, c));
        file.close();
        platform::format_text(child[0].file_path, platform::PATH_SIZE, "%s/TEST.NC", home.c_str());
        child[0].modified = 0;
        ASSERT_EQ(load_file(), 1);
        set_caret(marked ? row : 0, marked ? static_cast<int32_t>(mark - row_start) : 0);
        repaint_now();
    }

    // Rows "0", "1" and so on, and the end row behind them.
    void open_numbered_rows(int count) {
        std::string text;
        for (int i = 0; i < count; ++i)
            text += std::to_string(i) + '/';
        open_rows(text);
    }

    // Puts the caret into a row; it shows on screen row `caret_row`, or on its own if that is -1.
    static void set_caret(int32_t row, int32_t col, int32_t caret_row = -1) {
        child[0].current_row = row;
        child[0].caret_col = col;
        child[0].caret_row = caret_row < 0 ? row : caret_row;
        place_caret_now();
    }

    // Keys ("Ctrl+Enter") and texts (behind an apostrophe), with blanks between them.
    static void press(const std::string& presses) {
        std::istringstream each(presses);
        for (std::string one; each >> one;) {
            if (one[0] == '\'')
                platform::type_text(one.c_str() + 1);
            else
                platform::press_key(one.c_str());
        }
    }

    // The rows of the document, the pending one with its pending text. Disturbs nothing.
    static std::string rows() { return join_rows_of(-1); }

    // The same with the caret; a row that is too short for it is filled up.
    static std::string rows_with_caret() { return join_rows_of(child[0].current_row); }

    // A screen row with the caret.
    static std::string screen_with_caret(int y) { return with_caret(platform::screen_row(y)); }

    std::string home;

private:
    static std::string with_caret(std::string text) {
        const auto col = static_cast<size_t>(child[0].caret_col);
        text.resize(std::max(text.size(), col), ' ');
        return text.insert(col, "|");
    }

    static std::string join_rows_of(int32_t marked_row) {
        const Child kept = child[0];
        std::string all;
        for (int32_t row = 0; row <= kept.last_file_row; ++row) {
            if (row != kept.pending_row)
                fetch_row(row);
            const std::string text = row == kept.pending_row ? kept.row_text : child[0].row_text;
            all += (row == 0 ? "" : "/") + (row == marked_row ? with_caret(text) : text);
        }
        std::memcpy(child[0].row_text, kept.row_text, sizeof kept.row_text);
        child[0].row_origin = kept.row_origin;
        return all;
    }
};

}  // namespace hexlane
