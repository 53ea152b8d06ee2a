// message_box.cpp: message boxes with the buttons in the order that the program gives, and the beep.

#include <QApplication>
#include <QDialog>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include "platform/desktop.h"
#include "platform/qt/modal.h"

namespace hexlane::platform {

namespace {

constexpr int WIDEST_TEXT = 90;   // average characters in a line
constexpr int LONGEST_WORD = 60;  // characters that need no help to be broken
constexpr int NO_BUTTON = -1;

QStyle::StandardPixmap picture_of(BoxIcon icon) {
    switch (icon) {
    case BoxIcon::STOP:
        return QStyle::SP_MessageBoxCritical;
    case BoxIcon::QUESTION:
        return QStyle::SP_MessageBoxQuestion;
    case BoxIcon::EXCLAMATION:
        return QStyle::SP_MessageBoxWarning;
    case BoxIcon::NONE:
    case BoxIcon::INFORMATION:
        break;
    }
    return QStyle::SP_MessageBoxInformation;
}

// A path longer than a line has no blank to break at: it may be broken behind each '/', which shows nowhere.
QString breakable(const QString& text) {
    QString result;
    for (const QString& word : text.split(' ')) {
        QString part = word;
        if (word.size() > LONGEST_WORD) {
            part.replace('/', QStringLiteral("/\u200B"));
        }
        result += (result.isEmpty() ? "" : " ") + part;
    }
    return result;
}

class Box final : public QDialog {
public:
    Box(const QString& text, const QString& title, BoxIcon icon, const QStringList& labels);

protected:
    void reject() override;  // Esc and the close box
    void keyPressEvent(QKeyEvent* event) override;

private:
    QLayout* make_message(const QString& text, BoxIcon icon);
    QLayout* make_buttons(const QStringList& labels);

    QList<QPushButton*> buttons;
    int cancel = NO_BUTTON;
};

Box::Box(const QString& text, const QString& title, BoxIcon icon, const QStringList& labels)
    : QDialog(modal_parent(), Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                  Qt::CustomizeWindowHint | Qt::WindowCloseButtonHint) {
    setWindowTitle(title);
    setAccessibleName(title);
    setAccessibleDescription(text);
    auto* column = new QVBoxLayout(this);
    column->setSizeConstraint(QLayout::SetFixedSize);
    column->addStrut(title_width(this));
    column->addLayout(make_message(text, icon));
    column->addSpacing(fontMetrics().height() / 2);
    column->addLayout(make_buttons(labels));
    cancel = static_cast<int>(labels.indexOf(QStringLiteral("Cancel")));
    if (cancel == NO_BUTTON && labels.size() == 1) {
        cancel = 0;
    }
}

QLayout* Box::make_message(const QString& text, BoxIcon icon) {
    auto* line = new QHBoxLayout;
    line->setSpacing(fontMetrics().height());
    if (icon != BoxIcon::NONE) {
        auto* picture = new QLabel;
        const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
        picture->setPixmap(style()->standardIcon(picture_of(icon), nullptr, this).pixmap(size, size));
        line->addWidget(picture, 0, Qt::AlignTop);
    }
    auto* message = new QLabel;
    message->setTextFormat(Qt::PlainText);
    message->setText(breakable(text));
    message->setAccessibleName(text);
    const int widest = fontMetrics().averageCharWidth() * WIDEST_TEXT;
    if (message->sizeHint().width() > widest) {
        message->setWordWrap(true);
        message->setFixedWidth(widest);
    }
    line->addWidget(message, 1, Qt::AlignVCenter);
    return line;
}

QLayout* Box::make_buttons(const QStringList& labels) {
    auto* line = new QHBoxLayout;
    line->addStretch();
    for (const QString& label : labels) {
        const bool has_letter = label != QStringLiteral("OK") && label != QStringLiteral("Cancel");
        auto* button = new QPushButton(has_letter ? '&' + label : label);
        button->setAccessibleName(label);
        button->setDefault(buttons.isEmpty());
        const int index = static_cast<int>(buttons.size());
        connect(button, &QPushButton::clicked, this, [this, index] { done(index); });
        buttons.append(button);
        line->addWidget(button);
    }
    line->addStretch();
    return line;
}

void Box::reject() {
    if (cancel != NO_BUTTON) {
        done(cancel);
    }
}

// The first letter of a label presses it without Alt too.
void Box::keyPressEvent(QKeyEvent* event) {
    if (!(event->modifiers() & ~Qt::ShiftModifier) && !event->text().isEmpty()) {
        for (QPushButton* button : buttons) {
            if (button->text().startsWith('&' + event->text(), Qt::CaseInsensitive)) {
                button->click();
                return;
            }
        }
    }
    QDialog::keyPressEvent(event);
}

}  // namespace

int message_box(const char* text, const char* title, BoxIcon icon, const char* buttons) {
    Box box(QString::fromUtf8(text), QString::fromUtf8(title), icon, QString::fromUtf8(buttons).split('|'));
    return run_modal(&box);
}

void message_beep(BoxIcon) {
    QApplication::beep();
}

}  // namespace hexlane::platform
