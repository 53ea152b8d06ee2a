// parameter_view.cpp: the view COMMSETTINGS. It edits the record of edit_machine in memory; Save writes the
// file, and Cancel reads it back.

#include "dnc/machine_fields.h"
#include "dnc/machine_presets.h"
#include "dnc/machine_table.h"
#include "dnc/port_engine.h"
#include "dnc/transfer_state.h"
#include "shell/child.h"
#include "shell/view_controls.h"
#include "shell/views.h"
#include "shell/window.h"
#include "station/machine_watch.h"
#include "station/parameter_views.h"
#include "station/parameter_views_internal.h"
#include "station/port_report.h"
#include "station/station_texts.h"

#include <array>
#include <cstring>
#include <iterator>

namespace hexlane {

using namespace platform;

namespace {

constexpr int16_t ADVANCED_BUTTON = 3;
constexpr int16_t MACHINE_BOX = 101;
constexpr int16_t PROTOCOL_LIST = 102;
constexpr int16_t BAUD_TEXT = 103;
constexpr int16_t BAUD_UP = 104;
constexpr int16_t BAUD_DOWN = 105;
constexpr int16_t EOB_LIST = 106;
constexpr int16_t DATA_TYPE_RADIOS = 110;
constexpr int16_t PARITY_RADIOS = 114;
constexpr int16_t HANDSHAKE_RADIOS = 117;
constexpr int16_t DATA_BITS_RADIOS = 119;
constexpr int16_t STOP_BITS_RADIOS = 121;
constexpr int16_t PORT_RADIOS = 123;

constexpr int PROTOCOL_COUNT = static_cast<int>(std::size(PROTOCOL_TEXTS));
constexpr int BAUD_COUNT = static_cast<int>(std::size(BAUD_TEXTS));
constexpr int EOB_COUNT = static_cast<int>(std::size(EOB_TEXTS));

constexpr InputRule NAME_RULE = {.limit = MACHINE_NAME_SIZE - 1, .characters = true};

constexpr auto TOP_CONTROLS = std::to_array<ControlSpec>({
    {201, ControlKind::TEXT, "&Machine ", 0, 0, 1, 2, 0, 0, nullptr},
    {MACHINE_BOX, ControlKind::CHOICE, "", 0, 2, 1, 4, 36, CONTROL_EDITABLE, &NAME_RULE},
    {202, ControlKind::TEXT, "Specific &Protocol ", 1, 0, 1, 2, 0, 0, nullptr},
    {PROTOCOL_LIST, ControlKind::CHOICE, "", 1, 2, 1, 4, 22, 0, nullptr},
    {203, ControlKind::TEXT, "Baud Rate", 2, 0, 1, 2, 0, 0, nullptr},
    {BAUD_TEXT, ControlKind::TEXT, "", 2, 2, 1, 2, 8, CONTROL_SUNKEN, nullptr},
    {BAUD_UP, ControlKind::BUTTON, "&Up", 2, 4, 1, 1, 0, 0, nullptr},
    {BAUD_DOWN, ControlKind::BUTTON, "Do&wn", 2, 5, 1, 1, 0, 0, nullptr},
    {204, ControlKind::TEXT, "&End of Block Conversion", 3, 0, 1, 2, 0, 0, nullptr},
    {EOB_LIST, ControlKind::CHOICE, "", 3, 2, 1, 4, 22, 0, nullptr},
});

constexpr auto BUTTONS = std::to_array<ControlSpec>({
    {OK_BUTTON, ControlKind::BUTTON, "&Save", 10, 0, 1, 2, 0, CONTROL_DEFAULT | CONTROL_CENTERED, nullptr},
    {CANCEL_BUTTON, ControlKind::BUTTON, "Cancel", 10, 2, 1, 2, 0, CONTROL_CANCEL | CONTROL_CENTERED,
     nullptr},
    {ADVANCED_BUTTON, ControlKind::BUTTON, "Advance&d", 10, 4, 1, 2, 0, CONTROL_CENTERED, nullptr},
});

constexpr auto CONTROLS =
    join_controls(TOP_CONTROLS,
                  radio_frame({301, ControlKind::FRAME, "Data Type", 4, 0, 4, 2, 0, 0, nullptr},
                              DATA_TYPE_RADIOS, {"&ISO", "EI&A", "AS&CII", "&BINARY"}),
                  radio_frame({302, ControlKind::FRAME, "Parity", 4, 2, 4, 2, 0, 0, nullptr}, PARITY_RADIOS,
                              {"&NONE", "E&VEN", "&ODD"}),
                  radio_frame({303, ControlKind::FRAME, "Handshake", 4, 4, 2, 2, 0, 0, nullptr},
                              HANDSHAKE_RADIOS, {"So&ftware", "&Hardware"}),
                  radio_frame({304, ControlKind::FRAME, "Data Bits", 8, 0, 2, 2, 0, 0, nullptr},
                              DATA_BITS_RADIOS, {"&7", "&8"}),
                  radio_frame({305, ControlKind::FRAME, "Stop Bits", 8, 2, 2, 2, 0, 0, nullptr},
                              STOP_BITS_RADIOS, {"1", "2"}),
                  radio_frame({306, ControlKind::FRAME, "Port", 6, 4, 4, 2, 0, 0, nullptr}, PORT_RADIOS,
                              {"1", "2", "3", "4"}),
                  BUTTONS);

constexpr ViewSpec SETTINGS_VIEW = {"COMMSETTINGS", "Communications Parameter Settings", 0, CONTROLS.data(),
                                    CONTROLS.size()};

// All records as they were when the view came up, for a Cancel that finds no file to read.
MachineParams machines_before[MACHINE_COUNT];

// A name is edited in place: what the box holds is the name of the record on show. A character that no name
// can hold is not taken.
void take_name(ViewHandle view) {
    char name[MACHINE_NAME_TEXT_SIZE];
    view_get_text(view, MACHINE_BOX, name, sizeof name);
    if (set_machine_name(&edited_machine(), name))
        return;
    show_dnc_box(DncBox::NAME_NOT_IN_TABLE, name);
    machine_name(edited_machine(), name);
    put_text(view, MACHINE_BOX, name);
}

void drop_delay() {
    if (drop_delay_without_conversion(&edited_machine()))
        show_dnc_box(DncBox::DELAY_DROPPED);
}

template <std::size_t COUNT>
void fill_list(ViewHandle view, int id, const char* const (&texts)[COUNT], int selected) {
    view_clear_list(view, id);
    for (const char* text : texts)
        view_add_to_list(view, id, text);
    view_select(view, id, selected);
}

void fill_machines(ViewHandle view) {
    view_clear_list(view, MACHINE_BOX);
    for (const MachineParams& machine : machine_table) {
        char name[MACHINE_NAME_TEXT_SIZE];
        machine_name(machine, name);
        view_add_to_list(view, MACHINE_BOX, name);
    }
    view_select(view, MACHINE_BOX, edit_machine);
}

void show_machine(ViewHandle view) {
    const MachineParams& machine = edited_machine();
    fill_machines(view);
    fill_list(view, PROTOCOL_LIST, PROTOCOL_TEXTS, machine_setting(machine, Field::PROTOCOL));
    put_text(view, BAUD_TEXT, BAUD_TEXTS[machine_setting(machine, Field::BAUD_INDEX)]);
    const int data_type = machine_setting(machine, Field::DATA_TYPE);
    tick_radio(view, DATA_TYPE_RADIOS, data_type);
    apply_data_type(&edited_machine());
    const DataTypeRule& rule = data_type_rule(data_type);
    view_enable_control(view, EOB_LIST, rule.conversion_free);
    enable_controls(view, PARITY_RADIOS, 3, rule.parity_and_bits_free);
    enable_controls(view, DATA_BITS_RADIOS, 2, rule.parity_and_bits_free);
    tick_radio(view, PARITY_RADIOS, machine_setting(machine, Field::PARITY_INDEX));
    tick_radio(view, DATA_BITS_RADIOS, machine_setting(machine, Field::DATA_BITS_INDEX));
    tick_radio(view, STOP_BITS_RADIOS, machine_setting(machine, Field::STOP_BITS_INDEX));
    tick_radio(view, HANDSHAKE_RADIOS, machine_setting(machine, Field::HANDSHAKE));
    tick_radio(view, PORT_RADIOS, machine_setting(machine, Field::PORT_INDEX));
    fill_list(view, EOB_LIST, EOB_TEXTS, machine_setting(machine, Field::EOB_CONVERSION));
    drop_delay();
}

// Reads the controls back into the record.
void collect_machine(ViewHandle view) {
    const int conversion = view_selection(view, EOB_LIST);
    if (conversion >= 0 && conversion < EOB_COUNT)
        store_setting(Field::EOB_CONVERSION, conversion);
    drop_delay();
    store_setting(Field::PARITY_INDEX, ticked_radio(view, PARITY_RADIOS, 3));
    store_setting(Field::DATA_BITS_INDEX, ticked_radio(view, DATA_BITS_RADIOS, 2));
    store_setting(Field::STOP_BITS_INDEX, ticked_radio(view, STOP_BITS_RADIOS, 2));
    store_setting(Field::HANDSHAKE, ticked_radio(view, HANDSHAKE_RADIOS, 2));
    store_setting(Field::PORT_INDEX, ticked_radio(view, PORT_RADIOS, 4));
}

// Another row of the list was picked, or the name is being typed over.
void on_machine_box(ViewHandle view) {
    const int selected = view_selection(view, MACHINE_BOX);
    if (selected < 0 || selected >= MACHINE_COUNT || selected == edit_machine) {
        take_name(view);
        collect_machine(view);
        return;
    }
    collect_machine(view);
    edit_machine = static_cast<int16_t>(selected);
    show_machine(view);
}

void on_data_type(ViewHandle view) {
    collect_machine(view);
    store_setting(Field::DATA_TYPE, ticked_radio(view, DATA_TYPE_RADIOS, 4));
    show_machine(view);
}

// A new protocol brings its settings; the other controls are not read back first.
void on_protocol(ViewHandle view) {
    const int protocol = view_selection(view, PROTOCOL_LIST);
    if (protocol < 0 || protocol >= PROTOCOL_COUNT)
        return;
    apply_protocol_preset(&edited_machine(), protocol);
    show_machine(view);
}

void step_baud(ViewHandle view, int step) {
    const int index = machine_setting(edited_machine(), Field::BAUD_INDEX) + step;
    if (index < 0 || index >= BAUD_COUNT)
        return;
    store_setting(Field::BAUD_INDEX, index);
    put_text(view, BAUD_TEXT, BAUD_TEXTS[index]);
}

void drop_changes() {
    reload_machine_table(machines_before);
    std::memcpy(static_cast<void*>(machines_before), machine_table, sizeof machines_before);
}

void save_and_end(ViewHandle view) {
    collect_machine(view);
    machine_table[0].current_machine = edit_machine;
    switch (store_machine_table()) {
    case TableAnswer::KEEP_MINE:
        view_end(view, 1);
        break;
    case TableAnswer::TAKE_THEIRS:
        drop_changes();
        show_machine(view);
        break;
    case TableAnswer::CANCEL:
        break;
    }
}

void drop_and_end(ViewHandle view) {
    drop_changes();
    view_end(view, 0);
}

void on_control(ViewHandle view, int id) {
    switch (id) {
    case MACHINE_BOX:
        on_machine_box(view);
        break;
    case PROTOCOL_LIST:
        on_protocol(view);
        break;
    case BAUD_UP:
        step_baud(view, 1);
        break;
    case BAUD_DOWN:
        step_baud(view, -1);
        break;
    case ADVANCED_BUTTON:
        collect_machine(view);
        show_advanced_settings();
        break;
    case OK_BUTTON:
        save_and_end(view);
        break;
    case CANCEL_BUTTON:
        drop_and_end(view);
        break;
    default:
        if (id >= DATA_TYPE_RADIOS && id < PARITY_RADIOS)
            on_data_type(view);
    }
}

int64_t settings_proc(WindowHandle view, uint32_t message, int64_t first, int64_t second) {
    view_attach(view);
    if (message == WM_INITDIALOG) {
        show_machine(view);
        return 1;
    }
    if (message == WM_COMMAND) {
        on_control(view, low_word(first));
        return 1;
    }
    if (message == WM_CLOSE) {
        drop_and_end(view);
        return 1;
    }
    return view_default(view, message, first, second);
}

}  // namespace

MachineParams& edited_machine() {
    return machine_table[edit_machine];
}

void store_setting(Field field, int value) {
    set_field(&edited_machine(), field, value);
}

void show_parameters() {
    std::memcpy(static_cast<void*>(machines_before), machine_table, sizeof machines_before);
    for (int slot = 0; slot < SLOT_COUNT; slot++) {
        if (port_slot[slot].connected && transfer_state[slot].status == PORT_IDLE)
            close_port_and_report(slot);
    }
    show_view(&SETTINGS_VIEW, settings_proc);
    update_menus();  // the machine that Send This names
}

}  // namespace hexlane
