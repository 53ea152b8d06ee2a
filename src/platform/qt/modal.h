// modal.h: dialogs that are modal to the whole program: boxes, views and file dialogs, one on the other.
// Main thread only.
#pragma once

#include <QDialog>

namespace hexlane::platform {

// The widget that a new dialog stands in front of: the topmost modal one or the main window; nullptr when
// that is not to be seen, since its dialogs would not be either.
QWidget* modal_parent();

// A dialog is modal from here to the end of the scope. The first one takes the focus from the main window,
// the last one gives it back.
class ModalScope {
public:
    explicit ModalScope(QDialog* dialog);
    ~ModalScope();
    ModalScope(const ModalScope&) = delete;
    ModalScope& operator=(const ModalScope&) = delete;

private:
    QDialog* shown;
};

// Shows `dialog` in a scope of its own and runs until it is closed; gives its result.
int run_modal(QDialog* dialog);

bool modal_is_up();
QWidget* top_modal();  // nullptr when there is none

// The width in logical pixels that shows a dialog's title whole.
int title_width(const QDialog* dialog);

}  // namespace hexlane::platform
