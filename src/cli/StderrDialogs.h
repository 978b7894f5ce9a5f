#pragma once

#include "link/Dialogs.h"

#include <cstdio>

namespace qv {

// Message boxes of a command-line run: printed on standard error. Questions
// are answered Yes/OK only when the operator said so with --yes; otherwise
// the cautious answer (No/Cancel) is taken.
class StderrDialogs : public Dialogs {
public:
    explicit StderrDialogs(bool answerYes, std::FILE* out = stderr)
        : answerYes_(answerYes), out_(out) {}
    int message(const QString& text, const QString& title, int style) override;

private:
    bool answerYes_;
    std::FILE* out_;
};

} // namespace qv
