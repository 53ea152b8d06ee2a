#include "platform/common/pdf_job.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"
#include "platform/common/code_page.h"
#include "platform/files.h"
#include "platform/text.h"

namespace hexlane::platform {

namespace {

constexpr int DOTS_PER_INCH = 600;
constexpr int POINTS_PER_INCH = 72;
constexpr int PAGE_WIDTH = 595;  // points, A4
constexpr int PAGE_HEIGHT = 842;
constexpr int MARGIN = 28;  // points on every side
constexpr int FIRST_PRINTABLE = 0x20;
constexpr int DELETE_CODE = 0x7F;
constexpr std::size_t FLUSH_BYTES = 1 << 16;
constexpr char PDF_MARK[] = "%PDF-";

// Sizes in thousandths of the font's: from the top of the line to the letters' foot, the line, the gap
// wanted.
struct Typeface {
    const char* asked_for;
    const char* name;  // of the standard font
    int ascent;
    int height;
    int leading;
};
constexpr Typeface TYPEFACES[] = {
    {"Times New Roman", "Times-Roman", 891, 1107, 42},
    {"Courier", "Courier", 833, 1133, 0},
};
constexpr int TYPEFACE_COUNT = sizeof TYPEFACES / sizeof TYPEFACES[0];

// Objects with numbers of their own; those of the pages follow.
constexpr int CATALOG = 1;
constexpr int PAGE_TREE = 2;
constexpr int INFORMATION = 3;
constexpr int FIRST_FONT = 4;
constexpr int FIRST_FREE = FIRST_FONT + TYPEFACE_COUNT;

struct Job {
    std::string target;  // the file that the job becomes
    std::string path;    // where it is written meanwhile
    FileHandle file = NO_FILE;
    FileHandle old = NO_FILE;  // the target as it was
    int64_t position = 0;      // of the bytes in `waiting`
    std::string waiting;
    bool failed = false;
    std::vector<int64_t> offsets;  // by object number
    std::vector<int> pages;        // object numbers
    std::string content;           // of the page under way
    int typeface = 0;
    int size = 0;           // dots
    bool font_set = false;  // on the page under way
};
Job job;
std::string problem;

// ---- The file ----------------------------------------------------------------------------------------

void note_failure() {
    if (!job.failed) {
        problem = file_error_text(last_file_error());
    }
    job.failed = true;
}

void flush() {
    if (!job.failed && !job.waiting.empty() &&
        !file_write_at(job.file, job.position, job.waiting.data(), job.waiting.size())) {
        note_failure();
    }
    job.position += static_cast<int64_t>(job.waiting.size());
    job.waiting.clear();
}

void put(std::string_view text) {
    job.waiting += text;
    if (job.waiting.size() >= FLUSH_BYTES) {
        flush();
    }
}

[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...) {
    char text[256];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    return text;
}

void put_object(int number, const std::string& body) {
    const auto place = static_cast<std::size_t>(number);
    if (job.offsets.size() <= place) {
        job.offsets.resize(place + 1, 0);
    }
    job.offsets[place] = job.position + static_cast<int64_t>(job.waiting.size());
    put(formatted("%d 0 obj\n", number));
    put(body);
    put("\nendobj\n");
}

// Whether what is there may make room for a PDF file: another one, or an empty file. A wrong name must not
// cost an NC program.
bool may_be_replaced(FileHandle old) {
    char front[sizeof PDF_MARK - 1];
    const int64_t count = file_read_at(old, 0, front, sizeof front);
    return count == 0 || (count == sizeof front && std::memcmp(front, PDF_MARK, sizeof front) == 0);
}

// Opens the file that will be replaced, if there is one, for its mode. Gives false when the job cannot go
// there.
bool open_old() {
    job.old = file_open(job.target.c_str(), FileAccess::READ_WRITE);
    if (job.old == NO_FILE) {
        return last_file_error() == FileError::NOT_FOUND;
    }
    if (!may_be_replaced(job.old)) {
        problem = "the file that is there is no PDF file, and stays";
        return false;
    }
    return true;
}

// A name beside the target that nobody else uses; the target of a link keeps its link.
bool open_output(const char* path) {
    char target[PATH_SIZE];
    if (!follow_links(path, target, sizeof target)) {
        set_last_file_error(FileError::NAME_TOO_LONG);
        return false;
    }
    job.target = target;
    if (!open_old()) {
        return false;
    }
    uint32_t random = 0;
    random_bytes(&random, sizeof random);
    job.path = job.target + formatted(".%08x", random);
    job.file = file_create(job.path.c_str(), FileCreate::NEW);
    return job.file != NO_FILE;
}

void close_old() {
    if (job.old != NO_FILE) {
        file_close(job.old);
    }
}

// Complete and on the medium, with the old one's mode, in its place.
bool put_in_place() {
    const bool flushed = (job.old == NO_FILE || file_adopt_mode(job.file, job.old)) && file_flush(job.file);
    if (!flushed) {
        note_failure();
    }
    if (!file_close(job.file)) {
        note_failure();
    }
    if (!job.failed && !rename_file(job.path.c_str(), job.target.c_str())) {
        note_failure();
    }
    if (!job.failed) {
        (void)flush_folder_of(job.target.c_str());  // not every folder can; the new file is whole either way
    }
    return !job.failed;
}

// ---- Texts -------------------------------------------------------------------------------------------

std::string literal(std::string_view bytes) {
    std::string text = "(";
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (byte == '(' || byte == ')' || byte == '\\') {
            text += '\\';
        }
        text += code < FIRST_PRINTABLE || code == DELETE_CODE ? ' ' : byte;
    }
    return text + ')';
}

// A text of the document's information, whatever it holds: UTF-16 in hexadecimal.
std::string information_text(const char* utf8) {
    char bytes[2 * PATH_SIZE];
    text_to_bytes(bytes, sizeof bytes, utf8);
    std::string text = "<FEFF";
    for (const char* byte = bytes; *byte != '\0'; byte++) {
        text += formatted("%04X", static_cast<unsigned>(byte_to_unicode(static_cast<uint8_t>(*byte))));
    }
    return text + '>';
}

std::string page_tree() {
    std::string kids;
    for (const int page : job.pages) {
        kids += formatted("%d 0 R\n", page);
    }
    return formatted("<< /Type /Pages /Count %zu /MediaBox [0 0 %d %d]\n/Resources << /Font << /F0 %d 0 R "
                     "/F1 %d 0 R >> >>\n"
                     "/Kids [",
                     job.pages.size(), PAGE_WIDTH, PAGE_HEIGHT, FIRST_FONT, FIRST_FONT + 1) +
           kids + "] >>";
}

void put_end() {
    put_object(PAGE_TREE, page_tree());
    put_object(CATALOG, formatted("<< /Type /Catalog /Pages %d 0 R >>", PAGE_TREE));
    const int64_t table = job.position + static_cast<int64_t>(job.waiting.size());
    put(formatted("xref\n0 %zu\n0000000000 65535 f \n", job.offsets.size()));
    for (std::size_t number = 1; number < job.offsets.size(); number++) {
        put(formatted("%010lld 00000 n \n", static_cast<long long>(job.offsets[number])));
    }
    put(formatted("trailer\n<< /Size %zu /Root %d 0 R /Info %d 0 R >>\nstartxref\n%lld\n%%%%EOF\n",
                  job.offsets.size(), CATALOG, INFORMATION, static_cast<long long>(table)));
    flush();
}

}  // namespace

