// printing.cpp: print jobs through the system's print service; without a default printer, into a PDF file.

#include "platform/printing.h"

#include <map>
#include <memory>
#include <string>
#include <utility>

#include <QFont>
#include <QFontMetrics>
#include <QPainter>
#include <QPrinter>
#include <QPrinterInfo>

#include "platform/common/code_page.h"
#include "platform/common/pdf_job.h"
#include "platform/text.h"

namespace hexlane::platform {

namespace {

// What stands in for a face that the system lacks.
struct FaceHint {
    const char* face;
    QFont::StyleHint hint;
};
constexpr FaceHint FACE_HINTS[] = {{"Times New Roman", QFont::Serif}, {"Courier", QFont::Monospace}};

struct Job {
    bool in_pdf = false;
    bool first_page = true;
    std::unique_ptr<QPrinter> printer;
    std::unique_ptr<QPainter> painter;
    int ascent = 0;                                      // of the font in use, dots
    std::map<std::pair<std::string, int>, QFont> fonts;  // by face and dots
};
Job job;
std::string problem;

QFont make_font(const char* face, int dots) {
    QFont font(QString::fromUtf8(face));
    for (const FaceHint& line : FACE_HINTS) {
        if (line.face == std::string_view(face)) {
            font.setStyleHint(line.hint);
        }
    }
    font.setPixelSize(dots);
    return font;
}

// Controls have no look of their own on paper.
QString shown_text(const char* text, int count) {
    QString shown;
    for (int i = 0; i < count; i++) {
        const auto byte = static_cast<uint8_t>(text[i]);
        const bool control = byte < 0x20 || byte == 0x7F;
        shown += control ? QChar(' ') : QChar(static_cast<char16_t>(byte_to_unicode(byte)));
    }
    return shown;
}

int begin_pdf(const char* title, const char* path) {
    job.in_pdf = pdf_begin(title, path);
    problem = job.in_pdf ? "" : pdf_problem_text();
    return job.in_pdf ? 1 : 0;
}

int begin_on_printer(const char* title, const QPrinterInfo& info) {
    job.printer = std::make_unique<QPrinter>(info, QPrinter::HighResolution);
    job.printer->setDocName(QString::fromUtf8(title));
    job.painter = std::make_unique<QPainter>();
    if (!job.painter->begin(job.printer.get())) {
        problem = "the printer " + info.printerName().toStdString() + " takes no job";
        job = Job();
        return 0;
    }
    return 1;
}

}  // namespace

int default_printer(char* name, std::size_t size) {
    const QPrinterInfo info = QPrinterInfo::defaultPrinter();
    copy_text(name, size, info.isNull() ? "" : info.printerName().toUtf8().constData());
    return info.isNull() ? 0 : 1;
}

int print_begin(const char* title, const char* pdf_path) {
    job = Job();
    problem.clear();
    if (pdf_path != nullptr && *pdf_path != '\0') {
        return begin_pdf(title, pdf_path);
    }
    const QPrinterInfo info = QPrinterInfo::defaultPrinter();
    if (!info.isNull()) {
        return begin_on_printer(title, info);
    }
    char path[PATH_SIZE];
    return ask_pdf_path(path) ? begin_pdf(title, path) : -1;
}

const char* print_problem_text() {
    return problem.c_str();
}

int print_dots_per_inch() {
    return job.in_pdf ? pdf_dots_per_inch() : job.printer->logicalDpiY();
}

int print_select_font(const char* face, int dots, int* height, int* leading) {
    if (job.in_pdf) {
        return pdf_select_font(face, dots, height, leading);
    }
    auto found = job.fonts.find({face, dots});
    if (found == job.fonts.end()) {
        found = job.fonts.emplace(std::make_pair(std::string(face), dots), make_font(face, dots)).first;
    }
    job.painter->setFont(found->second);
    const QFontMetrics metrics(found->second, job.printer.get());
    job.ascent = metrics.ascent();
    *height = metrics.height();
    *leading = metrics.leading();
    return 1;
}

void print_text(int x, int y, const char* text, int count) {
    if (job.in_pdf) {
        pdf_text(x, y, text, count);
    } else {
        job.painter->drawText(x, y + job.ascent, shown_text(text, count));
    }
}

void print_start_page() {
    if (job.in_pdf) {
        pdf_start_page();
    } else if (!std::exchange(job.first_page, false)) {  // the painter has begun the first one
        job.printer->newPage();
    }
}

void print_end_page() {
    if (job.in_pdf) {
        pdf_end_page();
    }
}

int print_end() {
    int taken = 1;
    if (job.in_pdf) {
        taken = pdf_end();
        problem = pdf_problem_text();
    } else {
        const bool painted = job.painter->end();
        const QPrinter::PrinterState state = job.printer->printerState();
        taken = painted && state != QPrinter::Error && state != QPrinter::Aborted;
        problem = taken ? "" : "the printer has not taken it";
    }
    job = Job();
    return taken;
}

void print_abandon() {
    if (job.in_pdf) {
        pdf_abandon();
    } else {
        job.printer->abort();
        job.painter->end();
    }
    job = Job();
}

}  // namespace hexlane::platform
