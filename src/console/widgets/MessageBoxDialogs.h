#pragma once

#include "link/Dialogs.h"
#include "view/MarshalledDialogs.h"

#include <QMessageBox>

class QWidget;

namespace qv {

// The message boxes of the core as real boxes. The style value chooses the
// buttons (0 OK, 1 OK and Cancel, 4 Yes and No) and the icon (16 stop,
// 32 question, 48 exclamation, 64 information); the answer comes back as the
// platform's number. A box with no title carries the program's name. As a
// presenter it shows the box without a local event loop and answers when the
// box closes.
class MessageBoxDialogs : public Dialogs, public BoxPresenter {
public:
    // `parent` decides where the boxes appear; without one, the active window.
    explicit MessageBoxDialogs(QWidget* parent = nullptr) : parent_(parent) {}

    int message(const QString& text, const QString& title, int style) override;
    void present(const QString& text, const QString& title, int style,
                 std::function<void(int answer)> answered) override;

    void setParent(QWidget* parent) { parent_ = parent; }
    // With no one at the screen (pictures for the documentation), boxes go
    // to standard error and take the way out: OK alone, otherwise Cancel or
    // No.
    void setUnattended(bool unattended) { unattended_ = unattended; }

    // What a style value shows, for the box and for tests.
    static QMessageBox::StandardButtons buttonsFor(int style);
    static QMessageBox::Icon iconFor(int style);
    static int answerFor(QMessageBox::StandardButton button);

    static constexpr const char* kDefaultTitle = "Quorvel";

private:
    // The answer of the box's own way out (Escape, the close box).
    static int closedAnswer(int style, QMessageBox::StandardButton button);
    // The answer without a box, when nobody is at the screen.
    int unattendedAnswer(const QString& text, const QString& title, int style) const;

    QWidget* parent_;
    bool unattended_ = false;
};

} // namespace qv
