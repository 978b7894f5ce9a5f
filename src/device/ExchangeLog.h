#pragma once

#include "FrameDecoder.h"
#include "link/TransferRecord.h"

#include <QString>
#include <cstdint>
#include <map>
#include <vector>

namespace qv {

// How one attempt of an exchange ended.
enum class ExchangeStatus { Answered, Silence, BadCheck, Refused };

QString statusWord(ExchangeStatus status); // "answered", "silence", "bad-check", "refused"

// One attempt of an exchange: a request and the reply matched to it (or the
// silence after it), decoded.
struct Exchange {
    std::int64_t atUs = 0;       // when the request went, since the start of the trace
    long long sequence = 0;      // the request's place among the transfers fed
    std::int64_t durationUs = 0; // request to reply (or to the end of the wait); 0 unknown
    std::int32_t device = 0;
    bool deviceKnown = false;
    int attempt = 1;
    ExchangeStatus status = ExchangeStatus::Answered;
    QByteArray request;
    QByteArray reply;
    QString requestText;
    QString replyText;

    bool failed() const { return status != ExchangeStatus::Answered; }
    // "read EEPROM 40 (counter 1) -> 7"
    QString words() const;
};

// Pairs the transfers of a trace into exchanges, device by device, as they
// come (live, from several threads' records interleaved) or from a file. A
// trace without attempts or outcomes (the simulator's) gets them inferred:
// a request repeated after a failure is the next attempt, a request
// followed by another request went unanswered, a reply's check value is
// verified here.
class ExchangeAssembler {
public:
    // The exchanges that this record completes: none, or one, or two when a
    // request follows one that never got a reply.
    std::vector<Exchange> add(const TransferRecord& record);
    // Requests still waiting, as unanswered exchanges; the assembler is then
    // empty.
    std::vector<Exchange> finish();
    void clear();

private:
    struct Stream {
        bool waiting = false;
        TransferRecord request;
        long long requestSequence = 0;
        DecodeContext context;
        QByteArray lastRequest;
        int lastAttempt = 0;
        bool lastFailed = false;
    };
    Exchange complete(Stream& stream, const TransferRecord* reply);
    static std::int64_t key(const TransferRecord& r);

    std::map<std::int64_t, Stream> streams_;
    long long fed_ = 0;
};

// The transfers of one exchange, as a trace records them: the request, and
// the reply or the silence (none after a refused write).
std::vector<TransferRecord> transfersOf(const Exchange& exchange);

// Every exchange of a whole trace, in the order of their requests in it (a
// file that several runs appended to starts its time again with each).
std::vector<Exchange> assembleExchanges(const std::vector<TransferRecord>& records);

struct TraceSummary {
    int exchanges = 0;        // first attempts
    int failures = 0;         // exchanges whose last attempt failed
    int retries = 0;          // attempts after the first
    std::int64_t pauseUs = 0; // the link's fixed waits before writes and reads
    std::int64_t wireUs = 0;  // the rest of each attempt: transfers and the device's answer
};

TraceSummary summarize(const std::vector<Exchange>& exchanges);

} // namespace qv
