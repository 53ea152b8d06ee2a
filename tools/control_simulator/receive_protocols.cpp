// receive_protocols.cpp: the three ways in which a program is framed, told from the machine's side.

#include "receive_internal.h"

namespace simulator {

namespace {

constexpr std::size_t BRIDGEPORT_BLOCK = 251;
constexpr uint8_t LOWEST_CHECK = 0x20;

uint8_t mixed(uint8_t check, int character) {
    return static_cast<uint8_t>(check ^ character);
}

std::string block_text(const Loader& loader) {
    return "block " + std::to_string(loader.session.findings.blocks + 1);
}

// Whether the sender had to wait for the answer to the block before: a HEIDENHAIN sender does so only where
// it leaves the line ends as they are.
bool must_wait(const Loader& loader) {
    return loader.options().protocol == Protocol::BRIDGEPORT || loader.program.line_end.empty();
}

// The held characters belong to a block: none of them may have come ahead of the answer to the one before,
// but for the rest of a line end that the block before has cut through.
void check_wait(Loader* loader) {
    const Session& session = loader->session;
    const std::size_t line_end = loader->program.line_end.size();
    const std::size_t allowed = line_end > 1 ? line_end - 1 : 0;
    if (loader->held.size() <= allowed || session.findings.blocks == 0 || !must_wait(*loader))
        return;
    const int64_t first = loader->held_from + static_cast<int64_t>(allowed);
    if (!session.answers_due.empty() || first <= session.answered_at)
        add_fault(&loader->session.findings,
                  block_text(*loader) + " has begun ahead of the answer to the one before");
}

void count_block(Loader* loader) {
    check_wait(loader);
    loader->session.findings.blocks++;
    answer_block(&loader->session);
}

// The line fell silent or was closed: the end of a program whose protocol has no mark for it. Not so when
// somebody stopped the run.
bool ends_by_silence(const Loader& loader) {
    const End end = loader.session.end;
    return end == End::CLOSED || end == End::SILENCE;
}

}  // namespace

// ---- GENERAL and PHILLIPS ----------------------------------------------------------------------------

// A plain stream; PHILLIPS closes it with EOT. In a continuous GENERAL stream only the end string tells the
// passes apart, and it is taken out wherever it comes.
bool load_plain(Loader* loader) {
    const bool marked = loader->options().protocol == Protocol::PHILLIPS && loader->has_code(EOT);
    const std::size_t end_length = loader->end_string.size();
    while (true) {
        const int character = next_character(loader);
        if (character < 0 && !marked && ends_by_silence(*loader))
            break;
        if (character < 0) {
            cut_off(loader, "ahead of the program's end");
            return false;
        }
        if (marked && character == EOT)
            break;
        hold(loader, character);
        if (!marked && loader->options().continuous && end_length > 0 && ends_with_end_string(*loader))
            break;
        if (loader->held.size() > end_length)
            store_held(loader, loader->held.size() - end_length);
    }
    if (loader->options().continuous && !marked && loader->session.end != End::NOT_YET)
        store_held(loader);  // it may stop anywhere
    else
        drop_end_string(loader);
    store_held(loader);
    return true;
}

// ---- BRIDGEPORT --------------------------------------------------------------------------------------

namespace {

// Behind the last data: end string, ETB, check, EOT; the first three are taken already, `check` among them.
void close_bridgeport(Loader* loader, uint8_t check) {
    drop_end_string(loader);
    if (loader->held.size() >= BRIDGEPORT_BLOCK)
        add_fault(&loader->session.findings, "the last block is too long");
    check_wait(loader);
    if (check != check_of(loader->held))
        add_check_error(&loader->session.findings, "the check of the last block does not fit");
    expect(loader, std::string_view(reinterpret_cast<const char*>(&EOT), 1));
    loader->session.findings.blocks++;
    store_held(loader);
}

// A block of full length and its ETB may be the last one after all, when the end string fills it up: then its
// check and EOT follow.
bool is_last_after_all(Loader* loader) {
    if (loader->end_string.empty() || !ends_with_end_string(*loader) || !comes(loader, 1, EOT))
        return false;
    const std::string_view data(loader->held.data(), loader->held.size() - loader->end_string.size());
    return comes(loader, 0, check_of(data));
}

// Nothing on the line marks a block in EIA but its length. The held characters are those behind the last
// whole block, `before` is that block: the check at the end may have filled it up. Gives whether they make an
// end.
bool take_unmarked_end(Loader* loader, std::string_view characters, bool check_needed) {
    const Options& o = loader->options();
    const auto fits = [&](std::string_view all, bool with_check) {
        const std::string_view front = all.substr(0, all.size() - (with_check ? 1 : 0));
        if (!front.ends_with(loader->end_string))
            return false;
        const std::string_view data = front.substr(0, front.size() - loader->end_string.size());
        const int code = line_byte_of(o.code, check_of(data));
        const bool right = with_check ? code != NO_CODE && character_of(o.code, static_cast<uint8_t>(code)) ==
                                                               static_cast<uint8_t>(all.back())
                                      : code == NO_CODE;
        if (right && data.size() < BRIDGEPORT_BLOCK)
            loader->held = data;
        return right && data.size() < BRIDGEPORT_BLOCK;
    };
    return (!characters.empty() && fits(characters, true)) || (!check_needed && fits(characters, false));
}

bool load_bridgeport_unmarked(Loader* loader) {
    std::string before;
    int character = 0;
    while ((character = next_character(loader)) >= 0) {
        hold(loader, character);
        if (loader->held.size() < BRIDGEPORT_BLOCK)
            continue;
        count_block(loader);
        loader->held.swap(before);
        store_held(loader);
    }
    const std::string rest = loader->held;
    if (!ends_by_silence(*loader)) {
        loader->held = before + rest;
        cut_off(loader, "ahead of the program's end");
        return false;
    }
    if (rest.empty() && take_unmarked_end(loader, before, true)) {
        store_held(loader);
    } else if (take_unmarked_end(loader, rest, false)) {
        loader->held.insert(0, before);
        store_held(loader);
    } else if (take_unmarked_end(loader, before + rest, false)) {
        store_held(loader);
    } else {
        add_check_error(&loader->session.findings, "the check of the last block does not fit");
        loader->held = before + rest;
        store_held(loader);
    }
    loader->session.findings.passes++;
    return false;
}

}  // namespace

bool load_bridgeport(Loader* loader) {
    if (!loader->has_code(ETB))
        return load_bridgeport_unmarked(loader);
    const std::size_t longest = BRIDGEPORT_BLOCK + loader->end_string.size();
    bool told = false;  // that the block is too long
    while (true) {
        const int character = next_character(loader);
        if (character < 0) {
            cut_off(loader, "ahead of the program's end");
            return false;
        }
        if (character != ETB) {
            hold(loader, character);
            if (loader->held.size() > longest && !told) {
                add_fault(&loader->session.findings, block_text(*loader) + " is longer than 251 bytes");
                told = true;
            }
            continue;
        }
        if (loader->held.size() == BRIDGEPORT_BLOCK) {
            count_block(loader);
            if (!is_last_after_all(loader)) {
                store_held(loader);
                continue;
            }
            loader->session.findings.blocks--;
        }
        const int check = next_byte(&loader->session);
        if (check < 0) {
            cut_off(loader, "ahead of the last check");
            return false;
        }
        close_bridgeport(loader, static_cast<uint8_t>(check));
        return true;
    }
}

// ---- HEIDENHAIN --------------------------------------------------------------------------------------

namespace {

// Behind a line feed, when ETB stands there: the space that lifts a low check, ETB, check. False when the
// line feed ends no block.
bool close_marked_block(Loader* loader, uint8_t* check) {
    const bool padded = comes(loader, 0, ' ') && comes(loader, 1, ETB);
    if (!padded && !comes(loader, 0, ETB))
        return false;
    const bool low = *check < LOWEST_CHECK;
    if (padded) {
        next_byte(&loader->session);
        *check = mixed(*check, ' ');
    }
    next_byte(&loader->session);
    *check = mixed(*check, ETB);
    const int got = next_byte(&loader->session);
    if (got < 0)
        return true;
    if (got != *check)
        add_check_error(&loader->session.findings, "the check of " + block_text(*loader) + " does not fit");
    else if (padded != low)
        add_fault(&loader->session.findings, block_text(*loader) + " has a space too many or too few");
    return true;
}

// The same in EIA, where ETB and some checks have no code.
void close_unmarked_block(Loader* loader, uint8_t check) {
    if (check < LOWEST_CHECK) {
        expect(loader, " ");
        check = mixed(check, ' ');
    }
    check = mixed(check, ETB);
    if (!loader->has_code(check) || comes(loader, 0, check)) {
        if (loader->has_code(check))
            next_byte(&loader->session);
        return;
    }
    add_check_error(&loader->session.findings, "the check of " + block_text(*loader) + " does not fit");
    next_byte(&loader->session);
}

}  // namespace

bool load_heidenhain(Loader* loader, bool first_pass) {
    constexpr char LEAD[] = {ACK, STX};
    constexpr char NEXT[] = {STX};
    const bool marked = loader->has_code(ETB);
    // A later pass begins without STX, and its check without it.
    uint8_t check = first_pass ? STX : 0;
    if (first_pass)
        expect(loader, {LEAD, sizeof LEAD});
    while (true) {
        const int character = next_character(loader);
        if (character < 0 && !marked && ends_by_silence(*loader))
            break;
        if (character < 0) {
            cut_off(loader, "ahead of the program's end");
            return false;
        }
        if (marked && character == FF && comes(loader, 0, ETX)) {
            next_byte(&loader->session);
            break;
        }
        hold(loader, character);
        check = mixed(check, character);
        if (character != '\n')
            continue;
        if (!marked)
            close_unmarked_block(loader, check);
        else if (!close_marked_block(loader, &check))
            continue;
        count_block(loader);
        store_held(loader);
        expect(loader, {NEXT, sizeof NEXT});
        check = STX;
    }
    drop_end_string(loader);
    check_wait(loader);
    if (marked && loader->held.find('\n') != std::string::npos)
        add_check_error(&loader->session.findings, "a block has no check");
    store_held(loader);
    return true;
}

}  // namespace simulator
