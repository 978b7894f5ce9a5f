#pragma once

#include "UiBridge.h"
#include "link/Dialogs.h"

#include <functional>

namespace qv {

// A message box that answers later, through `answered`, instead of holding
// its caller in a local event loop: the window shows it and goes on.
class BoxPresenter {
public:
    virtual ~BoxPresenter() = default;
    virtual void present(const QString& text, const QString& title, int style,
                         std::function<void(int answer)> answered) = 0;
};

// The boxes of a sequence that runs on a device thread: shown on the
// user-interface thread while the sequence, not the window, waits for the
// answer. With a presenter the box needs no local event loop; without one
// `inner` answers on the user-interface thread (tests answer at once). Once
// the bridge is closed, a box answers with its way out (OK alone, otherwise
// Cancel or No) without being shown.
class MarshalledDialogs : public Dialogs {
public:
    MarshalledDialogs(UiBridge& bridge, Dialogs& inner, BoxPresenter* presenter = nullptr)
        : bridge_(bridge), inner_(inner), presenter_(presenter) {}

    int message(const QString& text, const QString& title, int style) override;

    // The answer of a box that nobody can see.
    static int wayOut(int style);

private:
    UiBridge& bridge_;
    Dialogs& inner_;
    BoxPresenter* presenter_;
};

} // namespace qv
