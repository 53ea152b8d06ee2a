// record_list.h: the records of a compare in order: the first ones in memory, the others in the temporary
// file `temp_prefix`tmpx.twr, written through a buffer. For the files of this folder. Main thread only.
#pragma once

#include "compare/compare.h"

namespace hexlane {

// Makes the temporary file anew and empties the list. Gives 1, or 0 on failure.
int open_record_list();

// Puts one record behind the last. A failed write is kept for finish_record_list.
void append_record(const CompareRecord& record);

// Writes out what waits. Gives 1 when every record is where load_record finds it, or 0.
int finish_record_list();

// Records so far.
int64_t record_count();

// Whether a record could not be read back.
bool record_list_is_damaged();

void close_record_list();
const char* record_list_path();

}  // namespace hexlane
