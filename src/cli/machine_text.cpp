#include "cli/machine_text.h"

#include "cli/cli.h"
#include "dnc/machine_fields.h"
#include "dnc/machine_presets.h"
#include "platform/text.h"

#include <cstring>
#include <string_view>
#include <vector>

namespace hexlane {

namespace {

// Settings that people know by words. A label that is not the field's own name takes words alone: the number
// of `stop_bits_index` is not that of the stop bits.
struct WordedField {
    Field field;
    const char* label;
    const char* words;  // of 0, 1, 2 and so on
};

constexpr WordedField WORDED_FIELDS[] = {
    {Field::PROTOCOL, "protocol", "general bridgeport heidenhain phillips"},
    {Field::BAUD_INDEX, "baud", "110 300 600 1200 2400 4800 9600 14400 19200 38400 56000"},
    {Field::DATA_TYPE, "data_type", "iso eia ascii binary"},
    {Field::DATA_BITS_INDEX, "data_bits", "7 8"},
    {Field::PARITY_INDEX, "parity", "none even odd"},
    {Field::STOP_BITS_INDEX, "stop_bits", "1 2"},
    {Field::EOB_CONVERSION, "eob", "crlf lf cr lfcr lfcrcr dollar none"},
    {Field::PORT_INDEX, "port", "COM1 COM2 COM3 COM4"},
    {Field::HANDSHAKE, "handshake", "software hardware"},
};

const WordedField* worded(Field field) {
    for (const WordedField& entry : WORDED_FIELDS) {
        if (entry.field == field)
            return &entry;
    }
    return nullptr;
}

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::size_t from = 0;
    while (true) {
        const std::size_t to = text.find(separator, from);
        parts.push_back(text.substr(from, to - from));
        if (to == std::string::npos)
            return parts;
        from = to + 1;
    }
}

int word_number(const WordedField& entry, const std::string& word) {
    const std::vector<std::string> words = split(entry.words, ' ');
    for (std::size_t i = 0; i < words.size(); i++) {
        if (platform::equal_ignoring_case(words[i].c_str(), word.c_str()))
            return static_cast<int>(i);
    }
    return -1;
}

std::string word_of(const MachineParams& machine, Field field) {
    const auto place = static_cast<std::size_t>(machine_setting(machine, field));
    return split(worded(field)->words, ' ').at(place);
}

const MachineField& entry_of(Field field) {
    return MACHINE_FIELDS[static_cast<int>(field)];
}

// ---- Start and end strings ---------------------------------------------------------------------------

uint8_t* string_of(MachineParams* machine, Field field) {
    return field == Field::START_STRING ? machine->start_string : machine->end_string;
}

// "37,13,10"; a blank place is '-', those at the end are left out, all of them are "-".
std::string string_text(const MachineParams& machine, Field field) {
    const uint8_t* string = field == Field::START_STRING ? machine.start_string : machine.end_string;
    int length = MACHINE_STRING_SIZE;
    while (length > 1 && string[length - 1] >= 0x80)
        length--;
    std::string text;
    for (int i = 0; i < length; i++) {
        text += i > 0 ? "," : "";
        text += string[i] < 0x80 ? std::to_string(string[i]) : "-";
    }
    return text;
}

std::string set_string(MachineParams* machine, Field field, const std::string& value) {
    const std::vector<std::string> parts = split(value, ',');
    if (parts.size() > MACHINE_STRING_SIZE)
        return "holds more than 8 characters";
    uint8_t string[MACHINE_STRING_SIZE];
    std::memset(string, BLANK_BYTE, sizeof string);
    for (std::size_t i = 0; i < parts.size(); i++) {
        int64_t number = 0;
        if (parts[i] == "-")
            continue;
        if (!read_number(parts[i], 0, 127, &number))
            return "takes character numbers from 0 to 127 with commas between them, and - for a blank";
        string[i] = static_cast<uint8_t>(number);
    }
    std::memcpy(string_of(machine, field), string, sizeof string);
    return "";
}

// ---- One setting -------------------------------------------------------------------------------------

std::string field_line(const MachineParams& machine, Field field) {
    const MachineField& entry = entry_of(field);
    const WordedField* words = worded(field);
    const std::string label = words != nullptr ? words->label : entry.name;
    if (entry.form == FieldForm::STRING)
        return label + "=" + string_text(machine, field) + "\n";
    const int as_read = field_as_read(machine, field);
    if (as_read != machine_setting(machine, field))
        return "# " + std::string(entry.name) + " is " + std::to_string(as_read) + ", out of its limits; " +
               std::to_string(machine_setting(machine, field)) + " is taken\n";
    return label + "=" + (words != nullptr ? word_of(machine, field) : std::to_string(as_read)) + "\n";
}

std::string set_name(MachineParams* machine, const std::string& value) {
    for (const char c : value) {
        if (static_cast<unsigned char>(c) < ' ')
            return "has no control characters";
    }
    if (value.empty() || !set_machine_name(machine, value.c_str()))
        return "has 1 to 35 characters of those that a machine's name can hold (Windows-1252)";
    return "";
}

std::string set_number(MachineParams* machine, Field field, const std::string& value) {
    const MachineField& entry = entry_of(field);
    int64_t number = 0;
    if (!read_number(value, entry.low, entry.high, &number))
        return "takes a number from " + std::to_string(entry.low) + " to " + std::to_string(entry.high);
    if (field == Field::XOFF_CHAR && number != XOFF_DEFAULT && number != XOFF_EIA_ALTERNATE)
        return "is 19 or 147";
    set_field(machine, field, static_cast<int>(number));
    return "";
}

std::string set_worded(MachineParams* machine, const WordedField& entry, const std::string& value) {
    const int number = word_number(entry, value);
    if (number < 0)
        return std::string("is one of: ") + entry.words;
    set_field(machine, entry.field, number);
    return "";
}

std::string set_preset(MachineParams* machine, const std::string& value) {
    const WordedField& protocols = *worded(Field::PROTOCOL);
    const int number = word_number(protocols, value);
    if (number < 0)
        return std::string("is one of: ") + protocols.words;
    apply_protocol_preset(machine, number);
    return "";
}

std::string set_value(MachineParams* machine, const std::string& name, const std::string& value) {
    if (name == "name")
        return set_name(machine, value);
    if (name == "preset")
        return set_preset(machine, value);
    for (const WordedField& entry : WORDED_FIELDS) {
        if (name == entry.label && (name != entry_of(entry.field).name || word_number(entry, value) >= 0))
            return set_worded(machine, entry, value);
    }
    for (int i = 0; i < FIELD_COUNT; i++) {
        const auto field = static_cast<Field>(i);
        if (name != MACHINE_FIELDS[i].name)
            continue;
        if (MACHINE_FIELDS[i].form == FieldForm::STRING)
            return set_string(machine, field, value);
        const std::string wrong = set_number(machine, field, value);
        return wrong.empty() || worded(field) == nullptr ? wrong : set_worded(machine, *worded(field), value);
    }
    return "is no setting of a machine";
}

}  // namespace

