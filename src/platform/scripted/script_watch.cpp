// script_watch.cpp: a script that looks after every key at the same things says so once.

#include "platform/scripted/script_watch.h"

#include "platform/scripted/record.h"

#include <algorithm>
#include <utility>

namespace hexlane::platform {

namespace {

struct Watched {
    Words line;                       // as it would stand in the script
    std::vector<std::string> answer;  // as last printed
};

constexpr const char* NAMES[] = {"screen", "colors", "status", "menu",  "title",
                                 "caret",  "rows",   "state",  "bytes", "files"};

std::vector<Watched> watched;

bool can_be_watched(const Word& word) {
    return !word.is_quoted && std::find(std::begin(NAMES), std::end(NAMES), word.text) != std::end(NAMES);
}

std::vector<std::string> answer_now(const Words& line) {
    const std::string& name = line[0].text;
    Refusal refusal;
    std::vector<std::string> answer = record_aside([&] { refusal = find_action(name)->act(line); });
    if (!refusal.empty()) {
        answer.push_back(name + ": " + with_place_names(refusal));
    }
    return answer;
}

}  // namespace

Refusal do_watch(const Words& words) {
    watched.clear();
    for (std::size_t at = 1; at < words.size(); at++) {
        const bool has_path = words[at].text == "bytes" || words[at].text == "files";
        if (!can_be_watched(words[at]) ||
            (has_path && (at + 1 == words.size() || !words[at + 1].is_quoted))) {
            return WRONG_USE;
        }
        watched.push_back({{words[at]}, {}});
        if (has_path) {
            watched.back().line.push_back(words[++at]);
        }
    }
    return "";
}

void print_watched(unsigned when) {
    for (Watched& one : watched) {
        const std::string& name = one.line[0].text;
        if ((find_action(name)->when & when) == 0) {
            continue;
        }
        std::vector<std::string> answer = answer_now(one.line);
        if (answer == one.answer) {
            continue;
        }
        for (const std::string& line : answer) {
            record_line(line);
        }
        if (answer.empty()) {
            record_line(name + ": none");
        }
        one.answer = std::move(answer);
    }
}

}  // namespace hexlane::platform
