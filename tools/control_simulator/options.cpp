#include "options.h"

#include <charconv>
#include <cstring>
#include <system_error>

namespace simulator {

namespace {

// ---- Values ------------------------------------------------------------------------------------------

bool read_number(std::string_view text, int64_t low, int64_t high, int64_t* value) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *value);
    return error == std::errc{} && end == text.data() + text.size() && *value >= low && *value <= high;
}

// The place of `text` in a list of words with blanks between them, or -1.
int place_in(std::string_view words, std::string_view text) {
    int place = 0;
    while (!words.empty()) {
        const std::size_t length = words.find(' ');
        if (words.substr(0, length) == text)
            return place;
        words.remove_prefix(length == std::string_view::npos ? words.size() : length + 1);
        place++;
    }
    return -1;
}

template <typename Choice>
bool read_choice(const char* words, const char* text, Choice* choice) {
    const int place = place_in(words, text);
    if (place >= 0)
        *choice = static_cast<Choice>(place);
    return place >= 0;
}

// "37,13,10" or "0*50,37": character numbers, each with a count behind '*' if it is to be repeated.
bool read_sequence(const char* text, std::string* sequence) {
    std::string_view rest = text;
    while (true) {
        const std::string_view entry = rest.substr(0, rest.find(','));
        const std::size_t star = entry.find('*');
        int64_t character = 0;
        int64_t repeats = 1;
        if (!read_number(entry.substr(0, star), 0, 127, &character))
            return false;
        if (star != std::string_view::npos && !read_number(entry.substr(star + 1), 1, 1000, &repeats))
            return false;
        sequence->append(static_cast<std::size_t>(repeats), static_cast<char>(character));
        if (entry.size() == rest.size())
            return true;
        rest.remove_prefix(entry.size() + 1);
    }
}

constexpr const char* PROTOCOLS = "general bridgeport heidenhain phillips";
constexpr const char* CODES = "iso eia ascii binary";
constexpr const char* LINE_ENDS = "crlf lf cr lfcr lfcrcr dollar none";
constexpr const char* HANDSHAKES = "software hardware none";
constexpr const char* PARITIES = "none even odd";

constexpr int64_t LONGEST_MS = 24 * 3600 * 1000;
constexpr int64_t MOST_BYTES = INT64_C(1) << 40;

bool read_ms(const char* text, int64_t* value) {
    return read_number(text, 0, LONGEST_MS, value);
}

bool read_bytes(const char* text, int64_t low, int64_t* value) {
    return read_number(text, low, MOST_BYTES, value);
}

// ---- The table of options ----------------------------------------------------------------------------

struct Entry {
    const char* name;
    const char* argument;  // nullptr for an option without one
    const char* help;
    bool (*take)(Options& options, const char* text);  // false for a bad value
};

struct Section {
    const char* title;
    const Entry* entries;
    int count;
};

constexpr Entry PROGRAM_ENTRIES[] = {
    {"--receive", "FILE",
     "Plays a machine that loads a program: what comes is decoded, checked and written to FILE.",
     [](Options& o, const char* text) { return !(o.receive = text).empty(); }},
    {"--send", "FILE",
     "Plays a machine that punches its program: FILE goes out, in the machine's code and with its line ends. "
     "That is a plain stream under every protocol.",
     [](Options& o, const char* text) { return !(o.send = text).empty(); }},
    {"--protocol", "NAME", "general, bridgeport, heidenhain or phillips. Default general.",
     [](Options& o, const char* text) { return read_choice(PROTOCOLS, text, &o.protocol); }},
    {"--code", "NAME", "iso, eia, ascii or binary. Default ascii.",
     [](Options& o, const char* text) { return read_choice(CODES, text, &o.code); }},
    {"--eob", "NAME",
     "What ends a block on the line: crlf (as in the file), lf, cr, lfcr, lfcrcr, dollar ($ CR LF) or none "
     "(as "
     "in the file). Default crlf; lf with the code eia, none with binary.",
     [](Options& o, const char* text) { return read_choice(LINE_ENDS, text, &o.line_end); }},
    {"--start-string", "LIST",
     "Character numbers that stand in front of the program, with commas between them. N*COUNT is a repeated "
     "one: 0*50,37.",
     [](Options& o, const char* text) { return read_sequence(text, &o.start); }},
    {"--end-string", "LIST", "The same behind the program.",
     [](Options& o, const char* text) { return read_sequence(text, &o.end); }},
    {"--continuous", nullptr,
     "The program comes again and again; FILE takes all of it, and it may stop anywhere.",
     [](Options& o, const char*) { return o.continuous = true; }},
};

