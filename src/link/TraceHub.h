#pragma once

#include "TraceSink.h"

#include <QString>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <mutex>

namespace qv {

// The recorder: takes every transfer from any number of threads, gives it a
// time since the start of the trace, appends it to the trace file when one
// is open, and hands it to the listeners (the live panel). Thread-safe.
class TraceHub : public TraceSink {
public:
    using Listener = std::function<void(const TransferRecord&)>;

    TraceHub();
    ~TraceHub() override;
    TraceHub(const TraceHub&) = delete;
    TraceHub& operator=(const TraceHub&) = delete;

    // Appends to `path` from now on, one flushed line per transfer, so that
    // a trace survives a crash. False and a message when it cannot be opened.
    bool openFile(const QString& path, QString* error = nullptr);
    void closeFile();
    QString filePath() const;

    // Listeners are called on the recording thread, under the hub's lock:
    // they must only queue the record. The id serves to unsubscribe.
    int subscribe(Listener listener);
    void unsubscribe(int id);

    void record(const TransferRecord& record) override;

    // Steady-clock microseconds, the time base of records from the link.
    static std::int64_t steadyNowUs();

private:
    mutable std::mutex mutex_;
    std::int64_t originUs_;
    std::FILE* file_ = nullptr;
    QString path_;
    std::map<int, Listener> listeners_;
    int nextId_ = 1;
};

} // namespace qv
