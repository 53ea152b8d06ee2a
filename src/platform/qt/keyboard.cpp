// keyboard.cpp: which entry of the key table a key event is, and what is sent for it.
// A key that types a character of the table is that character's key, whatever layout it stands on; the
// character itself is what the layout makes of the press. Text that no key of the table types arrives alone.

#include "platform/qt/keyboard.h"

#include <array>
#include <map>
#include <utility>

#include "platform/common/code_page.h"
#include "platform/qt/dispatch.h"
#include "platform/qt/menu.h"

namespace hexlane::platform {

namespace {

// What a character outside the Windows-1252 table arrives as: a code that the table itself leaves open, and
// that the editor refuses like all from 128 on.
constexpr int CHARACTER_OUTSIDE_TABLE = 0x81;

constexpr int FIRST_TEXT_CODE = 0x20;
constexpr int DELETE_CODE = 0x7F;
constexpr int NO_CODE = -1;

constexpr int F10_KEY = VK_F1 + 9;
constexpr int KEYPAD_DIGITS = 0x60;  // key number of the keypad's 0

struct KeyNumber {
    int qt;
    int key;
};

// Keys that are known by their place and not by a character.
constexpr KeyNumber NAMED_KEYS[] = {
    {Qt::Key_Backspace, VK_BACK},  {Qt::Key_Tab, VK_TAB},       {Qt::Key_Backtab, VK_TAB},
    {Qt::Key_Return, VK_RETURN},   {Qt::Key_Enter, VK_RETURN},  {Qt::Key_Shift, VK_SHIFT},
    {Qt::Key_Control, VK_CONTROL}, {Qt::Key_Escape, VK_ESCAPE}, {Qt::Key_Space, VK_SPACE},
    {Qt::Key_PageUp, VK_PRIOR},    {Qt::Key_PageDown, VK_NEXT}, {Qt::Key_End, VK_END},
    {Qt::Key_Home, VK_HOME},       {Qt::Key_Left, VK_LEFT},     {Qt::Key_Up, VK_UP},
    {Qt::Key_Right, VK_RIGHT},     {Qt::Key_Down, VK_DOWN},     {Qt::Key_Insert, VK_INSERT},
    {Qt::Key_Delete, VK_DELETE},   {Qt::Key_Pause, 0x13},       {Qt::Key_CapsLock, 0x14},
    {Qt::Key_NumLock, 0x90},       {Qt::Key_ScrollLock, 0x91},  {Qt::Key_Menu, 0x5D},
};

// Keys of the keypad by the character that they type.
constexpr KeyNumber KEYPAD_KEYS[] = {
    {'*', 0x6A}, {'+', 0x6B}, {'-', 0x6D}, {'.', 0x6E}, {',', 0x6E}, {'/', 0x6F},
};

template <std::size_t COUNT>
const KeyEntry* entry_in(const KeyNumber (&table)[COUNT], int qt) {
    for (const KeyNumber& line : table) {
        if (line.qt == qt) {
            return key_by_number(line.key);
        }
    }
    return nullptr;
}

int held_modifiers = 0;                        // KEY_WITH_ bits
std::map<quint32, const KeyEntry*> held_keys;  // by the keyboard's own code

int modifier_bits(Qt::KeyboardModifiers modifiers) {
    return (modifiers & Qt::ShiftModifier ? KEY_WITH_SHIFT : 0) |
           (modifiers & Qt::ControlModifier ? KEY_WITH_CTRL : 0) |
           (modifiers & Qt::AltModifier ? KEY_WITH_ALT : 0);
}

int code_of(char32_t code_point) {
    const int byte = unicode_to_byte(code_point);
    return byte < 0 ? CHARACTER_OUTSIDE_TABLE : byte;
}

// The one printable character that the press types by itself, NO_CODE for none. Ctrl and Alt type none.
int typed_code(const QKeyEvent* event) {
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) {
        return NO_CODE;
    }
    const QList<uint> text = event->text().toUcs4();
    if (text.size() != 1 || text[0] < FIRST_TEXT_CODE || text[0] == DELETE_CODE) {
        return NO_CODE;
    }
    return code_of(text[0]);
}

const KeyEntry* keypad_entry(int code) {
    if (code >= '0' && code <= '9') {
        return key_by_number(KEYPAD_DIGITS + code - '0');
    }
    return entry_in(KEYPAD_KEYS, code);
}

const KeyEntry* entry_of(const QKeyEvent* event, int code) {
    const int qt = event->key();
    if (event->modifiers() & Qt::KeypadModifier) {
        if (const KeyEntry* entry = keypad_entry(code != NO_CODE ? code : qt)) {
            return entry;
        }
    }
    if (const KeyEntry* entry = entry_in(NAMED_KEYS, qt)) {
        return entry;
    }
    if (qt >= Qt::Key_F1 && qt <= Qt::Key_F24) {
        return key_by_number(VK_F1 + qt - Qt::Key_F1);
    }
    // Below the named keys Qt's numbers are the characters themselves, letters as capitals.
    int shift = 0;
    return key_by_character(code != NO_CODE ? code : qt, &shift);
}

void run_accelerator(const InputTarget& target, int command) {
    if (menu_entry_enabled(command)) {
        send_input(target, WM_COMMAND, command, 0);
    }
}

void send_bare_character(const InputTarget& target, int code) {
    send_input(target, WM_CHAR, code, make_parameter(1, 0));
}

// A key that a pane leaves to its view.
bool is_views_key(const InputTarget& target, const KeyEntry* entry) {
    return target.pane != 0 && (entry->key == VK_TAB || entry->key == VK_RETURN || entry->key == VK_ESCAPE);
}

// F10 opens the menu, as Alt does.
bool is_menu_key(const InputTarget& target, const KeyEntry* entry, int modifiers) {
    return target.pane == 0 && entry->key == F10_KEY && modifiers == 0;
}

}  // namespace

