// keys.cpp: the US keyboard as a table, and the characters that its keys send.
// Scan codes are those of set 1. To add a key, add one line; a key that types a character which an earlier
// key types too (the keypad) stands behind it, since the first one found is used for typing.

#include "platform/keys.h"

#include "platform/messages.h"
#include "platform/text.h"

namespace hexlane::platform {

namespace {

constexpr int16_t NO_CHARACTER = -1;
constexpr int8_t EXTENDED = 1;

// A letter key, and a key that types nothing.
constexpr KeyEntry letter(const char* name, int16_t scan_code) {
    return {name, name[0], static_cast<int16_t>(name[0] - 'A' + 'a'), name[0], scan_code, 0};
}
constexpr KeyEntry silent(const char* name, int key, int16_t scan_code, int8_t extended = 0) {
    return {name, static_cast<int16_t>(key), NO_CHARACTER, NO_CHARACTER, scan_code, extended};
}

}  // namespace

const KeyEntry KEY_TABLE[] = {
    letter("A", 0x1E),
    letter("B", 0x30),
    letter("C", 0x2E),
    letter("D", 0x20),
    letter("E", 0x12),
    letter("F", 0x21),
    letter("G", 0x22),
    letter("H", 0x23),
    letter("I", 0x17),
    letter("J", 0x24),
    letter("K", 0x25),
    letter("L", 0x26),
    letter("M", 0x32),
    letter("N", 0x31),
    letter("O", 0x18),
    letter("P", 0x19),
    letter("Q", 0x10),
    letter("R", 0x13),
    letter("S", 0x1F),
    letter("T", 0x14),
    letter("U", 0x16),
    letter("V", 0x2F),
    letter("W", 0x11),
    letter("X", 0x2D),
    letter("Y", 0x15),
    letter("Z", 0x2C),

    {"0", '0', '0', ')', 0x0B, 0},
    {"1", '1', '1', '!', 0x02, 0},
    {"2", '2', '2', '@', 0x03, 0},
    {"3", '3', '3', '#', 0x04, 0},
    {"4", '4', '4', '$', 0x05, 0},
    {"5", '5', '5', '%', 0x06, 0},
    {"6", '6', '6', '^', 0x07, 0},
    {"7", '7', '7', '&', 0x08, 0},
    {"8", '8', '8', '*', 0x09, 0},
    {"9", '9', '9', '(', 0x0A, 0},

    {"Semicolon", 0xBA, ';', ':', 0x27, 0},
    {"Equals", 0xBB, '=', '+', 0x0D, 0},
    {"Comma", 0xBC, ',', '<', 0x33, 0},
    {"Minus", 0xBD, '-', '_', 0x0C, 0},
    {"Period", 0xBE, '.', '>', 0x34, 0},
    {"Slash", 0xBF, '/', '?', 0x35, 0},
    {"Backquote", 0xC0, '`', '~', 0x29, 0},
    {"LeftBracket", 0xDB, '[', '{', 0x1A, 0},
    {"Backslash", 0xDC, '\\', '|', 0x2B, 0},
    {"RightBracket", 0xDD, ']', '}', 0x1B, 0},
    {"Quote", 0xDE, '\'', '"', 0x28, 0},

    {"Space", VK_SPACE, ' ', ' ', 0x39, 0},
    {"Enter", VK_RETURN, '\r', '\r', 0x1C, 0},
    {"Tab", VK_TAB, '\t', '\t', 0x0F, 0},
    {"Backspace", VK_BACK, '\b', '\b', 0x0E, 0},
    {"Esc", VK_ESCAPE, 0x1B, 0x1B, 0x01, 0},

    silent("PageUp", VK_PRIOR, 0x49, EXTENDED),
    silent("PageDown", VK_NEXT, 0x51, EXTENDED),
    silent("End", VK_END, 0x4F, EXTENDED),
    silent("Home", VK_HOME, 0x47, EXTENDED),
    silent("Left", VK_LEFT, 0x4B, EXTENDED),
    silent("Up", VK_UP, 0x48, EXTENDED),
    silent("Right", VK_RIGHT, 0x4D, EXTENDED),
    silent("Down", VK_DOWN, 0x50, EXTENDED),
    silent("Insert", VK_INSERT, 0x52, EXTENDED),
    silent("Delete", VK_DELETE, 0x53, EXTENDED),

    silent("F1", VK_F1, 0x3B),
    silent("F2", VK_F1 + 1, 0x3C),
    silent("F3", VK_F1 + 2, 0x3D),
    silent("F4", VK_F1 + 3, 0x3E),
    silent("F5", VK_F1 + 4, 0x3F),
    silent("F6", VK_F1 + 5, 0x40),
    silent("F7", VK_F1 + 6, 0x41),
    silent("F8", VK_F1 + 7, 0x42),
    silent("F9", VK_F1 + 8, 0x43),
    silent("F10", VK_F1 + 9, 0x44),
    silent("F11", VK_F1 + 10, 0x57),
    silent("F12", VK_F1 + 11, 0x58),
    silent("F13", VK_F1 + 12, 0x64),
    silent("F14", VK_F1 + 13, 0x65),
    silent("F15", VK_F1 + 14, 0x66),
    silent("F16", VK_F1 + 15, 0x67),
    silent("F17", VK_F1 + 16, 0x68),
    silent("F18", VK_F1 + 17, 0x69),
    silent("F19", VK_F1 + 18, 0x6A),
    silent("F20", VK_F1 + 19, 0x6B),
    silent("F21", VK_F1 + 20, 0x6C),
    silent("F22", VK_F1 + 21, 0x6D),
    silent("F23", VK_F1 + 22, 0x6E),
    silent("F24", VK_F24, 0x76),

    silent("Shift", VK_SHIFT, 0x2A),
    silent("Ctrl", VK_CONTROL, 0x1D),
    silent("Pause", 0x13, 0x45),
    silent("CapsLock", 0x14, 0x3A),
    silent("NumLock", 0x90, 0x45, EXTENDED),
    silent("ScrollLock", 0x91, 0x46),
    silent("Menu", 0x5D, 0x5D, EXTENDED),

    {"Keypad0", 0x60, '0', '0', 0x52, 0},
    {"Keypad1", 0x61, '1', '1', 0x4F, 0},
    {"Keypad2", 0x62, '2', '2', 0x50, 0},
    {"Keypad3", 0x63, '3', '3', 0x51, 0},
    {"Keypad4", 0x64, '4', '4', 0x4B, 0},
    {"Keypad5", 0x65, '5', '5', 0x4C, 0},
    {"Keypad6", 0x66, '6', '6', 0x4D, 0},
    {"Keypad7", 0x67, '7', '7', 0x47, 0},
    {"Keypad8", 0x68, '8', '8', 0x48, 0},
    {"Keypad9", 0x69, '9', '9', 0x49, 0},
    {"KeypadMultiply", 0x6A, '*', '*', 0x37, 0},
    {"KeypadAdd", 0x6B, '+', '+', 0x4E, 0},
    {"KeypadSubtract", 0x6D, '-', '-', 0x4A, 0},
    {"KeypadDecimal", 0x6E, '.', '.', 0x53, 0},
    {"KeypadDivide", 0x6F, '/', '/', 0x35, EXTENDED},
};
const int KEY_COUNT = sizeof(KEY_TABLE) / sizeof(KEY_TABLE[0]);

const KeyEntry* key_by_number(int key) {
    for (const KeyEntry& entry : KEY_TABLE) {
        if (entry.key == key) {
            return &entry;
        }
    }
    return nullptr;
}

const KeyEntry* key_by_name(const char* name) {
    for (const KeyEntry& entry : KEY_TABLE) {
        if (equal_ignoring_case(entry.name, name)) {
            return &entry;
        }
    }
    return nullptr;
}

const KeyEntry* key_by_character(int character, int* shift) {
    *shift = 0;
    if (character < 0) {
        return nullptr;
    }
    for (const KeyEntry& entry : KEY_TABLE) {
        if (entry.plain == character || entry.shifted == character) {
            *shift = entry.plain == character ? 0 : 1;
            return &entry;
        }
    }
    return nullptr;
}

int key_character(const KeyEntry* entry, int modifiers) {
    if (modifiers & KEY_WITH_ALT) {
        return NO_CHARACTER;
    }
    if (!(modifiers & KEY_WITH_CTRL)) {
        return modifiers & KEY_WITH_SHIFT ? entry->shifted : entry->plain;
    }
    if (entry->key >= 'A' && entry->key <= 'Z') {
        return entry->key - 'A' + 1;
    }
    switch (entry->key) {
    case VK_RETURN:
        return 10;
    case VK_BACK:
        return 127;
    default:
        return NO_CHARACTER;
    }
}

int64_t key_parameter(const KeyEntry* entry, int repeat, bool release) {
    constexpr int WAS_DOWN_AND_RELEASED = 0xC000;  // bits 30 and 31
    return make_parameter(repeat,
                          entry->scan_code | entry->extended << 8 | (release ? WAS_DOWN_AND_RELEASED : 0));
}

KeyPlan plan_key(const KeyEntry* entry, int modifiers, const Accelerator* accelerators,
                 int accelerator_count) {
    for (int i = 0; i < accelerator_count; i++) {
        if (accelerators[i].key == entry->key && accelerators[i].modifiers == modifiers) {
            return {accelerators[i].command, true, NO_CHARACTER};
        }
    }
    return {0, false, key_character(entry, modifiers)};
}

}  // namespace hexlane::platform
