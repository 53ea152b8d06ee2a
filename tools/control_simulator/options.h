// options.h: what the simulator is asked to do, from its command line. The help text is made from the same
// table.
#pragma once

#include "codes.h"

#include <cstdint>
#include <string>

namespace simulator {

enum class Protocol : uint8_t { GENERAL, BRIDGEPORT, HEIDENHAIN, PHILLIPS };
enum class Handshake : uint8_t { SOFTWARE, HARDWARE, NONE };
enum class Parity : uint8_t { NONE, EVEN, ODD };

constexpr int64_t NOT_GIVEN = -1;

struct Options {
    // What to play.
    std::string receive;  // file that takes the program that comes; empty when sending
    std::string send;     // file of the program that goes out; empty when receiving
    Protocol protocol = Protocol::GENERAL;
    Code code = Code::ASCII;
    LineEnd line_end = LineEnd::CRLF;
    std::string start;  // characters around the program
    std::string end;
    bool continuous = false;  // the program may come again and again

    // The line.
    std::string device;  // empty: a pty
    std::string link;    // stable name for the pty; empty for none
    int64_t rate = NOT_GIVEN;
    int64_t data_bits = NOT_GIVEN;
    Parity parity = Parity::NONE;
    bool parity_given = false;
    int64_t stop_bits = NOT_GIVEN;
    Handshake handshake = Handshake::SOFTWARE;

    // When it acts. Times in milliseconds.
    int64_t dc1_after = NOT_GIVEN;
    int64_t start_after = 250;
    bool start_key = false;
    int64_t ack_delay = 0;
    int64_t idle = 5000;
    int64_t patience = 0;  // 0: for ever

    // What it does to the other side.
    int64_t xoff_every = 0;  // bytes; 0 for never
    int64_t xoff_for = 100;
    int64_t xoff_char = XOFF;
    int64_t overrun = NOT_GIVEN;  // bytes allowed behind an XOFF
    int64_t drop_ack = 0;         // number of the ACK that is left out, from 1
    int64_t hang_up_after = NOT_GIVEN;

    std::string log;  // file, "-" for standard error, empty for none
};

enum class Wish : uint8_t { RUN, HELP, REFUSED };

// Fills `options` with the command line and the line settings that the code brings. REFUSED: `reason` tells
// what is wrong with it.
Wish read_options(int count, char** arguments, Options* options, std::string* reason);

// The manual page for --help.
std::string help_text();

}  // namespace simulator
