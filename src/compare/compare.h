// compare.h: two files row by row as a list of records: the state of one compare, and its engine.
// The left side is what the user edits, the right side the file that it is set against. Both are read as raw
// bytes through small windows; a row ends behind its LF, the last one at the end of the file. The list lies
// in memory up to a limit and from there on in a temporary file, so that memory does not grow with the files.
// Relies on platform/files.h and, for the pump, platform/desktop.h. Main thread only.
#pragma once

#include "platform/files.h"

#include <cstdint>

namespace hexlane {

// What one record says of its rows.
constexpr char SAME_ROWS = 'S';
constexpr char MODIFIED_ROWS = 'M';  // they differ, and stand against each other
constexpr char INSERTED_ROW = 'I';   // only the right file has it; left_offset is that of the next left row
constexpr char DELETED_ROW = 'D';    // only the left file has it; right_offset is that of the next right row

struct CompareRecord {
    char kind;             // 0 for a record that could not be read
    uint32_t left_offset;  // byte of the left file where the row begins; its size when there is none any more
    uint32_t right_offset;  // the same of the right file
};

// How a compare stands:
//   READY -> DONE: the Compare button (start_compare_dialog)
//   DONE -> IDENTICAL: the run has found no difference (start_compare_dialog)
//   DONE -> READY: the run could not be finished, which has been told (start_compare_dialog)
//   any -> READY: the dialog opens (start_compare_dialog)
enum class CompareState : uint8_t { READY, DONE, IDENTICAL };

struct CompareSide {
    char path[platform::PATH_SIZE];
    char title[platform::PATH_SIZE];  // as the screens show it
    platform::FileHandle file;        // NO_FILE while it is not open
    int64_t size;                     // bytes, when the run began
    platform::FileStamp stamp;        // the same moment
    bool ended;                       // the walk has seen the last row, or the user has stopped it
    int64_t last_record;              // the last record that holds a row of this side, -1 for none
};

// One compare; wiped by begin_compare.
struct Compare {
    CompareSide left;
    CompareSide right;
    CompareState state;
    int32_t look_ahead;   // rows
    bool ignore_spaces;   // blanks and tabs do not count
    int64_t last_record;  // number of the last record, -1 when there is none
    // How often a record was given each kind. The last record is given its kind twice when both files end in
    // it.
    int64_t matches;
    int64_t mods;
    int64_t inserts;
    int64_t deletes;
    bool cut_short;         // the user has stopped the run in front of rows that were not compared
    bool disturbance_told;  // tell_disturbance has shown its box
};
extern Compare compare;

constexpr int32_t DEFAULT_LOOK_AHEAD = 20;
constexpr int32_t LONGEST_LOOK_AHEAD = 99;
constexpr int32_t COMPARE_MEMORY_RECORDS = 4000;       // records held in memory; the others lie in the file
constexpr int64_t LARGEST_COMPARED_FILE = UINT32_MAX;  // bytes

// Names the two sides and wipes everything else.
void begin_compare(const char* left_path, const char* left_title, const char* right_path,
                   const char* right_title);

enum class CompareFault : uint8_t {
    NONE,
    NOT_OPENED,  // a file cannot be opened
    TOO_LARGE,   // a file has more bytes than LARGEST_COMPARED_FILE
    NO_RECORDS,  // the list of records cannot be written
};

// Opens both files and aligns them. Serves one waiting message for each row, so that windows stay alive and
// stop_compare can be called meanwhile. Gives 1; 0 on failure, and then compare_fault says what has failed:
// the path, and the reason in platform::last_file_error (but for TOO_LARGE).
int run_compare();
CompareFault compare_fault(const char** path);

// Ends the run at the next row; what has been compared up to there is the result.
void stop_compare();

// The record of a number from 0 to last_record into `record`. Gives 1; 0 when it cannot be read, and then its
// kind is 0.
int load_record(int64_t number, CompareRecord* record);

// Number of the nearest record from `from` on that is no SAME_ROWS or cannot be read, forward or backward; -1
// for none.
int64_t find_difference(int64_t from, bool forward);

// Brings up to `size` bytes of the row at `offset` into `text`: what stands in front of its CR or LF. Gives
// their number; `ended` takes whether the CR or LF was among the bytes read. A row that cannot be read gives
// none, and from then on compare_was_disturbed says so.
int32_t read_compared_row(const CompareSide& side, uint32_t offset, char* text, int32_t size, bool* ended);

// Whether a side or the list of records could not be read, or a side was changed on the disk since the run
// began; gives the path, or nullptr.
const char* compare_was_disturbed();

// Closes both files and the list of records.
void close_compare();

// ---- Screens -----------------------------------------------------------------------------------------

// The view IDD_START_COMPARE: sets the options and runs the compare. compare.state tells how it went.
void start_compare_dialog();

// Once in a compare: a box when compare_was_disturbed. Gives whether it is so.
bool tell_disturbance();

// What the user has asked for on the results screen.
struct ResultsAnswer {
    bool print_requested;
    bool differences_only;
};

// The view IDD_SCRCOMP: the list of records and the rows of the one that is picked.
ResultsAnswer show_results_screen();

// Writes the whole list, or its differences alone, as a text file of two columns and prints that. Gives true,
// also when the user has cancelled; false when it could not be written or the job could not be started.
bool print_compare_report(bool differences_only);

}  // namespace hexlane
