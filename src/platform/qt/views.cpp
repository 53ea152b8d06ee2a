// views.cpp: the view toolkit's calls on the records and widgets of the views.

#include "platform/views.h"

#include <map>

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalBlocker>

#include "platform/qt/application.h"
#include "platform/qt/dispatch.h"
#include "platform/qt/main_window.h"
#include "platform/qt/menu.h"
#include "platform/qt/modal.h"
#include "platform/qt/view_window.h"
#include "platform/text.h"

namespace hexlane::platform {

namespace {

std::map<ViewHandle, View> views;

View* find_view(ViewHandle view) {
    const auto found = views.find(view);
    return found == views.end() ? nullptr : &found->second;
}

View* child_view() {
    for (auto& entry : views) {
        if (entry.second.dialog == nullptr) {
            return &entry.second;
        }
    }
    return nullptr;
}

// The widget of a control, if it is of the type asked for; nullptr otherwise. It counts as changed from now
// on.
template <typename Widget>
Widget* changed_control(ViewHandle handle, int id) {
    View* view = find_view(handle);
    const int index = view != nullptr ? control_index(view, id) : -1;
    if (index < 0) {
        return nullptr;
    }
    view->changed[static_cast<std::size_t>(index)] = true;
    return qobject_cast<Widget*>(view->controls[static_cast<std::size_t>(index)]);
}

template <typename Widget>
Widget* control(ViewHandle handle, int id) {
    View* view = find_view(handle);
    const int index = view != nullptr ? control_index(view, id) : -1;
    return index < 0 ? nullptr : qobject_cast<Widget*>(view->controls[static_cast<std::size_t>(index)]);
}

View* add_view(const ViewSpec* spec, WindowProcedure procedure) {
    const ViewHandle handle = add_window(procedure);
    View& view = views[handle];
    view.handle = handle;
    view.spec = spec;
    view.changed.assign(static_cast<std::size_t>(spec->control_count), true);
    return &view;
}

void remove_view(ViewHandle handle) {
    remove_window(handle);
    views.erase(handle);
}

void set_control_text(View* view, int index, const QString& text) {
    QWidget* widget = view->controls[static_cast<std::size_t>(index)];
    if (view->dialog == nullptr) {
        set_strip_text(view, index, text);
    } else if (auto* label = qobject_cast<QLabel*>(widget)) {
        label->setText(text);
    } else if (auto* field = qobject_cast<QLineEdit*>(widget)) {
        field->setText(text);
    } else if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
        button->setText(text);
    }
}

QString control_text(const View* view, int index) {
    if (view->dialog == nullptr) {
        return strip_text(view, index);
    }
    const QWidget* widget = view->controls[static_cast<std::size_t>(index)];
    if (const auto* field = qobject_cast<const QLineEdit*>(widget)) {
        return field->text();
    }
    if (const auto* choice = qobject_cast<const QComboBox*>(widget)) {
        return choice->currentText();
    }
    if (const auto* label = qobject_cast<const QLabel*>(widget)) {
        return label->text();
    }
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    return button != nullptr ? button->text() : QString();
}

}  // namespace

int control_index(const View* view, int id) {
    for (int i = 0; i < view->spec->control_count; i++) {
        if (view->spec->controls[i].id == id) {
            return i;
        }
    }
    return -1;
}

void forget_child_view() {
    if (const View* view = child_view()) {
        remove_view(view->handle);
    }
}

// ---- Life --------------------------------------------------------------------------------------------

ViewHandle view_create(const ViewSpec* spec, WindowHandle, WindowProcedure procedure) {
    View* view = add_view(spec, procedure);
    make_dialog(view, modal_parent());
    return view->handle;
}

int view_run(ViewHandle handle) {
    View* view = find_view(handle);
    if (view == nullptr || view->dialog == nullptr || view->dialog->isVisible()) {
        return -1;
    }
    {
        const ModalScope scope(view->dialog);
        call_window(handle, WM_INITDIALOG, 0, 0);
        if (!view->ended) {
            view->dialog->exec();
        }
    }
    const int result = view->result;
    delete view->dialog;
    remove_view(handle);
    return result;
}

void view_end(ViewHandle handle, int result) {
    View* view = find_view(handle);
    if (view != nullptr && view->dialog != nullptr) {
        view->result = result;
        view->ended = true;
        view->dialog->done(result);
    }
}

void view_attach(ViewHandle) {}

int64_t view_default(ViewHandle handle, uint32_t message, int64_t first, int64_t) {
    const View* view = find_view(handle);
    if (view == nullptr || view->dialog == nullptr) {
        return 0;
    }
    bool ends = message == WM_CLOSE;
    if (message == WM_COMMAND) {
        const int index = control_index(view, low_word(first));
        ends = index >= 0 && view->spec->controls[index].flags & CONTROL_CANCEL;
    }
    if (ends) {
        view_end(handle, 0);
    }
    return 0;
}

ViewHandle view_create_child(WindowHandle parent, const ViewSpec* spec, WindowProcedure procedure) {
    MainWindow* window = main_window();
    if (window == nullptr || window->handle != parent || child_view() != nullptr) {
        return NO_WINDOW;
    }
    View* view = add_view(spec, procedure);
    make_strip(view);
    window->set_status_line(view->window);
    call_window(view->handle, WM_INITDIALOG, 0, 0);
    return view->handle;
}

