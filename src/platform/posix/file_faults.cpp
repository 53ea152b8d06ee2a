// file_faults.cpp: counting, logging and failing the system calls of files.cpp and paths.cpp.

#include "platform/posix/file_faults.h"

#include "platform/posix/file_calls.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <map>
#include <mutex>
#include <sstream>
#include <unistd.h>

namespace hexlane::platform {

bool file_faults_armed = false;

namespace {

constexpr int KIND_COUNT = static_cast<int>(FileCall::ANY) + 1;

constexpr const char* KIND_NAMES[KIND_COUNT] = {
    "open",   "create",      "read", "write", "copy", "resize", "flush", "folder-flush", "rename",
    "delete", "make-folder", "list", "stamp", "mode", "link",   "close", "any",
};

struct FailRule {
    FileCall kind;
    int skip;  // calls that still pass before the first that fails
    int error;
    int times;  // failures left; < 0 for ever
    std::string path_part;
};

struct DenyRule {
    std::string path;
    int what;
};

struct Faults {
    bool logging = false;
    std::vector<FileCallRecord> log;
    int counts[KIND_COUNT] = {};
    std::vector<FailRule> fails;
    std::vector<DenyRule> denials;
    int64_t space = -1;       // bytes that the disk still takes; < 0 no limit
    int space_failures = -1;  // ENOSPC left until there is space again; < 0 for ever
    int exit_in = 0;          // calls until the process ends; 0 never
    ExitPoint exit_point = ExitPoint::BEFORE;
    bool fired = false;
};

std::mutex lock;  // guards all below
Faults faults;
std::map<int, std::string> open_paths;  // of the files opened while armed

std::atomic<int> open_files = 0;

bool moves_bytes(FileCall kind) {
    return kind == FileCall::READ || kind == FileCall::WRITE || kind == FileCall::COPY;
}

std::string path_of(const FileCallPlan& plan) {
    if (plan.path != nullptr) {
        return plan.second_path != nullptr ? std::string(plan.path) + " -> " + plan.second_path : plan.path;
    }
    const auto found = open_paths.find(plan.file);
    return found != open_paths.end() ? found->second : "";
}

std::string folder_part(const char* path) {
    const std::string text = path;
    const auto slash = text.rfind('/');
    return slash == std::string::npos ? "." : text.substr(0, std::max<std::size_t>(slash, 1));
}

bool is_denied(const std::string& path, int what) {
    return std::any_of(faults.denials.begin(), faults.denials.end(), [&](const DenyRule& rule) {
        const bool is_tail = rule.path[0] != '/' && ("/" + path).ends_with("/" + rule.path);
        return (rule.what & what) != 0 && (rule.path == path || is_tail);
    });
}

// The errno of a permission that `plan` lacks, or 0.
int permission_error(const FileCallPlan& plan) {
    bool denied = false;
    switch (plan.kind) {
    case FileCall::OPEN:
        denied = is_denied(plan.path, DENY_READ | (plan.for_writing ? DENY_WRITE : 0));
        break;
    case FileCall::CREATE:
    case FileCall::DELETE:
    case FileCall::MAKE_FOLDER:
        denied = is_denied(folder_part(plan.path), DENY_ENTRIES);
        break;
    case FileCall::RENAME:
        denied = is_denied(folder_part(plan.path), DENY_ENTRIES) ||
                 is_denied(folder_part(plan.second_path), DENY_ENTRIES);
        break;
    default:
        break;
    }
    return denied ? EACCES : 0;
}

// The errno of the first rule that this call falls to, or 0. Every rule that concerns the call counts it.
int rule_error(const FileCallPlan& plan, const std::string& path) {
    int error = 0;
    for (FailRule& rule : faults.fails) {
        const bool concerned = (rule.kind == FileCall::ANY || rule.kind == plan.kind) &&
                               path.find(rule.path_part) != std::string::npos;
        if (!concerned || rule.times == 0) {
            continue;
        }
        if (rule.skip > 0) {
            rule.skip--;
            continue;
        }
        rule.times -= rule.times > 0 ? 1 : 0;
        error = error != 0 ? error : rule.error;
    }
    return error;
}

// Cuts a writing call down to the space that is left; gives ENOSPC when there is none.
int space_error(std::size_t* size) {
    if (faults.space < 0 || *size == 0) {
        return 0;
    }
    if (faults.space == 0) {
        faults.space_failures -= faults.space_failures > 0 ? 1 : 0;
        if (faults.space_failures == 0) {
            faults.space = -1;
        }
        return ENOSPC;
    }
    if (*size > static_cast<std::size_t>(faults.space)) {
        *size = static_cast<std::size_t>(faults.space);
        faults.fired = true;
    }
    faults.space -= static_cast<int64_t>(*size);
    return 0;
}

void disarm() {
    faults = Faults();
    open_paths.clear();
    file_faults_armed = false;
}

}  // namespace

FileCallVerdict before_file_call(const FileCallPlan& plan) {
    const std::lock_guard<std::mutex> guard(lock);
    faults.counts[static_cast<int>(plan.kind)]++;
    faults.counts[static_cast<int>(FileCall::ANY)]++;

    FileCallVerdict verdict = {0, plan.size, false};
    if (faults.exit_in > 0 && --faults.exit_in == 0) {
        if (faults.exit_point == ExitPoint::BEFORE ||
            (faults.exit_point == ExitPoint::HALFWAY && !moves_bytes(plan.kind))) {
            _exit(FAULT_EXIT_CODE);
        }
        verdict.exit_after = true;
        verdict.size = faults.exit_point == ExitPoint::HALFWAY ? plan.size / 2 : plan.size;
    }
    const std::string path = path_of(plan);
    verdict.error = rule_error(plan, path);
    if (verdict.error == 0) {
        verdict.error = permission_error(plan);
    }
    if (verdict.error == 0 && (plan.kind == FileCall::WRITE || plan.kind == FileCall::COPY)) {
        verdict.error = space_error(&verdict.size);
    }
    faults.fired |= verdict.error != 0;
    return verdict;
}

void after_file_call(const FileCallPlan& plan, const FileCallVerdict& verdict, int64_t result) {
    const int error = errno;
    const std::lock_guard<std::mutex> guard(lock);
    if (verdict.exit_after) {
        _exit(FAULT_EXIT_CODE);
    }
    const bool opens = plan.kind == FileCall::OPEN || plan.kind == FileCall::CREATE;
    if (faults.logging) {
        const auto size = moves_bytes(plan.kind) ? static_cast<int64_t>(plan.size) : 0;
        faults.log.push_back({plan.kind, path_of(plan), size, opens ? std::min<int64_t>(result, 0) : result,
                              result < 0 ? error : 0});
    }
    if (opens && result >= 0) {
        open_paths[static_cast<int>(result)] = plan.path;
    }
    if (plan.kind == FileCall::CLOSE) {
        open_paths.erase(plan.file);
    }
    errno = error;
}

void count_open_file(int change) {
    open_files += change;
}

int open_file_count() {
    return open_files;
}

const char* file_call_name(FileCall kind) {
    return KIND_NAMES[static_cast<int>(kind)];
}

void reset_file_faults() {
    const std::lock_guard<std::mutex> guard(lock);
    disarm();
}

void record_file_calls() {
    const std::lock_guard<std::mutex> guard(lock);
    faults.logging = true;
    file_faults_armed = true;
}

const std::vector<FileCallRecord>& file_call_log() {
    return faults.log;
}

int file_call_count(FileCall kind) {
    const std::lock_guard<std::mutex> guard(lock);
    return faults.counts[static_cast<int>(kind)];
}

void fail_file_call(FileCall kind, int n, int error, const char* path_part, int times) {
    const std::lock_guard<std::mutex> guard(lock);
    faults.fails.push_back({kind, n - 1, error, times, path_part});
    file_faults_armed = true;
}

void fill_disk_after(int64_t bytes, int failures) {
    const std::lock_guard<std::mutex> guard(lock);
    faults.space = bytes;
    faults.space_failures = failures;
    file_faults_armed = true;
}

void deny_path(const char* path, int what) {
    const std::lock_guard<std::mutex> guard(lock);
    faults.denials.push_back({path, what});
    file_faults_armed = true;
}

void exit_at_file_call(int n, ExitPoint point) {
    const std::lock_guard<std::mutex> guard(lock);
    faults.exit_in = n;
    faults.exit_point = point;
    file_faults_armed = true;
}

bool file_fault_fired() {
    const std::lock_guard<std::mutex> guard(lock);
    return faults.fired;
}

// ---- Faults as text ----------------------------------------------------------------------------------

namespace {

struct ErrorName {
    const char* name;
    int number;
};
constexpr ErrorName ERROR_NAMES[] = {
    {"EACCES", EACCES}, {"EDQUOT", EDQUOT}, {"EEXIST", EEXIST}, {"EFBIG", EFBIG},
    {"EIO", EIO},       {"EMFILE", EMFILE}, {"ENODEV", ENODEV}, {"ENOENT", ENOENT},
    {"ENOSPC", ENOSPC}, {"EPERM", EPERM},   {"EROFS", EROFS},   {"EXDEV", EXDEV},
};

bool parse_kind(const std::string& name, FileCall* kind) {
    for (int i = 0; i < KIND_COUNT; i++) {
        if (name == KIND_NAMES[i]) {
            *kind = static_cast<FileCall>(i);
            return true;
        }
    }
    return false;
}

bool parse_fail(std::istringstream& words) {
    std::string kind_name;
    std::string error_name;
    std::string path_part;
    FileCall kind = FileCall::ANY;
    int n = 0;
    int times = 1;
    if (!(words >> kind_name >> n >> error_name) || !parse_kind(kind_name, &kind) || n < 1) {
        return false;
    }
    words >> path_part;
    if (!words.eof() && !(words >> times)) {
        return false;
    }
    for (const ErrorName& entry : ERROR_NAMES) {
        if (error_name == entry.name) {
            fail_file_call(kind, n, entry.number, path_part.c_str(), times);
            return true;
        }
    }
    return false;
}

bool parse_full(std::istringstream& words) {
    int64_t bytes = 0;
    int failures = -1;
    if (!(words >> bytes) || bytes < 0) {
        return false;
    }
    if (!(words >> std::ws).eof() && (!(words >> failures) || failures < 1)) {
        return false;
    }
    fill_disk_after(bytes, failures);
    return true;
}

bool parse_deny(std::istringstream& words) {
    std::string what;
    std::string path;
    if (!(words >> what >> std::ws) || !std::getline(words, path) || path.empty()) {
        return false;
    }
    const int denied = what == "read"      ? DENY_READ
                       : what == "write"   ? DENY_WRITE
                       : what == "entries" ? DENY_ENTRIES
                                           : 0;
    deny_path(path.c_str(), denied);
    return denied != 0;
}

bool parse_exit(std::istringstream& words, ExitPoint point) {
    int n = 0;
    if (!(words >> n) || n < 1) {
        return false;
    }
    exit_at_file_call(n, point);
    return true;
}

bool parse_fault(const std::string& text) {
    std::istringstream words(text);
    std::string verb;
    words >> verb;
    const bool good = verb == "fail"           ? parse_fail(words)
                      : verb == "full"         ? parse_full(words)
                      : verb == "deny"         ? parse_deny(words)
                      : verb == "exit-before"  ? parse_exit(words, ExitPoint::BEFORE)
                      : verb == "exit-halfway" ? parse_exit(words, ExitPoint::HALFWAY)
                      : verb == "exit-after"   ? parse_exit(words, ExitPoint::AFTER)
                                               : false;
    return good && (words.eof() || (words >> std::ws).eof());
}

}  // namespace

int arm_file_faults_from_text(const char* text) {
    std::istringstream parts(text);
    std::string part;
    int count = 0;
    while (std::getline(parts, part, ';')) {
        if (!parse_fault(part)) {
            reset_file_faults();
            return 0;
        }
        count++;
    }
    return count > 0 ? 1 : 0;
}

}  // namespace hexlane::platform
