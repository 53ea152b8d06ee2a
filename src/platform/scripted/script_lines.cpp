// script_lines.cpp: the line `line N ...`, by which a script plays the machine on a serial line.

#include "platform/scripted/line_hooks.h"
#include "platform/scripted/record.h"
#include "platform/scripted/script_actions.h"

#include <climits>
#include <cstdio>

namespace hexlane::platform {

namespace {

constexpr int64_t US_PER_MS = 1000;

using LineWords = std::vector<Word>;  // behind `line N`, the verb first

bool text_alone(const LineWords& words) {
    return words.size() == 2 && words[1].is_quoted;
}

bool number_alone(const LineWords& words, int* number) {
    int64_t value = 0;
    if (words.size() != 2 || !parse_number(words[1], 0, INT_MAX, &value)) {
        return false;
    }
    *number = static_cast<int>(value);
    return true;
}

// feed "BYTES" [MS] [at-once]
Refusal feed(int port, const LineWords& words) {
    const bool at_once = words.size() > 2 && words.back().text == "at-once";
    const std::size_t count = words.size() - (at_once ? 1 : 0);
    int64_t after_ms = 0;
    if (count < 2 || count > 3 || !words[1].is_quoted ||
        (count == 3 && !parse_number(words[2], 0, INT_MAX, &after_ms))) {
        return WRONG_USE;
    }
    (at_once ? feed_line_at_once : feed_line)(port, words[1].text, after_ms * US_PER_MS);
    return "";
}

Refusal switch_cts(int port, const LineWords& words) {
    if (words.size() != 2 || (words[1].text != "on" && words[1].text != "off")) {
        return WRONG_USE;
    }
    set_line_cts(port, words[1].text == "on");
    return "";
}

Refusal set_rate(int port, const LineWords& words) {
    int rate = 0;
    if (!number_alone(words, &rate)) {
        return WRONG_USE;
    }
    set_line_rate(port, static_cast<uint32_t>(rate));
    return "";
}

Refusal set_fifo(int port, const LineWords& words) {
    int bytes = 0;
    if (!number_alone(words, &bytes) || bytes == 0) {
        return WRONG_USE;
    }
    set_line_fifo(port, bytes);
    return "";
}

Refusal set_drain(int port, const LineWords& words) {
    int ms = 0;
    if (!number_alone(words, &ms)) {
        return WRONG_USE;
    }
    set_line_drain(port, ms * US_PER_MS);
    return "";
}

Refusal refuse(int port, const LineWords& words) {
    if (!text_alone(words)) {
        return WRONG_USE;
    }
    refuse_line(port, words[1].text.c_str());
    return "";
}

Refusal refuse_settings(int port, const LineWords& words) {
    refuse_line_settings(port, true);
    return words.size() == 1 ? "" : WRONG_USE;
}

Refusal fail(int port, const LineWords& words) {
    unplug_line(port);
    return words.size() == 1 ? "" : WRONG_USE;
}

Refusal make_ready(int port, const LineWords& words) {
    plug_line(port);
    refuse_line(port, "");
    refuse_line_settings(port, false);
    return words.size() == 1 ? "" : WRONG_USE;
}

// One line for each run of bytes without a pause, with the time at which its first byte had left.
void print_sent_with_times(const std::vector<SentByte>& sent) {
    for (std::size_t first = 0, next = 0; first < sent.size(); first = next) {
        std::string bytes;
        do {
            bytes += static_cast<char>(sent[next++].byte);
        } while (next < sent.size() && !sent[next].after_pause);
        char time[32];
        std::snprintf(time, sizeof time, "%.9g", static_cast<double>(sent[first].at_us) / US_PER_MS);
        record_line(std::string(time) + " ms " + quoted(bytes));
    }
}

Refusal show_sent(int port, const LineWords& words) {
    const bool with_times = words.size() == 2 && words[1].text == "times";
    if (words.size() > 1 && !with_times) {
        return WRONG_USE;
    }
    const std::vector<SentByte> sent = take_sent_bytes(port);
    if (sent.empty()) {
        record_line("nothing sent");
    } else if (with_times) {
        print_sent_with_times(sent);
    } else {
        std::string bytes;
        for (const SentByte& byte : sent) {
            bytes += static_cast<char>(byte.byte);
        }
        print_byte_lines(bytes);
    }
    return "";
}

// To add one: a row here, and in docs/scripted-runs.md.
const struct {
    const char* verb;
    Refusal (*act)(int port, const LineWords& words);
} VERBS[] = {
    {"feed", feed},        {"cts", switch_cts}, {"sent", show_sent},
    {"rate", set_rate},    {"fifo", set_fifo},  {"drain", set_drain},
    {"fail", fail},        {"refuse", refuse},  {"refuse-settings", refuse_settings},
    {"ready", make_ready},
};

}  // namespace

Refusal do_line(const Words& words) {
    int64_t port = 0;
    if (words.size() < 3 || !parse_number(words[1], 1, PORT_COUNT, &port)) {
        return WRONG_USE;
    }
    for (const auto& candidate : VERBS) {
        if (words[2].text == candidate.verb) {
            return candidate.act(static_cast<int>(port), {words.begin() + 2, words.end()});
        }
    }
    return WRONG_USE;
}

}  // namespace hexlane::platform
