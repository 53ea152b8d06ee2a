// input_rules.cpp: what a field of a view takes, and its label in plain text. Needs no desktop: the box about
// a bad value is in bad_value.cpp.

#include "platform/common/input_rules.h"

#include <charconv>
#include <cstring>

namespace hexlane::platform {

namespace {

std::size_t character_count(const char* text) {
    std::size_t count = 0;
    for (; *text != '\0'; text++) {
        const bool continues = (static_cast<unsigned char>(*text) & 0xC0) == 0x80;
        count += continues ? 0 : 1;
    }
    return count;
}

}  // namespace

// Most fields end up in buffers of so many bytes; a character outside ASCII takes two or more of them.
bool field_takes(const InputRule* rule, const char* text) {
    if (rule == nullptr) {
        return true;
    }
    const std::size_t length = std::strlen(text);
    const std::size_t counted = rule->characters ? character_count(text) : length;
    if (rule->limit > 0 && counted > static_cast<std::size_t>(rule->limit)) {
        return false;
    }
    return rule->allowed == nullptr || std::strspn(text, rule->allowed) == length;
}

char field_character(const InputRule* rule, char c) {
    const bool raised = rule != nullptr && rule->capitals && c >= 'a' && c <= 'z';
    return raised ? static_cast<char>(c - 'a' + 'A') : c;
}

bool value_in_range(const InputRule* rule, const char* text) {
    if (rule == nullptr || (rule->low == rule->high && rule->high_field == nullptr)) {
        return true;
    }
    const char* first = text + std::strspn(text, " ");
    const char* last = first + std::strlen(first);
    while (last > first && last[-1] == ' ') {
        last--;
    }
    if (first == last) {
        return rule->may_be_empty;
    }
    if (*first == '+' && first[1] != '-') {
        first++;
    }
    double value = 0;
    const auto [end, error] = std::from_chars(first, last, value, std::chars_format::fixed);
    if (error != std::errc() || end != last) {
        return false;
    }
    const double high =
        static_cast<double>(rule->high) + (rule->high_field != nullptr ? *rule->high_field : 0);
    return value >= rule->low && value <= high;
}

void plain_label(const char* label, char* plain, std::size_t size) {
    if (size == 0) {
        return;
    }
    std::size_t used = 0;
    for (; *label != '\0' && used + 1 < size; label++) {
        if (*label == '&' && *++label == '\0') {
            break;
        }
        plain[used++] = *label;
    }
    plain[used] = '\0';
}

}  // namespace hexlane::platform
