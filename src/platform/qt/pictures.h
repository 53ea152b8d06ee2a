// pictures.h: the pictures that views name. Main thread only.
#pragma once

#include <QPixmap>
#include <QWidget>

namespace hexlane::platform {

// "COL1" to "COL16" are the squares of the colour palette; every other name is the program's icon. `size` is
// the edge in logical pixels, `shown_on` tells the screen.
QPixmap named_picture(const QString& name, int size, const QWidget* shown_on);

}  // namespace hexlane::platform
