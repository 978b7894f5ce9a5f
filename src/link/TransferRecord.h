#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

namespace qv {

enum class TransferDirection { ToDevice, FromDevice };

// What became of one transfer. A write is sent or refused (three calls in
// vain); a read is answered, silent, or fails its check value. Traces from
// before attempts were recorded carry Unknown.
enum class TransferOutcome { Unknown, Sent, Refused, Answered, Silence, BadCheck };

// One transfer at the link, as the frame link saw it.
struct TransferRecord {
    // Microseconds: on a steady clock when the link records it, since the
    // start of the trace once a hub has taken it.
    std::int64_t atUs = 0;
    std::int32_t device = 0;
    TransferDirection direction = TransferDirection::ToDevice;
    QByteArray bytes;
    int attempt = 0; // 1..3 within one exchange; 0 when not known
    TransferOutcome outcome = TransferOutcome::Unknown;
    bool checked = true; // false: the legacy probe's transfers, without check value
    bool deviceKnown = true;

    bool operator==(const TransferRecord&) const = default;
};

// The word of an outcome in trace files ("answered", "silence", ...);
// empty for Unknown.
QString outcomeWord(TransferOutcome outcome);
TransferOutcome outcomeFromWord(const QString& word);

} // namespace qv
