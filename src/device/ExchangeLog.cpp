#include "ExchangeLog.h"

#include <algorithm>

namespace qv {

namespace {
// The link waits this long before every write and every read of a checked
// exchange; the legacy probe waits once, between its write and its read.
constexpr std::int64_t kPauseUs = 10'000;
} // namespace

QString statusWord(ExchangeStatus status) {
    switch (status) {
    case ExchangeStatus::Answered:
        return QStringLiteral("answered");
    case ExchangeStatus::Silence:
        return QStringLiteral("silence");
    case ExchangeStatus::BadCheck:
        return QStringLiteral("bad-check");
    case ExchangeStatus::Refused:
        return QStringLiteral("refused");
    }
    return QString();
}

QString Exchange::words() const {
    switch (status) {
    case ExchangeStatus::Answered:
        return replyText.isEmpty() ? requestText : requestText + QStringLiteral(" -> ") + replyText;
    case ExchangeStatus::Silence:
        return requestText + QStringLiteral(" -> (silence)");
    case ExchangeStatus::BadCheck:
        return requestText + QStringLiteral(" -> (bad check value)");
    case ExchangeStatus::Refused:
        return requestText + QStringLiteral(" -> (write refused)");
    }
    return requestText;
}

std::int64_t ExchangeAssembler::key(const TransferRecord& r) {
    // Traces without devices are one stream.
    return r.deviceKnown ? static_cast<std::int64_t>(r.device) : (std::int64_t{1} << 40);
}

Exchange ExchangeAssembler::complete(Stream& s, const TransferRecord* reply) {
    const TransferRecord& q = s.request;
    Exchange e;
    e.atUs = q.atUs;
    e.sequence = s.requestSequence;
    e.device = q.device;
    e.deviceKnown = q.deviceKnown;
    e.request = q.bytes;
    e.requestText = describeRequest(q.bytes, &s.context);
    if (q.outcome == TransferOutcome::Refused) {
        e.status = ExchangeStatus::Refused;
    } else if (!reply || reply->bytes.isEmpty() || reply->outcome == TransferOutcome::Silence) {
        e.status = ExchangeStatus::Silence;
    } else if (reply->outcome == TransferOutcome::BadCheck ||
               (reply->outcome == TransferOutcome::Unknown && isCheckedFrame(q.bytes) &&
                !checkValueGood(reply->bytes))) {
        e.status = ExchangeStatus::BadCheck;
    } else {
        e.status = ExchangeStatus::Answered;
    }
    if (reply) {
        e.reply = reply->bytes;
        e.durationUs = std::max<std::int64_t>(0, reply->atUs - q.atUs);
    }
    if (e.status == ExchangeStatus::Answered)
        e.replyText = describeReply(q.bytes, e.reply);

    if (q.attempt > 0)
        e.attempt = q.attempt;
    else if (s.lastFailed && s.lastRequest == q.bytes && s.lastAttempt < 3)
        e.attempt = s.lastAttempt + 1;
    else
        e.attempt = 1;
    s.lastRequest = q.bytes;
    s.lastAttempt = e.attempt;
    s.lastFailed = e.failed();
    s.waiting = false;
    return e;
}

std::vector<Exchange> ExchangeAssembler::add(const TransferRecord& r) {
    std::vector<Exchange> done;
    Stream& s = streams_[key(r)];
    const long long sequence = fed_++;
    if (r.direction == TransferDirection::ToDevice) {
        if (s.waiting)
            done.push_back(complete(s, nullptr));
        s.request = r;
        s.requestSequence = sequence;
        s.waiting = true;
    } else if (s.waiting) {
        done.push_back(complete(s, &r));
    }
    // A reply that answers no request (a trace that starts mid-exchange) is
    // left out.
    return done;
}

std::vector<Exchange> ExchangeAssembler::finish() {
    std::vector<Exchange> done;
    for (auto& [k, s] : streams_)
        if (s.waiting)
            done.push_back(complete(s, nullptr));
    streams_.clear();
    std::sort(done.begin(), done.end(),
              [](const Exchange& a, const Exchange& b) { return a.sequence < b.sequence; });
    return done;
}

void ExchangeAssembler::clear() {
    streams_.clear();
    fed_ = 0;
}

std::vector<TransferRecord> transfersOf(const Exchange& e) {
    TransferRecord q;
    q.atUs = e.atUs;
    q.device = e.device;
    q.deviceKnown = e.deviceKnown;
    q.direction = TransferDirection::ToDevice;
    q.bytes = e.request;
    q.attempt = e.attempt;
    q.checked = isCheckedFrame(e.request);
    q.outcome =
        e.status == ExchangeStatus::Refused ? TransferOutcome::Refused : TransferOutcome::Sent;
    if (e.status == ExchangeStatus::Refused)
        return {q};
    TransferRecord r = q;
    r.atUs = e.atUs + e.durationUs;
    r.direction = TransferDirection::FromDevice;
    r.bytes = e.status == ExchangeStatus::Silence ? QByteArray() : e.reply;
    r.outcome = e.status == ExchangeStatus::Silence    ? TransferOutcome::Silence
                : e.status == ExchangeStatus::BadCheck ? TransferOutcome::BadCheck
                                                       : TransferOutcome::Answered;
    return {q, r};
}

std::vector<Exchange> assembleExchanges(const std::vector<TransferRecord>& records) {
    ExchangeAssembler assembler;
    std::vector<Exchange> all;
    for (const TransferRecord& r : records)
        for (Exchange& e : assembler.add(r))
            all.push_back(std::move(e));
    for (Exchange& e : assembler.finish())
        all.push_back(std::move(e));
    std::sort(all.begin(), all.end(),
              [](const Exchange& a, const Exchange& b) { return a.sequence < b.sequence; });
    return all;
}

TraceSummary summarize(const std::vector<Exchange>& exchanges) {
    TraceSummary s;
    // Whether the exchange under way on each device has failed so far.
    std::map<std::int64_t, bool> openFailed;
    for (const Exchange& e : exchanges) {
        const std::int64_t k = e.deviceKnown ? e.device : (std::int64_t{1} << 40);
        if (e.attempt <= 1) {
            ++s.exchanges;
            if (auto it = openFailed.find(k); it != openFailed.end() && it->second)
                ++s.failures;
        } else {
            ++s.retries;
        }
        openFailed[k] = e.failed();
        const bool checked = isCheckedFrame(e.request);
        s.pauseUs += checked ? 2 * kPauseUs : kPauseUs;
        s.wireUs += std::max<std::int64_t>(0, e.durationUs - kPauseUs);
    }
    for (const auto& [k, failed] : openFailed)
        if (failed)
            ++s.failures;
    return s;
}

} // namespace qv
