// Bytes as the terminal shows them, and what it makes of typed text.

#include "terminal/byte_text.h"

#include "dnc/eia_code.h"
#include "terminal/line_counters.h"

#include <gtest/gtest.h>

namespace hexlane {
namespace {

constexpr TerminalCode CHARACTERS = {false};
constexpr TerminalCode EIA = {true};

using namespace std::string_literals;

TEST(NamedText, ControlCharactersHaveTheirNamesAndALineFeedEndsTheRow) {
    EXPECT_EQ(named_text(CHARACTERS, "\x02N1 G0\r\n\x17\x06"s), "<STX>N1 G0<CR><LF>\n<ETB><ACK>");
    EXPECT_EQ(named_text(CHARACTERS, "\0\x7F\x80\xFF"s), "<NUL><DEL><80><FF>");
}

TEST(NamedText, EiaBytesAreShownAsTheCharactersThatTheyMean) {
    const char bytes[] = {static_cast<char>(EIA_CODE.send['G']), static_cast<char>(EIA_CODE.send['1']),
                          static_cast<char>(EIA_CODE.send['\n'])};
    EXPECT_EQ(named_text(EIA, std::string(bytes, 3)), "G1<LF>\n");
    EXPECT_EQ(EIA_CODE.receive[0xFF], 0) << "no character has it";
    EXPECT_EQ(named_text(EIA, "\xFF"), "<FF>");
}

TEST(HexText, ARowHasSixteenBytesAlsoWhenItIsContinued) {
    EXPECT_EQ(hex_text("\x01\xAB", 0), "01 AB ");
    EXPECT_EQ(hex_text("\x01\x02\x03", 14), "01 02\n03 ");
}

TEST(LineBytes, CharactersThatTheCodeHasNotAreCounted) {
    int lost = -1;
    EXPECT_EQ(line_bytes(CHARACTERS, "G1 X5", &lost), "G1 X5");
    EXPECT_EQ(lost, 0);
    EXPECT_EQ(line_bytes(EIA, "G@", &lost), std::string(1, static_cast<char>(EIA_CODE.send['G'])));
    EXPECT_EQ(lost, 1);
}

TEST(CountersText, TellsWhatWaitsAndWhatWentWrong) {
    LineCounters counters = {};
    counters.received = 12;
    counters.sent = 4;
    EXPECT_EQ(counters_text(counters), "received: 12   sent: 4   port closed");
    counters.open = true;
    EXPECT_EQ(counters_text(counters), "received: 12   sent: 4   errors: not counted by this line");
    counters.counts_errors = true;
    counters.errors = {3, 2, 1};
    counters.waiting = 9;
    EXPECT_EQ(counters_text(counters),
              "received: 12   sent: 4, 9 waiting   errors: 3 parity, 2 framing, 1 overrun");
    counters.held = true;
    EXPECT_EQ(counters_text(counters),
              "received: 12   sent: 4, 9 held by the machine   errors: 3 parity, 2 framing, 1 overrun");
}

}  // namespace
}  // namespace hexlane
