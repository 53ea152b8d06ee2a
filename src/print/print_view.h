// print_view.h: the command Print. Main thread only.
#pragma once

namespace hexlane {

// Asks what to print, the document or the rows of its block, and prints it; in NC Mode in their display form.
void command_print();

}  // namespace hexlane
