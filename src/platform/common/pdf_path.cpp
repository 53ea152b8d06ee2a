// pdf_path.cpp: the question where a PDF file goes, for back ends with file dialogs.

#include "platform/common/pdf_job.h"
#include "platform/desktop.h"

namespace hexlane::platform {

int ask_pdf_path(char* path) {
    constexpr FileFilter FILTERS[] = {{"PDF Files  *.PDF", "*.PDF"}};
    FileDialog dialog = {};
    dialog.title = "Print to PDF File";
    dialog.filters = FILTERS;
    dialog.filter_count = 1;
    dialog.custom_text = "";
    dialog.custom_pattern = "";
    dialog.filter_index = 1;
    dialog.start_folder = "";
    dialog.default_extension = "pdf";
    return choose_save_file(&dialog) ? copy_text(path, PATH_SIZE, dialog.path) : 0;
}

}  // namespace hexlane::platform
