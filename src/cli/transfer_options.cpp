// transfer_options.cpp: the command lines of send and receive.

#include "cli/transfer_run.h"

namespace hexlane {

const char* const SEND_HELP = R"(hexlane-cli send: sends an NC program to a machine.

Use
    hexlane-cli send [OPTION]... FILE

Options
    --machine N     machine set by number (1 to 16) or name. Default: the current one
    --port DEVICE   serial device (/dev/ttyUSB0, a pty) or COM1 to COM4, instead of the machine's
    --queue         waits until the machine asks for the program (DC1); not with RTS/CTS
    --continuous    sends the program again and again, until it is stopped
    --from-row N    begins at row N of the file, counted from 1

The file is read as it stands on the disk. A terminal shows how far it is; otherwise one line tells that
it has begun. At the end standard output has the receipt. Ctrl-C stops; a second one ends the program.

Exit code
    0   the machine has all of it
    1   the transfer ended before: line gone, file changed meanwhile
    2   the command line makes no sense
    3   the port or the file could not be opened
    4   stopped by Ctrl-C or SIGTERM
)";

const char* const RECEIVE_HELP = R"(hexlane-cli receive: receives an NC program from a machine.

Use
    hexlane-cli receive [OPTION]... FILE

Options
    --machine N     machine set by number (1 to 16) or name. Default: the current one
    --port DEVICE   serial device (/dev/ttyUSB0, a pty) or COM1 to COM4, instead of the machine's
    --timeout S     silence that ends the receive, in seconds, instead of the machine's
    --wait S        gives up when nothing has come after S seconds. Default: waits for ever
    --replace       FILE may exist, and FILE.part of an earlier receive. FILE stays until all has come

What comes is written to FILE.part, which gets the name FILE, with its mode, when all has come. A receive
that is stopped or fails leaves FILE.part, and the receipt names it. A pipe or a device is written directly.
Nobody else may receive into FILE meanwhile.

A terminal shows how much has come; otherwise one line tells that the port is open and the machine may
begin. At the end standard output has the receipt. Ctrl-C stops; a second one ends the program.

Exit code
    0   the machine has fallen silent, and all that came is in the file
    1   the transfer ended before: line gone, file could not be written
    2   the command line makes no sense
    3   the port or the file could not be opened
    4   stopped by Ctrl-C or SIGTERM
    5   nothing came within --wait
)";

namespace {

constexpr unsigned FOR_SEND = 1;
constexpr unsigned FOR_RECEIVE = 2;
constexpr int64_t LAST_ROW = 2147483647;
constexpr int64_t LONGEST_TIMEOUT_S = 999;
constexpr int64_t LONGEST_WAIT_S = 31'536'000;  // a year

struct Option {
    const char* name;
    unsigned commands;
    bool has_value;
    const char* wanted;  // what a value is
    bool (*take)(TransferOptions& options, const std::string& value);
};

constexpr Option OPTIONS[] = {
    {"--machine", FOR_SEND | FOR_RECEIVE, true, "a machine's number or name",
     [](TransferOptions& o, const std::string& value) { return !(o.machine = value).empty(); }},
    {"--port", FOR_SEND | FOR_RECEIVE, true, "a device or COM1 to COM4",
     [](TransferOptions& o, const std::string& value) { return !(o.port = value).empty(); }},
    {"--queue", FOR_SEND, false, "", [](TransferOptions& o, const std::string&) { return o.queue = true; }},
    {"--continuous", FOR_SEND, false, "",
     [](TransferOptions& o, const std::string&) { return o.continuous = true; }},
    {"--from-row", FOR_SEND, true, "a row, counted from 1",
     [](TransferOptions& o, const std::string& value) {
         return read_number(value, 1, LAST_ROW, &o.from_row);
     }},
    {"--timeout", FOR_RECEIVE, true, "a number of seconds, 1 to 999",
     [](TransferOptions& o, const std::string& value) {
         return read_number(value, 1, LONGEST_TIMEOUT_S, &o.timeout_s);
     }},
    {"--wait", FOR_RECEIVE, true, "a number of seconds",
     [](TransferOptions& o, const std::string& value) {
         return read_number(value, 1, LONGEST_WAIT_S, &o.wait_s);
     }},
    {"--replace", FOR_RECEIVE, false, "",
     [](TransferOptions& o, const std::string&) { return o.replace = true; }},
};

const Option* find_option(const std::string& name, unsigned command) {
    for (const Option& option : OPTIONS) {
        if (name == option.name && (option.commands & command) != 0)
            return &option;
    }
    return nullptr;
}

}  // namespace

std::string read_transfer_options(const Words& words, bool sending, TransferOptions* options) {
    bool only_files = false;
    for (std::size_t i = 0; i < words.size(); i++) {
        const std::string& word = words[i];
        if (only_files || word.empty() || word[0] != '-') {
            if (!options->file.empty() || word.empty())
                return word.empty() ? "the file has no name"
                                    : "one file at a time; the second one is " + word;
            options->file = word;
            continue;
        }
        if (word == "--") {
            only_files = true;
            continue;
        }
        const Option* option = find_option(word, sending ? FOR_SEND : FOR_RECEIVE);
        if (option == nullptr)
            return std::string(sending ? "send" : "receive") + " has no option " + word;
        if (option->has_value && ++i == words.size())
            return word + " takes " + option->wanted;
        if (!option->take(*options, option->has_value ? words[i] : ""))
            return word + " takes " + option->wanted + ", not '" + words[i] + "'";
    }
    return options->file.empty() ? "which file?" : "";
}

}  // namespace hexlane
