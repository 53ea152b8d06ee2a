// file_dialogs.cpp: Qt's own file dialog, with the questions and refusals that all desktops share.

#include <QComboBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>

#include "platform/common/file_questions.h"
#include "platform/desktop.h"
#include "platform/process.h"
#include "platform/qt/modal.h"

namespace hexlane::platform {

namespace {

using SettleFile = int (*)(FileDialog* dialog, const char* typed, int filter_index);

// Qt takes the pattern out of the brackets and shows what stands in front of them. A name without a dot
// matches
// "*.*" too.
QString name_filter(const char* text, const char* pattern) {
    const QString shown = QString::fromUtf8(pattern) == QStringLiteral("*.*") ? QStringLiteral("*")
                                                                              : QString::fromUtf8(pattern);
    return QString::fromUtf8(text) + QStringLiteral(" (%1)").arg(shown);
}

class ProgramFileDialog final : public QFileDialog {
public:
    ProgramFileDialog(FileDialog* dialog, SettleFile settle_file);

protected:
    void accept() override;

private:
    void offer_filters();
    int filter_on_show() const;

    FileDialog* spec;
    SettleFile settle;
    bool has_custom;
    QLineEdit* name_field;
    QComboBox* type_list;
};

ProgramFileDialog::ProgramFileDialog(FileDialog* dialog, SettleFile settle_file)
    : QFileDialog(modal_parent(), QString::fromUtf8(dialog->title)), spec(dialog), settle(settle_file),
      has_custom(dialog->custom_text != nullptr && *dialog->custom_text != '\0') {
    setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::DontConfirmOverwrite |
               QFileDialog::HideNameFilterDetails | QFileDialog::DontUseCustomDirectoryIcons);
    setFileMode(QFileDialog::AnyFile);                              // can name a file that does not exist
    setFilter(QDir::AllDirs | QDir::Files | QDir::NoDotAndDotDot);  // patterns match in either case
    if (dialog->start_folder != nullptr && *dialog->start_folder != '\0') {
        setDirectory(QString::fromUtf8(dialog->start_folder));
    }
    offer_filters();
    name_field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    name_field->setAccessibleName(QStringLiteral("File name"));
}

int ProgramFileDialog::filter_on_show() const {
    return type_list->currentIndex() + (has_custom ? 0 : 1);
}

// Qt tidies the blanks in the entries, so their texts are put in again. The entry on show is known by its
// place.
void ProgramFileDialog::offer_filters() {
    QStringList patterns;
    QStringList texts;
    const auto offer = [&](const char* text, const char* pattern) {
        patterns.append(name_filter(text, pattern));
        texts.append(QString::fromUtf8(text));
    };
    if (has_custom) {
        offer(spec->custom_text, spec->custom_pattern);
    }
    for (int i = 0; i < spec->filter_count; i++) {
        offer(spec->filters[i].text, spec->filters[i].pattern);
    }
    setNameFilters(patterns);
    const int shown = spec->filter_index - (has_custom ? 0 : 1);
    if (shown >= 0 && shown < patterns.size()) {
        selectNameFilter(patterns[shown]);
    }
    type_list = findChild<QComboBox*>(QStringLiteral("fileTypeCombo"));
    for (int i = 0; i < texts.size(); i++) {
        type_list->setItemText(i, texts[i]);
    }
}

// A folder is entered; anything else is settled, and the dialog stays up until that succeeds.
void ProgramFileDialog::accept() {
    QString name = name_field->text();
    if (name.isEmpty()) {
        return;
    }
    if (name == QStringLiteral("~") || name.startsWith(QStringLiteral("~/"))) {
        name.replace(0, 1, QDir::homePath());
    }
    const QString path = directory().absoluteFilePath(name);
    if (QFileInfo(path).isDir()) {
        char folder[PATH_SIZE];  // Qt would take ".." out by text alone
        const bool fits = absolute_path(path.toUtf8().constData(), folder, sizeof folder) == 1;
        setDirectory(fits ? QString::fromUtf8(folder) : path);
        name_field->clear();
        return;
    }
    if (settle(spec, path.toUtf8().constData(), filter_on_show()) == 1) {
        QDialog::accept();
    }
}

int choose_file(FileDialog* dialog, QFileDialog::AcceptMode mode, SettleFile settle) {
    ProgramFileDialog shown(dialog, settle);
    shown.setAcceptMode(mode);
    return run_modal(&shown) == QDialog::Accepted ? 1 : 0;
}

}  // namespace

int choose_open_file(FileDialog* dialog) {
    return choose_file(dialog, QFileDialog::AcceptOpen, settle_open_file);
}

int choose_save_file(FileDialog* dialog) {
    return choose_file(dialog, QFileDialog::AcceptSave, settle_save_file);
}

}  // namespace hexlane::platform
