#pragma once

#include <QByteArray>
#include <QString>

namespace qv {

// Transfers over a byte stream (a serial port or a pseudo-terminal), which
// keeps no boundaries of its own. Both ends apply the same rule: a transfer
// is the bytes that follow one another with gaps shorter than kTransferGapMs,
// so it ends when the line stays quiet that long. It also ends as soon as it
// fills the reader's buffer, so that a reader who knows the length to expect
// (the device: a frame is at most kLargestTransfer bytes; the host: the reply
// length it asks for) never waits the gap. What follows a full buffer stays
// on the line and is thrown away before the next request is written.
//
// 3 ms is well above the time a USB serial adapter or a pseudo-terminal lets
// pass between the bytes of one write, yet small beside the link's 10 ms
// pause between a request and the read of its reply.
inline constexpr int kTransferGapMs = 3;
inline constexpr int kLargestTransfer = 16;

// Raw mode: no echo, no line editing, no translation of any byte, 8 data
// bits. False and a message when the file is no terminal.
bool makeRawTerminal(int fd, QString* error = nullptr);

struct TransferRead {
    QByteArray bytes;
    // The line has gone for good (the other end closed, the device was
    // unplugged): nothing more will come, and no wait is worth making.
    bool hungUp = false;
    int error = 0; // errno of a failed read, 0 when none
};

// One transfer from a non-blocking descriptor: waits up to `firstByteWaitMs`
// for its first byte, then takes bytes until `limit` have come or the line
// stays quiet for `gapMs`.
TransferRead readTransfer(int fd, int limit, int firstByteWaitMs, int gapMs = kTransferGapMs);

// Writes every byte to a non-blocking descriptor, waiting at most `waitMs`
// for room. 0 on success, else the errno of the failure.
int writeTransfer(int fd, const QByteArray& bytes, int waitMs);

} // namespace qv
