// control_names.h: the names of the control characters, as machine manuals have them.
#pragma once

namespace hexlane {

// Of the codes 0 to 32.
constexpr const char* CONTROL_NAMES[] = {"NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL", "BS",
                                         "HT",  "LF",  "VT",  "FF",  "CR",  "SO",  "SI",  "DLE", "DC1",
                                         "DC2", "DC3", "DC4", "NAK", "SYN", "ETB", "CAN", "EM",  "SUB",
                                         "ESC", "FS",  "GS",  "RS",  "US",  "SP"};

}  // namespace hexlane
