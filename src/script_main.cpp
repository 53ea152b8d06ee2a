// script_main.cpp: the program of scripted runs: hexlane-script [--home DIR] [--time] [SCRIPT].
// Makes a home, names the places of the run, lays file faults, and plays the script with the whole program on
// the desktop in memory. It also prints what only the program's own records know: the lines `state` and
// `rows`.

#include "edit/block_commands.h"
#include "frame/program.h"
#include "platform/posix/file_faults.h"
#include "platform/scripted/record.h"
#include "platform/scripted/script.h"
#include "shell/block.h"
#include "shell/child.h"
#include "shell/directories.h"
#include "store/row_records.h"
#include "store/row_table.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

namespace hexlane {
namespace {

using platform::quoted;
using platform::record_line;

// ---- What the program's records hold -----------------------------------------------------------------

struct NumberField {
    const char* name;
    int64_t value;
};

void print_numbers(std::initializer_list<NumberField> fields) {
    for (const NumberField& field : fields) {
        record_line(std::string(field.name) + "=" + std::to_string(field.value));
    }
}

std::string block_end_text(const BlockEnd& end) {
    return std::to_string(end.col) + "," + std::to_string(end.screen_row) + "," + std::to_string(end.row);
}

void print_block(const char* name, const Block& shown) {
    record_line(std::string(name) + " start=" + block_end_text(shown.start) +
                " end=" + block_end_text(shown.end));
}

void print_state() {
    const Child& c = child[0];
    print_numbers({{"file_open", c.file_open},
                   {"modified", c.modified},
                   {"current_row", c.current_row},
                   {"last_file_row", c.last_file_row},
                   {"caret_col", c.caret_col},
                   {"caret_row", c.caret_row},
                   {"window_cols", c.window_cols},
                   {"window_rows", c.window_rows},
                   {"overwrite_mode", c.overwrite_mode},
                   {"pending_row", c.pending_row},
                   {"block_active", c.block_active},
                   {"vscroll_pos", c.vscroll_pos},
                   {"vscroll_max", c.vscroll_max}});
    char scale[32];
    std::snprintf(scale, sizeof scale, "%.9g", static_cast<double>(c.vscroll_scale));
    record_line(std::string("vscroll_scale=") + scale);
    print_numbers({{"hscroll_pos", c.hscroll_pos},
                   {"mouse_pressed", c.mouse_pressed},
                   {"nc_mode", c.nc_mode},
                   {"colors_enabled", c.colors_enabled},
                   {"changes_colored", c.changes_colored},
                   {"segment_count", c.segment_count}});
    record_line("file_path=" + quoted(c.file_path));
    record_line("file_title=" + quoted(c.file_title));
    print_block("block", block);
    print_block("cut_block", cut_block);
    print_block("copy_block", copy_block);
}

// Fetches a row and prints it; the caller puts the record back. A pending row has its text in `before`.
bool print_row(int32_t row, const Child& before) {
    if (!fetch_row(row)) {
        return false;
    }
    const bool pending = row == before.pending_row;
    const char* text = pending ? before.row_text : child[0].row_text;
    record_line(std::to_string(row) + " " + child[0].row_origin + (pending ? "* " : " ") + quoted(text));
    return true;
}

// Reading goes through the one row buffer and the one open segment; both are put back as they were.
std::string print_rows(int64_t first, int64_t last) {
    if (!child[0].file_open) {
        return "no file is open";
    }
    const int32_t end = child[0].last_file_row;
    if (first > end) {
        return "the last row is " + std::to_string(end);
    }
    const int32_t stop = last < 0 || last > end ? end : static_cast<int32_t>(last);
    const Child before = child[0];
    const int16_t had_lf_before = row_had_lf;
    int32_t row = static_cast<int32_t>(first);
    while (row <= stop && print_row(row, before)) {
        row++;
    }
    child[0] = before;
    row_had_lf = had_lf_before;
    const bool reopened = open_segment(false) != 0;
    if (row <= stop) {
        return "row " + std::to_string(row) + " cannot be read";
    }
    return reopened ? "" : "the segment of the caret's row cannot be opened again";
}

const char* temp_prefix() {
    return directories.temp_prefix;
}

// ---- The run -----------------------------------------------------------------------------------------

struct Options {
    std::string home;    // empty: one of our own
    std::string script;  // empty: standard input
    bool times = false;
};

constexpr const char* USE = "use: hexlane-script [--home DIR] [--time] [SCRIPT]";

[[noreturn]] void refuse(const std::string& reason) {
    std::fprintf(stderr, "hexlane-script: %s\n", reason.c_str());
    std::exit(platform::SCRIPT_STOPPED);
}

Options read_options(int count, char** arguments) {
    Options options;
    for (int i = 1; i < count; i++) {
        const std::string argument = arguments[i];
        if (argument == "--home" && i + 1 < count) {
            options.home = arguments[++i];
        } else if (argument == "--time") {
            options.times = true;
        } else if (argument.empty() || argument[0] == '-' || !options.script.empty()) {
            refuse(USE);
        } else {
            options.script = argument;
        }
    }
    return options;
}

std::string own_home;  // removed at the end of the process; empty with --home

void remove_own_home() {
    std::error_code ignored;
    fs::remove_all(own_home, ignored);
}

// No dot in the name: the program takes the first dot of a path for the start of its extension.
std::string make_own_home() {
    char folder[] = "/tmp/hexlane-home-XXXXXX";
    if (mkdtemp(folder) == nullptr) {
        refuse("cannot make a home in /tmp");
    }
    own_home = folder;
    std::atexit(remove_own_home);
    std::error_code error;
    if (!fs::create_directory(own_home + "/ZOLT", error)) {
        refuse("cannot make a home in /tmp");
    }
    return own_home;
}

std::string given_home(const std::string& home) {
    std::error_code error;
    const fs::path folder = fs::canonical(home, error);
    if (error || !fs::is_directory(folder, error)) {
        refuse("there is no folder " + home);
    }
    return folder.string();
}

void name_places(const std::string& home) {
    std::error_code error;
    const std::string work = fs::current_path(error).string();
    const char* examples = std::getenv("HEXLANE_EXAMPLES");
    platform::name_place("$HOME_DIR", home);
    platform::name_place("$WORK", work);
    platform::name_place("$EXAMPLES", examples != nullptr ? examples : work + "/examples");
    platform::set_prefix_source(temp_prefix);
}

void arm_file_faults() {
    const char* faults = std::getenv("HEXLANE_FILE_FAULT");
    if (faults != nullptr && !platform::arm_file_faults_from_text(faults)) {
        refuse(std::string("HEXLANE_FILE_FAULT makes no sense: ") + faults);
    }
}

int run(const Options& options) {
    FILE* input = options.script.empty() ? stdin : std::fopen(options.script.c_str(), "rb");
    if (input == nullptr) {
        refuse("cannot read " + options.script);
    }
    const std::string home = options.home.empty() ? make_own_home() : given_home(options.home);
    setenv("HEXLANE_HOME", home.c_str(), 1);
    name_places(home);
    arm_file_faults();
    return platform::play_script({input, options.times, program_main, print_state, print_rows});
}

}  // namespace
}  // namespace hexlane

int main(int count, char** arguments) {
    return hexlane::run(hexlane::read_options(count, arguments));
}
