#include "QtFileDialog.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>

namespace qv {

void QtFileDialog::prepare(QFileDialog& dialog, const Request& request, bool save) {
    if (!request.title.isEmpty())
        dialog.setWindowTitle(request.title);
    const QString filter = qtDialogFilter(request.filter);
    if (!filter.isEmpty())
        dialog.setNameFilters(filter.split(QStringLiteral(";;")));
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, save);
    if (!request.folder.isEmpty())
        dialog.setDirectory(request.folder);
    if (!request.fileName.isEmpty()) {
        // A full path proposes its own folder as well.
        const QFileInfo proposed(request.fileName);
        if (proposed.isAbsolute()) {
            dialog.setDirectory(proposed.absolutePath());
            dialog.selectFile(proposed.fileName());
        } else {
            dialog.selectFile(request.fileName);
        }
    }
}

QString QtFileDialog::run(const Request& request, bool save) {
    QFileDialog dialog(parent_ ? parent_.data() : QApplication::activeWindow());
    prepare(dialog, request, save);
    if (dialog.exec() != QDialog::Accepted)
        return QString();
    return dialog.selectedFiles().value(0);
}

QString QtFileDialog::openFile(const Request& request) {
    return run(request, false);
}

QString QtFileDialog::saveFile(const Request& request) {
    return run(request, true);
}

} // namespace qv
