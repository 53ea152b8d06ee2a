// store_limits.h: every limit of the document store in one place. The tiny values are for a second build of
// the same sources in the tests, so that ten-row files cross every boundary.
#pragma once

#include <cstdint>

namespace hexlane {

constexpr int ROW_BUFFER_SIZE = 256;  // bytes of row_text, the NUL included
constexpr int ROW_FETCH_MAX = 254;    // characters that a fetch brings into row_text
constexpr int ROW_EDIT_MAX = 250;     // longest row that typing in insert mode or a join can make
constexpr int ROW_PASTE_MAX = 255;    // longest row that a paste inside a row can make

constexpr int64_t MAX_FILE_SIZE = 2147483647;  // bytes of a document; positions are signed 32-bit
constexpr int NULL_TEST_BYTES = 2000;          // how far a load looks for NUL bytes
constexpr int NULL_TEST_LIMIT = 5;             // more than this many raise the question

#ifdef HEXLANE_TINY_LIMITS
constexpr int MAX_SEGMENTS = 60;
constexpr int ROWS_PER_SEGMENT = 5;
constexpr int64_t CHANGE_FILE_LIMIT = 1 << 20;
constexpr int LOAD_BLOCK_SIZE = 7;    // bytes
constexpr int COPY_BUFFER_SIZE = 11;  // bytes
constexpr int RUN_FLUSH_LENGTH = 16;  // bytes
constexpr int SEGMENT_WINDOW_ROWS = 3;
constexpr int ROW_COUNT_STEP = 4;
#else
constexpr int MAX_SEGMENTS = 1000;
constexpr int ROWS_PER_SEGMENT = 5000;
constexpr int64_t CHANGE_FILE_LIMIT = MAX_FILE_SIZE;  // bytes
constexpr int LOAD_BLOCK_SIZE = 1 << 18;              // bytes read at a time
constexpr int COPY_BUFFER_SIZE = 1 << 16;             // bytes, shared by all copying of the store
constexpr int RUN_FLUSH_LENGTH = 1 << 22;  // bytes; a run of unchanged rows is copied at this length
constexpr int SEGMENT_WINDOW_ROWS = 2048;  // records of the open segment kept in memory
constexpr int ROW_COUNT_STEP = 5000;       // rows between two shows of the row count
#endif

constexpr int32_t MAX_ROWS = MAX_SEGMENTS * ROWS_PER_SEGMENT;

}  // namespace hexlane
