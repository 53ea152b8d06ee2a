// eia_code.cpp: both tables are made from one list when the program is compiled.

#include "dnc/eia_code.h"

namespace hexlane {

namespace {

struct Pair {
    char file;
    uint8_t line;
};

constexpr Pair PAIRS[] = {
    {'\t', 0x3E}, {'\n', 0x80}, {0x11, 0x11}, {0x13, 0x13}, {' ', 0x10}, {'%', 0x0B}, {'&', 0x0E},
    {'(', 0x1A},  {')', 0x4A},  {'+', 0x70},  {',', 0x3B},  {'-', 0x40}, {'.', 0x6B}, {'/', 0x31},
    {'0', 0x20},  {'1', 0x01},  {'2', 0x02},  {'3', 0x13},  {'4', 0x04}, {'5', 0x15}, {'6', 0x16},
    {'7', 0x07},  {'8', 0x08},  {'9', 0x19},  {':', 0x46},  {'A', 0x61}, {'B', 0x62}, {'C', 0x73},
    {'D', 0x64},  {'E', 0x75},  {'F', 0x76},  {'G', 0x67},  {'H', 0x68}, {'I', 0x79}, {'J', 0x51},
    {'K', 0x52},  {'L', 0x43},  {'M', 0x54},  {'N', 0x45},  {'O', 0x46}, {'P', 0x57}, {'Q', 0x58},
    {'R', 0x49},  {'S', 0x32},  {'T', 0x23},  {'U', 0x34},  {'V', 0x25}, {'W', 0x26}, {'X', 0x37},
    {'Y', 0x38},  {'Z', 0x29},
};

constexpr EiaCode make_tables() {
    EiaCode code = {};
    for (const Pair& pair : PAIRS) {
        code.send[static_cast<uint8_t>(pair.file)] = pair.line;
        code.receive[pair.line] = static_cast<uint8_t>(pair.file);
    }
    for (int letter = 'a'; letter <= 'z'; letter++)
        code.send[letter] = code.send[letter - 'a' + 'A'];
    // One line byte stands for two file bytes in two places, and a control is none to a file.
    code.receive[0x46] = 'O';
    code.receive[0x13] = '3';
    code.receive[0x11] = 0;
    return code;
}

}  // namespace

constexpr EiaCode EIA_CODE = make_tables();

}  // namespace hexlane