std::string machine_text(const MachineParams& machine, bool first) {
    char name[MACHINE_NAME_TEXT_SIZE];
    machine_name(machine, name);
    std::string text = std::string(name[0] != '\0' ? "name=" : "# no name") + name + "\n";
    for (int i = 0; i < FIELD_COUNT; i++) {
        const auto field = static_cast<Field>(i);
        if (first || field != Field::CURRENT_MACHINE)
            text += field_line(machine, field);
    }
    return text;
}

std::string set_setting(MachineParams* machine, const std::string& setting) {
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos)
        return "'" + setting + "' is not FIELD=VALUE";
    const std::string name = setting.substr(0, equals);
    const std::string wrong = set_value(machine, name, setting.substr(equals + 1));
    return wrong.empty() ? "" : name + " " + wrong;
}

std::string apply_rules(MachineParams* machine) {
    const MachineParams before = *machine;
    apply_data_type(machine);
    drop_delay_without_conversion(machine);
    std::string changes;
    for (int i = 0; i < FIELD_COUNT; i++) {
        const auto field = static_cast<Field>(i);
        if (field_as_read(before, field) == field_as_read(*machine, field))
            continue;
        std::string line = field_line(*machine, field);
        line.insert(line.size() - 1, field == Field::EOB_DELAY_MS ? ": there is no delay without a conversion"
                                                                  : ": the data type brings it with it");
        changes += line;
    }
    return changes;
}

std::string protocol_word(const MachineParams& machine) {
    return word_of(machine, Field::PROTOCOL);
}

std::string data_type_word(const MachineParams& machine) {
    return word_of(machine, Field::DATA_TYPE);
}

std::string eob_word(const MachineParams& machine) {
    return word_of(machine, Field::EOB_CONVERSION);
}

std::string line_form(const MachineParams& machine) {
    constexpr const char* PARITY_LETTERS = "NEO";
    return word_of(machine, Field::BAUD_INDEX) + " " + word_of(machine, Field::DATA_BITS_INDEX) +
           PARITY_LETTERS[machine_setting(machine, Field::PARITY_INDEX)] +
           word_of(machine, Field::STOP_BITS_INDEX);
}

}  // namespace hexlane
