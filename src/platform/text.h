// text.h: the bounded text helpers that all layers share.
// Every result is NUL-terminated and never longer than its buffer. Relies on the standard library alone.
#pragma once

#include <cstddef>

namespace hexlane::platform {

// Bytes of a path buffer, the NUL included. A path that does not fit is refused like a file that cannot be
// opened.
constexpr std::size_t PATH_SIZE = 260;

// Copies `from` into `to[size]`. Gives 1, or 0 when it did not fit: then as many whole UTF-8 characters as
// fit are copied.
int copy_text(char* to, std::size_t size, const char* from);

// Appends `from` to the text in `to[size]`. Gives 1, or 0 when it did not fit (cut as in copy_text).
int append_text(char* to, std::size_t size, const char* from);

// printf into `to[size]`. Gives 1, or 0 when it did not fit (cut between UTF-8 characters).
[[gnu::format(printf, 3, 4)]] int format_text(char* to, std::size_t size, const char* format, ...);

// Compares two texts ignoring the case of A to Z. Gives 1 when they are equal.
int equal_ignoring_case(const char* left, const char* right);

// What a person types is UTF-8; a row of the document is bytes, shown by the Windows-1252 table. These turn
// the one into the other. Both give 1, or 0 when something was lost: the text was cut to fit, or has a
// character that the table lacks, for which a '?' stands.
int text_to_bytes(char* bytes, std::size_t size, const char* text);
int bytes_to_text(char* text, std::size_t size, const char* bytes);

// The part of `path` behind its last '/', or all of it.
const char* file_title_of(const char* path);

}  // namespace hexlane::platform
