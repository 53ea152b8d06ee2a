// script_test.cpp: whole scripts against a small program: lines that act in the middle of a run, and the
// machine on a serial line. Each is played in a process of its own.

#include "platform/desktop.h"
#include "platform/scripted/record.h"
#include "platform/scripted/script.h"
#include "platform/scripted/test_hooks.h"
#include "platform/serial.h"
#include "platform/threads.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace hexlane::platform {
namespace {

LineHandle line = NO_LINE;
ThreadHandle worker = NO_THREAD;

// Tells what comes in and answers it with the same bytes.
int64_t echo(int64_t) {
    static char bytes[64];
    uint32_t events = 0;
    while (line_wait_event(line, &events) == 1 && events != 0) {
        if ((events & EV_RXCHAR) != 0) {
            const int count = line_read(line, bytes, sizeof bytes);
            line_write(line, bytes, count);
            record_line("heard " + quoted({bytes, static_cast<std::size_t>(count)}));
        }
    }
    record_line("line ended " + std::to_string(events));
    return 0;
}

void open_line() {
    line = line_open(2);
    if (line == NO_LINE) {
        record_line("refused " + quoted(line_problem_text()));
        return;
    }
    const LineSettings settings = {10000, 8, PARITY_NONE, STOP_BITS_ONE, false, false, 0x11, 0x13, 0x06};
    line_configure(line, settings);
    line_set_mask(line, EV_RXCHAR | EV_TXEMPTY);
    worker = thread_start(echo, 0, ThreadPriority::HIGHEST);
}

void run_long() {
    for (int pump = 1; pump <= 4; pump++) {
        record_line("pump " + std::to_string(pump) + (pump_one_message() ? " served" : ""));
    }
}

int64_t window_proc(WindowHandle window, uint32_t message, int64_t first, int64_t) {
    if (message == WM_CHAR && first == 'o') {
        open_line();
    } else if (message == WM_CHAR && first == 'r') {
        run_long();
    } else if (message == WM_CHAR && first == 'b') {
        message_box("Up", "Test", BoxIcon::NONE, BUTTONS_OK);
    } else if (message == WM_CHAR && first == 't') {
        set_window_title(window, "Other");
    } else if (message == WM_CLOSE) {
        post_quit(0);
    }
    return 0;
}

int program(const char*) {
    make_test_window(window_proc);
    return run_message_loop();
}

struct Played {
    std::string record;
    int code;
};

Played play(std::string script) {
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDOUT_FILENO);
        std::freopen("/dev/null", "w", stderr);
        FILE* input = fmemopen(script.data(), script.size(), "r");
        std::exit(play_script({input, false, program, nullptr, nullptr}));
    }
    close(ends[1]);
    Played played = {"", -1};
    char piece[4096];
    for (ssize_t count; (count = read(ends[0], piece, sizeof piece)) > 0;) {
        played.record.append(piece, static_cast<std::size_t>(count));
    }
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    played.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return played;
}

TEST(Script, WatchedLinesPrintWhenTheirAnswerHasChanged) {
    reset_desktop();
    const Played played = play("watch title status\n"
                               "char 98\n"
                               "press \"OK\"\n"
                               "char 116\n"
                               "watch\n"
                               "title\n");
    EXPECT_EQ(played.record, "> watch title status\n"
                             "title \"Test\"\n"
                             "status: there is no status line\n"
                             "> char 98\n"
                             "message \"Up\" title \"Test\" icon none buttons \"OK\"\n"
                             "> press \"OK\"\n"
                             "> char 116\n"
                             "title \"Other\"\n"
                             "> watch\n"
                             "> title\n"
                             "title \"Other\"\n");
}

TEST(Script, KeyThatRepeatsDropsItsRestWhenSomethingComesUp) {
    reset_desktop();
    const Played played = play("key b 3\npress \"OK\"\nkey b\npress \"OK\"\n");
    const std::string box = "message \"Up\" title \"Test\" icon none buttons \"OK\"\n";
    EXPECT_EQ(played.record,
              "> key b 3\n" + box + "stopped after 1\n> press \"OK\"\n> key b\n" + box + "> press \"OK\"\n");
}

TEST(Script, LineThatWaitsForAPumpInVainStopsTheRun) {
    reset_desktop();
    const Played played = play("later 5 caret\nchar 114\n");
    EXPECT_EQ(played.code, SCRIPT_STOPPED);
    EXPECT_EQ(played.record, "> later 5 caret\n> char 114\npump 1\npump 2\npump 3\npump 4\n"
                             "stopped at line 2: the program has not pumped as often as `later` says\n");
}

TEST(Script, MachineOnASerialLine) {
    reset_desktop();
    const Played played = play("line 2 refuse \"Unplugged.\"\n"
                               "char 111\n"
                               "line 2 ready\n"
                               "line 2 fifo 1\n"
                               "line 2 drain 3\n"
                               "char 111\n"
                               "line 2 sent\n"
                               "line 2 feed \"a\\n\"\n"
                               "line 2 feed \"bc\" 20 at-once\n"
                               "tick 100\n"
                               "line 2 sent times\n"
                               "line 2 feed \"x\\ny\" at-once\n"
                               "tick 100\n"
                               "line 2 sent\n"
                               "line 2 fail\n"
                               "title\n");
    EXPECT_EQ(played.record, "> line 2 refuse \"Unplugged.\"\n"
                             "> char 111\n"
                             "refused \"Unplugged.\"\n"
                             "> line 2 ready\n"
                             "> line 2 fifo 1\n"
                             "> line 2 drain 3\n"
                             "> char 111\n"
                             "> line 2 sent\n"
                             "nothing sent\n"
                             "> line 2 feed \"a\\n\"\n"
                             "> line 2 feed \"bc\" 20 at-once\n"
                             "> tick 100\n"
                             "heard \"a\"\n"
                             "heard \"\\x0A\"\n"
                             "heard \"bc\"\n"
                             "> line 2 sent times\n"
                             "2 ms \"a\"\n"
                             "21 ms \"bc\"\n"
                             "> line 2 feed \"x\\ny\" at-once\n"
                             "> tick 100\n"
                             "heard \"x\\x0Ay\"\n"
                             "> line 2 sent\n"
                             "\"x\\x0A\"\n"
                             "\"y\"\n"
                             "> line 2 fail\n"
                             "line ended 0\n"
                             "> title\n"
                             "title \"Test\"\n");
    EXPECT_EQ(played.code, SCRIPT_RAN);
}

TEST(Script, WrongWordsForALineStopTheRun) {
    for (const char* words : {"line 5 sent",
                              "line 0 sent",
                              "line 1",
                              "line 1 cts up",
                              "line 1 feed x",
                              "line 1 rate",
                              "line 1 feed \"x\" -1",
                              "line 1 fifo 0",
                              "line 1 sent now",
                              "line 1 fail 3",
                              "line 1 purge",
                              "key b 0",
                              "mouse click 1",
                              "watch bytes",
                              "watch view",
                              "later 0 caret",
                              "later 1",
                              "later 1\"caret\"",
                              "later",
                              "later 1 later 1 caret"}) {
        reset_desktop();
        const Played played = play(std::string(words) + "\nchar 114\n");
        EXPECT_EQ(played.code, SCRIPT_STOPPED) << words;
    }
}

}  // namespace
}  // namespace hexlane::platform
