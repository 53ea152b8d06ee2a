#include "view/colors_dialog.h"

#include <array>
#include <cstring>
#include <iterator>

#include "platform/surface.h"
#include "platform/views.h"
#include "shell/boxes.h"
#include "shell/child.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "view/colors.h"
#include "view/text_view.h"

namespace hexlane {
namespace {

using namespace platform;

constexpr BoxText COLORS_NOT_SAVED = {
    "The colors could not be written to their file, and count until the program ends.",
    "Choose Variable Color", BoxIcon::EXCLAMATION, BUTTONS_OK};

struct Shade {
    const char* name;
    const char* picture;
    Color color;
};

constexpr Shade PALETTE[] = {
    {"Black", "COL1", 0x000000},        {"White", "COL2", 0xFFFFFF},       {"Dark grey", "COL3", 0x808080},
    {"Light grey", "COL4", 0xC0C0C0},   {"Red", "COL5", 0x0000FF},         {"Dark red", "COL6", 0x000080},
    {"Yellow", "COL7", 0x00FFFF},       {"Dark yellow", "COL8", 0x008080}, {"Green", "COL9", 0x00FF00},
    {"Dark green", "COL10", 0x008000},  {"Cyan", "COL11", 0xFFFF00},       {"Dark cyan", "COL12", 0x808000},
    {"Blue", "COL13", 0xFF0000},        {"Dark blue", "COL14", 0x800000},  {"Magenta", "COL15", 0xFF00FF},
    {"Dark magenta", "COL16", 0x800080}};
constexpr int PALETTE_SIZE = static_cast<int>(std::size(PALETTE));

// ---- The view ----------------------------------------------------------------------------------------

constexpr int16_t SLOT_LIST = 100;
constexpr int16_t INCLUDE_BOX = 101;
constexpr int16_t SAMPLE_PANE = 102;
constexpr int16_t LABELS = 110;
constexpr int16_t FIRST_COLOR = 201;  // buttons, in the order of PALETTE
constexpr int16_t FIRST_PICTURE = 301;

constexpr uint16_t SAMPLE_CELLS = 14;
constexpr char SAMPLE_BLANKS[] = "              ";
static_assert(sizeof SAMPLE_BLANKS == SAMPLE_CELLS + 1);

constexpr auto FRONT_CONTROLS = std::to_array<ControlSpec>({
    {LABELS, ControlKind::TEXT, "&Variable:", 0, 0, 1, 1, 0, 0, nullptr},
    {SLOT_LIST, ControlKind::LIST, "", 1, 0, 8, 1, 14, 0, nullptr},
});
constexpr auto BACK_CONTROLS = std::to_array<ControlSpec>({
    {INCLUDE_BOX, ControlKind::CHECK, "&Include Numbers", 9, 1, 1, 4, 0, 0, nullptr},
    {LABELS + 1, ControlKind::TEXT, "Sample Display:", 10, 1, 1, 2, 0, 0, nullptr},
    {SAMPLE_PANE, ControlKind::PANE, "", 10, 3, 1, 2, SAMPLE_CELLS, CONTROL_SUNKEN, nullptr},
    {OK_BUTTON, ControlKind::BUTTON, "OK", 11, 1, 1, 2, 0, CONTROL_DEFAULT, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 11, 3, 1, 2, 0, CONTROL_CANCEL, nullptr},
});

// Each color and its button, two to a row.
constexpr auto palette_controls() {
    std::array<ControlSpec, 2 * PALETTE_SIZE> controls = {};
    auto* next = controls.data();
    for (int16_t i = 0; i < PALETTE_SIZE; i++) {
        const auto row = static_cast<uint8_t>(1 + i / 2);
        const auto column = static_cast<uint8_t>(1 + i % 2 * 2);
        *next++ = {static_cast<int16_t>(FIRST_PICTURE + i),
                   ControlKind::ICON,
                   PALETTE[i].picture,
                   row,
                   column,
                   1,
                   1,
                   0,
                   0,
                   nullptr};
        *next++ = {static_cast<int16_t>(FIRST_COLOR + i),
                   ControlKind::BUTTON,
                   PALETTE[i].name,
                   row,
                   static_cast<uint8_t>(column + 1),
                   1,
                   1,
                   0,
                   0,
                   nullptr};
    }
    return controls;
}

constexpr auto CONTROLS = join_controls(FRONT_CONTROLS, palette_controls(), BACK_CONTROLS);
constexpr ViewSpec COLORS_VIEW = {"IDD_COLORS", "Choose Variable Color", 0, CONTROLS.data(), CONTROLS.size()};

// ---- What it shows -----------------------------------------------------------------------------------

int edited_slot;  // while the view is up: the slot that the list has chosen

bool is_letter_slot(int slot) {
    return slot < COMMENT_SLOT;
}

void fill_list(ViewHandle view) {
    for (int slot = 0; slot < COLOR_SLOTS; slot++) {
        const char letter[] = {static_cast<char>('A' + slot), '.', '.', '\0'};
        const char* other = slot == COMMENT_SLOT ? "Comments.." : "Changes..";
        view_add_to_list(view, SLOT_LIST, is_letter_slot(slot) ? letter : other);
    }
}

// The numbers of a letter that does not include them are black.
void draw_sample(ViewHandle view) {
    constexpr Color PAPER = 0xC0C0C0;
    constexpr int FIRST_CELL = 2;
    const WindowHandle pane = view_pane(view, SAMPLE_PANE);
    const ColorEntry& entry = child[0].color_table[edited_slot];
    const char letter_text[] = {
        static_cast<char>('A' + edited_slot), '1', '2', '3', '.', '4', '5', '6', ' ', '\0'};
    const char* other_text = edited_slot == COMMENT_SLOT ? "(123.45) " : "Changes ";
    const char* text = is_letter_slot(edited_slot) ? letter_text : other_text;
    const bool all = !is_letter_slot(edited_slot) || entry.include_numbers != 0;
    const int y = CELL_HEIGHT / 8;
    draw_text(pane, 0, 0, SAMPLE_BLANKS, SAMPLE_CELLS, BLACK, PAPER);
    draw_text(pane, FIRST_CELL * CELL_WIDTH, y, text, 1, entry.color, PAPER);
    draw_text(pane, (FIRST_CELL + 1) * CELL_WIDTH, y, text + 1, static_cast<int>(std::strlen(text)) - 1,
              all ? entry.color : BLACK, PAPER);
}

void edit_slot(ViewHandle view, int slot) {
    edited_slot = slot;
    view_check(view, INCLUDE_BOX, child[0].color_table[slot].include_numbers != 0);
    draw_sample(view);
}

void begin_view(ViewHandle view) {
    fill_list(view);
    view_select(view, SLOT_LIST, 0);
    edit_slot(view, 0);
}

void act_on_control(ViewHandle view, int id) {
    ColorEntry& entry = child[0].color_table[edited_slot];
    if (id == SLOT_LIST && view_selection(view, SLOT_LIST) >= 0) {
        edit_slot(view, view_selection(view, SLOT_LIST));
    } else if (id >= FIRST_COLOR && id < FIRST_COLOR + PALETTE_SIZE) {
        entry.color = PALETTE[id - FIRST_COLOR].color;
        draw_sample(view);
    } else if (id == INCLUDE_BOX) {
        entry.include_numbers = view_checked(view, INCLUDE_BOX);
        draw_sample(view);
    } else if (id == OK_BUTTON) {
        if (!save_colors())
            show_box(COLORS_NOT_SAVED);
        view_end(view, OK_BUTTON);
    }
}

int64_t colors_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    if (message == WM_INITDIALOG) {
        begin_view(view);
        return 1;
    }
    if (message == WM_COMMAND)
        act_on_control(view, low_word(first));
    return view_default(view, message, first, second);
}

}  // namespace

void command_set_colors() {
    load_colors();
    show_view(&COLORS_VIEW, colors_proc);
    if (!child[0].colors_enabled)
        blacken_letters_and_comments();
    if (child[0].file_open)
        paint_view();
}

}  // namespace hexlane
