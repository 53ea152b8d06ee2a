// fuzz_script.cpp: any line of a script is either refused with a reason or split into words, and words that
// are written out again as a line come back the same.

#include "fuzz_program.h"
#include "platform/scripted/record.h"
#include "platform/scripted/script_words.h"

#include <algorithm>
#include <string>

namespace {

using namespace hexlane;
using namespace hexlane::platform;

std::string written(const Word& word) {
    if (!word.is_quoted)
        return word.text;
    return quoted(word.text) + (word.number == 1 ? "" : "/" + std::to_string(word.number));
}

bool same(const Word& left, const Word& right) {
    return left.text == right.text && left.is_quoted == right.is_quoted && left.number == right.number;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    ScriptLine line;
    if (!split_line(std::string(data, data + size), &line).empty())
        return 0;
    std::string again;
    for (const Word& word : line.words) {
        int64_t number = 0;
        if (parse_number(word, -1000, 1000, &number))
            fuzz::require(number >= -1000 && number <= 1000, "a number lies outside its range");
        again += written(word) + " ";
    }
    ScriptLine second;
    fuzz::require(split_line(again, &second).empty(), "words that were written out can't be read");
    fuzz::require(std::ranges::equal(line.words, second.words, same), "words have changed on the way");
    return 0;
}
