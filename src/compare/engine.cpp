// engine.cpp: the alignment of two files: a greedy look-ahead that takes the first way back into step.
//
// The rows that are not resolved yet are numbered from 0 on each side; `pending` rows of each have found no
// partner among each other. A turn widens that window by one row of each side: the new right row is looked
// for among the left rows (so a reading with extra right rows wins), then the new left row among the right
// rows, always from the oldest row on. What a match leaves in front of it pairs off as modified as far as
// both sides have rows, and only the rest is inserted or deleted. When the window passes the look-ahead, its
// oldest pair is given up as modified.
//
// A blank row alone does not bring the sides back into step: it counts as equal only behind an equal row.

#include <algorithm>

#include "compare/compare.h"
#include "compare/record_list.h"
#include "compare/row_pair.h"
#include "compare/sides_internal.h"
#include "platform/desktop.h"
#include "platform/text.h"

namespace hexlane {

using namespace platform;

Compare compare;

namespace {

constexpr int32_t RING_ROWS = 128;  // a power of two, above LONGEST_LOOK_AHEAD + 3
static_assert(RING_ROWS > LONGEST_LOOK_AHEAD + 3);

// A side's rows from the first one that is not resolved on, as far as they have been looked up.
struct RowRing {
    CompareSide* side;
    ByteWindow* window;
    FileRow rows[RING_ROWS];
    int32_t first;  // place of row 0
    int32_t held;
    int64_t next;  // where the row behind the last one that is held begins
};

RowRing left_rows;
RowRing right_rows;
bool previous_matched;  // the last compare that decided something found equal rows

CompareFault fault;
const char* fault_path;

// ---- Rows --------------------------------------------------------------------------------------------

void begin_rows(RowRing* ring, CompareSide* side, ByteWindow* window) {
    ring->side = side;
    ring->window = window;
    ring->first = 0;
    ring->held = 0;
    ring->next = 0;
}

const FileRow& row_at(RowRing* ring, int32_t number) {
    while (ring->held <= number) {
        const int64_t keep = ring->held > 0 ? ring->rows[ring->first].start : ring->next;
        FileRow& row = ring->rows[(ring->first + ring->held++) % RING_ROWS];
        row = row_from(ring->window, ring->next, keep, compare.ignore_spaces);
        ring->next = row.start + row.length;
    }
    return ring->rows[(ring->first + number) % RING_ROWS];
}

// The first `count` rows are resolved.
void drop_rows(RowRing* ring, int32_t count) {
    ring->first = (ring->first + count) % RING_ROWS;
    ring->held -= count;
}

// Where the first row that is not resolved begins.
int64_t front_of(const RowRing& ring) {
    return ring.held > 0 ? ring.rows[ring.first].start : ring.next;
}

// Goes on from another place, where a row begins.
void skip_to(RowRing* ring, int64_t start) {
    ring->held = 0;
    ring->next = start;
}

bool is_there(const FileRow& row) {
    return row.length > 0;
}

bool has_ended() {
    return compare.left.ended || compare.right.ended;
}

// A side has ended when its last row, or the place behind it, has been compared.
void note_end(const RowRing* ring, const FileRow& row) {
    if (row.start + row.length >= ring->side->size)
        ring->side->ended = true;
}

enum class Pair : uint8_t { DIFFERENT, EQUAL, BEHIND_BOTH_ENDS };

Pair compare_rows(int32_t left_number, int32_t right_number) {
    const FileRow& left = row_at(&left_rows, left_number);
    const FileRow& right = row_at(&right_rows, right_number);
    note_end(&left_rows, left);
    note_end(&right_rows, right);
    if (!is_there(left) && !is_there(right))
        return Pair::BEHIND_BOTH_ENDS;
    const bool ignore = compare.ignore_spaces;
    if (!rows_equal(left_rows.window, left, right_rows.window, right, ignore)) {
        previous_matched = false;
        return Pair::DIFFERENT;
    }
    if (!previous_matched && row_is_blank(left_rows.window, left, ignore))
        return Pair::DIFFERENT;
    previous_matched = true;
    return Pair::EQUAL;
}

// ---- Records -----------------------------------------------------------------------------------------

void count_kind(char kind) {
    switch (kind) {
    case SAME_ROWS:
        compare.matches++;
        break;
    case MODIFIED_ROWS:
        compare.mods++;
        break;
    case INSERTED_ROW:
        compare.inserts++;
        break;
    default:
        compare.deletes++;
    }
}

void put(char kind, int64_t left_offset, int64_t right_offset) {
    append_record({kind, static_cast<uint32_t>(left_offset), static_cast<uint32_t>(right_offset)});
    count_kind(kind);
}

void put_pair(char kind, int32_t left_number, int32_t right_number) {
    put(kind, row_at(&left_rows, left_number).start, row_at(&right_rows, right_number).start);
}

// ---- Turns -------------------------------------------------------------------------------------------

// A match of the left row `left` and the right row `right`: everything in front of it is resolved, and so is
// the match. A pair behind both ends resolves the rows in front of it and is no record itself.
void resolve(Pair match, int32_t left, int32_t right) {
    const int32_t pairs = std::min(left, right);
    for (int32_t i = 0; i < pairs; i++)
        put_pair(MODIFIED_ROWS, i, i);
    for (int32_t i = pairs; i < right; i++)
        put_pair(INSERTED_ROW, left, i);
    for (int32_t i = pairs; i < left; i++)
        put_pair(DELETED_ROW, i, right);
    if (match == Pair::EQUAL)
        put_pair(SAME_ROWS, left, right);
    if (match == Pair::EQUAL && compare.left.ended && compare.right.ended)
        count_kind(SAME_ROWS);
    drop_rows(&left_rows, left + 1);
    drop_rows(&right_rows, right + 1);
}

// Looks for the row `pending` of each side among the rows of the other. Gives whether the sides are in step
// again. Once a side has ended, only the right row is looked for.
bool find_partner(int32_t pending) {
    for (int32_t i = 0; i <= pending; i++) {
        const Pair pair = compare_rows(i, pending);
        if (pair != Pair::DIFFERENT) {
            resolve(pair, i, pending);
            return true;
        }
    }
    for (int32_t i = 0; i < pending && !has_ended(); i++) {
        const Pair pair = compare_rows(pending, i);
        if (pair != Pair::DIFFERENT) {
            resolve(pair, pending, i);
            return true;
        }
    }
    return false;
}

// A side has ended while rows 0 to `pending` of both have found no partner.
void give_up_all(int32_t pending) {
    if (compare.left.ended && compare.right.ended)
        count_kind(MODIFIED_ROWS);
    for (int32_t i = 0; i <= pending; i++)
        put_pair(MODIFIED_ROWS, i, i);
    drop_rows(&left_rows, pending + 1);
    drop_rows(&right_rows, pending + 1);
}

// From rows that differ to the next match, or to the end. Each turn serves a message, but for the first,
// whose message has been served.
//
// A pair that was found different once stays so: until a match nothing that decides about equality changes.
// So the window goes on where it was when its oldest pair is given up.
void find_way_back() {
    int32_t pending = 0;
    for (;;) {
        pending++;
        if (find_partner(pending))
            return;
        if (has_ended()) {
            give_up_all(pending);
            return;
        }
        if (pending > compare.look_ahead) {
            put_pair(MODIFIED_ROWS, 0, 0);
            drop_rows(&left_rows, 1);
            drop_rows(&right_rows, 1);
            pending--;
        }
        pump_one_message();
    }
}

// Takes the rows ahead that are equal byte for byte, as far as both windows show them; none is the last of
// its side. The next row's message has been served.
void take_equal_rows() {
    static int32_t ends[SAME_STRETCH];
    int64_t left = front_of(left_rows);
    int64_t right = front_of(right_rows);
    int32_t count = 0;
    int32_t taken = 0;
    do {
        count = equal_rows_ahead(left_rows.window, left, right_rows.window, right, ends);
        int32_t start = 0;
        for (taken = 0; taken < count && !has_ended(); taken++) {
            put(SAME_ROWS, left + start, right + start);
            start = ends[taken];
            pump_one_message();
        }
        left += start;
        right += start;
    } while (count > 0 && taken == count);
    if (left != front_of(left_rows)) {
        skip_to(&left_rows, left);
        skip_to(&right_rows, right);
    }
}

void align() {
    pump_one_message();
    for (;;) {
        if (previous_matched && !has_ended())
            take_equal_rows();
        const Pair pair = compare_rows(0, 0);
        if (pair == Pair::DIFFERENT)
            find_way_back();
        else
            resolve(pair, 0, 0);
        if (has_ended())
            return;
        pump_one_message();
    }
}

// The rows that one side has left when the other has ended.
void put_rest(RowRing* ring, char kind, int64_t other_end) {
    while (!ring->side->ended) {
        pump_one_message();
        const FileRow row = row_at(ring, 0);
        if (kind == DELETED_ROW)
            put(kind, row.start, other_end);
        else
            put(kind, other_end, row.start);
        ring->side->last_record++;
        note_end(ring, row);
        drop_rows(ring, 1);
    }
}

int fail(CompareFault what, const char* path) {
    fault = what;
    fault_path = path;
    return 0;
}

int open_side(CompareSide* side, ByteWindow* window) {
    side->ended = false;
    side->last_record = -1;
    side->file = file_open(side->path, FileAccess::READ);
    if (side->file == NO_FILE || !file_stamp(side->file, &side->stamp))
        return fail(CompareFault::NOT_OPENED, side->path);
    side->size = side->stamp.size;
    if (side->size > LARGEST_COMPARED_FILE)
        return fail(CompareFault::TOO_LARGE, side->path);
    open_window(window, side->file, side->size);
    return 1;
}

}  // namespace

void begin_compare(const char* left_path, const char* left_title, const char* right_path,
                   const char* right_title) {
    compare = Compare{};
    compare.left.file = NO_FILE;
    compare.right.file = NO_FILE;
    compare.look_ahead = DEFAULT_LOOK_AHEAD;
    compare.last_record = -1;
    copy_text(compare.left.path, PATH_SIZE, left_path);
    copy_text(compare.left.title, PATH_SIZE, left_title);
    copy_text(compare.right.path, PATH_SIZE, right_path);
    copy_text(compare.right.title, PATH_SIZE, right_title);
}

int run_compare() {
    fault = CompareFault::NONE;
    fault_path = nullptr;
    if (!open_record_list())
        return fail(CompareFault::NO_RECORDS, record_list_path());
    if (!open_side(&compare.left, &left_window) || !open_side(&compare.right, &right_window))
        return 0;
    compare.matches = compare.mods = compare.inserts = compare.deletes = 0;
    begin_rows(&left_rows, &compare.left, &left_window);
    begin_rows(&right_rows, &compare.right, &right_window);
    previous_matched = true;  // so that a blank first row of two equal files is equal
    align();
    compare.left.last_record = compare.right.last_record = record_count() - 1;
    put_rest(&left_rows, DELETED_ROW, compare.right.size);
    put_rest(&right_rows, INSERTED_ROW, compare.left.size);
    compare.last_record = record_count() - 1;
    compare.cut_short = front_of(left_rows) < compare.left.size || front_of(right_rows) < compare.right.size;
    return finish_record_list() ? 1 : fail(CompareFault::NO_RECORDS, record_list_path());
}

CompareFault compare_fault(const char** path) {
    *path = fault_path;
    return fault;
}

void stop_compare() {
    compare.left.ended = true;
    compare.right.ended = true;
}

}  // namespace hexlane
