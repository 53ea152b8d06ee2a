// script_prints.cpp: the lines that print what a person sees: screen, colours, status line, menu, views,
// files.

#include "platform/scripted/modal.h"
#include "platform/scripted/person_internal.h"
#include "platform/scripted/record.h"
#include "platform/scripted/script_actions.h"
#include "platform/scripted/script_files.h"

#include <algorithm>
#include <cstdio>

namespace hexlane::platform {

namespace {

constexpr int STATUS_ROWS = 2;  // cell rows at the bottom that belong to the status line

// Screen rows 0 to window_rows: what the client area holds less the status line, at least two rows if they
// fit.
int text_rows() {
    return std::min(desktop.main.grid.rows, std::max(desktop.rows - STATUS_ROWS, 2));
}

const Cell* row_cells(const CellGrid& grid, int row) {
    return grid.cells.data() + static_cast<std::ptrdiff_t>(row) * grid.cols;
}

std::string two_digits(int number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

std::string hex_color(Color color) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02X%02X%02X", color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF);
    return text;
}

// "3-7 #0000FF/#FFFFFF, 9-9 ...", empty for a row that is all black on white.
std::string color_runs(const Cell* cells, int cols) {
    std::string runs;
    for (int first = 0, next = 0; first < cols; first = next) {
        const Cell& cell = cells[first];
        for (next = first; next < cols && cells[next].ink == cell.ink && cells[next].paper == cell.paper;
             next++) {
        }
        if (cell.ink != BLACK || cell.paper != WHITE) {
            runs += (runs.empty() ? "" : ", ") + std::to_string(first) + "-" + std::to_string(next - 1) +
                    " " + hex_color(cell.ink) + "/" + hex_color(cell.paper);
        }
    }
    return runs;
}

// The text area that a line names and how many of its rows show text: the main window's or a pane.
Refusal find_text_area(const Words& words, const CellGrid** grid, int* rows) {
    ControlName name;
    if (words.size() > 2 || (words.size() == 2 && !control_at(words, 1, &name))) {
        return WRONG_USE;
    }
    if (words.size() == 2) {
        InputTarget target;
        const Refusal refusal = find_pane(name, &target);
        *grid = find_grid(target.surface);
        *rows = *grid != nullptr ? (*grid)->rows : 0;
        return refusal;
    }
    *grid = &desktop.main.grid;
    *rows = text_rows();
    return desktop.main.handle == NO_WINDOW ? "there is no window" : "";
}

const char* kind_name(ControlKind kind) {
    constexpr const char* NAMES[] = {"text", "button", "field", "check", "radio",
                                     "list", "choice", "frame", "icon",  "pane"};
    return NAMES[static_cast<int>(kind)];
}

std::string control_line(const View& view, const Control& control) {
    const char* label = control.spec->label != nullptr ? control.spec->label : "";
    std::string line = "@" + std::to_string(control.spec->id) + " " + kind_name(control.spec->kind) + " " +
                       quoted(label) + " " + quoted(control.text);
    line += control.disabled ? " disabled" : "";
    line += control.hidden ? " hidden" : "";
    line += control.checked ? " checked" : "";
    line += control.spec->id == view.focus_id ? " focus" : "";
    return line;
}

void print_control(const View& view, const Control& control) {
    record_line(control_line(view, control));
    for (std::size_t i = 0; i < control.rows.size(); i++) {
        record_line((static_cast<int>(i) == control.selection ? "  > " : "    ") + quoted(control.rows[i]));
    }
}

}  // namespace

Refusal print_screen(const Words& words) {
    const CellGrid* grid = nullptr;
    int rows = 0;
    const Refusal refusal = find_text_area(words, &grid, &rows);
    for (int row = 0; refusal.empty() && row < rows; row++) {
        std::string bytes;
        for (int col = 0; col < grid->cols; col++) {
            bytes += static_cast<char>(row_cells(*grid, row)[col].byte);
        }
        bytes.erase(bytes.find_last_not_of(' ') + 1);
        record_line(two_digits(row) + "|" + escaped(bytes));
    }
    return refusal;
}

Refusal print_colors(const Words& words) {
    const CellGrid* grid = nullptr;
    int rows = 0;
    const Refusal refusal = find_text_area(words, &grid, &rows);
    for (int row = 0; refusal.empty() && row < rows; row++) {
        const std::string runs = color_runs(row_cells(*grid, row), grid->cols);
        if (!runs.empty()) {
            record_line(two_digits(row) + ": " + runs);
        }
    }
    return refusal;
}

// The texts of the status line from left to right, then its icon.
Refusal print_status(const Words& words) {
    const View* view = status_view();
    if (words.size() > 1) {
        return WRONG_USE;
    }
    if (view == nullptr) {
        return "there is no status line";
    }
    std::string line = "status";
    const char* icon = "hidden";
    for (const Control& control : view->controls) {
        if (control.spec->kind == ControlKind::ICON) {
            icon = control.hidden ? "hidden" : "shown";
        } else {
            line += " " + quoted(control.text);
        }
    }
    record_line(line + " icon " + icon);
    return "";
}

Refusal print_menu(const Words& words) {
    if (words.size() > 1) {
        return WRONG_USE;
    }
    for (const MenuPopup& popup : desktop.main.popups) {
        record_line("popup " + std::to_string(popup.id) + " " + quoted(popup.text));
        for (const MenuItem& item : desktop.main.items) {
            if (item.spec.popup != popup.id) {
                continue;
            }
            if (item.spec.id == 0) {
                record_line("----");
                continue;
            }
            record_line(std::to_string(item.spec.id) + " " + quoted(item.text) +
                        (item.grayed ? " grayed" : "") + (item.checked ? " checked" : ""));
        }
    }
    return "";
}

Refusal print_title(const Words& words) {
    if (words.size() > 1) {
        return WRONG_USE;
    }
    record_line("title " + quoted(desktop.main.title));
    return "";
}

Refusal print_caret(const Words& words) {
    if (words.size() > 1) {
        return WRONG_USE;
    }
    const CellGrid& grid = desktop.main.grid;
    const std::string cell =
        std::to_string(grid.caret_x / CELL_WIDTH) + "," + std::to_string(grid.caret_y / CELL_HEIGHT);
    record_line("caret " + (grid_caret_visible(&grid) ? cell : std::string("hidden")));
    return "";
}

// The whole view, or the controls whose ids are given.
Refusal print_view(const Words& words) {
    const Modal* modal = top_modal();
    if (modal == nullptr || modal->kind != ModalKind::VIEW) {
        return "no view is up";
    }
    const View& view = *find_view(modal->view, "view");
    if (words.size() == 1) {
        record_line(std::string(view.spec->name) + " " + quoted(view.spec->title));
        for (const Control& control : view.controls) {
            print_control(view, control);
        }
        return "";
    }
    for (std::size_t at = 1; at < words.size(); at++) {
        ControlName name;
        if (!control_at(words, at, &name) || name.id < 0) {
            return WRONG_USE;
        }
        const auto found = std::find_if(view.controls.begin(), view.controls.end(),
                                        [&](const Control& control) { return control.spec->id == name.id; });
        if (found == view.controls.end()) {
            return modal->name + " has no " + words[at].text;
        }
        print_control(view, *found);
    }
    return "";
}

void print_byte_lines(const std::string& bytes) {
    for (std::size_t at = 0; at < bytes.size();) {
        const std::size_t line_end = bytes.find('\n', at);
        const std::size_t end = line_end == std::string::npos ? bytes.size() : line_end + 1;
        record_line(quoted(bytes.substr(at, end - at)));
        at = end;
    }
}

Refusal print_bytes(const Words& words) {
    if (words.size() != 2 || !words[1].is_quoted) {
        return WRONG_USE;
    }
    std::string bytes;
    const Refusal refusal = read_whole_file(without_place_name(words[1].text), &bytes);
    if (refusal.empty()) {
        print_byte_lines(bytes);
    }
    return refusal;
}

Refusal print_files(const Words& words) {
    if (words.size() != 2 || !words[1].is_quoted) {
        return WRONG_USE;
    }
    std::vector<FolderEntry> entries;
    const Refusal refusal = read_folder(without_place_name(words[1].text), &entries);
    for (const FolderEntry& entry : entries) {
        record_line(quoted(entry.name) + " " + (entry.is_folder ? "folder" : std::to_string(entry.size)));
    }
    return refusal;
}

}  // namespace hexlane::platform
