// file_filter.h: the file types of the file dialogs, and what the dialogs remember. Main thread only.
#pragma once

#include "platform/desktop.h"

namespace hexlane {

// The file types of the dialogs; filter index 1 is the first, 0 the custom filter.
extern const platform::FileFilter FILE_FILTERS[];
extern const int FILE_FILTER_COUNT;

enum class FilterMode {
    NAMED = 0,   // a file was named from outside a dialog
    BEFORE = 1,  // a dialog is about to open; the result means nothing
    CHOSEN = 2,  // a dialog gave a file
};

constexpr int CUSTOM_FILTER_SIZE = 260;

// Remembers folder and type of `path` (NAMED, CHOSEN) or prepares `custom_filter`, a text and a pattern, each
// NUL-terminated (BEFORE). Gives the filter index to use.
int file_filter(FilterMode mode, const char* path, char custom_filter[CUSTOM_FILTER_SIZE]);

// Folder and default extension for the next dialog, as file_filter keeps them.
const char* dialog_folder();
const char* dialog_extension();

}  // namespace hexlane
