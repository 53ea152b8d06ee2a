// common.cpp: the helpers of cli.h.

#include "cli/cli.h"

#include "dnc/machine_fields.h"
#include "dnc/machine_table.h"
#include "platform/files.h"
#include "shell/directories.h"

#include <charconv>
#include <cstdio>
#include <system_error>

namespace hexlane {

using namespace platform;

namespace {

void remark(const std::string& text) {
    std::fprintf(stderr, "hexlane-cli: %s\n", text.c_str());
}

}  // namespace

int refuse(int code, const std::string& reason) {
    remark(reason);
    return code;
}

int refuse_use(const std::string& reason) {
    return refuse(EXIT_BAD_USE, reason + "; --help tells more");
}

bool read_number(const std::string& text, int64_t low, int64_t high, int64_t* value) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, *value);
    return error == std::errc{} && stop == end && *value >= low && *value <= high;
}

int find_machine(const std::string& text) {
    int64_t number = 0;
    if (read_number(text, 1, MACHINE_COUNT, &number))
        return static_cast<int>(number) - 1;
    int found = -1;
    for (int i = 0; i < MACHINE_COUNT; i++) {
        char name[MACHINE_NAME_TEXT_SIZE];
        machine_name(machine_table[i], name);
        if (!equal_ignoring_case(name, text.c_str()))
            continue;
        if (found >= 0)
            return -1;
        found = i;
    }
    return found;
}

std::string load_machines() {
    if (!find_home())
        return "there is no folder for the program's files: set HEXLANE_HOME to one";
    create_directories();
    set_machine_defaults();
    const TableState state = load_machine_table();
    const std::string path = directories.parameter_file_path;
    const std::string reason = file_error_text(last_file_error());
    if (state == TableState::NOT_READ)
        return "cannot read " + path + ": " + reason;
    if (state == TableState::NOT_MADE)
        remark("cannot make " + path + ": " + reason + ". All machines have their default settings");
    if (state == TableState::SHORT)
        remark(path + " is incomplete. What it lacks has the default settings");
    return "";
}

}  // namespace hexlane
