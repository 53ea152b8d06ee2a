// modal.cpp: running dialogs in front of the main window.

#include "platform/qt/modal.h"

#include <vector>

#include "platform/qt/main_window.h"
#include "platform/qt/pointer.h"

namespace hexlane::platform {

namespace {

std::vector<QDialog*> modals;  // the topmost one last

}  // namespace

QWidget* modal_parent() {
    if (!modals.empty()) {
        return modals.back();
    }
    MainWindow* window = main_window();
    return window != nullptr && window->isVisible() && !window->isMinimized() ? window : nullptr;
}

int run_modal(QDialog* dialog) {
    if (modals.empty()) {
        if (MainWindow* window = main_window()) {
            window->lose_focus();
        }
        suspend_wait_pointer();
    }
    modals.push_back(dialog);
    dialog->setWindowModality(Qt::ApplicationModal);
    const int result = dialog->exec();
    dialog->hide();
    std::erase(modals, dialog);
    if (modals.empty()) {
        resume_wait_pointer();
        if (MainWindow* window = main_window()) {
            window->gain_focus();
        }
    }
    return result;
}

bool modal_is_up() {
    return !modals.empty();
}

QWidget* top_modal() {
    return modals.empty() ? nullptr : modals.back();
}

}  // namespace hexlane::platform