// ---- Controls ----------------------------------------------------------------------------------------

void view_choose_field(ViewHandle handle, int id) {
    if (View* view = find_view(handle)) {
        view->chosen_field = id;
    }
}

void view_set_text(ViewHandle handle, const char* text) {
    View* view = find_view(handle);
    const int index = view != nullptr ? control_index(view, view->chosen_field) : -1;
    if (index < 0) {
        return;
    }
    const QString wanted = QString::fromUtf8(text);
    if (control_text(view, index) != wanted) {
        set_control_text(view, index, wanted);
        view->changed[static_cast<std::size_t>(index)] = true;
    }
}

void view_get_text(ViewHandle handle, int id, char* text, std::size_t size) {
    const View* view = find_view(handle);
    const int index = view != nullptr ? control_index(view, id) : -1;
    copy_text(text, size, index < 0 ? "" : control_text(view, index).toUtf8().constData());
}

void view_hide_control(ViewHandle handle, int id) {
    if (auto* widget = changed_control<QWidget>(handle, id)) {
        widget->hide();
    }
}

void view_show_control(ViewHandle handle, int id) {
    if (auto* widget = changed_control<QWidget>(handle, id)) {
        widget->show();
    }
}

void view_enable_control(ViewHandle handle, int id, bool enabled) {
    if (auto* widget = changed_control<QWidget>(handle, id)) {
        widget->setEnabled(enabled);
    }
}

void view_focus_control(ViewHandle handle, int id) {
    if (auto* widget = control<QWidget>(handle, id)) {
        widget->setFocus();
    }
}

void view_check(ViewHandle handle, int id, bool checked) {
    if (auto* button = changed_control<QAbstractButton>(handle, id)) {
        button->setChecked(checked);
    }
}

bool view_checked(ViewHandle handle, int id) {
    const auto* button = control<QAbstractButton>(handle, id);
    return button != nullptr && button->isChecked();
}

void view_clear_list(ViewHandle handle, int id) {
    if (auto* list = changed_control<QListWidget>(handle, id)) {
        const QSignalBlocker quiet(list);
        list->clear();
    } else if (auto* choice = changed_control<QComboBox>(handle, id)) {
        choice->clear();
    }
}

void view_add_to_list(ViewHandle handle, int id, const char* text) {
    if (auto* list = changed_control<QListWidget>(handle, id)) {
        const QSignalBlocker quiet(list);
        list->addItem(QString::fromUtf8(text));
    } else if (auto* choice = changed_control<QComboBox>(handle, id)) {
        const int before = choice->currentIndex();
        choice->addItem(QString::fromUtf8(text));
        choice->setCurrentIndex(before);
    }
}

void view_select(ViewHandle handle, int id, int index) {
    if (auto* list = changed_control<QListWidget>(handle, id)) {
        const QSignalBlocker quiet(list);
        list->setCurrentRow(index < list->count() ? index : -1);
    } else if (auto* choice = changed_control<QComboBox>(handle, id)) {
        choice->setCurrentIndex(index < choice->count() ? index : -1);
    }
}

int view_selection(ViewHandle handle, int id) {
    if (const auto* list = control<QListWidget>(handle, id)) {
        return list->currentRow();
    }
    const auto* choice = control<QComboBox>(handle, id);
    return choice != nullptr ? choice->currentIndex() : -1;
}

void view_set_tip(ViewHandle handle, int id, const char* text) {
    auto* widget = control<QWidget>(handle, id);
    const QString plain = QString::fromUtf8(text).toHtmlEscaped();
    const QString wanted =
        plain.isEmpty() ? plain : QStringLiteral("<p style='white-space:pre'>%1</p>").arg(plain);
    if (widget != nullptr && widget->toolTip() != wanted) {
        widget->setToolTip(wanted);
    }
}

WindowHandle view_pane(ViewHandle handle, int id) {
    const auto* frame = control<QWidget>(handle, id);
    const auto* area = frame != nullptr ? dynamic_cast<const TextArea*>(frame->focusProxy()) : nullptr;
    return area != nullptr ? area->surface() : NO_WINDOW;
}

// ---- Drawing -----------------------------------------------------------------------------------------

// A control that has not changed since the last call is on the screen already.
void view_repaint_control(ViewHandle handle, int id) {
    View* view = find_view(handle);
    if (view == nullptr || !view->window->isVisible()) {
        return;
    }
    bool drawn = false;
    for (int i = 0; i < view->spec->control_count; i++) {
        const auto index = static_cast<std::size_t>(i);
        if ((id == -1 || view->spec->controls[i].id == id) && view->changed[index]) {
            view->changed[index] = false;
            view->window->repaint(view->controls[index]->geometry());
            drawn = true;
        }
    }
    if (drawn) {
        flush_display();
    }
}

void view_parent_resized(WindowHandle parent) {
    MainWindow* window = main_window();
    if (window != nullptr && window->handle == parent) {
        window->lay_out();
    }
}

void view_menu_hint(WindowHandle, int64_t first, int64_t) {
    if (View* view = child_view()) {
        show_strip_hint(view, QString::fromUtf8(menu_hint(low_word(first))));
    }
}

}  // namespace hexlane::platform