constexpr Entry LINE_ENTRIES[] = {
    {"--link", "PATH", "Makes PATH a link to the pty, and takes it away at the end.",
     [](Options& o, const char* text) { return !(o.link = text).empty(); }},
    {"--rate", "BITS",
     "Bits a second: the speed of a device (default 9600), and how fast --send goes (default for a pty: as "
     "fast "
     "as it is taken).",
     [](Options& o, const char* text) { return read_number(text, 50, 4000000, &o.rate); }},
    {"--data-bits", "N", "7 or 8. Default 7 with iso, else 8.",
     [](Options& o, const char* text) { return read_number(text, 7, 8, &o.data_bits); }},
    {"--parity", "NAME", "none, even or odd. Default even with iso, else none.",
     [](Options& o, const char* text) { return o.parity_given = read_choice(PARITIES, text, &o.parity); }},
    {"--stop-bits", "N", "1 or 2. Default 1.",
     [](Options& o, const char* text) { return read_number(text, 1, 2, &o.stop_bits); }},
    {"--handshake", "NAME",
     "software, hardware or none. With software, --send stops at XOFF and goes on at XON. Default software.",
     [](Options& o, const char* text) { return read_choice(HANDSHAKES, text, &o.handshake); }},
};

constexpr Entry TIME_ENTRIES[] = {
    {"--dc1-after", "MS",
     "Asks for the program with DC1, MS milliseconds after the other side has opened the pty (after the "
     "start, "
     "on a device), and again each second until it comes.",
     [](Options& o, const char* text) { return read_ms(text, &o.dc1_after); }},
    {"--start-after", "MS", "The same for the first byte of --send. Default 250.",
     [](Options& o, const char* text) { return read_ms(text, &o.start_after); }},
    {"--start-key", nullptr,
     "DC1 or --send wait for Enter on standard input instead, once. Pressed before the other side has opened "
     "the pty, it counts from the opening.",
     [](Options& o, const char*) { return o.start_key = true; }},
    {"--ack-delay", "MS", "Answers a block MS milliseconds after its end. Default 0.",
     [](Options& o, const char* text) { return read_ms(text, &o.ack_delay); }},
    {"--idle", "MS", "Silence that ends the run once bytes have come. Default 5000.",
     [](Options& o, const char* text) { return read_ms(text, &o.idle); }},
    {"--patience", "MS", "How long to wait for the first byte. Default 0, for ever.",
     [](Options& o, const char* text) { return read_ms(text, &o.patience); }},
};

constexpr Entry TROUBLE_ENTRIES[] = {
    {"--xoff-every", "N", "Sends XOFF behind each N bytes that come, and XON later.",
     [](Options& o, const char* text) { return read_bytes(text, 1, &o.xoff_every); }},
    {"--xoff-for", "MS", "How much later. Default 100.",
     [](Options& o, const char* text) { return read_ms(text, &o.xoff_for); }},
    {"--xoff-char", "N", "19 or 147. Default 19.",
     [](Options& o, const char* text) {
         return read_number(text, 19, 147, &o.xoff_char) && (o.xoff_char == 19 || o.xoff_char == 147);
     }},
    {"--overrun", "N", "More than N bytes behind an XOFF are a fault. Default: none is.",
     [](Options& o, const char* text) { return read_bytes(text, 0, &o.overrun); }},
    {"--drop-ack", "N", "Leaves out the N-th answer.",
     [](Options& o, const char* text) { return read_bytes(text, 1, &o.drop_ack); }},
    {"--hang-up-after", "N",
     "Closes the line behind N bytes, as an unplugged cable does; with --receive behind at least 1.",
     [](Options& o, const char* text) { return read_bytes(text, 0, &o.hang_up_after); }},
    {"--log", "FILE",
     "Writes each piece of the conversation with its time, direction and the names of control characters. - "
     "is "
     "standard error.",
     [](Options& o, const char* text) { return !(o.log = text).empty(); }},
};

constexpr Section SECTIONS[] = {
    {"The program", PROGRAM_ENTRIES, std::size(PROGRAM_ENTRIES)},
    {"The line", LINE_ENTRIES, std::size(LINE_ENTRIES)},
    {"When it acts", TIME_ENTRIES, std::size(TIME_ENTRIES)},
    {"Trouble, and a record of it", TROUBLE_ENTRIES, std::size(TROUBLE_ENTRIES)},
};

const Entry* find_entry(const char* name) {
    for (const Section& section : SECTIONS) {
        for (int i = 0; i < section.count; i++) {
            if (std::strcmp(section.entries[i].name, name) == 0)
                return &section.entries[i];
        }
    }
    return nullptr;
}

// Breaks a text into indented lines.
std::string wrapped(std::string_view text) {
    constexpr std::size_t WIDTH = 88;
    constexpr std::string_view INDENT = "            ";
    std::string lines;
    while (!text.empty()) {
        std::size_t length = text.size();
        if (length > WIDTH)
            length = text.rfind(' ', WIDTH);
        lines.append(INDENT).append(text.substr(0, length)).append("\n");
        text.remove_prefix(length < text.size() ? length + 1 : length);
    }
    return lines;
}

// ---- Rules between options ---------------------------------------------------------------------------

constexpr std::size_t LONGEST_UNMARKED_END = 100;  // characters

