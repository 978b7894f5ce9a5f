#include "ProgressBoard.h"

#include <unistd.h>

namespace qv {

ProgressBoard::ProgressBoard(QStringList labels, std::FILE* out)
    : ProgressBoard(std::move(labels), out, ::isatty(fileno(out)) == 1) {}

ProgressBoard::ProgressBoard(QStringList labels, std::FILE* out, bool inPlace)
    : labels_(std::move(labels)), out_(out), inPlace_(inPlace) {
    for (int i = 0; i < labels_.size(); ++i)
        statuses_ << QString();
}

void ProgressBoard::draw() {
    // Back to the board's first line, then every line cleared and rewritten.
    if (drawn_)
        std::fprintf(out_, "\x1b[%lldA", static_cast<long long>(labels_.size()));
    for (int i = 0; i < labels_.size(); ++i)
        std::fprintf(out_, "\r\x1b[2K%s: %s\n", qUtf8Printable(labels_[i]),
                     qUtf8Printable(statuses_[i]));
    drawn_ = true;
    std::fflush(out_);
}

void ProgressBoard::update(int line, const QString& status) {
    std::lock_guard lock(mutex_);
    if (line < 0 || line >= labels_.size() || statuses_[line] == status)
        return;
    statuses_[line] = status;
    if (inPlace_) {
        draw();
    } else {
        std::fprintf(out_, "%s: %s\n", qUtf8Printable(labels_[line]), qUtf8Printable(status));
        std::fflush(out_);
    }
}

void ProgressBoard::message(const QString& text) {
    print(out_, text);
}

void ProgressBoard::print(std::FILE* stream, const QString& text) {
    std::lock_guard lock(mutex_);
    if (inPlace_ && drawn_) {
        std::fprintf(out_, "\x1b[%lldA\r\x1b[J", static_cast<long long>(labels_.size()));
        std::fflush(out_);
        drawn_ = false;
    }
    std::fprintf(stream, "%s\n", qUtf8Printable(text));
    std::fflush(stream);
    if (inPlace_)
        draw();
}

void ProgressBoard::finish() {
    std::lock_guard lock(mutex_);
    std::fflush(out_);
}

} // namespace qv
