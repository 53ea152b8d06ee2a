// messages.h: the message codes that reach window and view procedures, and their parameters.
// The numbers are part of macro files and of the tables, and stay as they are.
#pragma once

#include <cstdint>

namespace hexlane::platform {

using WindowHandle = int32_t;  // a window or a view; 0 is none
constexpr WindowHandle NO_WINDOW = 0;

constexpr uint32_t WM_CREATE = 0x0001;
constexpr uint32_t WM_DESTROY = 0x0002;
constexpr uint32_t WM_MOVE = 0x0003;
constexpr uint32_t WM_SIZE = 0x0005;  // second: width | height << 16, in units
constexpr uint32_t WM_SETFOCUS = 0x0007;
constexpr uint32_t WM_KILLFOCUS = 0x0008;
constexpr uint32_t WM_PAINT = 0x000F;
constexpr uint32_t WM_CLOSE = 0x0010;
constexpr uint32_t WM_NCLBUTTONUP = 0x00A2;
constexpr uint32_t WM_KEYDOWN = 0x0100;  // first: key; second: repeat | scan code << 16 | extended << 24
constexpr uint32_t WM_KEYUP = 0x0101;    // as WM_KEYDOWN, with bits 30 and 31 set
constexpr uint32_t WM_CHAR = 0x0102;     // first: character; second: as WM_KEYDOWN
constexpr uint32_t WM_INITDIALOG = 0x0110;
constexpr uint32_t WM_COMMAND = 0x0111;  // first: id | source << 16; second: 0 for menu and accelerator
constexpr uint32_t WM_TIMER = 0x0113;    // first: timer id
constexpr uint32_t WM_HSCROLL = 0x0114;  // first: request | position << 16
constexpr uint32_t WM_VSCROLL = 0x0115;
constexpr uint32_t WM_MENUSELECT = 0x011F;  // first: id of the entry or popup, 0 when the menu closes
constexpr uint32_t WM_MOUSEMOVE = 0x0200;   // first: MK_ flags; second: x | y << 16, signed 16 bits each
constexpr uint32_t WM_LBUTTONDOWN = 0x0201;
constexpr uint32_t WM_LBUTTONUP = 0x0202;
constexpr uint32_t WM_RBUTTONDOWN = 0x0204;  // both in panes of views only
constexpr uint32_t WM_RBUTTONUP = 0x0205;

// Messages of the program's own that a back end sends too. The number is older than the rest.
constexpr uint32_t OPEN_REQUEST_MESSAGE = 0x99;  // the name of a file to open stands in newnm.fil
constexpr uint32_t HANDOVER_MESSAGE = 0x8008;    // a second start has handed over a file: take_handover

// Scroll requests. A desktop sends a notch of the mouse wheel as three line requests.
constexpr int SB_LINEUP = 0;
constexpr int SB_LINEDOWN = 1;
constexpr int SB_PAGEUP = 2;
constexpr int SB_PAGEDOWN = 3;
constexpr int SB_THUMBPOSITION = 4;
constexpr int SB_THUMBTRACK = 5;
constexpr int SB_TOP = 6;
constexpr int SB_BOTTOM = 7;
constexpr int SB_LINELEFT = SB_LINEUP;
constexpr int SB_LINERIGHT = SB_LINEDOWN;
constexpr int SB_PAGELEFT = SB_PAGEUP;
constexpr int SB_PAGERIGHT = SB_PAGEDOWN;

// Buttons and keys held during a mouse message.
constexpr int MK_LBUTTON = 0x0001;
constexpr int MK_RBUTTON = 0x0002;
constexpr int MK_SHIFT = 0x0004;
constexpr int MK_CONTROL = 0x0008;

// Two 16-bit halves in one parameter.
constexpr int64_t make_parameter(int low, int high) {
    return static_cast<int64_t>(static_cast<uint32_t>(low & 0xFFFF) | static_cast<uint32_t>(high & 0xFFFF)
                                                                          << 16);
}
constexpr int low_word(int64_t parameter) {
    return static_cast<int>(parameter & 0xFFFF);
}
constexpr int high_word(int64_t parameter) {
    return static_cast<int>(parameter >> 16 & 0xFFFF);
}
constexpr int signed_low(int64_t parameter) {
    return static_cast<int16_t>(parameter & 0xFFFF);
}
constexpr int signed_high(int64_t parameter) {
    return static_cast<int16_t>(parameter >> 16 & 0xFFFF);
}

// Answers 0 unless a message says otherwise.
using WindowProcedure = int64_t (*)(WindowHandle window, uint32_t message, int64_t first, int64_t second);

}  // namespace hexlane::platform
