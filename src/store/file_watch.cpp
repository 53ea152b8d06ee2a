#include "store/file_watch.h"

#include "platform/text_stream.h"
#include "shell/child.h"

namespace hexlane {

using namespace platform;

namespace {

FileStamp loaded_stamp;    // of our handle, at load
FileStamp reported_stamp;  // of the state that the user has been told of
FileChange reported_change = FileChange::NONE;
FileStamp found_stamp;  // of the state that document_change saw last
FileChange found_change = FileChange::NONE;

bool same_file(const FileStamp& left, const FileStamp& right) {
    return left.device == right.device && left.inode == right.inode;
}

// Mode, name and links may change without harm, so the entry time is left out.
bool same_content(const FileStamp& left, const FileStamp& right) {
    return left.size == right.size && left.modified_ns == right.modified_ns;
}

FileChange compare_with_disk() {
    FileStamp ours;
    if (!file_stamp(stream_file(child[0].file_stream), &ours))
        return FileChange::NONE;  // the reads of the save will tell
    if (!same_content(ours, loaded_stamp)) {
        found_stamp = ours;
        return FileChange::IN_PLACE;
    }
    if (!path_stamp(child[0].file_path, &found_stamp)) {
        found_stamp = FileStamp{};
        return FileChange::REMOVED;
    }
    return same_file(found_stamp, ours) ? FileChange::NONE : FileChange::REPLACED;
}

}  // namespace

void note_document_stamp(FileHandle file) {
    file_stamp(file, &loaded_stamp);
    reported_change = FileChange::NONE;
    found_change = FileChange::NONE;
}

FileChange document_change(bool* fresh) {
    found_change = child[0].file_open ? compare_with_disk() : FileChange::NONE;
    *fresh = found_change != FileChange::NONE &&
             !(found_change == reported_change && same_file(found_stamp, reported_stamp) &&
               same_content(found_stamp, reported_stamp));
    return found_change;
}

void mark_change_told() {
    reported_change = found_change;
    reported_stamp = found_stamp;
}

}  // namespace hexlane
