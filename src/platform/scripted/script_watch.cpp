// script_watch.cpp: a script that looks after every key at the same things says so once.

#include "platform/scripted/script_watch.h"

#include "platform/scripted/record.h"

#include <algorithm>
#include <utility>

namespace hexlane::platform {

namespace {

struct Watched {
    std::string name;
    std::vector<std::string> answer;  // as last printed
};

constexpr const char* NAMES[] = {"screen", "colors", "status", "menu", "title", "caret", "rows", "state"};

std::vector<Watched> watched;

std::vector<std::string> answer_now(const std::string& name) {
    Refusal refusal;
    std::vector<std::string> lines = record_aside([&] {
        refusal = find_action(name)->act({{name, false, 1}});
    });
    if (!refusal.empty()) {
        lines.push_back(name + ": " + refusal);
    }
    return lines;
}

}  // namespace

Refusal do_watch(const Words& words) {
    watched.clear();
    for (std::size_t at = 1; at < words.size(); at++) {
        if (words[at].is_quoted ||
            std::find(std::begin(NAMES), std::end(NAMES), words[at].text) == std::end(NAMES)) {
            return WRONG_USE;
        }
        watched.push_back({words[at].text, {}});
    }
    return "";
}

void print_watched() {
    for (Watched& one : watched) {
        std::vector<std::string> answer = answer_now(one.name);
        if (answer == one.answer) {
            continue;
        }
        for (const std::string& line : answer) {
            record_line(line);
        }
        if (answer.empty()) {
            record_line(one.name + ": none");
        }
        one.answer = std::move(answer);
    }
}

}  // namespace hexlane::platform
