#include "files/file_guard.h"

#include "files/file_commands.h"
#include "files/files_texts.h"
#include "shell/child.h"
#include "store/file_watch.h"

namespace hexlane {

namespace {

bool overwrite_agreed = false;  // for the state of the file that was reported last

// Offers to load the file as it is now; the edits go.
void offer_reload(FilesBox box) {
    mark_change_told();
    overwrite_agreed = false;
    if (show_files_box(box, child[0].file_path) == 0)
        reload_document();
}

// Overwrite, Save As or Cancel for a file that has been replaced or is gone.
GuardAnswer ask_overwrite(FileChange change) {
    mark_change_told();
    const FilesBox box = change == FileChange::REMOVED ? FilesBox::REMOVED : FilesBox::REPLACED_MODIFIED;
    const int answer = show_files_box(box, child[0].file_path);
    overwrite_agreed = answer == 0;
    return answer == 0 ? GuardAnswer::WRITE : answer == 1 ? GuardAnswer::SAVE_AS : GuardAnswer::STOP;
}

FilesBox in_place_box() {
    return child[0].modified ? FilesBox::IN_PLACE_MODIFIED : FilesBox::IN_PLACE_UNMODIFIED;
}

}  // namespace

GuardAnswer guard_save() {
    bool fresh = false;
    const FileChange change = document_change(&fresh);
    switch (change) {
    case FileChange::NONE:
        return GuardAnswer::WRITE;
    case FileChange::IN_PLACE:
        offer_reload(in_place_box());
        return GuardAnswer::STOP;
    default:
        return !fresh && overwrite_agreed ? GuardAnswer::WRITE : ask_overwrite(change);
    }
}

bool guard_rows() {
    bool fresh = false;
    if (document_change(&fresh) != FileChange::IN_PLACE)
        return true;
    offer_reload(in_place_box());
    return false;
}

void check_active_file() {
    bool fresh = false;
    const FileChange change = document_change(&fresh);
    if (!fresh)
        return;
    if (change == FileChange::IN_PLACE) {
        offer_reload(in_place_box());
        return;
    }
    if (change == FileChange::REPLACED && !child[0].modified) {
        offer_reload(FilesBox::REPLACED_UNMODIFIED);
        return;
    }
    const GuardAnswer answer = ask_overwrite(change);
    if (answer == GuardAnswer::WRITE)
        save_and_reload();
    else if (answer == GuardAnswer::SAVE_AS)
        command_save_as();
}

}  // namespace hexlane
