// modal.cpp: running dialogs in front of the main window.

#include "platform/qt/modal.h"

#include <vector>

#include <QGuiApplication>

#include "platform/qt/main_window.h"
#include "platform/qt/pointer.h"

namespace hexlane::platform {

namespace {

std::vector<QDialog*> modals;  // the topmost one last

}  // namespace

QWidget* modal_parent() {
    if (!modals.empty() && modals.back()->isVisible()) {
        return modals.back();
    }
    MainWindow* window = main_window();
    return window != nullptr && window->isVisible() && !window->isMinimized() ? window : nullptr;
}

ModalScope::ModalScope(QDialog* dialog) : shown(dialog) {
    if (modals.empty()) {
        if (MainWindow* window = main_window()) {
            window->lose_focus();
        }
        suspend_wait_pointer();
    }
    modals.push_back(shown);
    shown->setWindowModality(Qt::ApplicationModal);
}

// A window manager may look for the next window to have the keyboard among those that go in the same moment,
// and then gives it to none.
ModalScope::~ModalScope() {
    const bool has_keyboard = QGuiApplication::applicationState() == Qt::ApplicationActive;
    shown->hide();
    std::erase(modals, shown);
    if (QWidget* behind = modal_parent(); behind != nullptr && has_keyboard) {
        behind->activateWindow();
    }
    if (modals.empty()) {
        resume_wait_pointer();
        if (MainWindow* window = main_window()) {
            window->gain_focus();
        }
    }
}

int run_modal(QDialog* dialog) {
    const ModalScope scope(dialog);
    return dialog->exec();
}

bool modal_is_up() {
    return !modals.empty();
}

QWidget* top_modal() {
    return modals.empty() ? nullptr : modals.back();
}

// Window managers cut a title that is wider than its window; they write it in bold letters.
int title_width(const QDialog* dialog) {
    constexpr int ICON_AND_BUTTONS = 8;  // line heights
    QFont bold = dialog->font();
    bold.setBold(true);
    return QFontMetrics(bold).horizontalAdvance(dialog->windowTitle()) +
           ICON_AND_BUTTONS * dialog->fontMetrics().height();
}

}  // namespace hexlane::platform
