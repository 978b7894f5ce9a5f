#pragma once

#include "firmware/FileDialog.h"

#include <QPointer>
#include <QWidget>

class QFileDialog;

namespace qv {

// The common file dialog of a window as a real dialog, modal over `parent`.
//
// A save dialog asks nothing when the file exists: the production log is
// appended to, and a question about replacing it would only mislead the
// operator.
class QtFileDialog : public FileDialog {
public:
    explicit QtFileDialog(QWidget* parent = nullptr) : parent_(parent) {}

    void setParent(QWidget* parent) { parent_ = parent; }

    QString openFile(const Request& request) override;
    QString saveFile(const Request& request) override;

    // Puts a request to a dialog without showing it.
    static void prepare(QFileDialog& dialog, const Request& request, bool save);

private:
    QString run(const Request& request, bool save);

    QPointer<QWidget> parent_;
};

} // namespace qv
