// view_strip.cpp: a child view, the status line: sunken fields in a row.

#include <algorithm>

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>

#include "platform/common/input_rules.h"
#include "platform/qt/pictures.h"
#include "platform/qt/view_window.h"

namespace hexlane::platform {

namespace {

constexpr int EDGE = 6;  // logical pixels at both ends
constexpr int GAP = 5;   // between fields
constexpr int PICTURE_SIZE = 10;
constexpr int NARROW_FIELD = 60;               // dialog units: fields up to this width never get narrower
constexpr int DIALOG_UNITS_PER_CHARACTER = 4;  // across
constexpr char OWN_TEXT[] = "own_text";        // property of a label: what it shows without a hint

QLabel* make_field(const ControlSpec& spec, QWidget* strip) {
    auto* label = new QLabel(strip);
    label->setTextFormat(Qt::PlainText);
    if (spec.kind == ControlKind::ICON) {
        label->setPixmap(named_picture(QString::fromUtf8(spec.label), PICTURE_SIZE, strip));
        label->setAlignment(Qt::AlignCenter);
        label->setAccessibleName(QStringLiteral("Transfer running"));
    } else {
        label->setText(QString::fromUtf8(spec.label));
    }
    if (spec.flags & CONTROL_SUNKEN) {
        label->setFrameStyle(static_cast<int>(QFrame::Panel) | static_cast<int>(QFrame::Sunken));
        label->setIndent(3);
    }
    QSizePolicy policy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    policy.setRetainSizeWhenHidden(true);
    label->setSizePolicy(policy);
    if (spec.width <= NARROW_FIELD) {
        label->setMinimumWidth(spec.width * label->fontMetrics().averageCharWidth() /
                               DIALOG_UNITS_PER_CHARACTER);
    }
    label->setFixedHeight(label->fontMetrics().height() + 2 * label->frameWidth() + 4);
    label->setVisible(!(spec.flags & CONTROL_HIDDEN));
    return label;
}

}  // namespace

void make_strip(View* view) {
    auto* strip = new QFrame;
    strip->setAccessibleName(QString::fromUtf8(view->spec->name));
    auto* line = new QHBoxLayout(strip);
    line->setContentsMargins(EDGE, 0, EDGE, 0);
    line->setSpacing(GAP);
    for (int i = 0; i < view->spec->control_count; i++) {
        const ControlSpec& spec = view->spec->controls[i];
        QLabel* field = make_field(spec, strip);
        line->addWidget(field, spec.width, Qt::AlignVCenter);
        view->controls.push_back(field);
    }
    view->window = strip;
}

QString strip_text(const View* view, int index) {
    const auto* label = static_cast<const QLabel*>(view->controls[static_cast<std::size_t>(index)]);
    const QVariant own = label->property(OWN_TEXT);
    return own.isValid() ? own.toString() : label->text();
}

void set_strip_text(View* view, int index, const QString& text) {
    auto* label = static_cast<QLabel*>(view->controls[static_cast<std::size_t>(index)]);
    if (label->property(OWN_TEXT).isValid()) {
        label->setProperty(OWN_TEXT, text);
    } else {
        label->setText(text);
    }
}

void show_strip_hint(View* view, const QString& hint) {
    const auto field = std::find_if(view->controls.begin(), view->controls.end(),
                                    [](QWidget* control) { return control->isVisible(); });
    if (field == view->controls.end()) {
        return;
    }
    auto* label = static_cast<QLabel*>(*field);
    const QVariant own = label->property(OWN_TEXT);
    if (hint.isEmpty()) {
        label->setProperty(OWN_TEXT, QVariant());
        if (own.isValid()) {
            label->setText(own.toString());
        }
        return;
    }
    if (!own.isValid()) {
        label->setProperty(OWN_TEXT, label->text());
    }
    label->setText(hint);
}

}  // namespace hexlane::platform
