// machines.cpp: the command `machines`: the sixteen sets of COMMPARM.INI.

#include "cli/cli.h"
#include "cli/machine_text.h"
#include "dnc/machine_fields.h"
#include "dnc/machine_table.h"
#include "platform/files.h"
#include "shell/directories.h"

#include <cstdio>
#include <cstring>

namespace hexlane {

using namespace platform;

const char* const MACHINES_HELP =
    R"(hexlane-cli machines: the sixteen machine sets, which the desktop program uses too.

Use
    hexlane-cli machines list
    hexlane-cli machines show N
    hexlane-cli machines set N FIELD=VALUE...
    hexlane-cli machines export [FILE]
    hexlane-cli machines import FILE

    N is a machine's number, 1 to 16, or its name.

    list      one line for each machine; * marks the one that is saved as current
    show      all settings of one machine, as `set` takes them
    set       changes settings and saves. What the data type forces (EIA has no parity, 8 data
              bits and LF) is put in behind them, and told.
    export    all machines as text, to FILE (which must not exist) or standard output
    import    reads such a text, or a COMMPARM.INI of another installation (- is standard
              input). All of it must make sense, otherwise nothing is changed.

Settings
    name=TEXT               up to 35 characters
    preset=PROTOCOL         what choosing the protocol in the dialog brings: rate, line form, COM1,
                            no delay, no start and end sequence
    protocol=               general, bridgeport, heidenhain, phillips
    baud=                   110 300 600 1200 2400 4800 9600 14400 19200 38400 56000
    data_type=              iso, eia, ascii, binary
    data_bits=  parity=  stop_bits=        7 8    none even odd    1 2
    eob=                    crlf (as it stands), lf, cr, lfcr, lfcrcr, dollar ($ CR LF), none
    port=                   COM1 to COM4
    handshake=              software (XON/XOFF), hardware (RTS/CTS)
    start_char=  start_char_count=         a character number, and how often it is sent in front
    end_char=  end_char_count=             the same behind the program
    start_string=  end_string=             up to 8 character numbers: 37,13,10. - is a blank
    eob_delay_ms=           0 to 9999; not 0 sends line by line
    receive_timeout_s=      1 to 999 seconds of silence end a receive
    compress_comments= compress_line_numbers= compress_tabs= compress_spaces=     0 or 1
    compress_character_on=  compress_character=                0 or 1, character number
    xoff_char=              19, or 147 with EIA
    current_machine=        of machine 1: the current machine, counted from 0

A desktop program that is open keeps its own copy of the sets. Before it writes over what was set here,
it asks.

Exit code
    0   done
    2   the command line makes no sense
    3   a file could not be read or written, or what it holds makes no sense
)";

