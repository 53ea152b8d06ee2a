#include "cli/receive_target.h"

#include "cli/transfer_run.h"
#include "dnc/received_file.h"

#include <csignal>

namespace hexlane {

using namespace platform;

namespace {

struct Target {
    bool direct;           // a pipe or a device
    char name[PATH_SIZE];  // links followed
    char part[PATH_SIZE];  // beside it
    FileHandle old;        // that has the name; its lock
    FileHandle stale;      // what an earlier receive has left as NAME.part; its lock
    FileHandle out;        // for the engine
    FileHandle lock;       // of our NAME.part, until it has its name
};
Target target = {false, "", "", NO_FILE, NO_FILE, NO_FILE, NO_FILE};

void let_go(FileHandle* file) {
    if (*file != NO_FILE)
        file_close(*file);
    *file = NO_FILE;
}

std::string reason_text() {
    return file_error_text(last_file_error());
}

std::string claim_direct() {
    std::signal(SIGPIPE, SIG_IGN);  // a reader that ends is a failed write like any other
    target.direct = true;
    target.out = file_open_stream(run.file);
    return target.out != NO_FILE ? "" : "cannot write " + run.options.file + ": " + reason_text();
}

std::string claim_part() {
    if (!follow_links(run.file, target.name, sizeof target.name) || !name_part(target.name, target.part))
        return "cannot write " + run.options.file + ": " + reason_text();
    if (!lock_name(target.name, &target.old))
        return run.options.file + " is being received by another program";
    if (target.old == NO_FILE && path_kind(target.name) != PathKind::NONE)
        return "cannot open " + run.options.file + ": " + reason_text();
    if (!lock_name(target.part, &target.stale))
        return run.options.file + " is being received by another program, into " + target.part;
    if (path_kind(target.part) != PathKind::NONE && !run.options.replace)
        return std::string(target.part) +
               " is there already: an earlier receive has left it; --replace lets it go";
    return "";
}

int make_part() {
    if (path_kind(target.part) != PathKind::NONE && !delete_file(target.part))
        return 0;
    target.out = file_create(target.part, FileCreate::PRIVATE);
    let_go(&target.stale);
    return target.out != NO_FILE && lock_name(target.part, &target.lock) &&
           file_adopt_mode(target.out, target.old);
}

}  // namespace

std::string claim_target() {
    const PathKind kind = path_kind(run.file);
    if (kind == PathKind::FOLDER)
        return run.options.file + " is a folder";
    if (kind == PathKind::OTHER)
        return claim_direct();
    if (kind == PathKind::FILE && !run.options.replace)
        return run.options.file + " is there already; --replace lets it go";
    return claim_part();
}

FileHandle open_target() {
    if (target.direct || make_part())
        return target.out;
    const FileError reason = last_file_error();
    if (target.out != NO_FILE) {
        let_go(&target.out);
        if (target.lock != NO_FILE)
            delete_file(target.part);  // ours, and empty
        let_go(&target.lock);
    }
    set_last_file_error(reason);
    return NO_FILE;
}

const char* target_name() {
    return target.direct ? run.file : target.part;
}

std::string finish_target(bool complete) {
    run.left = run.file;
    if (target.direct)
        return "";
    std::string reason;
    if (complete) {
        // Without --replace a name that has been taken meanwhile is left alone.
        const int renamed = target.old != NO_FILE ? rename_file(target.part, target.name)
                                                  : rename_to_new(target.part, target.name);
        if (!renamed)
            reason =
                "cannot give " + std::string(target.part) + " the name " + run.file + ": " + reason_text();
        (void)flush_folder_of(target.name);  // without it a power cut leaves NAME.part, whole
        run.left = renamed ? run.file : target.part;
    } else if (run.tally.file_bytes != 0 || !delete_file(target.part)) {
        run.left = target.part;
    }
    let_go(&target.lock);
    let_go(&target.old);
    return reason;
}

}  // namespace hexlane