void send_input(const InputTarget& target, uint32_t message, int64_t first, int64_t second) {
    call_window(target.window, message, first | static_cast<int64_t>(target.pane) << 16, second);
}

bool press_key(const InputTarget& target, const QKeyEvent* event) {
    note_modifiers(event->modifiers());
    const int modifiers = held_modifiers;
    const int code = typed_code(event);
    const KeyEntry* entry = entry_of(event, code);
    if (entry == nullptr) {
        if (code != NO_CODE) {
            send_bare_character(target, code);
        }
        return code != NO_CODE;
    }
    const KeyPlan plan = plan_key(entry, modifiers, target.accelerators, target.accelerator_count);
    if (!plan.taken && (modifiers & KEY_WITH_ALT || is_views_key(target, entry))) {
        return false;
    }
    if (!plan.taken && is_menu_key(target, entry, modifiers)) {
        open_first_menu();
        return true;
    }
    held_keys[event->nativeScanCode()] = entry;
    if (plan.taken) {
        run_accelerator(target, plan.command);
        return true;
    }
    const int64_t parameter = key_parameter(entry, 1, false);
    send_input(target, WM_KEYDOWN, entry->key, parameter);
    const int character = code != NO_CODE ? code : plan.character;
    if (character >= 0) {
        send_input(target, WM_CHAR, character, parameter);
    }
    return true;
}

// A key that repeats is let go and pressed again in Qt's eyes; only the last one counts.
bool release_key(const InputTarget& target, const QKeyEvent* event) {
    note_modifiers(event->modifiers());
    if (event->isAutoRepeat()) {
        return true;
    }
    const auto found = held_keys.find(event->nativeScanCode());
    if (found == held_keys.end()) {
        return false;
    }
    const KeyEntry* entry = found->second;
    held_keys.erase(found);
    send_input(target, WM_KEYUP, entry->key, key_parameter(entry, 1, true));
    return true;
}

void take_text(const InputTarget& target, const QString& text) {
    for (const char32_t code_point : text.normalized(QString::NormalizationForm_C).toUcs4()) {
        if (code_point >= FIRST_TEXT_CODE) {
            send_bare_character(target, code_of(code_point));
        }
    }
}

void note_modifiers(Qt::KeyboardModifiers modifiers) {
    held_modifiers = modifier_bits(modifiers);
}

void let_go_of_keys(const InputTarget& target) {
    held_modifiers = 0;
    for (const auto& [code, entry] : std::exchange(held_keys, {})) {
        send_input(target, WM_KEYUP, entry->key, key_parameter(entry, 1, true));
    }
}

bool key_is_down(int key) {
    switch (key) {
    case VK_SHIFT:
        return held_modifiers & KEY_WITH_SHIFT;
    case VK_CONTROL:
        return held_modifiers & KEY_WITH_CTRL;
    default:
        return false;
    }
}

}  // namespace hexlane::platform
