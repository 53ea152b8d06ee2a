// store_fixture.h: what the tests of the store share: texts of files, and the check of the table's
// invariants.
#pragma once

#include <cstring>
#include <filesystem>
#include <string>

#include "shell/child.h"
#include "shell/directories.h"
#include "store/row_record_format.h"
#include "store/row_records.h"
#include "support/program_test.h"

namespace hexlane {

inline std::string repeated(char c, int count) {
    return std::string(static_cast<std::size_t>(count), c);
}

// Every segment's rows lie in its file, those of a shared file in the order of the table, and first_row is
// the sum of the rows before it.
inline void check_table() {
    int64_t rows = 0;
    int64_t shared_end = 0;  // of the records met so far in the file that segments share
    for (int segment = 0; segment < child[0].segment_count; segment++) {
        ASSERT_EQ(segment_table[segment].first_row, rows) << "segment " << segment;
        const std::string path = std::string(directories.temp_dir) + "/" + segment_table[segment].file_name;
        ASSERT_NE(segment_table[segment].file_name[0], '\0') << "segment " << segment;
        const auto size = static_cast<int64_t>(std::filesystem::file_size(path));
        const SegmentEntry& entry = segment_table[segment];
        const int64_t end = entry.base + static_cast<int64_t>(segment_rows(segment)) * ROW_RECORD_SIZE;
        if (entry.shares_file) {
            ASSERT_LE(end, size) << "segment " << segment;
            ASSERT_GE(entry.base, shared_end) << "segment " << segment;
            shared_end = end;
        } else {
            ASSERT_EQ(entry.base, 0) << "segment " << segment;
            ASSERT_LE(end, size) << "segment " << segment;  // a deletion may pass over its last records
        }
        rows += segment_rows(segment);
    }
    ASSERT_EQ(rows, child[0].last_file_row + 1);
}

}  // namespace hexlane
