// code_page.h: the bytes of the text area as Unicode, by the Windows-1252 table (the five codes that it
// leaves open stand for themselves). Source of the table: the published mapping of that code page.
#pragma once

#include <cstdint>

namespace hexlane::platform {

// The code point of a byte; a control (0 to 31, 127) gives the picture of that control (U+2400 and on), so
// that it takes one visible cell.
char32_t byte_to_unicode(uint8_t byte);

// The byte of a code point, -1 when the table has none.
int unicode_to_byte(char32_t code_point);

}  // namespace hexlane::platform
