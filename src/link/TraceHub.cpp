#include "TraceHub.h"

#include "TraceFormat.h"

#include <QFile>
#include <chrono>
#include <cstring>

namespace qv {

TraceHub::TraceHub() : originUs_(steadyNowUs()) {}

TraceHub::~TraceHub() {
    closeFile();
}

std::int64_t TraceHub::steadyNowUs() {
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

bool TraceHub::openFile(const QString& path, QString* error) {
    // Not inherited by the processes we start (the firmware loader).
    std::FILE* file = std::fopen(QFile::encodeName(path).constData(), "ae");
    if (!file) {
        if (error)
            *error = QStringLiteral("cannot open the trace file %1: %2")
                         .arg(path, QString::fromLocal8Bit(std::strerror(errno)));
        return false;
    }
    std::lock_guard lock(mutex_);
    if (file_)
        std::fclose(file_);
    file_ = file;
    path_ = path;
    return true;
}

void TraceHub::closeFile() {
    std::lock_guard lock(mutex_);
    if (file_)
        std::fclose(file_);
    file_ = nullptr;
    path_.clear();
}

QString TraceHub::filePath() const {
    std::lock_guard lock(mutex_);
    return path_;
}

int TraceHub::subscribe(Listener listener) {
    std::lock_guard lock(mutex_);
    const int id = nextId_++;
    listeners_.emplace(id, std::move(listener));
    return id;
}

void TraceHub::unsubscribe(int id) {
    std::lock_guard lock(mutex_);
    listeners_.erase(id);
}

void TraceHub::record(const TransferRecord& incoming) {
    TransferRecord r = incoming;
    std::lock_guard lock(mutex_);
    r.atUs = std::max<std::int64_t>(0, incoming.atUs - originUs_);
    if (file_) {
        const QByteArray line = formatTraceLine(r).toUtf8() + '\n';
        std::fwrite(line.constData(), 1, static_cast<size_t>(line.size()), file_);
        std::fflush(file_);
    }
    for (auto& [id, listener] : listeners_)
        listener(r);
}

} // namespace qv
