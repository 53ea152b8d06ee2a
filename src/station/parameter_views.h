// parameter_views.h: the dialogs that edit the machine table. Main thread only.
#pragma once

namespace hexlane {

// Command 1032: the view COMMSETTINGS, and from it ADVANCED and ASCIICHART.
void show_parameters();

// The view ADVANCED over the one that is up, on the record of edit_machine.
void show_advanced_settings();

// The view ASCIICHART.
void show_ascii_chart();

}  // namespace hexlane
