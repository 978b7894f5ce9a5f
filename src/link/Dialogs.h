#pragma once

#include <QString>

namespace qv {

// Message box styles and answers, with the platform's numeric values, because
// callers combine and compare them as numbers (17 = OK/Cancel with stop icon).
namespace MsgBox {
constexpr int OkOnly = 0;
constexpr int OkCancel = 1;
constexpr int YesNo = 4;
constexpr int Critical = 16;
constexpr int Question = 32;
constexpr int Exclamation = 48;

constexpr int AnswerOk = 1;
constexpr int AnswerCancel = 2;
constexpr int AnswerYes = 6;
constexpr int AnswerNo = 7;
} // namespace MsgBox

// Every message box of the core goes through this, so that the core runs
// without widgets: the GUI shows real boxes, the command line prints, tests
// record and answer.
class Dialogs {
public:
    virtual ~Dialogs() = default;
    // Returns the answer (MsgBox::Answer...).
    virtual int message(const QString& text, const QString& title, int style) = 0;
};

} // namespace qv
