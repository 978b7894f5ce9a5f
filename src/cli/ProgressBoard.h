#pragma once

#include <QString>
#include <QStringList>
#include <cstdio>
#include <mutex>

namespace qv {

// One status line per controller on standard error. On a terminal the lines
// stay in place and are rewritten as they change; otherwise each change is a
// plain line of its own ("ID: text"), which logs keep readable. Messages
// (the link's boxes) go above the board. Safe to call from any thread.
class ProgressBoard {
public:
    ProgressBoard(QStringList labels, std::FILE* out = stderr);
    ProgressBoard(QStringList labels, std::FILE* out, bool inPlace);

    void update(int line, const QString& status);
    void message(const QString& text);
    // A line for another stream (standard output) that shares the terminal:
    // printed above the board, which is drawn again under it.
    void print(std::FILE* stream, const QString& text);
    // Leaves the cursor under the board.
    void finish();

private:
    void draw();

    QStringList labels_;
    QStringList statuses_;
    std::FILE* out_;
    bool inPlace_;
    bool drawn_ = false;
    std::mutex mutex_;
};

} // namespace qv
