// address_words.h: rewriting the numbers behind chosen address letters of one row of text.
// An address word is a capital letter with a number right behind it, wherever it stands outside of a comment;
// nothing of the meaning of NC words is known here. All values that are written have been rounded to single
// precision, as the controls that read them do. Pure: row text in, row text out; the standard library alone.
#pragma once

#include <cstdint>

namespace hexlane {

constexpr int NUMBER_TOKEN_MAX = 20;  // characters behind a letter that are taken as its number
constexpr int PRECISION_MAX = 9;      // digits behind the decimal point
constexpr int NUMBER_TEXT_SIZE = 64;  // bytes that hold the text of any float, the NUL included
constexpr int LETTER_COUNT = 26;

// Chosen letters, A in bit 0.
using LetterSet = uint32_t;

constexpr LetterSet letter_bit(char letter) {
    return LetterSet{1} << (letter - 'A');
}
constexpr bool letter_in_set(char c, LetterSet letters) {
    return c >= 'A' && c <= 'Z' && (letters & letter_bit(c)) != 0;
}

// Length of the number token at the front of `text`: digits, '+', '-' and '.', at most NUMBER_TOKEN_MAX.
int number_token_length(const char* text);

// The value of a token: an optional sign, digits, a point, digits, as far as it goes; 0 when there is no
// digit. The rest of the token means nothing. A token that is longer than NUMBER_TOKEN_MAX is not read on.
double read_number(const char* token, int length);

// Writes `value` with exactly `precision` (0 to PRECISION_MAX) digits behind the point, without a point for
// 0: the digits of its exact value, ties to even, the sign of a zero kept. Gives the length;
// out[NUMBER_TEXT_SIZE].
int format_number(float value, char* out, int precision);

struct WordRun;

// The new value of a word of `letter` (0 for A) whose number is `number`.
using WordArithmetic = float (*)(WordRun* run, int letter, double number);

// What a run of a utility carries from word to word. `position` starts at 0.
struct WordRun {
    LetterSet letters;
    int precision;
    WordArithmetic arithmetic;
    float operand;                 // of scale_number and shift_number
    float position[LETTER_COUNT];  // of the two conversions: where the words so far have led
};

float scale_number(WordRun* run, int letter, double number);
float shift_number(WordRun* run, int letter, double number);
float increment_from_absolute(WordRun* run, int letter, double number);
float absolute_from_increment(WordRun* run, int letter, double number);

struct RewrittenRow {
    int words;            // chosen words met; with 0 the row is not to be touched
    int length;           // of the new row; -1 when it does not fit
    bool ends_in_number;  // a word's number reaches the end of the old row
    bool ends_in_comment;
};

// Writes `row` with new numbers to out[size]. With a row that does not fit, what is in `out` means nothing,
// but the positions have advanced over all of its words.
RewrittenRow rewrite_words(WordRun* run, const char* row, char* out, int size);

// Whether the bytes that go on behind a row have a chosen word, or the rest of the number that `row` ends in.
// They may come in pieces; `row` takes where the last one has ended.
bool words_go_on(RewrittenRow* row, LetterSet letters, const char* piece, int length);

}  // namespace hexlane
