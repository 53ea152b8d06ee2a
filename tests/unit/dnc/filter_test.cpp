// The wire forms and the rules of the filters, as data.

#include <random>

#include "unit/dnc/filter_fixture.h"

namespace hexlane {
namespace {

using namespace std::string_literals;

struct Setting {
    Field field;
    int value;
};

TEST_F(FilterTest, CompressionFollowsItsRules) {
    struct Case {
        const char* label;
        std::vector<Setting> settings;
        std::string file;
        std::string line;
    };
    const Setting comments = {Field::COMPRESS_COMMENTS, 1};
    const Setting numbers = {Field::COMPRESS_LINE_NUMBERS, 1};
    const Setting spaces = {Field::COMPRESS_SPACES, 1};
    const Setting tabs = {Field::COMPRESS_TABS, 1};
    const Setting character = {Field::COMPRESS_CHARACTER_ON, 1};
    const Case cases[] = {
        {"nothing on", {}, "N1 (A)\t\r\n", "N1 (A)\t\r\n"},
        {"numbers and comments", {comments, numbers}, "N100 G1 X5 (FEED)\r\n", " G1 X5 \r\n"},
        {"a line that is a comment", {comments}, "A\r\n(SETUP)\r\nB\r\n", "A\r\nB\r\n"},
        {"a comment behind text", {comments}, "G1 (A)\r\nB\r\n", "G1 \r\nB\r\n"},
        {"an open comment swallows the line end", {spaces}, "A (B\r\nC\r\n", "A(BC\r\n"},
        {"numbers anywhere", {numbers}, "G1 N5 X1\r\nn7\r\n", "G1  X1\r\nn7\r\n"},
        {"the number ends at what is not looked at again", {numbers, comments}, "N10(A)\r\n", "(A)\r\n"},
        {"an N in a comment stays", {numbers}, "(N5) N6X\r\n", "(N5) X\r\n"},
        {"spaces and tabs", {spaces, tabs}, "G1 \tX 5\r\n", "G1X5\r\n"},
        {"a character", {character, {Field::COMPRESS_CHARACTER, '/'}}, "/N1 (/)\r\n", "N1 ()\r\n"},
        {"a blank character drops nothing",
         {character, {Field::COMPRESS_CHARACTER, -1}},
         "\xFFN1\r\n",
         "\xFFN1\r\n"},
        {"LF", {{Field::EOB_CONVERSION, 1}}, "A\r\nB\nC\r\n", "A\nBC\n"},
        {"CR", {{Field::EOB_CONVERSION, 2}}, "A\r\nB\r\n", "A\rB\r"},
        {"LF CR CR", {{Field::EOB_CONVERSION, 4}}, "A\r\n", "A\n\r\r"},
        {"$ CR LF", {{Field::EOB_CONVERSION, 5}}, "A\r\n", "A$\r\n"},
        {"EIA", {{Field::EOB_CONVERSION, 1}, {Field::DATA_TYPE, DATA_EIA}}, "x3:?\r\n", "\x37\x13\x46\x80"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.label);
        SetUp();
        for (const Setting& setting : c.settings)
            set_field(&machine(), setting.field, setting.value);
        EXPECT_EQ(send(c.file), c.line);
        SetUp();
        for (const Setting& setting : c.settings)
            set_field(&machine(), setting.field, setting.value);
        EXPECT_EQ(send(c.file, true), c.line) << "line by line";
    }
}

TEST_F(FilterTest, EachProtocolFramesTheFile) {
    machine().protocol = PROTOCOL_HEIDENHAIN;
    EXPECT_EQ(send_in_stretches("N1\r\nN2\r\n"),
              (std::vector<std::string>{"\x06\x02N1\r\n\x17\x6D\x02", "N2\r\n\x17\x6E\x02\x0C\x03", ""}));
    // A check that would be a control character is made printable by a space.
    SetUp();
    machine().protocol = PROTOCOL_HEIDENHAIN;
    EXPECT_EQ(send_in_stretches("\r\n")[0], "\x06\x02\r\n \x17\x32\x02\x0C\x03");
    SetUp();
    machine().protocol = PROTOCOL_HEIDENHAIN;
    machine().eob_conversion = 5;
    EXPECT_EQ(send_in_stretches("A\r\n"), (std::vector<std::string>{"\x06\x02"
                                                                    "A$\r\n\x17\x77\x02\x0C\x03"}));
    SetUp();
    machine().protocol = PROTOCOL_PHILLIPS;
    EXPECT_EQ(send("A\r\n"), "A\r\n\x04");

    SetUp();
    machine().protocol = PROTOCOL_BRIDGEPORT;
    const std::string block(BRIDGEPORT_BLOCK, 'A');
    EXPECT_EQ(send_in_stretches(block + "BC"), (std::vector<std::string>{block + "\x17", "BC\x17\x01\x04"}));
    SetUp();
    machine().protocol = PROTOCOL_BRIDGEPORT;
    EXPECT_EQ(send_in_stretches(block), (std::vector<std::string>{block + "\x17\x17\x00\x04"s, ""}));
    // What an end of block still brings behind a block's end belongs to the next block.
    SetUp();
    machine().protocol = PROTOCOL_BRIDGEPORT;
    machine().eob_conversion = 4;
    EXPECT_EQ(send_in_stretches(block.substr(1) + "\r\nB"),
              (std::vector<std::string>{block.substr(1) + "\n\x17\r\r",
                                        "B\x17"s + static_cast<char>('B') + "\x04"}));
}

TEST_F(FilterTest, StartAndEndSequencesStandAroundTheFile) {
    machine().start_char = '%';
    machine().start_char_count = 3;
    machine().end_char = 0;
    machine().end_char_count = 2;
    machine().start_string[0] = 1;
    machine().start_string[2] = 3;
    machine().end_string[7] = 'E';
    EXPECT_EQ(send("A\r\n"), "%%%\x01\x03"
                             "A\r\nE\0\0"s);
    machine().protocol = PROTOCOL_HEIDENHAIN;
    EXPECT_EQ(send("A\r\n").substr(0, 9), "%%%\x01\x03\x06\x02"
                                          "A\r");
}

// What goes out in runs goes out as it would byte by byte, whatever the byte, and as much of it in a fill.
TEST_F(FilterTest, PlainFilesGoOutByteForByteInFillsOfOneSize) {
    std::string file = "\r\n\r\n";
    for (int i = 0; file.size() < 25'000; i++)
        file += static_cast<char>(i * i / 7 + i);
    for (const int dropped : {-1, 0, int{'5'}, int{'\r'}, 127}) {
        for (const int conversion : {EOB_NO_CONVERSION, EOB_LF}) {
            SCOPED_TRACE(std::to_string(dropped) + " " + std::to_string(conversion));
            SetUp();
            machine().compress_character_on = dropped >= 0;
            machine().compress_character = static_cast<int8_t>(dropped);
            machine().eob_conversion = conversion;
            std::string expected;
            for (const char c : file) {
                const bool line_end = conversion == EOB_LF && (c == '\r' || c == '\n');
                if ((dropped >= 0 && c == dropped) || (line_end && c == '\n'))
                    continue;
                expected += line_end ? '\n' : c;
            }
            EXPECT_EQ(send(file), expected);
        }
    }
    SetUp();
    port_apply_machine(0, machine());
    TransferState& t = transfer_state[0];
    std::memset(transfer_buffers[0].file_buffer, 'X', FILE_BUFFER_SIZE);
    transfer_buffers[0].file_buffer[FILL_LIMIT - 1] = '\n';
    t.file_count = FILE_BUFFER_SIZE;
    t.total_bytes = FILL_LIMIT + 10;
    EXPECT_EQ(fill_from_buffer(0), 0);
    EXPECT_EQ(t.out_count, FILL_LIMIT);
    EXPECT_FALSE(t.line_has_output) << "a machine that is chosen now may leave comments out";
    EXPECT_EQ(t.source_count, FILL_LIMIT);
    EXPECT_EQ(fill_from_buffer(0), 1) << "the file ends in the middle of a run";
    EXPECT_EQ(t.out_count, 10);
    EXPECT_EQ(t.in_index, FILL_LIMIT + 10);
}

TEST_F(FilterTest, LongSequencesAreCarriedOverWholeAndInOrder) {
    for (const int protocol :
         {PROTOCOL_GENERAL, PROTOCOL_BRIDGEPORT, PROTOCOL_HEIDENHAIN, PROTOCOL_PHILLIPS}) {
        SCOPED_TRACE(protocol);
        std::string file;
        for (int row = 0; row < 1200; row++)
            file += "\r\n";
        auto set_up = [&](int count) {
            SetUp();
            machine().protocol = protocol;
            machine().eob_conversion = 5;
            machine().start_char = 'S';
            machine().start_char_count = count;
            machine().end_char = 'E';
            machine().end_char_count = count;
        };
        set_up(1);
        const std::string short_form = send(file);
        set_up(1000);
        const std::string long_form = send(file);
        const std::size_t end = short_form.rfind('E');
        EXPECT_EQ(long_form, std::string(999, 'S') + short_form.substr(0, end) + std::string(999, 'E') +
                                 short_form.substr(end));
    }
}

TEST_F(FilterTest, AStartBehindTheLastByteSendsTheSequencesAlone) {
    machine().start_char = 'S';
    machine().start_char_count = 1;
    machine().protocol = PROTOCOL_PHILLIPS;
    EXPECT_EQ(send(""), "S\x04");
}

TEST_F(FilterTest, SettingsOutOfTheirLimitsCountAsTheirDefaults) {
    for (int field = 0; field < FIELD_COUNT; field++) {
        if (MACHINE_FIELDS[field].form == FieldForm::INT16)
            set_field(&machine(), static_cast<Field>(field), 31000);
        if (MACHINE_FIELDS[field].form == FieldForm::UNSIGNED8)
            set_field(&machine(), static_cast<Field>(field), 77);
    }
    machine().start_char_count = -5;
    machine().compress_character = 'A';
    EXPECT_EQ(send("N1 A\t(B)\r\n"), "N1 A\t(B)\r\n");
    EXPECT_EQ(transfer_state[0].xoff_char, XOFF_DEFAULT);
    EXPECT_EQ(port_slot[0].baud_rate, 9600U);
    EXPECT_EQ(field_as_read(machine(), Field::BAUD_INDEX), 31000);
}

TEST_F(FilterTest, ReceivedBytesFollowTheConversion) {
    struct Case {
        int data_type;
        int conversion;
        std::string line;
        std::string file;
    };
    const Case cases[] = {
        {DATA_ASCII, 0, "A\r\n\0B\n"s, "A\r\nB\n"},
        {DATA_ASCII, 1, "A\nB\r\n", "A\r\nB\r\r\n"},
        {DATA_ASCII, 2, "A\rB\n", "A\r\nB\n"},
        {DATA_ASCII, 3, "A\n\rB\n\r", "A\r\nB\r\n"},
        {DATA_ASCII, 5, "A$\r\nB$", "A\r\nB\r\n"},
        {DATA_ASCII, 6, "A\0\r\n"s, "A\r\n"},
        {DATA_BINARY, 6, "A\0\r\n"s, "A\0\r\n"s},
        {DATA_EIA, 1, "\x37\x13\x93\x80\x46\x11\xEE", "X3\x13\r\nO"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.data_type) + " " + std::to_string(c.conversion));
        SetUp();
        machine().data_type = c.data_type;
        machine().eob_conversion = c.conversion;
        EXPECT_EQ(receive(c.line), c.file);
    }
}

TEST_F(FilterTest, BlocksCarryEveryByteOfRandomFiles) {
    std::mt19937 random(3);
    for (int round = 0; round < 60; round++) {
        SetUp();
        std::string file;
        const auto length = 1 + random() % 30000;
        while (file.size() < length) {
            const auto pick = random() % 30;
            file += pick == 0 ? "\r\n" : std::string(1, static_cast<char>(' ' + random() % 95));
        }
        machine().protocol = PROTOCOL_BRIDGEPORT;
        std::string blocks;
        const std::vector<std::string> stretches = send_in_stretches(file, round % 2 == 0);
        for (std::size_t i = 0; i + 1 < stretches.size(); i++) {
            ASSERT_EQ(stretches[i].size(), static_cast<std::size_t>(BRIDGEPORT_BLOCK) + 1);
            ASSERT_EQ(stretches[i].back(), '\x17');
            blocks += stretches[i].substr(0, BRIDGEPORT_BLOCK);
        }
        const std::string& last = stretches.back();
        ASSERT_GE(last.size(), 3U);
        blocks += last.substr(0, last.size() - 3);
        ASSERT_EQ(blocks, file);
        char check = 0;
        for (const char c : last.substr(0, last.size() - 3))
            check = static_cast<char>(check ^ c);
        EXPECT_EQ(last.substr(last.size() - 3), std::string({'\x17', check, '\x04'}));
    }
}

}  // namespace
}  // namespace hexlane
