// document.cpp: a home below the system's temporary folder, removed at the end, and part programs made in it.

#include "document.h"

#include "frame/program.h"
#include "platform/scripted/test_hooks.h"
#include "platform/text.h"
#include "shell/child.h"
#include "store/load.h"
#include "store/row_table.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace hexlane::bench {

namespace {

[[noreturn]] void give_up(const char* what) {
    std::fprintf(stderr, "bench: %s\n", what);
    std::exit(1);
}

// The program's home for as long as the process lives.
class Home {
public:
    Home() {
        std::string name = (std::filesystem::temp_directory_path() / "hexlane-bench-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr)
            give_up("no temporary folder can be made");
        folder = name;
        std::filesystem::create_directory(folder / "ZOLT");
        setenv("HEXLANE_HOME", folder.c_str(), 1);
        platform::reset_desktop();
        program_main(nullptr);
    }
    ~Home() {
        close_document();
        std::error_code ignored;  // nobody is left to be told
        std::filesystem::remove_all(folder, ignored);
    }
    std::filesystem::path folder;
};

void write_rows(const std::filesystem::path& path, int32_t rows) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> place(-400000, 400000);
    std::ofstream out(path, std::ios::binary);
    for (int32_t row = 0; row < rows; row++) {
        char text[80];
        const int length =
            std::snprintf(text, sizeof text, "N%d G1 X%.3f Y%.3f Z%.3f F850\r\n", row, place(random) / 1000.0,
                          place(random) / 1000.0, place(random) / 1000.0);
        out.write(text, length);
    }
    if (!out.flush())
        give_up("the document can't be written");
}

}  // namespace

void open_document(int32_t rows) {
    static Home home;
    const std::filesystem::path path = home.folder / (std::to_string(rows) + ".nc");
    if (!std::filesystem::exists(path))
        write_rows(path, rows);
    close_document();
    platform::copy_text(child[0].file_path, sizeof child[0].file_path, path.c_str());
    platform::copy_text(child[0].file_title, sizeof child[0].file_title, path.filename().c_str());
    set_file_dir();
    reload_document();
    child[0].current_row = child[0].caret_row = child[0].caret_col = 0;
}

void reload_document() {
    close_document();
    child[0].modified = 0;
    if (!load_file())
        give_up("the document can't be loaded");
}

}  // namespace hexlane::bench
