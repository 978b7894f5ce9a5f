#include "MessageBoxDialogs.h"

#include <QApplication>
#include <QCursor>
#include <cstdio>

namespace qv {

QMessageBox::StandardButtons MessageBoxDialogs::buttonsFor(int style) {
    switch (style & 7) {
    case MsgBox::OkCancel:
        return QMessageBox::Ok | QMessageBox::Cancel;
    case 2: // abort, retry, ignore
        return QMessageBox::Abort | QMessageBox::Retry | QMessageBox::Ignore;
    case 3:
        return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    case MsgBox::YesNo:
        return QMessageBox::Yes | QMessageBox::No;
    case 5:
        return QMessageBox::Retry | QMessageBox::Cancel;
    default:
        return QMessageBox::Ok;
    }
}

QMessageBox::Icon MessageBoxDialogs::iconFor(int style) {
    switch (style & 0x70) {
    case MsgBox::Critical:
        return QMessageBox::Critical;
    case MsgBox::Question:
        return QMessageBox::Question;
    case MsgBox::Exclamation:
        return QMessageBox::Warning;
    case 64:
        return QMessageBox::Information;
    default:
        return QMessageBox::NoIcon;
    }
}

int MessageBoxDialogs::answerFor(QMessageBox::StandardButton button) {
    switch (button) {
    case QMessageBox::Ok:
        return MsgBox::AnswerOk;
    case QMessageBox::Cancel:
        return MsgBox::AnswerCancel;
    case QMessageBox::Abort:
        return 3;
    case QMessageBox::Retry:
        return 4;
    case QMessageBox::Ignore:
        return 5;
    case QMessageBox::Yes:
        return MsgBox::AnswerYes;
    case QMessageBox::No:
        return MsgBox::AnswerNo;
    default:
        // Escape or the close box: the box's way out.
        return MsgBox::AnswerCancel;
    }
}

int MessageBoxDialogs::closedAnswer(int style, QMessageBox::StandardButton button) {
    // Escape and the close box give the box's own way out (Cancel, No, or
    // the only OK); should no button come back at all, take the same.
    if (button == QMessageBox::NoButton)
        return (style & 7) == MsgBox::OkOnly ? MsgBox::AnswerOk : MsgBox::AnswerCancel;
    return answerFor(button);
}

int MessageBoxDialogs::unattendedAnswer(const QString& text, const QString& title,
                                        int style) const {
    std::fprintf(stderr, "quorvel: [%s] %s\n",
                 qUtf8Printable(title.isEmpty() ? QString::fromLatin1(kDefaultTitle) : title),
                 qUtf8Printable(text));
    const auto buttons = buttonsFor(style);
    if (buttons == QMessageBox::Ok)
        return MsgBox::AnswerOk;
    return buttons.testFlag(QMessageBox::Cancel) ? MsgBox::AnswerCancel : MsgBox::AnswerNo;
}

int MessageBoxDialogs::message(const QString& text, const QString& title, int style) {
    if (unattended_)
        return unattendedAnswer(text, title, style);
    QWidget* parent = parent_ ? parent_ : QApplication::activeWindow();
    QMessageBox box(iconFor(style), title.isEmpty() ? QString::fromLatin1(kDefaultTitle) : title,
                    text, buttonsFor(style), parent);
    // Boxes often come in the middle of a sequence that shows the hourglass;
    // the operator must see an arrow to answer.
    QApplication::setOverrideCursor(Qt::ArrowCursor);
    const auto answer = static_cast<QMessageBox::StandardButton>(box.exec());
    QApplication::restoreOverrideCursor();
    return closedAnswer(style, answer);
}

void MessageBoxDialogs::present(const QString& text, const QString& title, int style,
                                std::function<void(int)> answered) {
    if (unattended_) {
        answered(unattendedAnswer(text, title, style));
        return;
    }
    QWidget* parent = parent_ ? parent_ : QApplication::activeWindow();
    auto* box = new QMessageBox(iconFor(style),
                                title.isEmpty() ? QString::fromLatin1(kDefaultTitle) : title, text,
                                buttonsFor(style), parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowModality(Qt::ApplicationModal);
    box->setCursor(Qt::ArrowCursor);
    QObject::connect(box, &QMessageBox::finished, box, [box, style, answered](int) {
        answered(closedAnswer(style, box->standardButton(box->clickedButton())));
    });
    box->open();
}

} // namespace qv
