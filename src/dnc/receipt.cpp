#include "dnc/receipt.h"

#include "dnc/machine_fields.h"
#include "platform/text.h"

#include <cstddef>

namespace hexlane {

using namespace platform;

namespace {

constexpr std::size_t WORD_SIZE = 16;

// The first word of a text of the dialogs in small letters: "BRIDGEPORT DNC LINK " gives "bridgeport".
void small_word(char word[WORD_SIZE], const char* text) {
    std::size_t length = 0;
    for (; text[length] != '\0' && text[length] != ' ' && length + 1 < WORD_SIZE; length++)
        word[length] =
            static_cast<char>(text[length] >= 'A' && text[length] <= 'Z' ? text[length] + 32 : text[length]);
    word[length] = '\0';
}

void machine_entry(const Receipt& r, ReceiptEntry* entry) {
    char name[MACHINE_NAME_TEXT_SIZE];
    char protocol[WORD_SIZE];
    char data_type[WORD_SIZE];
    machine_name(*r.settings, name);
    small_word(protocol, PROTOCOL_TEXTS[machine_setting(*r.settings, Field::PROTOCOL)]);
    small_word(data_type, DATA_TYPE_TEXTS[machine_setting(*r.settings, Field::DATA_TYPE)]);
    format_text(entry->text, sizeof entry->text, "%d, %s, %s, %s", r.machine + 1, name, protocol, data_type);
}

// A send that has not come to its end may have read more of the file than has gone out.
void file_entry(const Receipt& r, ReceiptEntry* entry) {
    format_text(entry->text, sizeof entry->text, "%lld bytes%s, CRC-32 %08x",
                static_cast<long long>(r.tally.file_bytes), r.sending && !r.complete ? " read" : "",
                r.tally.file_crc);
}

// A stopped write has gone out in part: its bytes are counted, but a checksum of part of them means nothing.
void line_entry(const Receipt& r, ReceiptEntry* entry) {
    const auto bytes = static_cast<long long>(r.tally.line_bytes + r.cut_bytes);
    if (r.sending && !r.complete)
        format_text(entry->text, sizeof entry->text, "%lld bytes", bytes);
    else
        format_text(entry->text, sizeof entry->text, "%lld bytes, CRC-32 %08x", bytes, r.tally.line_crc);
}

ReceiptEntry* add_entry(ReceiptEntry** next, const char* name, const char* text = "") {
    ReceiptEntry* entry = (*next)++;
    entry->name = name;
    copy_text(entry->text, sizeof entry->text, text);
    return entry;
}

void add_seconds(ReceiptEntry** next, const char* name, double seconds) {
    ReceiptEntry* entry = add_entry(next, name);
    format_text(entry->text, sizeof entry->text, "%.2f s", seconds);
}

}  // namespace

bool goes_in_blocks(const MachineParams& machine) {
    const int protocol = machine_setting(machine, Field::PROTOCOL);
    return protocol == PROTOCOL_BRIDGEPORT || protocol == PROTOCOL_HEIDENHAIN;
}

int receipt_entries(const Receipt& r, ReceiptEntry entries[RECEIPT_ENTRIES]) {
    ReceiptEntry* next = entries;
    add_entry(&next, r.sending ? "sent" : "received", r.file);
    machine_entry(r, add_entry(&next, "machine"));
    ReceiptEntry* port = add_entry(&next, "port");
    format_text(port->text, sizeof port->text, "%s, %u baud", r.port, r.rate);
    file_entry(r, add_entry(&next, "file"));
    line_entry(r, add_entry(&next, "line"));
    if (r.sending && goes_in_blocks(*r.settings)) {
        ReceiptEntry* blocks = add_entry(&next, "blocks");
        format_text(blocks->text, sizeof blocks->text, "%d, %d answered", r.tally.blocks, r.tally.acks);
    }
    if (r.sending)
        add_seconds(&next, "held", r.held_s);
    add_entry(&next, "started", r.started);
    add_entry(&next, "ended", r.ended);
    add_seconds(&next, "took", r.took_s);
    add_entry(&next, "result", r.result);
    return static_cast<int>(next - entries);
}

}  // namespace hexlane