// EIA has no code for the characters that frame a block, so some streams cannot be taken apart again.
std::string eia_trouble(const Options& o) {
    const bool blocks = o.protocol == Protocol::HEIDENHAIN || o.protocol == Protocol::BRIDGEPORT;
    if (o.code != Code::EIA || !blocks)
        return "";
    if (o.continuous)
        return "in EIA nothing marks the end of a program in blocks: --continuous cannot be checked";
    if (o.end.size() > LONGEST_UNMARKED_END)
        return "in EIA an end string of more than 100 characters cannot be told from a program in blocks";
    if (o.protocol == Protocol::HEIDENHAIN && o.end.find('\n') != std::string::npos)
        return "in EIA a line feed in the end string cannot be told from the end of a HEIDENHAIN block";
    return "";
}

std::string trouble_with(const Options& o) {
    if (o.receive.empty() == o.send.empty())
        return "one of --receive FILE and --send FILE is needed";
    if (!o.send.empty() && (o.continuous || o.xoff_every != 0 || o.drop_ack != 0 || o.dc1_after != NOT_GIVEN))
        return "--continuous, --xoff-every, --drop-ack and --dc1-after go with --receive";
    if (!o.receive.empty() && o.hang_up_after == 0)
        return "with --receive, --hang-up-after needs at least 1 byte";
    if (!o.receive.empty() && o.start_key && o.dc1_after == NOT_GIVEN)
        return "with --receive, --start-key goes with --dc1-after";
    if (!o.device.empty() && !o.link.empty())
        return "--link is for the pty: the device has a name";
    return eia_trouble(o);
}

void fill_in(Options& o, bool line_end_given) {
    if (!line_end_given && o.code == Code::EIA)
        o.line_end = LineEnd::LF;
    if (o.code == Code::BINARY)
        o.line_end = LineEnd::NONE;
    if (!o.device.empty() && o.rate == NOT_GIVEN)
        o.rate = 9600;
    if (o.data_bits == NOT_GIVEN)
        o.data_bits = o.code == Code::ISO ? 7 : 8;
    if (!o.parity_given && o.code == Code::ISO)
        o.parity = Parity::EVEN;
    if (o.stop_bits == NOT_GIVEN)
        o.stop_bits = 1;
}

}  // namespace

Wish read_options(int count, char** arguments, Options* options, std::string* reason) {
    bool line_end_given = false;
    for (int i = 1; i < count; i++) {
        const char* argument = arguments[i];
        if (std::strcmp(argument, "--help") == 0)
            return Wish::HELP;
        const Entry* entry = find_entry(argument);
        if (entry == nullptr && argument[0] != '-' && options->device.empty()) {
            options->device = argument;
            continue;
        }
        const char* value = "";
        if (entry != nullptr && entry->argument != nullptr)
            value = ++i < count ? arguments[i] : nullptr;
        if (entry == nullptr || value == nullptr || !entry->take(*options, value)) {
            *reason = entry == nullptr   ? std::string("what is '") + argument + "'?"
                      : value == nullptr ? std::string(argument) + " needs a value"
                                         : std::string(argument) + " cannot be '" + value + "'";
            return Wish::REFUSED;
        }
        line_end_given = line_end_given || std::strcmp(argument, "--eob") == 0;
    }
    fill_in(*options, line_end_given);
    *reason = trouble_with(*options);
    return reason->empty() ? Wish::RUN : Wish::REFUSED;
}

std::string help_text() {
    std::string text = R"(control-simulator: plays a machine control on a serial line.

Use
    control-simulator --receive FILE [OPTION]... [DEVICE]
    control-simulator --send FILE [OPTION]... [DEVICE]

Without DEVICE it makes a pty, prints its name and waits for a program that opens it. With DEVICE
(/dev/ttyUSB0) it opens that serial line for itself alone. One run is one program; it ends when
the program is complete and the other side has closed the pty, or when the line is silent.
)";
    for (const Section& section : SECTIONS) {
        text += std::string("\n") + section.title + "\n";
        for (int i = 0; i < section.count; i++) {
            const Entry& entry = section.entries[i];
            text += std::string("    ") + entry.name;
            if (entry.argument != nullptr)
                text += std::string(" ") + entry.argument;
            text += "\n" + wrapped(entry.help);
        }
    }
    text += R"(
What is checked on receiving
    The start string and the control characters in front, every block check, the length of every
    block, the characters behind the last block, whole line ends, bytes that the code does not know,
    and that nothing comes behind the end. A block with a wrong check is answered all the same, so
    that the rest is checked too. In EIA most framing characters have no code and are not on the
    line: then a BRIDGEPORT block ends behind 251 characters, a HEIDENHAIN check byte is there only
    if it has a code, and the program ends when the line is closed or silent. Characters that
    EIA does not know are lost on the way, and block checks over them do not fit.

Exit code
    0   all was well (a hang-up that was asked for too)
    1   a fault on the line: the report on standard output tells how many and the first one
    2   the command line makes no sense
    3   the line or a file could not be opened, read or written

Examples
    control-simulator --protocol heidenhain --receive out.nc --link ./machine
    control-simulator --send part.nc --code eia --rate 2400 /dev/ttyUSB0
    control-simulator --receive out.nc --xoff-every 200 --xoff-for 50 --overrun 64 --log -
)";
    return text;
}

}  // namespace simulator
