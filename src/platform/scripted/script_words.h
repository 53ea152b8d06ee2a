// script_words.h: one line of a script as words: bare ones, and texts in double quotes with C escapes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace hexlane::platform {

struct Word {
    std::string text;  // without quotes, escapes resolved
    bool is_quoted;
    int number;  // of "LABEL"/2; 1 without one
};

struct ScriptLine {
    int number = 0;     // from 1
    std::string text;   // as it was read
    std::string shown;  // as it stands in the record: without its comment and the blanks around it
    std::vector<Word> words;
};

// Splits a line; `#` outside quotes starts a comment. A line of blanks and comment alone has no words. Gives
// an empty text, or the reason why it can't be read: a quote that does not end, an escape other than \n \t \"
// \\ \xHH.
std::string split_line(const std::string& text, ScriptLine* line);

// A whole number, decimal or 0x hexadecimal, with '-' if wanted. Gives false for anything else.
bool parse_number(const Word& word, int64_t low, int64_t high, int64_t* number);

}  // namespace hexlane::platform