namespace {

constexpr const char* TEXT_HEAD = "# Machine sets. `hexlane-cli machines import` reads this.\n";
constexpr int64_t LONGEST_TEXT = 1 << 20;  // bytes; sixteen machines take about 10,000

int save() {
    if (machine_file_changed() > 0)
        return refuse(EXIT_CANNOT, std::string("another program has changed ") +
                                       directories.parameter_file_path + " meanwhile: nothing was written");
    if (save_machine_table())
        return EXIT_COMPLETE;
    return refuse(EXIT_CANNOT, std::string("cannot write ") + directories.parameter_file_path + ": " +
                                   file_error_text(last_file_error()));
}

int no_machine(const std::string& word) {
    return refuse_use("there is no machine '" + word + "', or more than one of that name");
}

// Bytes of the list's column that a name takes: the column has 35 characters.
int name_width(const char* name) {
    int width = MACHINE_NAME_SIZE - 1;
    for (; *name != '\0'; name++)
        width += (static_cast<unsigned char>(*name) & 0xC0) == 0x80 ? 1 : 0;
    return width;
}

int list_machines(const Words& words) {
    if (words.size() != 1)
        return refuse_use("list takes nothing behind it");
    std::printf("     %-35s  %-4s  %-10s  %-6s  %-9s  %s\n", "name", "port", "protocol", "data", "line",
                "eob");
    for (int i = 0; i < MACHINE_COUNT; i++) {
        const MachineParams& m = machine_table[i];
        char name[MACHINE_NAME_TEXT_SIZE];
        machine_name(m, name);
        std::printf("%c %2d %-*s  COM%d  %-10s  %-6s  %-9s  %s\n", i == slot_machine[0] ? '*' : ' ', i + 1,
                    name_width(name), name, machine_setting(m, Field::PORT_INDEX) + 1,
                    protocol_word(m).c_str(), data_type_word(m).c_str(), line_form(m).c_str(),
                    eob_word(m).c_str());
    }
    return EXIT_COMPLETE;
}

int show_machine_set(const Words& words) {
    if (words.size() != 2)
        return refuse_use("show takes one machine");
    const int machine = find_machine(words[1]);
    if (machine < 0)
        return no_machine(words[1]);
    std::fputs(machine_text(machine_table[machine], machine == 0).c_str(), stdout);
    return EXIT_COMPLETE;
}

int set_machine(const Words& words) {
    if (words.size() < 3)
        return refuse_use("set takes a machine and FIELD=VALUE");
    const int machine = find_machine(words[1]);
    if (machine < 0)
        return no_machine(words[1]);
    MachineParams changed = machine_table[machine];
    for (std::size_t i = 2; i < words.size(); i++) {
        const std::string wrong = set_setting(&changed, words[i]);
        if (!wrong.empty())
            return refuse_use(wrong);
    }
    std::fputs(apply_rules(&changed).c_str(), stderr);
    machine_table[machine] = changed;
    return save();
}

// ---- Text of all machines ----------------------------------------------------------------------------

std::string all_text() {
    std::string text = TEXT_HEAD;
    for (int i = 0; i < MACHINE_COUNT; i++)
        text += "\n[" + std::to_string(i + 1) + "]\n" + machine_text(machine_table[i], i == 0);
    return text;
}

int export_machines(const Words& words) {
    const std::string text = all_text();
    if (words.size() > 2)
        return refuse_use("export takes one file");
    if (words.size() == 1)
        return std::fputs(text.c_str(), stdout) < 0 ? refuse(EXIT_CANNOT, "cannot write") : EXIT_COMPLETE;
    const char* path = words[1].c_str();
    const FileHandle file = file_create(path, FileCreate::NEW);
    const bool written = file != NO_FILE && file_write_at(file, 0, text.data(), text.size());
    const FileError error = last_file_error();
    const bool closed = file != NO_FILE && file_close(file);
    if (written && closed)
        return EXIT_COMPLETE;
    return refuse(EXIT_CANNOT,
                  "cannot write " + words[1] + ": " + file_error_text(written ? last_file_error() : error));
}

std::string read_stream(FILE* stream, std::string* text) {
    char piece[4096];
    std::size_t count = 0;
    while ((count = std::fread(piece, 1, sizeof piece, stream)) > 0) {
        text->append(piece, count);
        if (text->size() > LONGEST_TEXT)
            return "is too long to be a text of machines";
    }
    return std::ferror(stream) != 0 ? "cannot be read" : "";
}

// Gives what is wrong, or "".
std::string read_input(const std::string& path, std::string* text) {
    if (path == "-")
        return read_stream(stdin, text);
    FILE* file = std::fopen(path.c_str(), "rb");
    if (file == nullptr)
        return std::strerror(errno);
    const std::string wrong = read_stream(file, text);
    std::fclose(file);
    return wrong;
}

// Takes one line of the text. Gives what is wrong with it, or "".
std::string take_line(const std::string& line, MachineParams* machines, int* machine) {
    if (line.empty() || line[0] == '#')
        return "";
    if (line[0] == '[') {
        int64_t number = 0;
        if (line.back() != ']' || !read_number(line.substr(1, line.size() - 2), 1, MACHINE_COUNT, &number))
            return "a machine's number stands in [brackets], 1 to 16";
        *machine = static_cast<int>(number) - 1;
        return "";
    }
    if (*machine < 0)
        return "a setting ahead of the first [machine]";
    return set_setting(&machines[*machine], line);
}

std::string take_text(const std::string& text, MachineParams* machines) {
    int machine = -1;
    int number = 1;
    for (std::size_t from = 0; from < text.size(); number++) {
        std::size_t to = text.find('\n', from);
        to = to == std::string::npos ? text.size() : to;
        std::string line = text.substr(from, to - from);
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        const std::string wrong = take_line(line, machines, &machine);
        if (!wrong.empty())
            return "line " + std::to_string(number) + ": " + wrong;
        from = to + 1;
    }
    return machine < 0 ? "names no machine" : "";
}

int import_machines(const Words& words) {
    if (words.size() != 2)
        return refuse_use("import takes one file");
    std::string text;
    std::string wrong = read_input(words[1], &text);
    if (!wrong.empty())
        return refuse(EXIT_CANNOT, words[1] + ": " + wrong);
    static MachineParams machines[MACHINE_COUNT];
    std::memcpy(static_cast<void*>(machines), machine_table, sizeof machines);
    if (text.size() == sizeof machines) {
        std::memcpy(static_cast<void*>(machines), text.data(), sizeof machines);
    } else {
        wrong = take_text(text, machines);
        if (!wrong.empty())
            return refuse(EXIT_CANNOT, words[1] + ": " + wrong);
        for (MachineParams& machine : machines)
            apply_rules(&machine);
    }
    std::memcpy(static_cast<void*>(machine_table), machines, sizeof machines);
    return save();
}

struct Action {
    const char* name;
    int (*run)(const Words& words);
};

constexpr Action ACTIONS[] = {
    {"list", list_machines},     {"show", show_machine_set},  {"set", set_machine},
    {"export", export_machines}, {"import", import_machines},
};

}  // namespace

int run_machines(const Words& words) {
    for (const Action& action : ACTIONS) {
        if (words.empty() || words[0] != action.name)
            continue;
        const std::string reason = load_machines();
        return reason.empty() ? action.run(words) : refuse(EXIT_CANNOT, reason);
    }
    return refuse_use("machines is followed by list, show, set, export or import");
}

}  // namespace hexlane
