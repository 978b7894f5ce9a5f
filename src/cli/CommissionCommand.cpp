#include "Commands.h"
#include "MultiDevice.h"
#include "ProgressBoard.h"
#include "production/ProductionRun.h"
#include "reports/ReportBlock.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <mutex>
#include <stdexcept>

namespace qv {

bool runsOnSeveralDevices(const CliCommand& command) {
    static const QList<QStringList> several = {
        {QStringLiteral("identity")},
        {QStringLiteral("clock"), QStringLiteral("set")},
        {QStringLiteral("eeprom"), QStringLiteral("write")},
        {QStringLiteral("programme"), QStringLiteral("download")},
        {QStringLiteral("report")},
    };
    return several.contains(command.words);
}

namespace {

QString stepText(Session& s, CommissionStep step) {
    return s.message(commissionStepName(step));
}

QString outcomeLine(Session& s, const CommissionOutcome& o) {
    const QString serial = o.serial ? QString::number(*o.serial) : o.serialRead;
    const QString result =
        o.ok ? QStringLiteral("ok")
             : QStringLiteral("FAILED at %1: %2").arg(stepText(s, o.reached), o.failure);
    return QStringLiteral("%1  serial %2  %3  %4 s")
        .arg(o.id)
        .arg(serial.isEmpty() ? QStringLiteral("-") : serial)
        .arg(result)
        .arg(o.seconds, 0, 'f', 1);
}

QJsonObject outcomeJson(Session& s, const CommissionOutcome& o) {
    QJsonObject object{
        {QStringLiteral("id"), static_cast<qint64>(o.id)},
        {QStringLiteral("ok"), o.ok},
        {QStringLiteral("serial"), o.serial ? QJsonValue(*o.serial) : QJsonValue(o.serialRead)},
        {QStringLiteral("model"), o.model},
        {QStringLiteral("version"), o.version},
        {QStringLiteral("seconds"), o.seconds}};
    if (o.ok) {
        object.insert(QStringLiteral("report"), QDir::toNativeSeparators(o.reportFile));
    } else {
        object.insert(QStringLiteral("step"), stepText(s, o.reached));
        object.insert(QStringLiteral("failure"), o.failure);
    }
    return object;
}

// Status lines and the line of each controller as it ends, from the
// controllers' threads.
class CommandListener : public ProductionRun::Listener {
public:
    CommandListener(Session& s, ProgressBoard& board) : s_(s), board_(board) {}

