// activity.h: the operator's desk for the two ports, and the command that sends the active file. Main thread
// only.
#pragma once

#include <cstdint>

namespace hexlane {

// The slot that Send Properties and the start point screen work on.
extern int32_t send_slot;

// Command 1033: the view COMMDLG. Transfers go on when it is closed.
void command_activity();

// Command 1042: closes the active file and sends it on slot 0.
void command_send_this();

// The view SEND: sets send_continuous and send_now, and the status of send_slot: SEND_STANDBY on OK,
// PORT_IDLE on Cancel.
void show_send_properties();

// The buttons of a row (row_actions.cpp). press_send gives whether a send has begun or stands by.
bool press_send(int slot);
void press_receive(int slot);
void press_stop(int slot);
void press_file(int slot);
void press_terminal(int slot);

}  // namespace hexlane
