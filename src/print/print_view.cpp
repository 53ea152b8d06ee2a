#include "print/print_view.h"

#include <iterator>

#include "platform/desktop.h"
#include "platform/printing.h"
#include "print/listing.h"
#include "print/print_texts.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"
#include "store/row_table.h"
#include "view/nc_columns.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr int16_t PRINTER_TEXT = 101;
constexpr int16_t ALL_RADIO = 102;
constexpr int16_t SELECTION_RADIO = 103;

constexpr std::size_t PRINTER_NAME_SIZE = 128;

constexpr ControlSpec PRINT_CONTROLS[] = {
    {201, ControlKind::TEXT, "Printer:", 0, 0, 1, 1, 0, 0, nullptr},
    {PRINTER_TEXT, ControlKind::TEXT, "", 0, 1, 1, 1, 0, 0, nullptr},
    {202, ControlKind::FRAME, "Print Range", 1, 0, 2, 2, 0, 0, nullptr},
    {ALL_RADIO, ControlKind::RADIO, "&All", 1, 0, 1, 2, 0, CONTROL_GROUP | CONTROL_CHECKED, nullptr},
    {SELECTION_RADIO, ControlKind::RADIO, "&Selection", 2, 0, 1, 2, 0, 0, nullptr},
    {OK_BUTTON, ControlKind::BUTTON, "OK", 3, 0, 1, 1, 0, CONTROL_DEFAULT | CONTROL_CENTERED, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 3, 1, 1, 1, 0, CONTROL_CANCEL | CONTROL_CENTERED, nullptr},
};
constexpr ViewSpec PRINT_VIEW = {"IDD_PRINT", "Print", 0, PRINT_CONTROLS, std::size(PRINT_CONTROLS)};

bool selection_chosen = false;

void open_view(ViewHandle view) {
    char name[PRINTER_NAME_SIZE];
    put_text(view, PRINTER_TEXT,
             default_printer(name, sizeof name) ? name : "none, so a PDF file is written");
    view_check(view, child[0].block_active ? SELECTION_RADIO : ALL_RADIO, true);
}

void take_answer(ViewHandle view) {
    selection_chosen = view_checked(view, SELECTION_RADIO);
}

int64_t print_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    return serve_answers(view, message, first, second, open_view, take_answer);
}

// A block inside a row has no rows, and the choice can be made without a block: both name row -1.
RowFound document_row(int32_t row, const char** text) {
    if (row < 0 || row > child[0].last_file_row)
        return RowFound::NO_ROW;
    if (!fetch_row(row))
        return RowFound::UNREADABLE;
    if (child[0].nc_mode)
        format_nc_row();
    *text = child[0].row_text;
    return RowFound::ROW;
}

ListingResult print_file() {
    if (show_view(&PRINT_VIEW, print_proc) != 1)
        return ListingResult::CANCELLED;
    const int32_t first = selection_chosen ? block.start.row : 0;
    const int32_t last = selection_chosen ? block.end.row : child[0].last_file_row;
    return print_listing(child[0].file_path, nullptr, first, last, document_row);
}

}  // namespace

void command_print() {
    const PointerShape pointer = begin_wait();
    const ListingResult result = print_file();
    if (result == ListingResult::NOT_STARTED || result == ListingResult::UNREADABLE)
        show_print_box(PrintBox::CANNOT_PRINT);
    end_wait(pointer);
}

}  // namespace hexlane
