#include "receive_internal.h"

namespace simulator {

namespace {

std::string shown(int character) {
    const CharacterName name = name_of(character);
    return name.named ? name.text : std::string("'") + name.text + "'";
}

// Every pass after the first comes without the start sequence.
bool load_pass(Loader* loader, bool first_pass) {
    switch (loader->options().protocol) {
    case Protocol::BRIDGEPORT:
        return load_bridgeport(loader);
    case Protocol::HEIDENHAIN:
        return load_heidenhain(loader, first_pass);
    default:
        return load_plain(loader);
    }
}

std::string as_it_comes(Code code, std::string_view characters) {
    std::string coming;
    for (const char c : characters) {
        const int line_byte = line_byte_of(code, static_cast<uint8_t>(c));
        if (line_byte != NO_CODE)
            coming.push_back(static_cast<char>(character_of(code, static_cast<uint8_t>(line_byte))));
    }
    return coming;
}

// The program is complete: whatever comes now should not be there.
void watch_for_stray_bytes(Loader* loader) {
    int64_t stray = 0;
    while (next_byte(&loader->session) >= 0)
        stray++;
    if (stray > 0)
        add_fault(&loader->session.findings, std::to_string(stray) + " bytes behind the end of the program");
}

}  // namespace

int next_character(Loader* loader) {
    const int byte = next_byte(&loader->session);
    if (byte < 0)
        return -1;
    const int character = character_of(loader->options().code, static_cast<uint8_t>(byte));
    if (character != NO_CODE)
        return character;
    char text[32];
    std::snprintf(text, sizeof text, "byte %02X is not in the code", static_cast<unsigned>(byte) & 0xFF);
    add_fault(&loader->session.findings, text);
    return byte;
}

bool comes(Loader* loader, std::size_t ahead, uint8_t character) {
    const int wanted = line_byte_of(loader->options().code, character);
    return wanted != NO_CODE && peek_byte(&loader->session, ahead) == wanted;
}

void expect(Loader* loader, std::string_view characters) {
    for (const char c : characters) {
        const auto wanted = static_cast<uint8_t>(c);
        if (!loader->has_code(wanted))
            continue;
        const int byte = peek_byte(&loader->session, 0);
        if (byte < 0)
            return;
        if (!comes(loader, 0, wanted)) {
            add_fault(&loader->session.findings,
                      shown(wanted) + " is missing, " +
                          shown(character_of(loader->options().code, static_cast<uint8_t>(byte))) +
                          " has come");
            return;
        }
        next_byte(&loader->session);
    }
}

void hold(Loader* loader, int character) {
    if (loader->held.empty())
        loader->held_from = loader->session.findings.taken;
    loader->held.push_back(static_cast<char>(character));
}

void store_held(Loader* loader, std::size_t count) {
    for (std::size_t i = 0; i < count; i++)
        store(&loader->program, static_cast<uint8_t>(loader->held[i]));
    loader->held.erase(0, count);
}

void store_held(Loader* loader) {
    store_held(loader, loader->held.size());
}

bool ends_with_end_string(const Loader& loader) {
    return loader.held.ends_with(loader.end_string);
}

bool drop_end_string(Loader* loader) {
    if (!ends_with_end_string(*loader)) {
        add_fault(&loader->session.findings, "the end string is missing");
        return false;
    }
    loader->held.resize(loader->held.size() - loader->end_string.size());
    return true;
}

uint8_t check_of(std::string_view characters) {
    uint8_t check = 0;
    for (const char c : characters)
        check = static_cast<uint8_t>(check ^ static_cast<uint8_t>(c));
    return check;
}

void cut_off(Loader* loader, const char* where) {
    store_held(loader);
    const Session& session = loader->session;
    const bool wished =
        session.end == End::HUNG_UP || (loader->options().continuous && session.findings.passes > 0);
    if (!wished)
        add_fault(&loader->session.findings, std::string(end_text(session.end)) + " " + where);
}

void receive_program(Session* session, ProgramFile* program) {
    Loader loader{*session, *program, as_it_comes(session->options.code, session->options.end)};
    if (peek_byte(session, 0) < 0) {
        if (session->end != End::HUNG_UP)
            add_fault(&session->findings, end_text(session->end));
        return;
    }
    expect(&loader, loader.options().start);
    bool first_pass = true;
    while (load_pass(&loader, first_pass)) {
        session->findings.passes++;
        flush_program(program);
        first_pass = false;
        if (!loader.options().continuous) {
            watch_for_stray_bytes(&loader);
            return;
        }
        if (peek_byte(session, 0) < 0)
            return;
    }
}

}  // namespace simulator
