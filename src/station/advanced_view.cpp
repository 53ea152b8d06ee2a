// advanced_view.cpp: the view ADVANCED, on the record of edit_machine. OK stores all of it; the arrows store
// at once.

#include "dnc/machine_fields.h"
#include "dnc/machine_presets.h"
#include "dnc/machine_table.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "station/parameter_views.h"
#include "station/parameter_views_internal.h"
#include "station/station_texts.h"

#include <array>
#include <iterator>

namespace hexlane {

using namespace platform;

namespace {

constexpr int16_t CHART_BUTTON = 3;
constexpr int16_t COMPRESSION_BOXES = 101;  // five, in the order of COMPRESSIONS
constexpr int16_t COMPRESS_FIELD = 106;
constexpr int16_t DELAY_FIELD = 107;
constexpr int16_t DELAY_UP = 108;
constexpr int16_t DELAY_DOWN = 109;
constexpr int16_t TIMEOUT_FIELD = 110;
constexpr int16_t TIMEOUT_UP = 111;
constexpr int16_t TIMEOUT_DOWN = 112;
constexpr int16_t START_CHAR_FIELD = 113;
constexpr int16_t START_COUNT_FIELD = 114;
constexpr int16_t END_CHAR_FIELD = 115;
constexpr int16_t END_COUNT_FIELD = 116;
constexpr int16_t START_STRING_FIELDS = 120;
constexpr int16_t END_STRING_FIELDS = 130;
constexpr int16_t XOFF_RADIOS = 140;

constexpr Field COMPRESSIONS[] = {Field::COMPRESS_COMMENTS, Field::COMPRESS_SPACES,
                                  Field::COMPRESS_LINE_NUMBERS, Field::COMPRESS_TABS,
                                  Field::COMPRESS_CHARACTER_ON};

constexpr int HIGHEST_DELAY = 9999;   // ms
constexpr int HIGHEST_TIMEOUT = 100;  // s, at which the arrows turn round; above it they go on by 1
constexpr int LONGEST_TIMEOUT = 999;  // s, that the field holds
constexpr int HIGHEST_BYTE = 127;     // of a start or end string; more comes from a damaged file
constexpr int NO_CHARACTER = -1;
constexpr const char* RULE_TITLE = "Advanced Settings";

constexpr InputRule ASCII_RULE = {
    3,          DIGITS, 0,    127, nullptr, "Please enter an ASCII value between 0 and 127",
    RULE_TITLE, false,  true, true};
constexpr InputRule COUNT_RULE = {
    4, DIGITS, 0, 1000, nullptr, "Please enter a value between 0 and 1000", RULE_TITLE, false, true, true};
constexpr InputRule BYTE_RULE = {
    3, DIGITS, 0, 127, nullptr, "Please enter a value between 0 and 127", RULE_TITLE, false, true, true};
constexpr InputRule DELAY_RULE = {4, DIGITS};
constexpr InputRule TIMEOUT_RULE = {3, DIGITS};

// The fields of a start or end string, side by side.
constexpr auto byte_fields(int first_id, uint8_t row) {
    std::array<ControlSpec, MACHINE_STRING_SIZE> fields = {};
    for (int i = 0; i < MACHINE_STRING_SIZE; i++) {
        ControlSpec& field = fields[static_cast<std::size_t>(i)];
        field = {0, ControlKind::FIELD, "", row, 0, 1, 1, 3, 0, &BYTE_RULE};
        field.id = static_cast<int16_t>(first_id + i);
        field.column = static_cast<uint8_t>(2 + i);
    }
    return fields;
}

constexpr auto UPPER_CONTROLS = std::to_array<ControlSpec>({
    {301, ControlKind::FRAME, "Compression Options", 0, 0, 6, 2, 0, 0, nullptr},
    {101, ControlKind::CHECK, "Compress Co&mments", 0, 0, 1, 2, 0, 0, nullptr},
    {102, ControlKind::CHECK, "Compress &Spaces", 1, 0, 1, 2, 0, 0, nullptr},
    {103, ControlKind::CHECK, "Compress &Line Nums", 2, 0, 1, 2, 0, 0, nullptr},
    {104, ControlKind::CHECK, "Compress &Tabs", 3, 0, 1, 2, 0, 0, nullptr},
    {105, ControlKind::CHECK, "Compress C&haracter ", 4, 0, 1, 2, 0, 0, nullptr},
    {401, ControlKind::TEXT, "(ASCII &Value)", 5, 0, 1, 1, 0, 0, nullptr},
    {COMPRESS_FIELD, ControlKind::FIELD, "", 5, 1, 1, 1, 3, 0, &ASCII_RULE},
    {302, ControlKind::FRAME, "Delay", 0, 2, 2, 8, 0, 0, nullptr},
    {402, ControlKind::TEXT, "EO&B Delay (ms)", 0, 2, 1, 4, 0, 0, nullptr},
    {DELAY_FIELD, ControlKind::FIELD, "", 0, 6, 1, 2, 4, 0, &DELAY_RULE},
    {DELAY_UP, ControlKind::BUTTON, "&Up", 0, 8, 1, 1, 0, 0, nullptr},
    {DELAY_DOWN, ControlKind::BUTTON, "&Down", 0, 9, 1, 1, 0, 0, nullptr},
    {403, ControlKind::TEXT, "&Receive Timeout (s)", 1, 2, 1, 4, 0, 0, nullptr},
    {TIMEOUT_FIELD, ControlKind::FIELD, "", 1, 6, 1, 2, 4, 0, &TIMEOUT_RULE},
    {TIMEOUT_UP, ControlKind::BUTTON, "U&p", 1, 8, 1, 1, 0, 0, nullptr},
    {TIMEOUT_DOWN, ControlKind::BUTTON, "Do&wn", 1, 9, 1, 1, 0, 0, nullptr},
});

// Ends with the label of the start string.
constexpr auto LOWER_CONTROLS = std::to_array<ControlSpec>({
    {303, ControlKind::FRAME, "Start/End String", 6, 0, 6, 10, 0, 0, nullptr},
    {404, ControlKind::TEXT, "Start &Char (ASCII value)", 6, 0, 1, 2, 0, 0, nullptr},
    {START_CHAR_FIELD, ControlKind::FIELD, "", 6, 2, 1, 2, 4, 0, &ASCII_RULE},
    // "Occurence": so spelled by the system itself.
    {405, ControlKind::TEXT, "Start Char &Occurence", 7, 0, 1, 2, 0, 0, nullptr},
    {START_COUNT_FIELD, ControlKind::FIELD, "", 7, 2, 1, 2, 4, 0, &COUNT_RULE},
    {406, ControlKind::TEXT, "&End Char (ASCII value)", 8, 0, 1, 2, 0, 0, nullptr},
    {END_CHAR_FIELD, ControlKind::FIELD, "", 8, 2, 1, 2, 4, 0, &ASCII_RULE},
    {407, ControlKind::TEXT, "End Char Occure&nce", 9, 0, 1, 2, 0, 0, nullptr},
    {END_COUNT_FIELD, ControlKind::FIELD, "", 9, 2, 1, 2, 4, 0, &COUNT_RULE},
    {408, ControlKind::TEXT, "Start Strin&g (ASCII value)", 10, 0, 1, 2, 0, 0, nullptr},
});

constexpr auto END_STRING_LABEL = std::to_array<ControlSpec>({
    {409, ControlKind::TEXT, "End Str&ing (ASCII value)", 11, 0, 1, 2, 0, 0, nullptr},
});

constexpr auto BUTTONS = std::to_array<ControlSpec>({
    {OK_BUTTON, ControlKind::BUTTON, "OK", 12, 0, 1, 2, 0, CONTROL_DEFAULT | CONTROL_CENTERED, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 12, 2, 1, 4, 0, CONTROL_CANCEL | CONTROL_CENTERED,
     nullptr},
    {CHART_BUTTON, ControlKind::BUTTON, "&ASCII Chart", 12, 6, 1, 4, 0, CONTROL_CENTERED, nullptr},
});

constexpr auto CONTROLS =
    join_controls(UPPER_CONTROLS,
                  radio_frame({304, ControlKind::FRAME, "EIA XOFF Char", 2, 2, 4, 8, 0, 0, nullptr},
                              XOFF_RADIOS, {"&19", "1&47"}),
                  LOWER_CONTROLS, byte_fields(START_STRING_FIELDS, 10), END_STRING_LABEL,
                  byte_fields(END_STRING_FIELDS, 11), BUTTONS);

constexpr ViewSpec ADVANCED_VIEW = {"ADVANCED", "Advanced Settings", 0, CONTROLS.data(), CONTROLS.size()};

int setting(Field field) {
    return machine_setting(edited_machine(), field);
}

void put_bytes(ViewHandle view, int first_id, const uint8_t* bytes) {
    for (int i = 0; i < MACHINE_STRING_SIZE; i++)
        put_number(view, first_id + i, bytes[i] <= HIGHEST_BYTE ? bytes[i] : BLANK_BYTE, BLANK_BYTE);
}

void take_bytes(ViewHandle view, int first_id, uint8_t* bytes) {
    for (int i = 0; i < MACHINE_STRING_SIZE; i++)
        bytes[i] = static_cast<uint8_t>(take_number(view, first_id + i, BLANK_BYTE));
}

void show_settings(ViewHandle view) {
    for (std::size_t i = 0; i < std::size(COMPRESSIONS); i++)
        view_check(view, COMPRESSION_BOXES + static_cast<int>(i), setting(COMPRESSIONS[i]) != 0);
    put_number(view, COMPRESS_FIELD, setting(Field::COMPRESS_CHARACTER), NO_CHARACTER);
    put_number(view, START_CHAR_FIELD, setting(Field::START_CHAR), NO_CHARACTER);
    put_number(view, START_COUNT_FIELD, setting(Field::START_CHAR_COUNT), NO_CHARACTER);
    put_number(view, END_CHAR_FIELD, setting(Field::END_CHAR), NO_CHARACTER);
    put_number(view, END_COUNT_FIELD, setting(Field::END_CHAR_COUNT), NO_CHARACTER);
    put_bytes(view, START_STRING_FIELDS, edited_machine().start_string);
    put_bytes(view, END_STRING_FIELDS, edited_machine().end_string);

    const bool eia = setting(Field::DATA_TYPE) == DATA_EIA;
    if (!eia)
        store_setting(Field::XOFF_CHAR, XOFF_DEFAULT);
    tick_radio(view, XOFF_RADIOS, setting(Field::XOFF_CHAR) == XOFF_DEFAULT ? 0 : 1);
    enable_controls(view, XOFF_RADIOS, 2, eia);

    const bool may_delay = setting(Field::EOB_CONVERSION) != EOB_NO_CONVERSION;
    if (!may_delay)
        store_setting(Field::EOB_DELAY_MS, 0);
    enable_controls(view, DELAY_FIELD, 3, may_delay);
    put_number(view, DELAY_FIELD, setting(Field::EOB_DELAY_MS), NO_CHARACTER);
    put_number(view, TIMEOUT_FIELD, setting(Field::RECEIVE_TIMEOUT_S), NO_CHARACTER);
}

// A delay above 0 needs an end-of-block conversion. Gives whether it was set back, after telling.
bool set_delay_back(ViewHandle view) {
    const bool wrong =
        take_number(view, DELAY_FIELD, 0) > 0 && setting(Field::EOB_CONVERSION) == EOB_NO_CONVERSION;
    if (!wrong)
        return false;
    store_setting(Field::EOB_DELAY_MS, 0);
    put_number(view, DELAY_FIELD, 0, NO_CHARACTER);
    show_dnc_box(DncBox::DELAY_DROPPED);
    return true;
}

void step_delay(ViewHandle view, int step) {
    if (set_delay_back(view))
        return;
    int delay = take_number(view, DELAY_FIELD, 0) + step;
    if (delay > HIGHEST_DELAY)
        delay = 0;
    if (delay < 0)
        delay = HIGHEST_DELAY;
    put_number(view, DELAY_FIELD, delay, NO_CHARACTER);
    store_setting(Field::EOB_DELAY_MS, delay);
}

void step_timeout(ViewHandle view, int step) {
    int seconds = take_number(view, TIMEOUT_FIELD, 0);
    if (seconds == 0)
        seconds = 1;  // the down arrow leaves it there
    else if (step < 0)
        seconds = seconds <= 1 ? HIGHEST_TIMEOUT : seconds - 1;
    if (step > 0)
        seconds = seconds == HIGHEST_TIMEOUT || seconds >= LONGEST_TIMEOUT ? 1 : seconds + 1;
    put_number(view, TIMEOUT_FIELD, seconds, NO_CHARACTER);
    store_setting(Field::RECEIVE_TIMEOUT_S, seconds);
}

void store_all(ViewHandle view) {
    for (std::size_t i = 0; i < std::size(COMPRESSIONS); i++)
        store_setting(COMPRESSIONS[i], view_checked(view, COMPRESSION_BOXES + static_cast<int>(i)) ? 1 : 0);
    store_setting(Field::XOFF_CHAR,
                  ticked_radio(view, XOFF_RADIOS, 2) == 0 ? XOFF_DEFAULT : XOFF_EIA_ALTERNATE);
    store_setting(Field::COMPRESS_CHARACTER, take_number(view, COMPRESS_FIELD, NO_CHARACTER));
    const int seconds = take_number(view, TIMEOUT_FIELD, 0);
    store_setting(Field::RECEIVE_TIMEOUT_S, seconds == 0 ? 1 : seconds);
    if (seconds == 0)
        put_number(view, TIMEOUT_FIELD, 1, NO_CHARACTER);
    if (!set_delay_back(view))
        store_setting(Field::EOB_DELAY_MS, take_number(view, DELAY_FIELD, 0));
    store_setting(Field::START_CHAR, take_number(view, START_CHAR_FIELD, NO_CHARACTER));
    store_setting(Field::START_CHAR_COUNT, take_number(view, START_COUNT_FIELD, 0));
    store_setting(Field::END_CHAR, take_number(view, END_CHAR_FIELD, NO_CHARACTER));
    store_setting(Field::END_CHAR_COUNT, take_number(view, END_COUNT_FIELD, 0));
    take_bytes(view, START_STRING_FIELDS, edited_machine().start_string);
    take_bytes(view, END_STRING_FIELDS, edited_machine().end_string);
}

int64_t advanced_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    if (message == WM_INITDIALOG) {
        show_settings(view);
        return 1;
    }
    if (message != WM_COMMAND)
        return view_default(view, message, first, second);
    switch (low_word(first)) {
    case DELAY_UP:
        step_delay(view, 1);
        return 1;
    case DELAY_DOWN:
        step_delay(view, -1);
        return 1;
    case TIMEOUT_UP:
        step_timeout(view, 1);
        return 1;
    case TIMEOUT_DOWN:
        step_timeout(view, -1);
        return 1;
    case CHART_BUTTON:
        show_ascii_chart();
        return 1;
    case OK_BUTTON:
        store_all(view);
        view_end(view, 1);
        return 1;
    default:
        return view_default(view, message, first, second);
    }
}

}  // namespace

void show_advanced_settings() {
    show_view(&ADVANCED_VIEW, advanced_proc);
}

}  // namespace hexlane
