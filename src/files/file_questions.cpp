#include "files/file_questions.h"

#include <cstring>

#include "files/file_filter.h"
#include "files/files_texts.h"
#include "shell/child.h"
#include "shell/window.h"

namespace hexlane {

using namespace platform;

namespace {

int filter_index = 1;  // the entry on show in the next dialog
char custom_filter[CUSTOM_FILTER_SIZE];
char port_custom_filter[CUSTOM_FILTER_SIZE];  // of the ports' dialogs

int run_dialog(FileDialog* dialog, const char* title, int (*choose)(FileDialog*),
               char filter[CUSTOM_FILTER_SIZE] = custom_filter) {
    *dialog = FileDialog{};
    file_filter(FilterMode::BEFORE, "", filter);
    dialog->title = title;
    dialog->filters = FILE_FILTERS;
    dialog->filter_count = FILE_FILTER_COUNT;
    dialog->custom_text = filter;
    dialog->custom_pattern = filter + std::strlen(filter) + 1;
    dialog->filter_index = filter_index == 0 && filter[0] == '\0' ? 1 : filter_index;
    dialog->start_folder = dialog_folder();
    dialog->default_extension = dialog_extension();
    set_caret_visible(false);
    const int chosen = choose(dialog);
    set_caret_visible(true);
    if (chosen)
        filter_index = file_filter(FilterMode::CHOSEN, dialog->path, filter);
    return chosen;
}

}  // namespace

SaveAnswer ask_save() {
    switch (show_files_box(FilesBox::SAVE_CHANGES, child[0].file_path)) {
    case 0:
        return SaveAnswer::YES;
    case 1:
        return SaveAnswer::NO;
    default:
        return SaveAnswer::CANCEL;
    }
}

int ask_open_name(FileDialog* dialog) {
    return run_dialog(dialog, "Open file ", choose_open_file);
}

int ask_save_name(FileDialog* dialog) {
    return run_dialog(dialog, "Save As ", choose_save_file);
}

void note_named_file(const char* path) {
    filter_index = file_filter(FilterMode::NAMED, path, custom_filter);
}

int ask_file_to_send(FileDialog* dialog) {
    return run_dialog(dialog, "Open File to Send/Receive", choose_open_file, port_custom_filter);
}

int ask_file_to_receive(FileDialog* dialog) {
    return run_dialog(dialog, "Select File to Receive", choose_save_file, port_custom_filter);
}

}  // namespace hexlane
