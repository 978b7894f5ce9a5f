#pragma once

#include "link/Dialogs.h"

#include <QElapsedTimer>
#include <QString>
#include <deque>
#include <vector>

namespace qv::test {

// Records every message box and answers from a queue (OK when it is empty),
// so that tests can assert on what an operator would have seen.
class RecordingDialogs : public Dialogs {
public:
    struct Box {
        QString text;
        QString title;
        int style;
        qint64 shownAtMs = 0; // on the monotonic clock, when the box came
    };

    int message(const QString& text, const QString& title, int style) override;

    void answerNext(int answer) { answers_.push_back(answer); }
    const std::vector<Box>& boxes() const { return boxes_; }
    void clear() { boxes_.clear(); }

    // The monotonic clock of shownAtMs, in milliseconds.
    static qint64 nowMs();

private:
    std::vector<Box> boxes_;
    std::deque<int> answers_;
};

} // namespace qv::test
