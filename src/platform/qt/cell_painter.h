// cell_painter.h: a grid of cells drawn in a fixed-pitch font, in whole pixels of the screen.
// Everything here is in device pixels: a cell has a whole number of them at every scale factor, whole or
// fractional, so that each letter looks the same in every cell and no edge is smeared. Main thread only.
#pragma once

#include <array>
#include <vector>

#include <QFont>
#include <QPainter>
#include <QRawFont>
#include <QString>

#include "platform/common/cell_grid.h"

namespace hexlane::platform {

// The desktop's fixed-pitch font, or another one when that is none, at the size for one screen.
struct CellFont {
    QFont font;
    QRawFont outlines;
    int width = CELL_WIDTH;             // of a cell, device pixels
    int height = CELL_HEIGHT;           // of a cell, device pixels
    int baseline = 0;                   // below the cell's top, device pixels
    qreal ratio = 0;                    // device pixels per logical one that it was made for
    std::array<quint32, 256> glyphs{};  // by byte; 0 where the font has none that fits into a cell
    std::array<QString, 256> texts;     // by byte; empty where no font of the system has a glyph
};

// Makes the font for a screen with `ratio` device pixels to a logical one and `dpi` logical pixels to the
// inch.
void make_cell_font(CellFont* cells, qreal ratio, qreal dpi);

// Turns a painter on a widget to device pixels, with its origin on a whole one.
void use_device_pixels(QPainter* painter, qreal ratio);

// Draws cell rows `first` to `last`, the grid's corner at (0, 0).
void paint_cells(QPainter* painter, const CellFont& cells, const CellGrid& grid, int first, int last);

// The caret's block in device pixels.
QRect caret_rectangle(const CellFont& cells, const CellGrid& grid);

}  // namespace hexlane::platform
