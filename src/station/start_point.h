// start_point.h: the screen on which the operator chooses the row at which a send begins, or feeds marked
// rows to the machine one by one. Main thread only.
#pragma once

namespace hexlane {

// The view StartPoint, for the file and the port of send_slot. On OK start_offset and file_position of the
// slot's transfer are the chosen row's place in the file; on Cancel 0. The port is closed again when the view
// closes.
void show_start_point();

}  // namespace hexlane
