// receive_internal.h: what the protocols share while they take a program apart.
#pragma once

#include "receive.h"

#include <string>

namespace simulator {

// A machine that is loading. `held` are the characters that are not stored yet, because the end string may be
// among them or a block's check is still to come.
struct Loader {
    Session& session;
    ProgramFile& program;
    std::string end_string;  // as it comes: without what the code does not have
    std::string held = {};
    int64_t held_from = 0;  // line byte of the first of them, from 1

    const Options& options() const { return session.options; }
    bool has_code(uint8_t character) const { return line_byte_of(options().code, character) != NO_CODE; }
};

// The next character; a byte that the code does not know is counted and passed on as it is. -1: over.
int next_character(Loader* loader);

// Whether the byte `ahead` of the next one is `character` on the line; false when the run is over before.
bool comes(Loader* loader, std::size_t ahead, uint8_t character);

// Takes the characters that must stand here; those without a code are not on the line. A wrong one is a fault
// and left in place.
void expect(Loader* loader, std::string_view characters);

// Holds a character that was just taken.
void hold(Loader* loader, int character);

// Stores what is held, all or the first `count` characters.
void store_held(Loader* loader);
void store_held(Loader* loader, std::size_t count);

// Takes the end string from behind the held characters; false, and a fault, when it is not there.
bool drop_end_string(Loader* loader);
bool ends_with_end_string(const Loader& loader);

// The exclusive-or of characters.
uint8_t check_of(std::string_view characters);

// One pass of the program, from behind the start sequence. False when the run was over before its end; what
// was there has been stored and counted.
bool load_plain(Loader* loader);
bool load_bridgeport(Loader* loader);
bool load_heidenhain(Loader* loader, bool first_pass);

// The run was over ahead of the program's end: a fault, but for a hang-up that was asked for and a continuous
// send.
void cut_off(Loader* loader, const char* where);

}  // namespace simulator
