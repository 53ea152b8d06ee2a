// pictures.cpp: palette squares and the program's icon.

#include "platform/qt/pictures.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>

namespace hexlane::platform {

namespace {

constexpr QRgb PALETTE[] = {
    0xFF000000, 0xFFFFFFFF, 0xFF808080, 0xFFC0C0C0, 0xFFFF0000, 0xFF800000, 0xFFFFFF00, 0xFF808000,
    0xFF00FF00, 0xFF008000, 0xFF00FFFF, 0xFF008080, 0xFF0000FF, 0xFF000080, 0xFFFF00FF, 0xFF800080,
};
constexpr int PALETTE_SIZE = sizeof PALETTE / sizeof PALETTE[0];

}  // namespace

QPixmap named_picture(const QString& name, int size, const QWidget* shown_on) {
    const int number = name.startsWith(QStringLiteral("COL")) ? name.mid(3).toInt() : 0;
    if (number >= 1 && number <= PALETTE_SIZE) {
        QPixmap square(size, size);
        square.fill(QColor::fromRgb(PALETTE[number - 1]));
        QPainter painter(&square);
        painter.setPen(Qt::darkGray);
        painter.drawRect(0, 0, size - 1, size - 1);
        return square;
    }
    return QApplication::windowIcon().pixmap(QSize(size, size), shown_on->devicePixelRatioF());
}

}  // namespace hexlane::platform
