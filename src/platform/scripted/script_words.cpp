// script_words.cpp: from a script's bytes to words.

#include "platform/scripted/script_words.h"

#include "platform/scripted/record.h"

#include <charconv>

namespace hexlane::platform {

namespace {

bool is_blank(char c) {
    return c == ' ' || c == '\t' || c == '\r';
}

int hex_digit(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Takes the escape behind a backslash at `*at`. Gives false when it is none of ours.
bool take_escape(const std::string& text, std::size_t* at, std::string* out) {
    if (*at >= text.size()) {
        return false;
    }
    switch (text[(*at)++]) {
    case 'n':
        *out += '\n';
        return true;
    case 'r':
        *out += '\r';
        return true;
    case 't':
        *out += '\t';
        return true;
    case '"':
        *out += '"';
        return true;
    case '\\':
        *out += '\\';
        return true;
    case 'x':
        break;
    default:
        return false;
    }
    const int high = *at < text.size() ? hex_digit(text[*at]) : -1;
    const int low = *at + 1 < text.size() ? hex_digit(text[*at + 1]) : -1;
    *at += 2;
    *out += static_cast<char>(high * 16 + low);
    return high >= 0 && low >= 0;
}

// A text in quotes from `*at`, which stands behind the opening one, and its number, if one follows.
std::string take_quoted(const std::string& text, std::size_t* at, Word* word) {
    for (;;) {
        if (*at >= text.size()) {
            return "a quote does not end";
        }
        const char c = text[(*at)++];
        if (c == '"') {
            break;
        }
        if (c != '\\') {
            word->text += c;
        } else if (!take_escape(text, at, &word->text)) {
            return "a backslash stands before something other than n r t \" \\ or xHH";
        }
    }
    if (*at < text.size() && text[*at] == '/') {
        const char* first = text.data() + *at + 1;
        const auto [end, error] = std::from_chars(first, text.data() + text.size(), word->number);
        if (error != std::errc() || word->number < 1) {
            return "a number from 1 has to follow the / behind a label";
        }
        *at = static_cast<std::size_t>(end - text.data());
    }
    return *at >= text.size() || is_blank(text[*at]) || text[*at] == '#'
               ? ""
               : "a blank is missing behind a quote";
}

}  // namespace

std::string split_line(const std::string& text, ScriptLine* line) {
    line->text = text;
    line->words.clear();
    std::size_t end = 0;  // behind the last word
    std::string fault;
    for (std::size_t at = 0; at < text.size() && text[at] != '#' && fault.empty();) {
        if (is_blank(text[at])) {
            at++;
            continue;
        }
        Word word = {"", text[at] == '"', 1};
        if (word.is_quoted) {
            fault = take_quoted(text, &++at, &word);
        } else {
            while (at < text.size() && !is_blank(text[at]) && text[at] != '#' && text[at] != '"') {
                word.text += text[at++];
            }
        }
        line->words.push_back(word);
        end = at;
    }
    end = fault.empty() ? end : text.size();
    std::size_t start = 0;
    while (start < end && is_blank(text[start])) {
        start++;
    }
    line->shown = printable(text.substr(start, end - start));
    return fault;
}

bool parse_number(const Word& word, int64_t low, int64_t high, int64_t* number) {
    const bool negative = !word.text.empty() && word.text[0] == '-';
    const std::size_t start = negative ? 1 : 0;
    const bool hex = word.text.compare(start, 2, "0x") == 0;
    const char* first = word.text.data() + start + (hex ? 2 : 0);
    const char* last = word.text.data() + word.text.size();
    uint32_t value = 0;
    const auto [end, error] = std::from_chars(first, last, value, hex ? 16 : 10);
    *number = negative ? -static_cast<int64_t>(value) : value;
    return !word.is_quoted && error == std::errc() && end == last && *number >= low && *number <= high;
}

}  // namespace hexlane::platform
