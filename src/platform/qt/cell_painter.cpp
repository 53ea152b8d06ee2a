// cell_painter.cpp: measuring the font, and drawing runs of cells of one colour.

#include "platform/qt/cell_painter.h"

#include <algorithm>
#include <cmath>

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGlyphRun>

#include "platform/common/code_page.h"

namespace hexlane::platform {

namespace {

constexpr qreal POINTS_PER_INCH = 72.0;
constexpr qreal LEAST_POINT_SIZE = 10.0;  // a program is read from further away than a letter
constexpr uint8_t FIRST_PRINTABLE = 0x20;
constexpr int CONTROL_LETTERS = '@';  // of the control 0; the others follow

QColor screen_color(Color color) {
    return {static_cast<int>(color & 0xFF), static_cast<int>(color >> 8 & 0xFF),
            static_cast<int>(color >> 16 & 0xFF)};
}

// Size of the desktop's fixed-pitch font in device pixels.
int pixel_size(const QFont& font, qreal ratio, qreal dpi) {
    const qreal least = LEAST_POINT_SIZE * dpi / POINTS_PER_INCH;
    const qreal told = font.pixelSize() > 0 ? font.pixelSize() : font.pointSizeF() * dpi / POINTS_PER_INCH;
    return static_cast<int>(std::lround(std::max(told, least) * ratio));
}

// Whether narrow and wide letters take the same width.
bool is_fixed(const QFont& font) {
    const QFontMetricsF metrics(font);
    return std::abs(metrics.horizontalAdvance(QLatin1Char('M')) -
                    metrics.horizontalAdvance(QLatin1Char('i'))) < 1;
}

// The font that the desktop names for fixed text. What it names may be missing, or be none of fixed width;
// then any that is, if there is one.
QFont fixed_font() {
    const QFont named = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (is_fixed(named)) {
        return named;
    }
    QFont other = named;
    for (const QString& family : QFontDatabase::families(QFontDatabase::Latin)) {
        other.setFamily(family);
        if (QFontDatabase::isFixedPitch(family) && is_fixed(other)) {
            return other;
        }
    }
    return named;
}

// A byte without a glyph that fits: from another font if this one has none, made narrower where it is too
// wide.
void paint_foreign_cell(QPainter* painter, const CellFont& cells, const QString& text, const QPoint& corner) {
    const qreal advance = QFontMetricsF(cells.font).horizontalAdvance(text);
    const qreal squeeze = advance > cells.width ? cells.width / advance : 1.0;
    painter->save();
    painter->setClipRect(QRect(corner, QSize(cells.width, cells.height)), Qt::IntersectClip);
    painter->translate(corner.x() + (cells.width - advance * squeeze) / 2, corner.y() + cells.baseline);
    painter->scale(squeeze, 1.0);
    painter->setFont(cells.font);
    painter->drawText(QPointF(0, 0), text);
    painter->restore();
}

// A byte that no font shows: a frame, and in it the letter of a control's Ctrl key.
void paint_framed_cell(QPainter* painter, const CellFont& cells, uint8_t byte, const QPoint& corner) {
    const int line = std::max(1, cells.width / CELL_WIDTH);
    const QRect frame(corner.x(), corner.y() + cells.height / 8, cells.width - line,
                      cells.height - cells.height / 4);
    const QColor ink = painter->pen().color();
    painter->fillRect(frame.x(), frame.y(), frame.width(), line, ink);
    painter->fillRect(frame.x(), frame.bottom() + 1 - line, frame.width(), line, ink);
    painter->fillRect(frame.x(), frame.y(), line, frame.height(), ink);
    painter->fillRect(frame.right() + 1 - line, frame.y(), line, frame.height(), ink);
    if (byte < FIRST_PRINTABLE) {
        QFont small = cells.font;
        small.setPixelSize(std::max(1, cells.font.pixelSize() * 2 / 3));
        painter->setFont(small);
        painter->drawText(frame, Qt::AlignCenter, QChar(CONTROL_LETTERS + byte));
    }
}

void paint_other_cell(QPainter* painter, const CellFont& cells, uint8_t byte, const QPoint& corner) {
    if (cells.texts[byte].isEmpty()) {
        paint_framed_cell(painter, cells, byte, corner);
    } else {
        paint_foreign_cell(painter, cells, cells.texts[byte], corner);
    }
}

// Cells `first` to `last` of one row, all of one ink and one paper.
void paint_run(QPainter* painter, const CellFont& cells, const Cell* row, int y, int first, int last) {
    const int left = first * cells.width;
    painter->fillRect(left, y, (last - first + 1) * cells.width, cells.height,
                      screen_color(row[first].paper));
    painter->setPen(screen_color(row[first].ink));
    QList<quint32> glyphs;
    QList<QPointF> places;
    for (int col = first; col <= last; col++) {
        const uint8_t byte = row[col].byte;
        if (byte == ' ') {
            continue;
        }
        if (cells.glyphs[byte] == 0) {
            paint_other_cell(painter, cells, byte, {col * cells.width, y});
            continue;
        }
        glyphs.append(cells.glyphs[byte]);
        places.append(QPointF(col * cells.width, y + cells.baseline));
    }
    if (!glyphs.isEmpty()) {
        QGlyphRun run;
        run.setRawFont(cells.outlines);
        run.setGlyphIndexes(glyphs);
        run.setPositions(places);
        painter->drawGlyphRun({0, 0}, run);
    }
}

}  // namespace

void make_cell_font(CellFont* cells, qreal ratio, qreal dpi) {
    cells->ratio = ratio;
    cells->font = fixed_font();
    cells->font.setStyleHint(QFont::Monospace);
    cells->font.setPixelSize(pixel_size(cells->font, ratio, dpi));
    cells->outlines = QRawFont::fromFont(cells->font);
    const QFontMetricsF metrics(cells->font);
    cells->width = std::max(1, static_cast<int>(std::lround(metrics.horizontalAdvance(QLatin1Char('0')))));
    cells->baseline = static_cast<int>(std::lround(metrics.ascent()));
    cells->height = cells->baseline + std::max(1, static_cast<int>(std::lround(metrics.descent())));
    const QFontMetrics all_fonts(cells->font);
    for (std::size_t byte = 0; byte < cells->glyphs.size(); byte++) {
        const char32_t code_point = byte_to_unicode(static_cast<uint8_t>(byte));
        const QString text = QString::fromUcs4(&code_point, 1);
        const QList<quint32> found = cells->outlines.glyphIndexesForString(text);
        const bool fits = metrics.horizontalAdvance(text) < cells->width + 1;
        cells->glyphs[byte] = found.size() == 1 && fits ? found[0] : 0;
        cells->texts[byte] = all_fonts.inFontUcs4(code_point) ? text : QString();
    }
}

// A widget may begin on a fraction of a device pixel; then everything in it moves by less than one.
void use_device_pixels(QPainter* painter, qreal ratio) {
    painter->scale(1.0 / ratio, 1.0 / ratio);
    const QTransform device = painter->deviceTransform();
    painter->translate(std::round(device.dx()) - device.dx(), std::round(device.dy()) - device.dy());
}

void paint_cells(QPainter* painter, const CellFont& cells, const CellGrid& grid, int first, int last) {
    first = std::max(first, 0);
    last = std::min(last, grid.rows - 1);
    for (int y = first; y <= last; y++) {
        const Cell* row = grid.cells.data() + static_cast<std::ptrdiff_t>(y) * grid.cols;
        for (int start = 0, col = 1; start < grid.cols; col++) {
            if (col == grid.cols || row[col].ink != row[start].ink || row[col].paper != row[start].paper) {
                paint_run(painter, cells, row, y * cells.height, start, col - 1);
                start = col;
            }
        }
    }
}

QRect caret_rectangle(const CellFont& cells, const CellGrid& grid) {
    return {grid.caret_x * cells.width / CELL_WIDTH, grid.caret_y * cells.height / CELL_HEIGHT,
            std::max(1, grid.caret_width * cells.width / CELL_WIDTH),
            std::max(1, grid.caret_height * cells.height / CELL_HEIGHT)};
}

}  // namespace hexlane::platform
