#include "PtySimulator.h"

#include "SimulatedBus.h"
#include "link/backends/TtyStream.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <thread>
#include <unistd.h>

namespace qv {

namespace {

using Clock = std::chrono::steady_clock;

// The longest reply the firmware gives is far below this.
constexpr int kReplyBuffer = 512;

QString errnoText() {
    return QString::fromLocal8Bit(std::strerror(errno));
}

} // namespace

struct PtySimulator::Port {
    std::int32_t id = 0;
    int master = -1;
    // Held open for the whole run: a terminal whose last user closes it
    // hangs up, and its master would then report nothing but the hang-up
    // until someone opens it again.
    int slave = -1;
    QString terminal;
    QString link;
    std::unique_ptr<BusHandle> handle;
    QByteArray pending;
    Clock::time_point lastByte;

    ~Port() {
        if (slave >= 0)
            ::close(slave);
        if (master >= 0)
            ::close(master);
    }
};

PtySimulator::PtySimulator(SimulatedBus& bus) : bus_(bus) {}

PtySimulator::~PtySimulator() = default;

bool PtySimulator::publish(const QString& folder, QString* error) {
    const auto fail = [error](const QString& text) {
        if (error)
            *error = text;
        return false;
    };
    QDir dir(folder);
    if (!dir.mkpath(QStringLiteral(".")))
        return fail(QStringLiteral("cannot create the folder %1").arg(folder));
    // Links of an earlier run that was killed may point to terminals that
    // now belong to someone else.
    for (const QFileInfo& old :
         dir.entryInfoList({QStringLiteral("quorvel-*")}, QDir::System | QDir::Files)) {
        if (old.isSymLink())
            QFile::remove(old.absoluteFilePath());
    }
    for (const std::int32_t id : bus_.deviceIds()) {
        const auto device = bus_.device(id);
        if (!device || !device->plugged())
            continue;
        auto port = std::make_unique<Port>();
        port->id = id;
        port->master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (port->master < 0 || ::grantpt(port->master) != 0 || ::unlockpt(port->master) != 0)
            return fail(QStringLiteral("cannot open a pseudo-terminal: %1").arg(errnoText()));
        const char* name = ::ptsname(port->master);
        if (!name)
            return fail(QStringLiteral("cannot name a pseudo-terminal: %1").arg(errnoText()));
        port->terminal = QString::fromLocal8Bit(name);
        port->slave = ::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (port->slave < 0)
            return fail(QStringLiteral("cannot open %1: %2").arg(port->terminal, errnoText()));
        QString problem;
        if (!makeRawTerminal(port->slave, &problem))
            return fail(
                QStringLiteral("cannot set %1 to raw mode: %2").arg(port->terminal, problem));
        ::fcntl(port->master, F_SETFL, ::fcntl(port->master, F_GETFL) | O_NONBLOCK);
        port->link = dir.absoluteFilePath(QStringLiteral("quorvel-%1").arg(ports_.size()));
        QFile::remove(port->link);
        if (::symlink(name, port->link.toLocal8Bit().constData()) != 0)
            return fail(QStringLiteral("cannot make the link %1: %2").arg(port->link, errnoText()));
        ports_.push_back(std::move(port));
    }
    return true;
}

QStringList PtySimulator::links() const {
    QStringList result;
    for (const auto& port : ports_)
        result << port->link;
    return result;
}

void PtySimulator::unpublish() {
    for (const auto& port : ports_)
        QFile::remove(port->link);
}

namespace {

void serve(SimulatedBus& bus, PtySimulator::Port& port, const QByteArray& transfer) {
    if (!port.handle)
        port.handle = bus.open(port.id);
    if (!port.handle)
        return;
    if (!port.handle->write(transfer)) {
        // The device has gone since the handle was made; a later transfer
        // tries a new one.
        port.handle.reset();
        return;
    }
    QByteArray reply = port.handle->read(kReplyBuffer);
    if (reply.isEmpty() && bus.takeLateArrival(port.id)) {
        // A late reply reaches the line after the other end's read wait,
        // and the device takes no new request before it has sent it.
        std::this_thread::sleep_for(std::chrono::milliseconds(bus.lateDelay()));
        reply = port.handle->read(kReplyBuffer);
    }
    if (!reply.isEmpty())
        writeTransfer(port.master, reply, 1000);
}

} // namespace

bool PtySimulator::run(int stopFd, QString* error) {
    const auto gap = std::chrono::milliseconds(kTransferGapMs);
    for (;;) {
        std::vector<pollfd> fds;
        fds.push_back({stopFd, POLLIN, 0});
        int timeout = -1;
        const auto now = Clock::now();
        for (const auto& port : ports_) {
            fds.push_back({port->master, POLLIN, 0});
            if (!port->pending.isEmpty()) {
                const auto left = port->lastByte + gap - now;
                const int ms =
                    left <= Clock::duration::zero()
                        ? 0
                        : static_cast<int>(
                              std::chrono::ceil<std::chrono::milliseconds>(left).count());
                timeout = timeout < 0 ? ms : std::min(timeout, ms);
            }
        }
        if (::poll(fds.data(), fds.size(), timeout) < 0) {
            if (errno == EINTR)
                continue;
            if (error)
                *error = QStringLiteral("waiting for transfers failed: %1").arg(errnoText());
            return false;
        }
        if (fds[0].revents != 0)
            return true;
        for (size_t i = 0; i < ports_.size(); ++i) {
            Port& port = *ports_[i];
            if (fds[i + 1].revents & POLLIN) {
                char buffer[256];
                for (;;) {
                    const ssize_t n = ::read(port.master, buffer, sizeof buffer);
                    if (n <= 0)
                        break;
                    port.pending.append(buffer, n);
                    port.lastByte = Clock::now();
                }
                // A full frame needs no gap to tell where it ends.
                while (port.pending.size() >= kLargestTransfer) {
                    serve(bus_, port, port.pending.left(kLargestTransfer));
                    port.pending.remove(0, kLargestTransfer);
                }
            }
            if (!port.pending.isEmpty() && Clock::now() - port.lastByte >= gap) {
                serve(bus_, port, port.pending);
                port.pending.clear();
            }
        }
    }
}

} // namespace qv
