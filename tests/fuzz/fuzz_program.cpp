// fuzz_program.cpp: start of the program, files of the fuzzer's bytes, and the rules that hold for every
// table.

#include "fuzz_program.h"

#include "frame/program.h"
#include "platform/scripted/test_hooks.h"
#include "platform/text.h"
#include "shell/child.h"
#include "store/load.h"
#include "store/row_bytes.h"
#include "store/row_records.h"
#include "store/row_table.h"
#include "store/save.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace hexlane::fuzz {

namespace {

// In memory where the system has a place for that: millions of files come and go.
std::filesystem::path parent_of_home() {
    const std::filesystem::path memory = "/dev/shm";
    return std::filesystem::is_directory(memory) ? memory : std::filesystem::temp_directory_path();
}

struct Home {
    std::filesystem::path folder;
    Home() {
        std::string name = (parent_of_home() / "hexlane-fuzz-XXXXXX").string();
        require(mkdtemp(name.data()) != nullptr, "no temporary folder can be made");
        folder = name;
        std::filesystem::create_directory(folder / "ZOLT");
        setenv("HEXLANE_HOME", folder.c_str(), 1);
        platform::reset_desktop();
        program_main(nullptr);
    }
    ~Home() {
        std::error_code ignored;  // the process ends
        std::filesystem::remove_all(folder, ignored);
    }
};

const std::filesystem::path& home() {
    static const Home the_home;
    return the_home.folder;
}

std::filesystem::path document_path() {
    return home() / "fuzz.nc";
}

// A load leaves its segment files until the program's end; here that would fill the disk.
void drop_old_segments() {
    for (const auto& entry : std::filesystem::directory_iterator(home() / "ZOLT" / "ZOLTTMP"))
        std::filesystem::remove(entry.path());
}

void load(const char* answer) {
    platform::forget_shown_boxes();
    platform::forget_shown_lines();
    if (answer != nullptr)
        platform::answer_box(answer);
    close_document();
    drop_old_segments();
    const std::string path = document_path().string();
    platform::copy_text(child[0].file_path, sizeof child[0].file_path, path.c_str());
    platform::copy_text(child[0].file_title, sizeof child[0].file_title, "fuzz.nc");
    set_file_dir();
    child[0].modified = 0;
    load_file();
    require(platform::unused_answers() == 0, "the question about NULs has not come");
}

}  // namespace

void require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "broken: %s\n", what);
    std::abort();
}

void start_program() {
    home();
}

bool open_bytes(const std::string& bytes, const char* answer) {
    start_program();
    std::ofstream out(document_path(), std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    require(static_cast<bool>(out.flush()), "the fuzzer's own file can't be written");
    out.close();
    load(answer);
    return child[0].file_open != 0;
}

std::string bytes_on_disk() {
    std::ifstream in(document_path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void save_and_reload(const char* answer) {
    require(save_file() == 1, "a save fails");
    load(answer);
    require(child[0].file_open != 0, "what was saved can't be loaded");
}

void check_table() {
    const int32_t last = child[0].last_file_row;
    require(last >= 0, "there is no row");
    int32_t rows = 0;
    for (int segment = 0; segment < child[0].segment_count; segment++) {
        require(segment_table[segment].first_row == rows, "a segment's first row is wrong");
        rows += segment_rows(segment);
    }
    require(rows == last + 1, "the segments do not add up to the document");
    RowRecord record;
    require(read_record(0, &record) == 1, "a record can't be read");
    for (int32_t row = 0; row < last; row++) {
        RowRecord next;
        RowSpan span;
        require(read_record(row + 1, &next) == 1, "a record can't be read");
        require(row_span(record, &span) == 1, "a row's bytes can't be found");
        require(record.origin != ORIGIN_FILE || next.origin != ORIGIN_FILE || span.next == next.position,
                "a row of the file is followed by one that stands elsewhere");
        record = next;
    }
}

}  // namespace hexlane::fuzz
