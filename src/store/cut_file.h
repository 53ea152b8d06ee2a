// cut_file.h: CUT.INX, the records of the whole rows that were cut or copied last (row_record_format.h,
// without a header). The rows' text stays where it stands, in the active file or in the change file, and is
// read when they are pasted: cutting a million rows moves no text. How many records count is told by the
// block record that goes with the file (edit/block_commands.h). A load makes the file worthless: the
// positions in it are those of the streams of one document. Main thread only.
#pragma once

#include <cstdint>

namespace hexlane {

// Writes the records of `count` rows from `row` on into CUT.INX, in the place of what stood there. Needs: no
// pending and no unsaved row. Gives 1; 0 on failure: the user is told, and the file is as it was.
[[nodiscard]] int copy_rows_to_cut_file(int32_t row, int32_t count);

// Puts the first `count` rows of CUT.INX into the document where insert_blank_rows (row_edits.h) puts blank
// ones for `row`. Each becomes a new change row with all of its bytes, those that nobody sees included, so
// that no record of the active file ever moves. Shows the row count meanwhile. Gives 1, also when the last of
// the rows waits as the unsaved one (store_fault.h); 0 on failure: the user is told, and the rows that had
// come in are taken out again, as far as the medium lets them.
[[nodiscard]] int paste_rows_from_cut_file(int32_t row, int32_t count);

}  // namespace hexlane
