#include "RecordingDialogs.h"

namespace qv::test {

int RecordingDialogs::message(const QString& text, const QString& title, int style) {
    boxes_.push_back({text, title, style});
    if (answers_.empty())
        return MsgBox::AnswerOk;
    const int answer = answers_.front();
    answers_.pop_front();
    return answer;
}

} // namespace qv::test
