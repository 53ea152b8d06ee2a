// The colour file and the display modes.

#include "unit/view/document_fixture.h"

#include "platform/posix/file_faults.h"
#include "view/color_file_format.h"
#include "view/colors.h"

#include <cerrno>
#include <iterator>

namespace hexlane {
namespace {

class ColorFileTest : public DocumentTest {
protected:
    void TearDown() override {
        platform::reset_file_faults();
        DocumentTest::TearDown();
    }

    std::string path() const { return home + "/ZOLT.INI"; }

    std::string read_file() const {
        std::ifstream file(path(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void write_file(const std::string& bytes) const {
        std::ofstream(path(), std::ios::binary | std::ios::trunc) << bytes;
    }
};

TEST_F(ColorFileTest, SlotsAreLittleEndianAndReservedBytesStay) {
    std::string bytes(COLOR_FILE_SIZE, '\0');
    bytes.replace(23 * 8, 8, std::string("\x11\x22\x33\x00\x01\x00\xAA\xBB", 8));
    bytes.replace(27 * 8, 4, std::string("\xFF\x80\x40\x00", 4));
    bytes[224] = 'r';
    bytes[COLOR_FILE_SIZE - 1] = 's';
    write_file(bytes);
    load_colors();
    EXPECT_EQ(child[0].color_table['X' - 'A'].color, 0x332211u);
    EXPECT_EQ(child[0].color_table['X' - 'A'].include_numbers, 1);
    EXPECT_EQ(child[0].color_table[CHANGES_SLOT].color, 0x4080FFu);
    ASSERT_EQ(save_colors(), 1);
    EXPECT_EQ(read_file(), bytes);
    child[0].color_table[0] = {0x00ABCDEF, -1, 0};
    ASSERT_EQ(save_colors(), 1);
    bytes.replace(0, 6, "\xEF\xCD\xAB\x00\xFF\xFF", 6);
    EXPECT_EQ(read_file(), bytes);
}

TEST_F(ColorFileTest, AFileThatMayNotBeWrittenIsLeftAlone) {
    const std::string bytes(COLOR_FILE_SIZE, '\x10');
    write_file(bytes);
    platform::deny_path(path().c_str(), platform::DENY_WRITE);
    load_colors();
    EXPECT_EQ(child[0].color_table[0].color, 0x10101010u);
    EXPECT_EQ(save_colors(), 0);
    EXPECT_EQ(read_file(), bytes);
}

TEST_F(ColorFileTest, AFileThatCouldNotBeReadIsNotWritten) {
    const std::string bytes(COLOR_FILE_SIZE, '\x10');
    write_file(bytes);
    platform::fail_file_call(platform::FileCall::READ, 1, EIO);
    load_colors();
    EXPECT_EQ(child[0].color_table[0].color, 0u) << "black, for now";
    child[0].color_table[0].color = 0xFF;
    EXPECT_EQ(save_colors(), 0) << "the other colors would be lost";
    EXPECT_EQ(read_file(), bytes);
    load_colors();
    EXPECT_EQ(child[0].color_table[0].color, 0x10101010u);
    EXPECT_EQ(save_colors(), 1);
}

int64_t ignore_message(platform::WindowHandle, uint32_t, int64_t, int64_t) {
    return 0;
}

TEST_F(ColorFileTest, ModesExcludeEachOtherAndKeepTheirChecks) {
    // Which window: one with the three entries and no file open.
    const platform::MenuEntry entries[] = {{1, 1017, "Enable Colors", "", true, false},
                                           {1, 1018, "Color Edit Changes", "", false, false},
                                           {1, 1019, "NC Mode", "", false, false}};
    platform::MainWindowSpec spec = {};
    spec.title = "Modes";
    spec.procedure = ignore_message;
    spec.entries = entries;
    spec.entry_count = 3;
    platform::reset_desktop();
    child[0].main_window = platform::create_main_window(&spec);

    write_file(std::string(COLOR_FILE_SIZE, '\x10'));
    load_colors();
    child[0].colors_enabled = 1;
    const struct {
        const char* label;
        void (*command)();
        bool colors, changes;
        uint32_t letter, changed;  // slots in effect
    } steps[] = {
        {"changes", command_color_edit_changes, false, true, 0, 0x10101010},
        {"plain", command_color_edit_changes, false, false, 0, 0x10101010},
        {"colors again", command_enable_colors, true, false, 0x10101010, 0x10101010},
        {"colors off", command_enable_colors, false, false, 0, 0x10101010},
        {"changes from plain", command_color_edit_changes, false, true, 0, 0x10101010},
        {"from changes to colors", command_enable_colors, true, false, 0x10101010, 0x10101010},
    };
    for (const auto& step : steps) {
        SCOPED_TRACE(step.label);
        step.command();
        EXPECT_EQ(child[0].colors_enabled != 0, step.colors);
        EXPECT_EQ(child[0].changes_colored != 0, step.changes);
        EXPECT_EQ(platform::menu_checked(1017), step.colors);
        EXPECT_EQ(platform::menu_checked(1018), step.changes);
        EXPECT_EQ(child[0].color_table[0].color, step.letter);
        EXPECT_EQ(child[0].color_table[COMMENT_SLOT].color, step.letter);
        EXPECT_EQ(child[0].color_table[CHANGES_SLOT].color, step.changed);
    }
    command_nc_mode();
    EXPECT_EQ(child[0].nc_mode, 1);
    EXPECT_TRUE(platform::menu_checked(1019));
    command_nc_mode();
    EXPECT_EQ(child[0].nc_mode, 0);
    EXPECT_FALSE(platform::menu_checked(1019));
}

}  // namespace
}  // namespace hexlane
