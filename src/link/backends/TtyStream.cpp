#include "TtyStream.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace qv {

namespace {

using Clock = std::chrono::steady_clock;

// Waits for `events` until `deadline`. Returns the poll events seen, 0 on
// timeout, -1 with errno on failure.
int waitFor(int fd, short events, Clock::time_point deadline) {
    for (;;) {
        pollfd p{fd, events, 0};
        // Rounding up: a wait of 0.4 ms must not turn into a busy loop of
        // zero-length polls, nor into no wait at all.
        const auto left = deadline - Clock::now();
        const int ms =
            left <= Clock::duration::zero()
                ? 0
                : static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(left).count());
        const int n = ::poll(&p, 1, ms);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return n;
        return p.revents;
    }
}

} // namespace

bool makeRawTerminal(int fd, QString* error) {
    termios t{};
    if (::tcgetattr(fd, &t) != 0) {
        if (error)
            *error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    ::cfmakeraw(&t);
    // Reading is governed by poll(); read() itself never waits.
    t.c_cc[VMIN] = 0;
    t.c_cc[VTIME] = 0;
    // No modem lines to wait for, and the receiver on. The link opens and
    // closes the port for every exchange; dropping DTR at each close would
    // make some devices restart.
    t.c_cflag |= CLOCAL | CREAD;
    t.c_cflag &= ~static_cast<tcflag_t>(HUPCL);
    // The rate means nothing to a USB serial device or a pseudo-terminal,
    // but a real port needs one; this is the usual one.
    ::cfsetispeed(&t, B115200);
    ::cfsetospeed(&t, B115200);
    if (::tcsetattr(fd, TCSANOW, &t) != 0) {
        if (error)
            *error = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    return true;
}

TransferRead readTransfer(int fd, int limit, int firstByteWaitMs, int gapMs) {
    TransferRead result;
    if (limit <= 0)
        return result;
    auto deadline = Clock::now() + std::chrono::milliseconds(std::max(0, firstByteWaitMs));
    char buffer[256];
    while (result.bytes.size() < limit) {
        const int events = waitFor(fd, POLLIN, deadline);
        if (events < 0) {
            result.error = errno;
            return result;
        }
        if (events == 0)
            break; // quiet: the transfer is over, or never began
        if ((events & POLLIN) == 0) {
            // POLLHUP or POLLERR without data: the other end has gone.
            result.hungUp = true;
            return result;
        }
        const size_t room =
            std::min(sizeof buffer, static_cast<size_t>(limit - result.bytes.size()));
        const ssize_t n = ::read(fd, buffer, room);
        if (n < 0) {
            if (errno == EAGAIN || errno == EINTR)
                continue;
            // A terminal whose other side has closed reads as EIO.
            result.error = errno;
            result.hungUp = errno == EIO;
            return result;
        }
        if (n == 0) {
            result.hungUp = true;
            return result;
        }
        result.bytes.append(buffer, n);
        deadline = Clock::now() + std::chrono::milliseconds(std::max(0, gapMs));
    }
    return result;
}

int writeTransfer(int fd, const QByteArray& bytes, int waitMs) {
    const auto deadline = Clock::now() + std::chrono::milliseconds(std::max(0, waitMs));
    qsizetype done = 0;
    while (done < bytes.size()) {
        const ssize_t n =
            ::write(fd, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
        if (n >= 0) {
            done += n;
            continue;
        }
        if (errno == EINTR)
            continue;
        if (errno != EAGAIN)
            return errno;
        const int events = waitFor(fd, POLLOUT, deadline);
        if (events < 0)
            return errno;
        if (events == 0)
            return ETIMEDOUT;
        if ((events & POLLOUT) == 0)
            return EIO;
    }
    return 0;
}

} // namespace qv
