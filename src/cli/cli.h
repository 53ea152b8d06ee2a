// cli.h: what the commands of hexlane-cli share: exit codes, words of the command line, choosing a machine.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace hexlane {

constexpr int EXIT_COMPLETE = 0;
constexpr int EXIT_NOT_COMPLETE = 1;  // the transfer ended before all was over
constexpr int EXIT_BAD_USE = 2;
constexpr int EXIT_CANNOT = 3;   // a port or file could not be opened, read or written
constexpr int EXIT_STOPPED = 4;  // by Ctrl-C or SIGTERM
constexpr int EXIT_NOTHING_CAME = 5;

// The words behind the command, in order.
using Words = std::vector<std::string>;

// Each runs one command and gives the exit code.
int run_machines(const Words& words);
int run_send(const Words& words);
int run_receive(const Words& words);
int run_ports(const Words& words);
int run_compare_command(const Words& words);
int run_print_command(const Words& words);

extern const char* const MACHINES_HELP;
extern const char* const SEND_HELP;
extern const char* const RECEIVE_HELP;
extern const char* const PORTS_HELP;
extern const char* const COMPARE_HELP;
extern const char* const PRINT_HELP;

// "hexlane-cli: REASON" on standard error; gives `code`.
int refuse(int code, const std::string& reason);

// For a command line that makes no sense.
int refuse_use(const std::string& reason);

// A whole decimal number within limits; false for anything else.
bool read_number(const std::string& text, int64_t low, int64_t high, int64_t* value);

// The machine of a number from 1 or of a name, in any case; -1 when there is none, or more than one of that
// name.
int find_machine(const std::string& text);

// Finds the program's folders and loads the machine table. Gives the reason when that cannot be done, else
// "". A machine file that is there but cannot be read is left alone; one that is incomplete or cannot be made
// is told on standard error.
std::string load_machines();

}  // namespace hexlane