    void stepStarted(size_t index, CommissionStep step) override {
        const int n = static_cast<int>(step) + 1;
        std::lock_guard lock(mutex_);
        board_.update(static_cast<int>(index), QStringLiteral("[%1/%2] %3")
                                                   .arg(std::min(n, kCommissionSteps))
                                                   .arg(kCommissionSteps)
                                                   .arg(stepText(s_, step)));
    }
    void controllerEnded(size_t index, const CommissionOutcome& o) override {
        std::lock_guard lock(mutex_);
        board_.update(static_cast<int>(index),
                      o.ok ? QStringLiteral("ok") : QStringLiteral("failed"));
        // Through the board, which may share the terminal with standard
        // output.
        const QString line =
            s_.json ? QString::fromUtf8(
                          QJsonDocument(outcomeJson(s_, o)).toJson(QJsonDocument::Compact))
                    : outcomeLine(s_, o);
        board_.print(stdout, line);
    }
    void runEnded() override {}

private:
    Session& s_;
    ProgressBoard& board_;
    // The session's config.xml is not for two threads at once.
    std::mutex mutex_;
};

int runCommission(Session& s, Arguments& args) {
    const auto order = args.takeOption(QStringLiteral("order"));
    const QString comment = args.takeOption(QStringLiteral("comment")).value_or(QString());
    const auto file = args.takeOption(QStringLiteral("file"));
    const auto serialFrom = args.takeOption(QStringLiteral("serial-from"));
    const auto restartWait = args.takeOption(QStringLiteral("restart-wait"));
    const QString programme =
        QFileInfo(args.takePositional(QStringLiteral("FILE.prg"))).absoluteFilePath();
    args.expectEnd();
    if (!QFileInfo(programme).isFile())
        throw UsageError{QStringLiteral("no such programme file: %1").arg(programme)};
    s.config->load(programme); // a malformed file is refused before any controller is touched

    CommissionJob job;
    job.programmeFile = programme;
    job.order = order.value_or(QString());
    job.comment = comment;
    job.applicationDirectory = s.applicationDirectory;
    if (file)
        job.reportPath = QFileInfo(*file).absoluteFilePath();
    if (restartWait)
        job.restartWaitMs = static_cast<int>(
            parseNumber(*restartWait, QStringLiteral("--restart-wait"), 0, 600000));
    const std::optional<std::int64_t> firstSerial =
        serialFrom ? std::optional<std::int64_t>(
                         parseNumber(*serialFrom, QStringLiteral("--serial-from"), 0, 2147483647))
                   : std::nullopt;

    const std::vector<std::int32_t> ids = devicesNamed(s.deviceOption, *s.bus, true);
    if (ids.empty()) {
        std::fprintf(stderr, "quorvelctl: no controller attached\n");
        return kExitDeviceFailed;
    }
    std::unique_ptr<ProductionRun> run;
    try {
        run = std::make_unique<ProductionRun>(*s.bus, s.config->configPath(), s.language, job, ids,
                                              firstSerial);
    } catch (const std::range_error&) {
        throw UsageError{QStringLiteral("--serial-from %1 leaves no room for %2 serial numbers")
                             .arg(*serialFrom)
                             .arg(ids.size())};
    }
    QStringList labels;
    for (std::int32_t id : ids)
        labels << QString::number(id);
    ProgressBoard board(labels);
    run->setMessageSink([&board](std::int32_t id, const QString& text) {
        board.message(QStringLiteral("%1: %2").arg(id).arg(text));
    });
    CommandListener listener(s, board);
    run->start(listener);
    const std::vector<CommissionOutcome> outcomes = run->wait();
    board.finish();

    QStringList failed;
    QJsonArray failedIds;
    for (const CommissionOutcome& o : outcomes) {
        if (!o.ok) {
            failed << QString::number(o.id);
            failedIds.append(static_cast<qint64>(o.id));
        }
    }
    const qsizetype succeeded = static_cast<qsizetype>(outcomes.size()) - failed.size();
    if (s.json) {
        printJson(QJsonObject{{QStringLiteral("summary"), true},
                              {QStringLiteral("controllers"), static_cast<int>(outcomes.size())},
                              {QStringLiteral("succeeded"), static_cast<int>(succeeded)},
                              {QStringLiteral("failed"), failedIds}});
    } else {
        QString summary = QStringLiteral("%1 controller(s): %2 succeeded, %3 failed")
                              .arg(outcomes.size())
                              .arg(succeeded)
                              .arg(failed.size());
        if (!failed.isEmpty())
            summary += QStringLiteral(" (%1)").arg(failed.join(QStringLiteral(", ")));
        printLine(summary);
    }
    return failed.isEmpty() ? kExitOk : kExitDeviceFailed;
}

} // namespace

const std::vector<CliCommand>& productionCommands() {
    static const std::vector<CliCommand> commands = {
        {{QStringLiteral("commission")},
         QStringLiteral("commission controllers at once: programme, serial number, report"),
         QStringLiteral(
             "commission FILE.prg [--order N] [--comment TEXT] [--file PATH]\n"
             "                  [--serial-from S] [--restart-wait MS]\n"
             "  Every controller that --device names (all attached ones without --device),\n"
             "  each on its own: full read, FILE.prg downloaded with the clock, serial\n"
             "  number S, S+1, ... in the order of the list (with --serial-from), restart,\n"
             "  a second full read, the programme read back compared with the file, the\n"
             "  report block appended to N.log (report.log without N, PATH with --file).\n"
             "  --restart-wait MS  the wait after the restart (5000, as the window waits)\n"
             "  One line per controller as it ends, then a summary; --json prints objects.\n"
             "  Exit status 1 when any controller failed."),
         runCommission},
    };
    return commands;
}

} // namespace qv
