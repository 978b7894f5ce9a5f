#pragma once

#include <QString>
#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>

namespace qv {

class ControllerChannel;

// What every controller of a run gets: the same programme, the same order
// and comment on its report.
struct CommissionJob {
    QString programmeFile;        // absolute path of the *.prg file
    QString order;                // order number; empty goes to report.log
    QString comment;              // the report's free comment line
    QString applicationDirectory; // where N.log is kept
    QString reportPath;           // another log than N.log, when not empty
    // After the restart the window waits five seconds before it reads
    // again; so does the bench.
    int restartWaitMs = 5000;
};

// The steps of one controller, in order. Each ends with a test of the link.
enum class CommissionStep {
    FullRead,
    Download,
    SerialNumber,
    Restart,
    ReadBack,
    Compare,
    Report,
    Done,
};
constexpr int kCommissionSteps = static_cast<int>(CommissionStep::Done);

// The step's name for logs and for keys of config.xml ("Full read", ...).
QString commissionStepName(CommissionStep step);

struct CommissionOutcome {
    std::int32_t id = 0;
    bool ok = false;
    std::optional<std::int32_t> serial;                // the number written, when one was
    QString serialRead;                                // the serial number read back
    QString model;                                     // "Quorvel"
    QString version;                                   // "(12) 2.70"
    CommissionStep reached = CommissionStep::FullRead; // the failing step when !ok
    QString failure;                                   // what went wrong, for the operator
    QString reportFile;
    double seconds = 0;
};

// Called as each step begins, from the controller's own thread.
using StepListener = std::function<void(CommissionStep)>;

// The whole sequence for one controller: the window's full read; the
// programme file downloaded as the editor's Write sends it (with the clock);
// the serial number when one is given, written as the service panel writes
// it; the restart and the window's wait after it; a second full read, which
// reads the programme image back; the programme read compared with the file
// (what the download carries of each line); the report block appended.
//
// Stops at the first step that fails, or before the next step once `stop`
// is set. A programme or log that cannot be used fails the line, never the
// process. Never throws.
CommissionOutcome commissionController(ControllerChannel& channel, const CommissionJob& job,
                                       std::optional<std::int32_t> serial,
                                       const StepListener& onStep, const std::atomic<bool>& stop);

} // namespace qv
