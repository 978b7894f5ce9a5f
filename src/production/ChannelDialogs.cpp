#include "ChannelDialogs.h"

namespace qv {

ChannelDialogs::ChannelDialogs(std::function<void(const QString&)> forward)
    : forward_(std::move(forward)) {}

int ChannelDialogs::message(const QString& text, const QString& /*title*/, int style) {
    const int buttons = style & 0x0F;
    {
        std::lock_guard lock(mutex_);
        messages_ << text;
        if (buttons == MsgBox::OkOnly)
            lastFailure_ = text;
    }
    // Questions are answered here and need no one's attention.
    if (forward_ && buttons == MsgBox::OkOnly)
        forward_(text);
    if (buttons == MsgBox::YesNo)
        return MsgBox::AnswerYes;
    return MsgBox::AnswerOk;
}

QStringList ChannelDialogs::messages() const {
    std::lock_guard lock(mutex_);
    return messages_;
}

QString ChannelDialogs::lastFailure() const {
    std::lock_guard lock(mutex_);
    return lastFailure_;
}

} // namespace qv
