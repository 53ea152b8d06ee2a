// compare_command.cpp: the command `compare`: two files row by row, with the exit codes of diff.

#include "cli/cli.h"

#include "compare/compare.h"
#include "compare/report.h"
#include "platform/console/console.h"
#include "platform/desktop.h"
#include "shell/directories.h"
#include "store/replace_file.h"

#include <cstdio>

namespace hexlane {

using namespace platform;

const char* const COMPARE_HELP = R"(hexlane-cli compare: compares two NC programs row by row.

Use
    hexlane-cli compare [OPTION]... LEFT RIGHT

Options
    --look-ahead N        rows that are looked ahead for the next equal row, 1 to 99. Default: 20
    --keep-spaces         blanks and tabs count; otherwise they do not
    --report FILE         writes the rows of both side by side into FILE; an old FILE is replaced
    --differences-only    the report leaves equal rows out

Standard output has the numbers of matches, modified, inserted (in RIGHT alone) and deleted (in LEFT alone)
rows, as the editor's window counts them. In the report, <-INS marks a row of LEFT alone, DEL-> one of
RIGHT alone.

Exit code
    0   the files are identical
    1   they differ
    2   the command line makes no sense, a file could not be read or written, or the compare was stopped
)";

namespace {

constexpr int FILES_IDENTICAL = 0;
constexpr int FILES_DIFFER = 1;
constexpr int TROUBLE = 2;

constexpr uint32_t STOP_MESSAGE = 0x8100;

struct Options {
    std::string left;
    std::string right;
    std::string report;
    int64_t look_ahead = DEFAULT_LOOK_AHEAD;
    bool keep_spaces = false;
    bool differences_only = false;
};

bool stopped = false;

int64_t stop_proc(WindowHandle, uint32_t message, int64_t, int64_t) {
    if (message == STOP_MESSAGE) {
        stopped = true;
        stop_compare();
    }
    return 0;
}

// Gives the reason why the words make no sense, else "".
std::string read_options(const Words& words, Options* options) {
    std::string* const names[] = {&options->left, &options->right};
    std::size_t named = 0;
    for (std::size_t i = 0; i < words.size(); i++) {
        const std::string& word = words[i];
        const bool has_value = i + 1 < words.size();
        if (word == "--keep-spaces") {
            options->keep_spaces = true;
        } else if (word == "--differences-only") {
            options->differences_only = true;
        } else if (word == "--report" && has_value) {
            options->report = words[++i];
        } else if (word == "--look-ahead" && has_value) {
            if (!read_number(words[++i], 1, LONGEST_LOOK_AHEAD, &options->look_ahead))
                return "--look-ahead takes 1 to 99";
        } else if (word.starts_with("--")) {
            return has_value || (word != "--report" && word != "--look-ahead") ? "what is '" + word + "'?"
                                                                               : word + " needs a value";
        } else if (named < 2) {
            *names[named++] = word;
        } else {
            return "two files are compared, not more";
        }
    }
    if (named < 2)
        return "two files are compared";
    for (const std::string* path : names) {
        if (!options->report.empty() && same_path(options->report.c_str(), path->c_str()))
            return "--report would replace " + *path + ", which is compared";
    }
    return options->differences_only && options->report.empty() ? "--differences-only goes with --report"
                                                                : "";
}

std::string fault_text() {
    const FileError reason = last_file_error();
    const char* path = nullptr;
    if (compare_fault(&path) == CompareFault::TOO_LARGE)
        return std::string(path) + ": has more than 4294967295 bytes";
    return std::string(path) + ": " + file_error_text(reason);
}

// Complete, or the old file stays. Gives the reason of a failure, else "".
std::string write_report(const Options& options) {
    Replacement output;
    const FileHandle old = file_open(options.report.c_str(), FileAccess::READ_WRITE);
    bool written = old != NO_FILE || last_file_error() == FileError::NOT_FOUND;
    if (written && begin_replacement(&output, options.report.c_str())) {
        written = write_compare_report(output.file, options.differences_only) &&
                  compare_was_disturbed() == nullptr && finish_replacement(&output, old);
        abandon_replacement(&output);
    } else {
        written = false;
    }
    const std::string reason = written ? "" : options.report + ": " + file_error_text(last_file_error());
    if (old != NO_FILE)
        file_close(old);
    return reason;
}

void print_counters() {
    std::printf("Matches: %lld\nMods:    %lld\nInserts: %lld\nDeletes: %lld\n",
                static_cast<long long>(compare.matches), static_cast<long long>(compare.mods),
                static_cast<long long>(compare.inserts), static_cast<long long>(compare.deletes));
}

int compare_files(const Options& options) {
    begin_compare(options.left.c_str(), "", options.right.c_str(), "");
    compare.look_ahead = static_cast<int32_t>(options.look_ahead);
    compare.ignore_spaces = !options.keep_spaces;
    if (!run_compare())
        return refuse(TROUBLE, fault_text());
    if (stopped)
        return refuse(TROUBLE, "stopped");
    const std::string reason = options.report.empty() ? "" : write_report(options);
    if (const char* path = compare_was_disturbed())
        return refuse(TROUBLE, std::string(path) + ": changed meanwhile, or cannot be read");
    if (!reason.empty())
        return refuse(TROUBLE, reason);
    const bool identical = compare.mods == 0 && compare.inserts == 0 && compare.deletes == 0;
    if (identical)
        std::puts("Files are identical");
    print_counters();
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        return refuse(TROUBLE, "cannot write to standard output");
    return identical ? FILES_IDENTICAL : FILES_DIFFER;
}

}  // namespace

int run_compare_command(const Words& words) {
    Options options;
    const std::string reason = read_options(words, &options);
    if (!reason.empty())
        return refuse_use(reason);
    for (const std::string* path : {&options.left, &options.right}) {
        if (path->size() >= PATH_SIZE)
            return refuse(TROUBLE, *path + ": " + file_error_text(FileError::NAME_TOO_LONG));
    }
    if (!find_home())
        return refuse(TROUBLE, "there is no folder for the program's files: set HEXLANE_HOME to one");
    create_directories();
    start_console();
    post_signals(make_console_window(stop_proc), STOP_MESSAGE);
    const int code = compare_files(options);
    close_compare();
    return code;
}

}  // namespace hexlane
