// view_window.h: a view on the screen: its record, and how its controls become widgets.
// Owned by views.cpp, which keeps one record for each handle. Main thread only.
#pragma once

#include <vector>

#include <QDialog>
#include <QWidget>

#include "platform/views.h"

namespace hexlane::platform {

struct View {
    ViewHandle handle = NO_WINDOW;
    const ViewSpec* spec = nullptr;
    QWidget* window = nullptr;
    QDialog* dialog = nullptr;       // the same window of a modal view; nullptr for a child view
    std::vector<QWidget*> controls;  // in the order of the view's table
    std::vector<bool> changed;       // by control: since it was last drawn at once
    int chosen_field = 0;            // id
    int result = 0;
    bool ended = false;
};

// Makes the widgets of a modal view and lays them out by their grid.
void make_dialog(View* view, QWidget* parent);

// Makes the strip of a child view: its controls in a row, each with its share of the width.
void make_strip(View* view);

// Index of a control, -1 when the view has none of that id.
int control_index(const View* view, int id);

// What the person did to a control reaches the view's procedure; a bad value in a field stops it.
void press_control(View* view, int index);

// Esc and the close box: the cancel button, or WM_CLOSE where there is none.
void cancel_view(View* view);

// Shows `hint` in the first field of a strip in place of its text; an empty one brings the text back.
void show_strip_hint(View* view, const QString& hint);

// The text of a label of a strip, which a hint only covers.
QString strip_text(const View* view, int index);
void set_strip_text(View* view, int index, const QString& text);

// The main window is gone, and its child view with it.
void forget_child_view();

}  // namespace hexlane::platform
