#pragma once

#include "link/Dialogs.h"

#include <QString>
#include <cstdio>
#include <functional>

namespace qv {

// Message boxes of a command-line run: printed on standard error. Questions
// are answered Yes/OK only when the operator said so with --yes; otherwise
// the cautious answer (No/Cancel) is taken.
class StderrDialogs : public Dialogs {
public:
    explicit StderrDialogs(bool answerYes, std::FILE* out = stderr)
        : answerYes_(answerYes), out_(out) {}
    int message(const QString& text, const QString& title, int style) override;
    // Prints each box through `printer` instead ("title: text").
    void setPrinter(std::function<void(const QString&)> printer) { printer_ = std::move(printer); }

    // The link has told of an exchange that failed after its retries (its
    // box ends in " (Time Out)" or " (CRC error)"). Kept for the whole run,
    // since the flags tell only of the last exchange.
    bool exchangeFailed() const { return exchangeFailed_; }

private:
    bool exchangeFailed_ = false;
    bool answerYes_;
    std::FILE* out_;
    std::function<void(const QString&)> printer_;
};

} // namespace qv
