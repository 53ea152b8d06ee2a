// eia_code.h: the EIA RS-244 punched tape code of NC programs. Source: the published code chart; every code
// has odd parity within its eight holes, apart from 0x11.
#pragma once

#include <cstdint>

namespace hexlane {

struct EiaCode {
    uint8_t send[256];  // line byte of a file byte; 0 where there is none. Small letters go out as capitals.
    uint8_t receive[256];  // file byte of a line byte; 0 where there is none
};

extern const EiaCode EIA_CODE;

}  // namespace hexlane
