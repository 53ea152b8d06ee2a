// script.cpp: taking the lines of a script, whenever the program waits for the person.

#include "platform/scripted/script.h"

#include "platform/scripted/message_queue.h"
#include "platform/scripted/modal.h"
#include "platform/scripted/record.h"
#include "platform/scripted/script_actions.h"
#include "platform/scripted/script_watch.h"

#include <chrono>
#include <climits>
#include <cstdlib>

namespace hexlane::platform {

namespace {

using Clock = std::chrono::steady_clock;

constexpr const char* BLANKS = " \t\r";

ScriptSetup script;
int lines_read = 0;
ScriptLine next_line;
bool next_line_is_read = false;  // next_line holds a line that has not been taken
int acting_line = 0;             // number of the line under way, the innermost one
unsigned phase = BEFORE_START;
ScriptLine start_line;  // under way until the program waits for the first time; number 0 without one
bool start_is_timed = false;
Clock::time_point start_time;

[[noreturn]] void stop_at_line(const std::string& reason) {
    const std::string text =
        "stopped at line " + std::to_string(acting_line) + ": " + printable(with_place_names(reason));
    record_line(text);
    std::fprintf(stderr, "hexlane-script: %s\n", text.c_str());
    std::exit(SCRIPT_STOPPED);
}

bool read_text_line(std::string* text) {
    text->clear();
    int c = 0;
    while ((c = std::getc(script.input)) != EOF && c != '\n') {
        *text += static_cast<char>(c);
    }
    return c != EOF || !text->empty();
}

// The next line that is more than a comment, without taking it; nullptr at the end.
const ScriptLine* peek_line() {
    std::string text;
    while (!next_line_is_read && read_text_line(&text)) {
        next_line.number = ++lines_read;
        const std::string fault = split_line(text, &next_line);
        if (!fault.empty()) {
            acting_line = next_line.number;
            record_line("> " + next_line.shown);
            stop_at_line(fault);
        }
        next_line_is_read = !next_line.words.empty();
    }
    return next_line_is_read ? &next_line : nullptr;
}

void print_time(const ScriptLine& line, Clock::time_point since) {
    if (script.prints_times) {
        const std::chrono::duration<double, std::milli> gone = Clock::now() - since;
        std::fprintf(stderr, "%12.3f ms  line %d  %s\n", gone.count(), line.number, line.shown.c_str());
    }
}

Refusal phase_refuses(const Action& action) {
    if ((action.when & phase) != 0) {
        return "";
    }
    return phase == AFTER_EXIT ? "the program has ended" : "the program has not been started";
}

// Echoes a line and does what it says.
void perform(const ScriptLine& line) {
    const int outer_line = acting_line;
    acting_line = line.number;
    record_line("> " + line.shown);
    const Clock::time_point since = Clock::now();
    const Action* action = find_action(line.words[0].text);
    if (action == nullptr || line.words[0].is_quoted) {
        stop_at_line("there is no such line");
    }
    Refusal refusal = phase_refuses(*action);
    if (refusal.empty()) {
        refusal = action->act(line.words);
    }
    if (!refusal.empty()) {
        stop_at_line(refusal == WRONG_USE ? "use: " + std::string(action->name) + " " + action->use
                                          : refusal);
    }
    print_time(line, since);
    acting_line = outer_line;
}

// What stands behind the first two words of a line, which are bare, as a line of its own.
ScriptLine line_behind_two_words(const ScriptLine& line) {
    std::size_t at = line.text.find_first_not_of(BLANKS);
    for (int i = 0; i < 2 && at != std::string::npos; i++) {
        at = line.text.find_first_not_of(BLANKS, line.text.find_first_of(BLANKS, at));
    }
    ScriptLine rest;
    rest.number = line.number;
    if (at != std::string::npos) {
        split_line(line.text.substr(at), &rest);  // it could be read as a part of the whole line
    }
    return rest;
}

// `later N LINE`, which acts when the program pumps for the N-th time from here.
void lay_later(const ScriptLine& line) {
    const int outer_line = acting_line;
    acting_line = line.number;
    record_line("> " + line.shown);
    const ScriptLine inner = line_behind_two_words(line);
    int64_t count = 0;
    if (line.words.size() < 3 || inner.words.empty() || !parse_number(line.words[1], 1, INT_MAX, &count)) {
        stop_at_line("use: later N LINE");
    }
    if (phase != WHILE_RUNNING) {
        stop_at_line("the program does not run");
    }
    act_at_pump(static_cast<int>(count), [inner] { perform(inner); });
    acting_line = outer_line;
}

void play_line() {
    const ScriptLine line = next_line;
    next_line_is_read = false;
    if (line.words[0].text == "later" && !line.words[0].is_quoted) {
        lay_later(line);
    } else {
        perform(line);
    }
}

// The lines that `later` has laid ready must all have come to their turn.
void check_nothing_is_left() {
    if (acts_wait_for_pump()) {
        acting_line = lines_read;
        stop_at_line("the program has not pumped as often as `later` says");
    }
}

void print_start_time() {
    if (start_is_timed) {
        start_is_timed = false;
        print_time(start_line, start_time);
    }
}

// The person of a script: one line whenever the program waits.
bool play_next_line() {
    print_start_time();
    print_watched(WHILE_RUNNING);
    if (peek_line() != nullptr) {
        play_line();
        return true;
    }
    check_nothing_is_left();
    if (const Modal* modal = top_modal()) {
        record_line("ended with " + modal->name + " up");
        std::exit(SCRIPT_LEFT_UP);
    }
    std::exit(SCRIPT_RAN);
}

// Takes a `start` line if one is next; its file, if it names one, goes to `file`.
bool take_start_line(std::string* file) {
    const ScriptLine& line = next_line;
    if (line.words[0].text != "start") {
        start_line.shown = "start";
        return false;
    }
    acting_line = line.number;
    record_line("> " + line.shown);
    start_line = line;
    next_line_is_read = false;
    if (line.words.size() > 2 || (line.words.size() == 2 && !line.words[1].is_quoted)) {
        stop_at_line("use: start [\"FILE\"]");
    }
    if (line.words.size() == 2) {
        *file = without_place_name(line.words[1].text);
    }
    return line.words.size() == 2;
}

void run_program() {
    std::string file;
    const bool has_file = take_start_line(&file);
    phase = WHILE_RUNNING;
    start_is_timed = true;
    start_time = Clock::now();
    const int code = script.program(has_file ? file.c_str() : nullptr);
    print_start_time();
    phase = AFTER_EXIT;
    record_line("exit " + std::to_string(code));
    print_watched(AFTER_EXIT);
}

bool may_stand_before_start(const ScriptLine& line) {
    const Action* action = find_action(line.words[0].text);
    return action == nullptr || ((action->when & BEFORE_START) != 0 && line.words[0].text != "start");
}

}  // namespace

int play_script(const ScriptSetup& setup) {
    script = setup;
    print_record();
    set_stop_handler(stop_at_line);
    set_person(play_next_line);
    set_state_printers(setup.print_state, setup.print_rows);
    while (peek_line() != nullptr) {
        if (phase != BEFORE_START || may_stand_before_start(next_line)) {
            play_line();
        } else {
            run_program();
        }
    }
    check_nothing_is_left();
    return SCRIPT_RAN;
}

}  // namespace hexlane::platform
