// file_dialogs.cpp: Qt's own file dialog, with the questions and refusals that all desktops share.

#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>

#include "platform/common/file_questions.h"
#include "platform/desktop.h"
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
    int filter_on_show() const;

    FileDialog* spec;
    SettleFile settle;
    QStringList filters;
    bool has_custom;
    QLineEdit* name_field;
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
    if (has_custom) {
        filters.append(name_filter(dialog->custom_text, dialog->custom_pattern));
    }
    for (int i = 0; i < dialog->filter_count; i++) {
        filters.append(name_filter(dialog->filters[i].text, dialog->filters[i].pattern));
    }
    setNameFilters(filters);
    const int shown = dialog->filter_index - (has_custom ? 0 : 1);
    if (shown >= 0 && shown < filters.size()) {
        selectNameFilter(filters[shown]);
    }
    name_field = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    name_field->setAccessibleName(QStringLiteral("File name"));
}

int ProgramFileDialog::filter_on_show() const {
    const auto index = static_cast<int>(filters.indexOf(selectedNameFilter()));
    return index < 0 ? spec->filter_index : index + (has_custom ? 0 : 1);
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
        setDirectory(path);
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
