// report.h: the list of records as text in two columns. Main thread only.
#pragma once

#include "compare/compare.h"

namespace hexlane {

// Writes the report of the finished compare into a new empty file: CR LF lines, two paths and two empty
// lines, then each record, long rows in pieces over several lines. Gives 1, or 0 when a write has failed
// or a record could not be read.
int write_compare_report(platform::FileHandle file, bool differences_only);

}  // namespace hexlane
