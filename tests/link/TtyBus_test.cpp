// The serial-port backend over pseudo-terminals made here: the test plays
// the controller on the master side.
#include "link/backends/TtyBus.h"
#include "link/backends/TtyStream.h"

#include <QElapsedTimer>
#include <QThread>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

using namespace qv;

namespace {

// A pseudo-terminal left in its default, cooked mode: the backend must make
// it raw itself.
struct Pty {
    int master = -1;
    QString slave;

    Pty() {
        master = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        if (master >= 0 && ::grantpt(master) == 0 && ::unlockpt(master) == 0)
            slave = QString::fromLocal8Bit(::ptsname(master));
    }
    ~Pty() { closeMaster(); }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    void closeMaster() {
        if (master >= 0)
            ::close(master);
        master = -1;
    }

    void send(const QByteArray& bytes) const {
        ASSERT_EQ(::write(master, bytes.constData(), static_cast<size_t>(bytes.size())),
                  bytes.size());
    }

    // What the host wrote, as one transfer by the same rule.
    QByteArray receive(int waitMs = 1000) const {
        ::fcntl(master, F_SETFL, ::fcntl(master, F_GETFL) | O_NONBLOCK);
        return readTransfer(master, 64, waitMs).bytes;
    }
};

class TtyBusTest : public ::testing::Test {
protected:
    std::unique_ptr<TtyBus> busFor(const QString& pattern, int readWaitMs = 200) {
        TtyBus::Settings settings;
        settings.pattern = pattern;
        settings.readWaitMs = readWaitMs;
        return std::make_unique<TtyBus>(settings);
    }

    // The bus over one pseudo-terminal, and a handle on it.
    std::unique_ptr<BusHandle> openOnly(TtyBus& bus) {
        EXPECT_EQ(bus.deviceCount(), 1);
        return bus.open(bus.uniqueId(0));
    }
};

TEST_F(TtyBusTest, EveryByteCrossesUnchangedAndAReadTakesOneTransferOnly) {
    Pty pty;
    auto bus = busFor(pty.slave);
    auto handle = openOnly(*bus);
    ASSERT_TRUE(handle);
    // Line ends, interrupt and flow-control characters, erase, NUL: what a
    // cooked terminal would translate, swallow or act on.
    const QByteArray special = QByteArray::fromHex("0D0A0D03111304157F001A1C08FF");
    ASSERT_TRUE(handle->write(special));
    EXPECT_EQ(pty.receive(), special);
    pty.send(special);
    EXPECT_EQ(handle->read(64), special);

    // The answer is longer than asked for: the reader keeps what it asked.
    pty.send("ABCDEF");
    EXPECT_EQ(handle->read(4), QByteArray("ABCD"));
    // An answer that came after its reader gave up is never taken for the next.
    pty.send("LATE");
    QThread::msleep(20);
    ASSERT_TRUE(handle->write("REQ"));
    EXPECT_EQ(pty.receive(), QByteArray("REQ"));
    pty.send("XY");
    EXPECT_EQ(handle->read(8), QByteArray("XY"));
}

TEST_F(TtyBusTest, SilenceEndsTheReadAfterItsWaitAndAHangUpAtOnce) {
    constexpr int wait = 150;
    Pty pty;
    auto bus = busFor(pty.slave, wait);
    auto handle = openOnly(*bus);
    ASSERT_TRUE(handle);

    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(handle->read(4).isEmpty());
    EXPECT_GE(timer.elapsed(), wait - 5);
    EXPECT_LT(timer.elapsed(), wait + 1000);
    EXPECT_EQ(handle->lastError(), 0);

    // The controller's side goes away for good.
    pty.closeMaster();
    timer.restart();
    EXPECT_TRUE(handle->read(4).isEmpty());
    EXPECT_LT(timer.elapsed(), wait / 2);
    EXPECT_NE(handle->lastError(), 0);
    EXPECT_FALSE(handle->write("X"));
    // The terminal is gone with its master: nothing to open any more.
    EXPECT_EQ(bus->open(bus->uniqueId(0)), nullptr);
}

} // namespace