int pdf_begin(const char* title, const char* path) {
    job = Job();
    problem.clear();
    if (!open_output(path)) {
        if (problem.empty()) {
            problem = file_error_text(last_file_error());
        }
        close_old();
        return 0;
    }
    put("%PDF-1.4\n%\xE2\xE3\xCF\xD3\n");
    put_object(INFORMATION, "<< /Title " + information_text(title) + " /Producer (Hexlane NC Editor) >>");
    for (int i = 0; i < TYPEFACE_COUNT; i++) {
        put_object(FIRST_FONT + i,
                   formatted("<< /Type /Font /Subtype /Type1 /BaseFont /%s /Encoding /WinAnsiEncoding >>",
                             TYPEFACES[i].name));
    }
    job.offsets.resize(FIRST_FREE, 0);
    return 1;
}

int pdf_dots_per_inch() {
    return DOTS_PER_INCH;
}

int pdf_select_font(const char* face, int dots, int* height, int* leading) {
    int typeface = 0;
    while (typeface < TYPEFACE_COUNT - 1 && std::strcmp(TYPEFACES[typeface].asked_for, face) != 0) {
        typeface++;
    }
    job.font_set = job.font_set && job.typeface == typeface && job.size == dots;
    job.typeface = typeface;
    job.size = dots;
    *height = dots * TYPEFACES[typeface].height / 1000;
    *leading = dots * TYPEFACES[typeface].leading / 1000;
    return 1;
}

void pdf_text(int x, int y, const char* text, int count) {
    if (!job.font_set) {
        job.content += formatted("/F%d %d Tf\n", job.typeface, job.size);
        job.font_set = true;
    }
    const int foot = y + job.size * TYPEFACES[job.typeface].ascent / 1000;
    const int left = MARGIN * DOTS_PER_INCH / POINTS_PER_INCH + x;
    const int up = (PAGE_HEIGHT - MARGIN) * DOTS_PER_INCH / POINTS_PER_INCH - foot;
    job.content += formatted("1 0 0 1 %d %d Tm ", left, up);
    job.content += literal(std::string_view(text, static_cast<std::size_t>(count))) + " Tj\n";
}

void pdf_start_page() {
    job.content = formatted("%.2f 0 0 %.2f 0 0 cm\nBT\n", 1.0 * POINTS_PER_INCH / DOTS_PER_INCH,
                            1.0 * POINTS_PER_INCH / DOTS_PER_INCH);
    job.font_set = false;
}

void pdf_end_page() {
    job.content += "ET";
    const int content = static_cast<int>(job.offsets.size());
    const int page = content + 1;
    put_object(content,
               formatted("<< /Length %zu >>\nstream\n", job.content.size()) + job.content + "\nendstream");
    put_object(page, formatted("<< /Type /Page /Parent %d 0 R /Contents %d 0 R >>", PAGE_TREE, content));
    job.pages.push_back(page);
}

int pdf_end() {
    put_end();
    const bool complete = put_in_place();
    if (!complete) {
        delete_file(job.path.c_str());
    }
    close_old();
    job = Job();
    return complete ? 1 : 0;
}

void pdf_abandon() {
    file_close(job.file);
    delete_file(job.path.c_str());
    close_old();
    job = Job();
}

const char* pdf_problem_text() {
    return problem.c_str();
}

}  // namespace hexlane::platform
