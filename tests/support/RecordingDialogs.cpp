#include "RecordingDialogs.h"

namespace qv::test {

qint64 RecordingDialogs::nowMs() {
    static QElapsedTimer clock = [] {
        QElapsedTimer started;
        started.start();
        return started;
    }();
    return clock.elapsed();
}

int RecordingDialogs::message(const QString& text, const QString& title, int style) {
    boxes_.push_back({text, title, style, nowMs()});
    if (answers_.empty())
        return MsgBox::AnswerOk;
    const int answer = answers_.front();
    answers_.pop_front();
    return answer;
}

} // namespace qv::test
