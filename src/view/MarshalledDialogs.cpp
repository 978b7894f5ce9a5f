#include "MarshalledDialogs.h"

namespace qv {

int MarshalledDialogs::wayOut(int style) {
    switch (style & 7) {
    case MsgBox::OkOnly:
        return MsgBox::AnswerOk;
    case MsgBox::YesNo:
        return MsgBox::AnswerNo;
    default:
        return MsgBox::AnswerCancel;
    }
}

int MarshalledDialogs::message(const QString& text, const QString& title, int style) {
    if (bridge_.onUiThread() || !presenter_) {
        int answer = wayOut(style);
        bridge_.call([&] { answer = inner_.message(text, title, style); });
        return answer;
    }
    return bridge_.await(
        [&](std::function<void(int)> answered) {
            presenter_->present(text, title, style, std::move(answered));
        },
        wayOut(style));
}

} // namespace qv
