#include "store/row_scan.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace hexlane {
namespace {

TEST(RowScan, FindsEveryLineFeedAndNulAtAnyPlace) {
    std::mt19937 random(7);
    for (int length : {0, 1, 15, 16, 63, 64, 65, 127, 128, 500}) {
        for (int round = 0; round < 50; round++) {
            std::vector<uint8_t> data(static_cast<std::size_t>(length) + 1);
            for (uint8_t& byte : data)  // neighbours of the two codes, and bytes with the high bit set
                byte = "\n\0\x01\x09\x0b\x0d\x80\x8a\xff"[random() % 9];
            std::vector<int32_t> expected;
            for (int i = 0; i < length; i++) {
                if (data[static_cast<std::size_t>(i)] == '\n' || data[static_cast<std::size_t>(i)] == 0)
                    expected.push_back(i);
            }
            std::vector<int32_t> found(static_cast<std::size_t>(length) + 1);
            found.resize(static_cast<std::size_t>(find_row_ends(data.data(), length, found.data())));
            ASSERT_EQ(found, expected) << "length " << length;
        }
    }
}

}  // namespace
}  // namespace hexlane
