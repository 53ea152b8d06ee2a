// The rules of the keyboard: what types a character, and what modifiers make of it.

#include "platform/keys.h"

#include <gtest/gtest.h>

#include <string>

namespace hexlane::platform {
namespace {

TEST(Keys, EveryPrintableCharacterCanBeTypedWithoutTheKeypad) {
    for (int character = ' '; character < 127; character++) {
        int shift = -1;
        const KeyEntry* entry = key_by_character(character, &shift);
        ASSERT_NE(entry, nullptr) << character;
        EXPECT_EQ(key_character(entry, shift ? KEY_WITH_SHIFT : 0), character);
        EXPECT_TRUE(entry->key < 0x60 || entry->key > 0x6F) << entry->name;
    }
    int shift = 0;
    EXPECT_EQ(key_by_character(127, &shift), nullptr);
    EXPECT_EQ(key_by_character(-1, &shift), nullptr);
    EXPECT_EQ(key_by_character(0xE9, &shift), nullptr);
}

TEST(Keys, NumbersAndNamesAreUnique) {
    for (int i = 0; i < KEY_COUNT; i++) {
        EXPECT_EQ(key_by_number(KEY_TABLE[i].key), &KEY_TABLE[i]) << KEY_TABLE[i].name;
        EXPECT_EQ(key_by_name(KEY_TABLE[i].name), &KEY_TABLE[i]);
        for (int j = 0; j < i; j++) {
            EXPECT_FALSE(KEY_TABLE[i].scan_code == KEY_TABLE[j].scan_code &&
                         KEY_TABLE[i].extended == KEY_TABLE[j].extended)
                << KEY_TABLE[i].name << " has the scan code of " << KEY_TABLE[j].name;
        }
    }
    EXPECT_EQ(key_by_name("f1"), key_by_name("F1"));
    EXPECT_EQ(key_by_name("F25"), nullptr);
    EXPECT_EQ(key_by_name(""), nullptr);
}

TEST(Keys, ModifiersDecideTheCharacter) {
    struct Case {
        const char* key;
        int modifiers;
        int character;
    };
    constexpr int SHIFT = KEY_WITH_SHIFT;
    constexpr int CTRL = KEY_WITH_CTRL;
    constexpr int ALT = KEY_WITH_ALT;
    const Case cases[] = {
        {"A", SHIFT, 'A'},        {"A", CTRL, 1},   {"Z", CTRL | SHIFT, 26}, {"A", ALT, -1},
        {"A", CTRL | ALT, -1},    {"Enter", 0, 13}, {"Enter", CTRL, 10},     {"Backspace", 0, 8},
        {"Backspace", CTRL, 127}, {"Tab", 0, 9},    {"Tab", CTRL, -1},       {"Esc", 0, 27},
        {"Keypad5", 0, '5'},      {"Left", 0, -1},  {"Shift", 0, -1},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(key_character(key_by_name(c.key), c.modifiers), c.character) << c.key << " " << c.modifiers;
    }
}

TEST(Keys, ParameterHoldsRepeatScanCodeAndState) {
    EXPECT_EQ(key_parameter(key_by_name("A"), 1, false), 0x001E0001);
    EXPECT_EQ(key_parameter(key_by_name("Right"), 3, false), 0x014D0003);
    EXPECT_EQ(key_parameter(key_by_name("Right"), 1, true), 0xC14D0001);
}

}  // namespace
}  // namespace hexlane::platform
