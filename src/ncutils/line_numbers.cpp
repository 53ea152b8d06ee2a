#include "ncutils/line_numbers.h"

#include <charconv>
#include <cstring>

namespace hexlane {

namespace {

// Digits are looked for in front of this index; a longer run is no line number.
constexpr int NUMBER_DIGITS_END = 29;

// Text of a line number: ten digits of 32 bits.
constexpr int LINE_NUMBER_SIZE = 10;

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_n(char c) {
    return c == 'N' || c == 'n';
}

// Where the text behind the number begins that a row has or is to get; -1 for a row that gets none. `blank`
// takes whether a blank must come between.
int text_behind_number(const char* row, bool number_unnumbered, bool* blank) {
    int at = row[0] == '/' ? 1 : 0;
    *blank = !is_n(row[at]);
    if (*blank)
        return row[0] == '\0' || !number_unnumbered ? -1 : at;
    const int first = ++at;
    while (at < NUMBER_DIGITS_END && is_digit(row[at]))
        at++;
    return at == first || is_digit(row[at]) ? -1 : at;
}

// Writes a number with zeros in front up to `digits`. Gives its length.
int put_line_number(uint32_t number, int digits, char* out) {
    char text[LINE_NUMBER_SIZE];
    const auto length = static_cast<int>(std::to_chars(text, text + sizeof text, number).ptr - text);
    const int zeros = digits > length ? digits - length : 0;
    std::memset(out, '0', static_cast<std::size_t>(zeros));
    std::memcpy(out + zeros, text, static_cast<std::size_t>(length));
    return zeros + length;
}

}  // namespace

NumberedRow renumber_row_text(Numbering* numbering, const char* row, char* out, int size) {
    bool blank = false;
    const int behind = text_behind_number(row, numbering->number_unnumbered, &blank);
    if (behind < 0)
        return NumberedRow::LEFT_ALONE;
    if (numbering->limit > 0 && static_cast<int32_t>(numbering->line_number) > numbering->limit)
        numbering->line_number = static_cast<uint32_t>(numbering->start);
    char head[LINE_NUMBER_SIZE + 3];  // '/', 'N', number, blank
    int length = 0;
    if (row[0] == '/')
        head[length++] = '/';
    head[length++] = 'N';
    length += put_line_number(numbering->line_number, numbering->digits, head + length);
    if (blank)
        head[length++] = ' ';
    const std::size_t rest = std::strlen(row + behind);
    if (static_cast<std::size_t>(length) + rest >= static_cast<std::size_t>(size))
        return NumberedRow::TOO_LONG;
    std::memcpy(out, head, static_cast<std::size_t>(length));
    std::memcpy(out + length, row + behind, rest + 1);
    numbering->line_number += static_cast<uint32_t>(static_cast<int32_t>(numbering->increment));
    return NumberedRow::NUMBERED;
}

void strip_row_text(const char* row, char* out) {
    const bool slash = row[0] == '/';
    int cut = slash ? 1 : 0;
    if (is_n(row[cut]))
        cut++;
    if (cut > 0) {
        while (is_digit(row[cut]) || row[cut] == ' ' || row[cut] == '\t')
            cut++;
    }
    if (slash)
        *out++ = '/';
    std::memcpy(out, row + cut, std::strlen(row + cut) + 1);
}

}  // namespace hexlane
