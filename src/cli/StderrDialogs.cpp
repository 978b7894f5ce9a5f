#include "StderrDialogs.h"

namespace qv {

int StderrDialogs::message(const QString& text, const QString& title, int style) {
    const QString heading =
        title.trimmed().isEmpty() ? QStringLiteral("quorvelctl") : title.trimmed();
    if (printer_) {
        printer_(heading + QStringLiteral(": ") + text);
    } else {
        std::fprintf(out_, "%s: %s\n", qUtf8Printable(heading), qUtf8Printable(text));
        std::fflush(out_);
    }
    if (text.endsWith(QLatin1String(" (Time Out)")) || text.endsWith(QLatin1String(" (CRC error)")))
        exchangeFailed_ = true;
    const int buttons = style & 7;
    if (buttons == MsgBox::YesNo)
        return answerYes_ ? MsgBox::AnswerYes : MsgBox::AnswerNo;
    if (buttons == MsgBox::OkCancel)
        return answerYes_ ? MsgBox::AnswerOk : MsgBox::AnswerCancel;
    return MsgBox::AnswerOk;
}

} // namespace qv
