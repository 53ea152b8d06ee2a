#include "ncutils/address_words.h"

#include <bit>
#include <charconv>
#include <cstring>

namespace hexlane {

namespace {

constexpr uint64_t POWERS_OF_TEN[] = {1,      10,      100,      1000,      10000,
                                      100000, 1000000, 10000000, 100000000, 1000000000};
static_assert(sizeof POWERS_OF_TEN / sizeof POWERS_OF_TEN[0] == PRECISION_MAX + 1);

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_number_char(char c) {
    return is_digit(c) || c == '+' || c == '-' || c == '.';
}

// The new row as it grows. What no longer fits is dropped, and `fits` stays false.
struct RowWriter {
    char* out;
    int room;  // characters, without the NUL
    int length;
    bool fits;
};

void put(RowWriter* writer, const char* text, int64_t length) {
    writer->fits = writer->fits && length <= writer->room - writer->length;
    if (!writer->fits)
        return;
    std::memcpy(writer->out + writer->length, text, static_cast<std::size_t>(length));
    writer->length += static_cast<int>(length);
}

// Writes the digits of `scaled`, which is a value times 10 to the `precision`. Gives their end.
char* put_digits(uint64_t scaled, char* out, int precision) {
    char digits[24];
    char* const end = digits + sizeof digits;
    char* at = end;
    for (int place = 0; place <= precision || scaled != 0; place++) {
        if (place == precision && precision > 0)
            *--at = '.';
        *--at = static_cast<char>('0' + scaled % 10);
        scaled /= 10;
    }
    std::memcpy(out, at, static_cast<std::size_t>(end - at));
    return out + (end - at);
}

// value / 2^shift, rounded to a whole number, ties to even. `value` is below 2^63.
uint64_t divide_by_power(uint64_t value, int shift) {
    if (shift == 0)
        return value;
    if (shift > 63)
        return 0;
    const uint64_t whole = value >> shift;
    const uint64_t rest = value - (whole << shift);
    const uint64_t half = uint64_t{1} << (shift - 1);
    return whole + (rest > half || (rest == half && whole % 2 != 0) ? 1 : 0);
}

}  // namespace

int number_token_length(const char* text) {
    int length = 0;
    while (length < NUMBER_TOKEN_MAX && is_number_char(text[length]))
        length++;
    return length;
}

// A number of up to 15 digits is a whole double divided by a power of ten that a double holds exactly: one
// correctly rounded division. Longer ones are rare.
double read_number(const char* token, int length) {
    constexpr int EXACT_DIGITS = 15;
    static constexpr double POWERS[EXACT_DIGITS + 1] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const char* at = token;
    const char* const end = token + (length < NUMBER_TOKEN_MAX ? length : NUMBER_TOKEN_MAX);
    const bool negative = at < end && *at == '-';
    if (at < end && (*at == '-' || *at == '+'))
        at++;
    const char* const first = at;
    uint64_t whole = 0;
    int digits = 0;
    int behind_point = 0;
    bool point = false;
    for (; at < end && (is_digit(*at) || (*at == '.' && !point)); at++) {
        if (*at == '.') {
            point = true;
            continue;
        }
        whole = whole * 10 + static_cast<uint64_t>(*at - '0');
        digits++;
        behind_point += point;
    }
    if (digits == 0)
        return 0;
    double value = 0;
    if (digits <= EXACT_DIGITS)
        value = static_cast<double>(whole) / POWERS[behind_point];
    else
        std::from_chars(first, at, value, std::chars_format::fixed);
    return negative ? -value : value;
}

// Below 2^24 a float is a whole number of 24 bits divided by a power of two. Times 10^9 it still fits into 64
// bits, so that the exact digits come from one multiplication, one shift and its remainder.
int format_number(float value, char* out, int precision) {
    constexpr int FRACTION_BITS = 23;
    const auto bits = std::bit_cast<uint32_t>(value);
    const int exponent = static_cast<int>(bits >> FRACTION_BITS & 0xFF);
    const uint32_t fraction = bits & ((1U << FRACTION_BITS) - 1);
    const int shift = 127 + FRACTION_BITS - (exponent == 0 ? 1 : exponent);
    char* at = out;
    if (shift < 0) {
        at = std::to_chars(out, out + NUMBER_TEXT_SIZE - 1, value, std::chars_format::fixed, precision).ptr;
    } else {
        const uint64_t mantissa = exponent == 0 ? fraction : fraction | 1U << FRACTION_BITS;
        if (bits >> 31 != 0)
            *at++ = '-';
        at = put_digits(divide_by_power(mantissa * POWERS_OF_TEN[precision], shift), at, precision);
    }
    *at = '\0';
    return static_cast<int>(at - out);
}

float scale_number(WordRun* run, int, double number) {
    return static_cast<float>(number * static_cast<double>(run->operand));
}

float shift_number(WordRun* run, int, double number) {
    return static_cast<float>(number + static_cast<double>(run->operand));
}

// The position takes what the increments add up to, not the number itself: so the one who adds the written
// increments up, a control or absolute_from_increment, is led to the same place.
float increment_from_absolute(WordRun* run, int letter, double number) {
    float* position = &run->position[letter];
    const float increment = static_cast<float>(number) - *position;
    *position += increment;
    return increment;
}

float absolute_from_increment(WordRun* run, int letter, double number) {
    float* position = &run->position[letter];
    *position = static_cast<float>(number) + *position;
    return *position;
}

RewrittenRow rewrite_words(WordRun* run, const char* row, char* out, int size) {
    RewrittenRow result = {0, 0, false, false};
    RowWriter writer = {out, size - 1, 0, true};
    bool in_comment = false;
    const char* from = row;  // what lies between here and `at` is copied as it is
    const char* at = row;
    while (*at != '\0') {
        const char c = *at++;
        if (c == '(')
            in_comment = true;
        else if (c == ')')
            in_comment = false;
        if (in_comment || !letter_in_set(c, run->letters))
            continue;
        put(&writer, from, at - from);
        const int token = number_token_length(at);
        char number[NUMBER_TEXT_SIZE];
        put(&writer, number,
            format_number(run->arithmetic(run, c - 'A', read_number(at, token)), number, run->precision));
        at += token;
        from = at;
        result.words++;
        result.ends_in_number = *at == '\0';
    }
    put(&writer, from, at - from);
    result.length = writer.fits ? writer.length : -1;
    result.ends_in_comment = in_comment;
    out[writer.length] = '\0';
    return result;
}

bool words_go_on(RewrittenRow* row, LetterSet letters, const char* piece, int length) {
    if (row->ends_in_number && length > 0 && is_number_char(piece[0]))
        return true;
    row->ends_in_number = false;
    for (int i = 0; i < length; i++) {
        if (piece[i] == '(' || piece[i] == ')')
            row->ends_in_comment = piece[i] == '(';
        else if (!row->ends_in_comment && letter_in_set(piece[i], letters))
            return true;
    }
    return false;
}

}  // namespace hexlane
