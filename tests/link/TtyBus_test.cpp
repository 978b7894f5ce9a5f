// The serial-port backend over pseudo-terminals made here: the test plays
// the controller on the master side.
#include "link/backends/DeviceIds.h"
#include "link/backends/TtyBus.h"
#include "link/backends/TtyStream.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
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
    QTemporaryDir dir;

    QString link(const QString& name, const QString& target) {
        const QString path = dir.filePath(name);
        QFile::remove(path);
        EXPECT_EQ(::symlink(target.toLocal8Bit().constData(), path.toLocal8Bit().constData()), 0);
        return path;
    }

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

int openDescriptors() {
    return static_cast<int>(QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::System).size());
}

TEST(TtyStream, TransfersAreCutWhereTheLineFallsQuiet) {
    // The gap is scaled up here so that a loaded machine cannot blur it;
    // the rule is the same at the real gap, which one write never crosses.
    const QByteArray reply = QByteArray::fromHex("FE0041D0FE0041D0");
    struct Case {
        const char* what;
        std::vector<std::pair<QByteArray, int>> chunks; // bytes, then a pause in ms
        int limit, gap;
        QByteArray expected;
    };
    const std::vector<Case> cases = {
        {"bytes closer than the gap make one transfer", {{"AB", 5}, {"CD", 0}}, 16, 40, "ABCD"},
        {"a pause longer than the gap ends it", {{"AB", 150}, {"CD", 0}}, 16, 40, "AB"},
        {"a full buffer ends it without waiting", {{"ABCDEF", 0}}, 4, 40, "ABCD"},
        {"one write at the real gap", {{reply, 0}}, 64, kTransferGapMs, reply},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Pty pty;
        const int fd =
            ::open(pty.slave.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        ASSERT_GE(fd, 0);
        ASSERT_TRUE(makeRawTerminal(fd));
        std::thread device([&] {
            for (const auto& [bytes, pause] : c.chunks) {
                pty.send(bytes);
                std::this_thread::sleep_for(std::chrono::milliseconds(pause));
            }
        });
        const TransferRead r = readTransfer(fd, c.limit, 1000, c.gap);
        device.join();
        EXPECT_EQ(r.bytes, c.expected);
        EXPECT_FALSE(r.hungUp);
        ::close(fd);
    }
}

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

TEST_F(TtyBusTest, ListsTerminalsOnlyWithIdsThatFollowThePath) {
    Pty first;
    Pty second;
    const QString a = link(QStringLiteral("quorvel-0"), first.slave);
    link(QStringLiteral("quorvel-1"), second.slave);
    link(QStringLiteral("quorvel-2"), dir.filePath(QStringLiteral("nowhere")));
    QFile note(dir.filePath(QStringLiteral("quorvel-state.json")));
    ASSERT_TRUE(note.open(QIODevice::WriteOnly));
    note.close();

    auto bus = busFor(dir.filePath(QStringLiteral("quorvel-*")));
    ASSERT_EQ(bus->deviceCount(), 2);
    EXPECT_EQ(bus->paths(), QStringList({a, dir.filePath(QStringLiteral("quorvel-1"))}));
    const std::int32_t idA = bus->uniqueId(0);
    EXPECT_EQ(idA, ttyDeviceId(a));
    EXPECT_NE(idA, bus->uniqueId(1));
    EXPECT_EQ(bus->uniqueId(2), 0);

    // The link now leads to another terminal: same name, same id, and the
    // new terminal is the one spoken to.
    Pty third;
    link(QStringLiteral("quorvel-0"), third.slave);
    auto later = busFor(dir.filePath(QStringLiteral("quorvel-*")));
    ASSERT_EQ(later->deviceCount(), 2);
    EXPECT_EQ(later->uniqueId(0), idA);
    auto handle = later->open(idA);
    ASSERT_TRUE(handle);
    ASSERT_TRUE(handle->write("HI"));
    EXPECT_EQ(third.receive(), QByteArray("HI"));

    // A relative pattern names the same devices with the same ids.
    const QString previous = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(dir.path()));
    auto relative = busFor(QStringLiteral("quorvel-*"));
    const int count = relative->deviceCount();
    const std::int32_t relativeId = relative->uniqueId(0);
    QDir::setCurrent(previous);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(relativeId, idA);
}

TEST_F(TtyBusTest, HandlesOnOneDeviceShareOneOpenedTerminal) {
    Pty pty;
    auto bus = busFor(pty.slave);
    ASSERT_EQ(bus->deviceCount(), 1);
    const int before = openDescriptors();
    auto writer = bus->open(bus->uniqueId(0));
    auto reader = bus->open(bus->uniqueId(0));
    ASSERT_TRUE(writer && reader);
    EXPECT_EQ(openDescriptors(), before + 1);

    ASSERT_TRUE(writer->write("Q"));
    EXPECT_EQ(pty.receive(), QByteArray("Q"));
    pty.send("A");
    EXPECT_EQ(reader->read(1), QByteArray("A"));

    writer.reset();
    EXPECT_EQ(openDescriptors(), before + 1);
    reader.reset();
    EXPECT_EQ(openDescriptors(), before);
}

} // namespace
