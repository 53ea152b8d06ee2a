// view_dialog.cpp: a modal view: one widget for each control, on the grid that the view's data gives.
// A control that lies inside a frame's places goes into that frame, on a grid of the frame's own.

#include <algorithm>
#include <cstring>

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QValidator>

#include "platform/common/input_rules.h"
#include "platform/qt/dispatch.h"
#include "platform/qt/main_window.h"
#include "platform/qt/modal.h"
#include "platform/qt/pictures.h"
#include "platform/qt/view_window.h"

namespace hexlane::platform {

namespace {

constexpr int DIALOG_UNITS_ACROSS = 4;  // in an average character
constexpr int DIALOG_UNITS_DOWN = 8;
constexpr int PICTURE_SIZE = 48;  // logical pixels
constexpr int PALETTE_PICTURE_SIZE = 24;
constexpr int64_t FROM_CONTROL = 1;  // second parameter of WM_COMMAND: nonzero, unlike the menu's
constexpr std::size_t LONGEST_LABEL = 256;

const ControlSpec& spec_of(const View* view, int index) {
    return view->spec->controls[index];
}

QString plain_text(const char* label) {
    char plain[LONGEST_LABEL];
    plain_label(label != nullptr ? label : "", plain, sizeof plain);
    return QString::fromUtf8(plain);
}

class ViewDialog final : public QDialog {
public:
    ViewDialog(View* shown, QWidget* parent) : QDialog(parent), view(shown) {}

protected:
    void reject() override { cancel_view(view); }
    void keyPressEvent(QKeyEvent* event) override;

private:
    View* view;
};

// A view without a default button has none by accident either: there Enter presses the button that it stands
// on, and nothing else.
void ViewDialog::keyPressEvent(QKeyEvent* event) {
    const bool is_enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    if (is_enter && button != nullptr && !button->autoDefault()) {
        button->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

// Refuses characters and lengths as they are typed.
class FieldValidator final : public QValidator {
public:
    FieldValidator(const InputRule* field_rule, QObject* parent) : QValidator(parent), rule(field_rule) {}
    State validate(QString& text, int&) const override {
        for (QChar& character : text) {
            if (character.unicode() < 0x80) {
                character = QLatin1Char(field_character(rule, character.toLatin1()));
            }
        }
        return field_takes(rule, text.toUtf8().constData()) ? Acceptable : Invalid;
    }

private:
    const InputRule* rule;
};

void tell_view(const View* view, int index) {
    call_window(view->handle, WM_COMMAND, spec_of(view, index).id, FROM_CONTROL);
}

bool value_is_good(const View* view, int index) {
    const auto* field = static_cast<QLineEdit*>(view->controls[static_cast<std::size_t>(index)]);
    return !field->isEnabled() || !field->isVisible() ||
           value_in_range(spec_of(view, index).rule, field->text().toUtf8().constData());
}

void refuse_value(View* view, int index) {
    report_bad_value(spec_of(view, index).rule);
    auto* field = static_cast<QLineEdit*>(view->controls[static_cast<std::size_t>(index)]);
    field->setFocus();
    field->selectAll();
}

// Judges the value when the person goes on to another control. A press of a button judges by itself.
class ViewField final : public QLineEdit {
public:
    ViewField(View* shown, int at) : view(shown), index(at) {}

protected:
    // What is typed next replaces the text, however the field got the focus but by a click into it.
    void focusInEvent(QFocusEvent* event) override {
        QLineEdit::focusInEvent(event);
        if (event->reason() != Qt::MouseFocusReason && event->reason() != Qt::PopupFocusReason) {
            selectAll();
        }
    }
    void focusOutEvent(QFocusEvent* event) override {
        QLineEdit::focusOutEvent(event);
        if (event->reason() != Qt::TabFocusReason && event->reason() != Qt::BacktabFocusReason &&
            event->reason() != Qt::MouseFocusReason) {
            return;
        }
        QTimer::singleShot(0, this, [this] {
            const bool on_button = qobject_cast<QPushButton*>(window()->focusWidget()) != nullptr;
            if (!on_button && !hasFocus() && !value_is_good(view, index)) {
                refuse_value(view, index);
            }
        });
    }

private:
    View* view;
    int index;
};

QWidget* make_label(const ControlSpec& spec) {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);  // a file's name may look like markup
    label->setText(QString::fromUtf8(spec.label));
    label->setWordWrap(spec.width > 0 && label->text().length() > spec.width);
    if (spec.flags & CONTROL_SUNKEN) {
        label->setFrameStyle(static_cast<int>(QFrame::Panel) | static_cast<int>(QFrame::Sunken));
    }
    if (spec.flags & CONTROL_CENTERED) {
        label->setAlignment(Qt::AlignCenter);
    }
    return label;
}

// The picture of a palette's color presses the button behind it, too.
class PalettePicture final : public QLabel {
public:
    PalettePicture(View* shown, int button) : view(shown), button_index(button) {}

protected:
    void mousePressEvent(QMouseEvent* event) override {
        if (event->button() == Qt::LeftButton) {
            press_control(view, button_index);
        }
    }

private:
    View* view;
    int button_index;
};

QWidget* make_picture(View* view, int index) {
    const bool of_button =
        index + 1 < view->spec->control_count && spec_of(view, index + 1).kind == ControlKind::BUTTON;
    auto* label = of_button ? new PalettePicture(view, index + 1) : new QLabel;
    const int size = of_button ? PALETTE_PICTURE_SIZE : PICTURE_SIZE;
    label->setPixmap(named_picture(QString::fromUtf8(spec_of(view, index).label), size, view->window));
    label->setAlignment(Qt::AlignTop);
    return label;
}

bool has_default_button(const ViewSpec* spec) {
    return std::any_of(spec->controls, spec->controls + spec->control_count,
                       [](const ControlSpec& control) { return control.flags & CONTROL_DEFAULT; });
}

// A button that its letter presses at once: Qt's own waits a moment, in which Enter may have closed the view.
template <typename Button>
class PromptButton final : public Button {
public:
    using Button::Button;

protected:
    bool event(QEvent* event) override {
        if (event->type() != QEvent::Shortcut || static_cast<QShortcutEvent*>(event)->isAmbiguous()) {
            return Button::event(event);
        }
        this->setFocus(Qt::ShortcutFocusReason);
        this->click();
        return true;
    }
};

QWidget* make_button(View* view, int index) {
    const ControlSpec& spec = spec_of(view, index);
    auto* button = new PromptButton<QPushButton>(QString::fromUtf8(spec.label));
    button->setDefault(spec.flags & CONTROL_DEFAULT);
    button->setAutoDefault(has_default_button(view->spec));
    QObject::connect(button, &QPushButton::clicked, button, [view, index] { press_control(view, index); });
    return button;
}

template <typename Button>
QWidget* make_choice_button(View* view, int index) {
    const ControlSpec& spec = spec_of(view, index);
    auto* button = new PromptButton<Button>(QString::fromUtf8(spec.label));
    button->setChecked(spec.flags & CONTROL_CHECKED);
    QObject::connect(button, &Button::clicked, button, [view, index] { press_control(view, index); });
    return button;
}

QWidget* make_field(View* view, int index) {
    auto* field = new ViewField(view, index);
    QObject::connect(field, &QLineEdit::textEdited, field, [view, index] { tell_view(view, index); });
    field->setValidator(new FieldValidator(spec_of(view, index).rule, field));
    return field;
}

// Only what the person picks is told; the program's own calls block the signals.
QWidget* make_list(View* view, int index) {
    auto* list = new QListWidget;
    QObject::connect(list, &QListWidget::currentRowChanged, list,
                     [view, index] { press_control(view, index); });
    return list;
}

QWidget* make_drop_down(View* view, int index) {
    auto* choice = new QComboBox;
    QObject::connect(choice, &QComboBox::activated, choice, [view, index] { press_control(view, index); });
    const ControlSpec& spec = spec_of(view, index);
    if (spec.flags & CONTROL_EDITABLE) {
        choice->setEditable(true);
        choice->setInsertPolicy(QComboBox::NoInsert);
        choice->setCompleter(nullptr);
        // Qt would pick the row whose text is typed as soon as the field is left: a name that is another
        // row's too is still a name for this one.
        QObject::disconnect(choice->lineEdit(), &QLineEdit::editingFinished, choice, nullptr);
        QObject::disconnect(choice->lineEdit(), &QLineEdit::returnPressed, choice, nullptr);
        if (spec.rule != nullptr && spec.rule->limit > 0) {
            choice->lineEdit()->setMaxLength(spec.rule->limit);
        }
        QObject::connect(choice->lineEdit(), &QLineEdit::textEdited, choice,
                         [view, index] { tell_view(view, index); });
    }
    return choice;
}

// A text surface of as many cells as the control is wide and covers rows of the grid. A sunken one only
// shows.
QWidget* make_pane(const View* view, const ControlSpec& spec) {
    auto* frame = new QFrame;
    frame->setFrameStyle(static_cast<int>(QFrame::Panel) | static_cast<int>(QFrame::Sunken));
    auto* area = new TextArea(frame);
    area->measure();
    grid_resize(&area->grid, spec.width, spec.rows);
    area->setFixedSize(area->logical_width(spec.width), area->logical_height(spec.rows));
    area->set_surface(add_window(nullptr));
    area->target = {view->handle, spec.id, nullptr, 0};
    auto* line = new QHBoxLayout(frame);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(0);
    line->addWidget(area);
    line->addWidget(area->bar);
    frame->setFocusProxy(area);
    area->bar->hide();
    if (spec.flags & CONTROL_SUNKEN) {
        area->setFocusPolicy(Qt::NoFocus);
        area->setCursor(Qt::ArrowCursor);
    }
    return frame;
}

QWidget* make_frame(const ControlSpec& spec) {
    auto* frame = new QGroupBox(QString::fromUtf8(spec.label));
    new QGridLayout(frame);
    return frame;
}

QWidget* make_control(View* view, int index) {
    const ControlSpec& spec = spec_of(view, index);
    switch (spec.kind) {
    case ControlKind::TEXT:
        return make_label(spec);
    case ControlKind::BUTTON:
        return make_button(view, index);
    case ControlKind::FIELD:
        return make_field(view, index);
    case ControlKind::CHECK:
        return make_choice_button<QCheckBox>(view, index);
    case ControlKind::RADIO:
        return make_choice_button<QRadioButton>(view, index);
    case ControlKind::LIST:
        return make_list(view, index);
    case ControlKind::CHOICE:
        return make_drop_down(view, index);
    case ControlKind::FRAME:
        return make_frame(spec);
    case ControlKind::PANE:
        return make_pane(view, spec);
    case ControlKind::ICON:
        break;
    }
    return make_picture(view, index);
}

bool lies_inside(const ControlSpec& inner, const ControlSpec& frame) {
    return &inner != &frame && inner.row >= frame.row && inner.column >= frame.column &&
           inner.row + inner.rows <= frame.row + frame.rows &&
           inner.column + inner.columns <= frame.column + frame.columns;
}

// The frame that a control lies in, the innermost when several do; -1 for none.
int frame_around(const ViewSpec* spec, int index) {
    int found = -1;
    for (int i = 0; i < spec->control_count; i++) {
        const ControlSpec& frame = spec->controls[i];
        if (frame.kind == ControlKind::FRAME && lies_inside(spec->controls[index], frame) &&
            (found < 0 || lies_inside(frame, spec->controls[found]))) {
            found = i;
        }
    }
    return found;
}

// Fields and lists are as wide as they wish and no more, however wide their column is.
bool has_own_width(const ControlSpec& spec) {
    return spec.width > 0 && (spec.kind == ControlKind::FIELD || spec.kind == ControlKind::LIST);
}

Qt::Alignment alignment_of(const ControlSpec& spec) {
    if (spec.kind == ControlKind::BUTTON && spec.flags & CONTROL_CENTERED) {
        return Qt::AlignCenter;
    }
    if (spec.kind == ControlKind::PANE) {
        return Qt::AlignLeft | Qt::AlignVCenter;
    }
    return has_own_width(spec) ? Qt::AlignLeft : Qt::Alignment();
}

// A text that is longer than its wished width takes further lines.
bool wraps(const ControlSpec& spec) {
    return spec.kind == ControlKind::TEXT && spec.width > 0 && std::strlen(spec.label) > spec.width;
}

// Digits are wider than the average character, and a field of nine shows nine.
void set_width(QWidget* control, const ControlSpec& spec) {
    const QFontMetrics metrics = control->fontMetrics();
    if (wraps(spec)) {
        static_cast<QLabel*>(control)->setWordWrap(true);
        control->setFixedWidth(metrics.averageCharWidth() * (spec.width + 2));
    } else if (has_own_width(spec)) {
        control->setFixedWidth(metrics.horizontalAdvance('0') * (spec.width + 2));
    } else if (spec.width > 0 && spec.kind != ControlKind::PANE) {
        control->setMinimumWidth(metrics.averageCharWidth() * (spec.width + 2));
    }
}

void place_control(View* view, int index, QGridLayout* outermost) {
    const ControlSpec& spec = spec_of(view, index);
    QWidget* control = view->controls[static_cast<std::size_t>(index)];
    const int frame = frame_around(view->spec, index);
    QGridLayout* grid = outermost;
    int row = spec.row;
    int column = spec.column;
    if (frame >= 0) {
        grid = static_cast<QGridLayout*>(view->controls[static_cast<std::size_t>(frame)]->layout());
        row -= spec_of(view, frame).row;
        column -= spec_of(view, frame).column;
    }
    grid->addWidget(control, row, column, spec.rows, spec.columns, alignment_of(spec));
    set_width(control, spec);
}

// What stands in a frame that is higher than it needs to be stays together at its top.
void close_up_frames(const View* view) {
    for (int i = 0; i < view->spec->control_count; i++) {
        if (spec_of(view, i).kind == ControlKind::FRAME) {
            auto* grid = static_cast<QGridLayout*>(view->controls[static_cast<std::size_t>(i)]->layout());
            grid->setRowStretch(grid->rowCount(), 1);
        }
    }
}

// A control without a text of its own is called by the label in front of it, which also leads to it.
void name_control(View* view, int index) {
    const ControlSpec& spec = spec_of(view, index);
    QWidget* control = view->controls[static_cast<std::size_t>(index)];
    control->setAccessibleName(plain_text(spec.label));
    const bool nameless =
        spec.kind == ControlKind::FIELD || spec.kind == ControlKind::LIST || spec.kind == ControlKind::CHOICE;
    if (nameless && index > 0 && spec_of(view, index - 1).kind == ControlKind::TEXT) {
        auto* label = static_cast<QLabel*>(view->controls[static_cast<std::size_t>(index - 1)]);
        label->setBuddy(control);
        control->setAccessibleName(plain_text(spec_of(view, index - 1).label));
    }
}

// Tab comes to a group's chosen button alone; arrows and letters lead to the others.
void lead_tab_to(const QAbstractButton* chosen, const QButtonGroup* group) {
    for (QAbstractButton* button : group->buttons()) {
        button->setFocusPolicy(button == chosen ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

QButtonGroup* make_radio_group(View* view) {
    auto* group = new QButtonGroup(view->window);
    QObject::connect(group, &QButtonGroup::buttonToggled, group,
                     [group](QAbstractButton* button, bool chosen) {
                         if (chosen) {
                             lead_tab_to(button, group);
                         }
                     });
    return group;
}

void group_radio_buttons(View* view) {
    QButtonGroup* group = nullptr;
    for (int i = 0; i < view->spec->control_count; i++) {
        if (spec_of(view, i).kind != ControlKind::RADIO) {
            continue;
        }
        if (group == nullptr || spec_of(view, i).flags & CONTROL_GROUP) {
            group = make_radio_group(view);
        }
        group->addButton(static_cast<QRadioButton*>(view->controls[static_cast<std::size_t>(i)]));
        if (group->checkedButton() != nullptr) {
            lead_tab_to(group->checkedButton(), group);
        }
    }
}

// A view with a wished place stands there, in dialog units of its font from the client area's corner.
void place_dialog(const View* view, const QWidget* parent) {
    const MainWindow* window = main_window();
    if (window == nullptr || parent == nullptr || (view->spec->x == 0 && view->spec->y == 0)) {
        return;
    }
    const QFontMetrics metrics = view->dialog->fontMetrics();
    const QPoint corner = window->centralWidget()->mapToGlobal(QPoint(0, 0));
    view->dialog->move(corner.x() + view->spec->x * metrics.averageCharWidth() / DIALOG_UNITS_ACROSS,
                       corner.y() + view->spec->y * metrics.height() / DIALOG_UNITS_DOWN);
}

}  // namespace

void make_dialog(View* view, QWidget* parent) {
    view->dialog = new ViewDialog(view, parent);
    view->window = view->dialog;
    view->dialog->setWindowTitle(QString::fromUtf8(view->spec->title));
    view->dialog->setAccessibleName(QString::fromUtf8(view->spec->title));
    for (int i = 0; i < view->spec->control_count; i++) {
        view->controls.push_back(make_control(view, i));
    }
    auto* grid = new QGridLayout(view->dialog);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    for (int i = 0; i < view->spec->control_count; i++) {
        place_control(view, i, grid);
        name_control(view, i);
        view->controls[static_cast<std::size_t>(i)]->setHidden(spec_of(view, i).flags & CONTROL_HIDDEN);
        view->controls[static_cast<std::size_t>(i)]->setDisabled(spec_of(view, i).flags & CONTROL_DISABLED);
    }
    grid->addItem(new QSpacerItem(title_width(view->dialog), 0), grid->rowCount(), 0, 1, grid->columnCount());
    close_up_frames(view);
    group_radio_buttons(view);
    place_dialog(view, parent);
}

// All but the cancel button wait for good values.
void press_control(View* view, int index) {
    if (spec_of(view, index).kind == ControlKind::BUTTON && !(spec_of(view, index).flags & CONTROL_CANCEL)) {
        for (int i = 0; i < view->spec->control_count; i++) {
            if (spec_of(view, i).kind == ControlKind::FIELD && !value_is_good(view, i)) {
                refuse_value(view, i);
                return;
            }
        }
    }
    tell_view(view, index);
}

void cancel_view(View* view) {
    for (int i = 0; i < view->spec->control_count; i++) {
        const QWidget* control = view->controls[static_cast<std::size_t>(i)];
        if (spec_of(view, i).flags & CONTROL_CANCEL && control->isEnabled() && control->isVisible()) {
            press_control(view, i);
            return;
        }
    }
    call_window(view->handle, WM_CLOSE, 0, 0);
}

}  // namespace hexlane::platform
