#pragma once

#include "link/Dialogs.h"

#include <QStringList>
#include <functional>
#include <mutex>

namespace qv {

// The message boxes of one controller's line on the bench. Nobody sits at
// each line to answer, and starting the run was the operator's consent to
// overwrite what the controllers hold, so every question is answered OK/Yes.
// Every text is kept: the last one is what the line reports when it fails.
class ChannelDialogs : public Dialogs {
public:
    // `forward` also receives each text that is no question as it comes (e.g.
    // to standard error).
    explicit ChannelDialogs(std::function<void(const QString&)> forward = {});

    int message(const QString& text, const QString& title, int style) override;

    QStringList messages() const;
    // The last box that was no question, empty when none was shown.
    QString lastFailure() const;

private:
    std::function<void(const QString&)> forward_;
    mutable std::mutex mutex_;
    QStringList messages_;
    QString lastFailure_;
};

} // namespace qv
