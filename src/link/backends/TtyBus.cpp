#include "TtyBus.h"

#include "DeviceIds.h"
#include "TtyStream.h"

#include <QDir>
#include <cerrno>
#include <fcntl.h>
#include <glob.h>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace qv {

namespace {

QString absolutePath(const QString& path) {
    // cleanPath, unlike canonicalPath, leaves symbolic links alone.
    return QDir::cleanPath(QDir::current().absoluteFilePath(path));
}

} // namespace

std::int32_t ttyDeviceId(const QString& path) {
    return stableDeviceId("tty:" + absolutePath(path).toUtf8());
}

// One opened terminal, shared by the handles on it.
struct OpenTty {
    int fd = -1;
    QString path;
    int readWaitMs = TtyBus::kDefaultReadWaitMs;
    int writeWaitMs = TtyBus::kDefaultWriteWaitMs;
    // Set once the line is known to be gone; nothing more is tried on it.
    bool hungUp = false;

    OpenTty() = default;
    OpenTty(const OpenTty&) = delete;
    OpenTty& operator=(const OpenTty&) = delete;
    ~OpenTty() {
        if (fd >= 0)
            ::close(fd);
    }
};

struct TtyBus::Core {
    struct Listed {
        std::int32_t id = 0;
        QString path;
    };

    mutable std::mutex mutex;
    Settings settings;
    std::vector<Listed> listed;
    std::map<std::int32_t, std::weak_ptr<OpenTty>> opened;

    void scan() {
        listed.clear();
        glob_t found{};
        const QByteArray pattern = settings.pattern.toLocal8Bit();
        if (::glob(pattern.constData(), 0, nullptr, &found) == 0) {
            for (size_t i = 0; i < found.gl_pathc; ++i) {
                struct stat info {};
                // stat follows links: what counts is what they point to.
                if (::stat(found.gl_pathv[i], &info) != 0 || !S_ISCHR(info.st_mode))
                    continue;
                const QString path = QString::fromLocal8Bit(found.gl_pathv[i]);
                listed.push_back({ttyDeviceId(path), absolutePath(path)});
            }
        }
        ::globfree(&found);
    }

    const Listed* find(std::int32_t id) const {
        for (const Listed& l : listed)
            if (l.id == id)
                return &l;
        return nullptr;
    }
};

namespace {

class TtyHandle : public BusHandle {
public:
    explicit TtyHandle(std::shared_ptr<OpenTty> tty) : tty_(std::move(tty)) {}

    bool write(const QByteArray& transfer) override {
        if (tty_->hungUp) {
            lastError_ = EIO;
            return false;
        }
        // Whatever waits on the line answers an earlier request.
        ::tcflush(tty_->fd, TCIFLUSH);
        lastError_ = writeTransfer(tty_->fd, transfer, tty_->writeWaitMs);
        if (lastError_ == EIO)
            tty_->hungUp = true;
        return lastError_ == 0;
    }

    QByteArray read(int maxLength) override {
        if (tty_->hungUp) {
            lastError_ = EIO;
            return {};
        }
        const TransferRead r = readTransfer(tty_->fd, maxLength, tty_->readWaitMs);
        if (r.hungUp) {
            tty_->hungUp = true;
            lastError_ = r.error != 0 ? r.error : EIO;
        } else {
            lastError_ = r.error;
        }
        return r.bytes;
    }

    int lastError() const override { return lastError_; }

private:
    std::shared_ptr<OpenTty> tty_;
    int lastError_ = 0;
};

} // namespace

TtyBus::TtyBus(Settings settings) : core_(std::make_shared<Core>()) {
    core_->settings = std::move(settings);
}

TtyBus::~TtyBus() = default;

int TtyBus::deviceCount() {
    std::lock_guard lock(core_->mutex);
    core_->scan();
    return static_cast<int>(core_->listed.size());
}

std::int32_t TtyBus::uniqueId(int index) {
    std::lock_guard lock(core_->mutex);
    if (index < 0 || index >= static_cast<int>(core_->listed.size()))
        return 0;
    return core_->listed[static_cast<size_t>(index)].id;
}

QStringList TtyBus::paths() const {
    std::lock_guard lock(core_->mutex);
    QStringList result;
    for (const auto& l : core_->listed)
        result << l.path;
    return result;
}

std::unique_ptr<BusHandle> TtyBus::open(std::int32_t uniqueId) {
    std::lock_guard lock(core_->mutex);
    if (auto shared = core_->opened[uniqueId].lock(); shared && !shared->hungUp)
        return std::make_unique<TtyHandle>(std::move(shared));
    const Core::Listed* l = core_->find(uniqueId);
    if (!l) {
        // Opening by an id from an earlier run: look again.
        core_->scan();
        l = core_->find(uniqueId);
        if (!l)
            return nullptr;
    }
    // O_NOCTTY: a controller must never become this process's terminal,
    // whose loss would send it SIGHUP.
    const int fd =
        ::open(l->path.toLocal8Bit().constData(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return nullptr;
    if (!makeRawTerminal(fd)) {
        ::close(fd);
        return nullptr;
    }
    auto tty = std::make_shared<OpenTty>();
    tty->fd = fd;
    tty->path = l->path;
    tty->readWaitMs = core_->settings.readWaitMs;
    tty->writeWaitMs = core_->settings.writeWaitMs;
    core_->opened[uniqueId] = tty;
    return std::make_unique<TtyHandle>(std::move(tty));
}

} // namespace qv
