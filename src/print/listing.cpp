#include "print/listing.h"

#include <cstring>

#include "platform/desktop.h"
#include "platform/text.h"
#include "print/print_engine.h"

namespace hexlane {

using namespace platform;

namespace {

constexpr const char* FACE = "Times New Roman";
constexpr int HEAD_POINTS = 12;
constexpr int ROW_POINTS = 9;

void print_whole_line(const char* text) {
    print_line(text, static_cast<int32_t>(std::strlen(text)));
}

void print_head(const char* path) {
    char bytes[PATH_SIZE];
    text_to_bytes(bytes, sizeof bytes, path);
    set_print_font(FACE, HEAD_POINTS);
    print_whole_line(bytes);
    print_whole_line(" ");
}

}  // namespace

ListingResult print_listing(const char* path, const char* pdf_path, int32_t first, int32_t last,
                            RowSource find_row) {
    const PrintStart start = start_print_document(path, pdf_path);
    if (start != PrintStart::STARTED)
        return start == PrintStart::FAILED ? ListingResult::NOT_STARTED : ListingResult::CANCELLED;
    print_head(path);
    int32_t lines = 2;
    for (int32_t row = first; row <= last; row++) {
        const char* text = nullptr;
        const RowFound found = find_row(row, &text);
        if (found == RowFound::UNREADABLE) {
            abandon_print_document();
            return ListingResult::UNREADABLE;
        }
        if (found == RowFound::NO_ROW)
            break;
        set_print_font(FACE, ROW_POINTS);
        print_whole_line(text);
        count_print_line(&lines);
        pump_one_message();
    }
    return end_print_document() ? ListingResult::PRINTED : ListingResult::NOT_COMPLETE;
}

}  // namespace hexlane
