// The machine table and its file, and the rules that tie settings together.

#include <cstring>
#include <filesystem>

#include "dnc/crc32.h"
#include "dnc/machine_fields.h"
#include "dnc/machine_table.h"
#include "shell/directories.h"
#include "support/program_test.h"

namespace hexlane {
namespace {

class MachineTest : public ProgramTest {
protected:
    void SetUp() override {
        ProgramTest::SetUp();
        start("");
        file = directories.parameter_file_path;
    }
    std::string file;
};

TEST_F(MachineTest, AMissingFileIsMadeWithDefaults) {
    std::memset(static_cast<void*>(machine_table), 0x55, sizeof machine_table);
    std::filesystem::remove(file);
    ASSERT_EQ(load_machine_table(), TableState::MADE);
    const std::string bytes = read_bytes(file);
    ASSERT_EQ(bytes.size(), 17728U);
    EXPECT_STREQ(machine_table[5].name, "Machine 6");
    EXPECT_EQ(bytes.substr(5 * 1108, 9), "Machine 6");
    const std::string record = bytes.substr(5 * 1108, 1108);
    EXPECT_EQ(record.substr(36, 14), std::string("\0\0\x06\0\x02\0\0\0\0\0\x01\0\0\0", 14));
    EXPECT_EQ(record.substr(75, 9), std::string("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\0", 9));
    EXPECT_EQ(record.substr(104, 9), std::string("\x03\0\0\0\0\0\0\0\x13", 9));
}

TEST_F(MachineTest, AFileIsReadAsFarAsItGoesAndKeptAsItIs) {
    std::string bytes(20000, '\x21');
    bytes[102] = 7;
    bytes[103] = 0;
    bytes[112] = '\x93';
    write_bytes(file, bytes);
    ASSERT_EQ(load_machine_table(), TableState::READ);
    EXPECT_EQ(machine_table[0].xoff_char, XOFF_EIA_ALTERNATE);
    EXPECT_EQ(machine_table[1].xoff_char, XOFF_DEFAULT);
    EXPECT_EQ(slot_machine[1], 7);
    ASSERT_TRUE(save_machine_table());
    std::string expected = bytes.substr(0, 17728);
    for (int i = 1; i < MACHINE_COUNT; i++)
        expected[static_cast<std::size_t>(i * 1108 + 112)] = '\x13';
    for (int i = 0; i < MACHINE_COUNT; i++)
        expected[static_cast<std::size_t>(i * 1108 + 35)] = '\0';  // a name ends in its field
    EXPECT_EQ(read_bytes(file), expected);

    write_bytes(file, std::string(3000, '\x22'));
    ASSERT_EQ(load_machine_table(), TableState::SHORT);
    EXPECT_EQ(machine_table[2].reserved_113[784 - 113 - 1], 0x22);
    EXPECT_EQ(machine_table[2].reserved_113[784 - 113], 0) << "of the default, not of the file before";
    EXPECT_STREQ(machine_table[3].name, "Machine 4");
    EXPECT_EQ(slot_machine[0], 0);  // 0x2222 is no machine
}

TEST(Crc32, IsThePublishedOne) {
    EXPECT_EQ(crc32(crc32(0, "12345", 5), "6789", 4), 0xCBF43926U);
}

TEST(Crc32, IsTheSameInPiecesOfAnySize) {
    uint8_t bytes[300];
    uint32_t by_bits = ~0U;
    for (int i = 0; i < 300; i++) {
        bytes[i] = static_cast<uint8_t>(i * i + 3 * i);
        by_bits ^= bytes[i];
        for (int bit = 0; bit < 8; bit++)
            by_bits = (by_bits & 1) != 0 ? by_bits >> 1 ^ 0xEDB88320 : by_bits >> 1;
    }
    for (std::size_t first = 0; first <= sizeof bytes; first++) {
        const uint32_t before = crc32(0, bytes, first);
        EXPECT_EQ(crc32(before, bytes + first, sizeof bytes - first), ~by_bits) << first;
    }
}

}  // namespace
}  // namespace hexlane
