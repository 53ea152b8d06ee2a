// keys.h: key numbers, and the one table of a US keyboard that both desktops type with.
// The table is in common/keys.cpp; the numbers are stored in macro files and stay as they are.
#pragma once

#include <cstdint>

namespace hexlane::platform {

constexpr int VK_BACK = 0x08;
constexpr int VK_TAB = 0x09;
constexpr int VK_RETURN = 0x0D;
constexpr int VK_SHIFT = 0x10;
constexpr int VK_CONTROL = 0x11;
constexpr int VK_ESCAPE = 0x1B;
constexpr int VK_SPACE = 0x20;
constexpr int VK_PRIOR = 0x21;  // Page Up
constexpr int VK_NEXT = 0x22;   // Page Down
constexpr int VK_END = 0x23;
constexpr int VK_HOME = 0x24;
constexpr int VK_LEFT = 0x25;
constexpr int VK_UP = 0x26;
constexpr int VK_RIGHT = 0x27;
constexpr int VK_DOWN = 0x28;
constexpr int VK_INSERT = 0x2D;
constexpr int VK_DELETE = 0x2E;
constexpr int VK_F1 = 0x70;
constexpr int VK_F24 = 0x87;

constexpr int KEY_WITH_SHIFT = 1;
constexpr int KEY_WITH_CTRL = 2;
constexpr int KEY_WITH_ALT = 4;

struct KeyEntry {
    const char* name;   // as scripts name it: "A", "F1", "PageUp"
    int16_t key;        // VK_ number; letters and digits are their ASCII codes
    int16_t plain;      // character without Shift, -1 for none
    int16_t shifted;    // character with Shift, -1 for none
    int16_t scan_code;  // set 1
    int8_t extended;    // second block of an extended keyboard
};

extern const KeyEntry KEY_TABLE[];
extern const int KEY_COUNT;

// Table entry by key number, by script name (ignoring case) or by the character it types; nullptr when none.
// `shift` of key_by_character takes 1 when the character needs Shift.
const KeyEntry* key_by_number(int key);
const KeyEntry* key_by_name(const char* name);
const KeyEntry* key_by_character(int character, int* shift);

// The character that `entry` sends with these modifiers (KEY_WITH_ bits), -1 for none: Ctrl with A to Z gives
// 1 to 26, Ctrl+Enter 10, Shift+Backspace 8, Ctrl+Backspace 127, Ctrl+Tab none; with Alt none.
int key_character(const KeyEntry* entry, int modifiers);

// The second parameter of a key message for this key.
int64_t key_parameter(const KeyEntry* entry, int repeat, bool release);

// One accelerator: fires when exactly these modifiers are held.
struct Accelerator {
    int16_t key;
    int16_t modifiers;  // KEY_WITH_ bits
    int16_t command;
};

// What one press of a key is to the program, in the order in which it acts: an accelerator of an enabled
// entry gives its command alone; of a grayed one nothing, the key is taken; otherwise key down, and then the
// character if there is one.
struct KeyPlan {
    int command;    // 0 for none
    bool taken;     // an accelerator's key: no key down, no character
    int character;  // -1 for none
};
KeyPlan plan_key(const KeyEntry* entry, int modifiers, const Accelerator* accelerators,
                 int accelerator_count);

}  // namespace hexlane::platform
