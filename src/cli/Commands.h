#pragma once

#include "Arguments.h"
#include "Session.h"

#include <QJsonValue>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

namespace qv {

// One quorvelctl command: its words ("eeprom read"), a one-line summary, the
// usage shown by --help, and what it does. Returns the exit status.
struct CliCommand {
    QStringList words;
    QString summary;
    QString usage;
    std::function<int(Session&, Arguments&)> run;
};

const std::vector<CliCommand>& deviceCommands();
const std::vector<CliCommand>& programmeCommands();
const std::vector<CliCommand>& configCommands();
const std::vector<CliCommand>& firmwareCommands();
const std::vector<CliCommand>& reportCommands();
const std::vector<CliCommand>& printCommands();
const std::vector<CliCommand>& traceCommands();

// Commands that draw (the printed programme) need a QGuiApplication; the
// others run on a QCoreApplication, without a display.
bool needsGuiApplication(const CliCommand& command);

// Exit statuses.
constexpr int kExitOk = 0;
constexpr int kExitDeviceFailed = 1;
constexpr int kExitUsage = 2;
constexpr int kExitConfiguration = 3;
// The programme holds a value its frames cannot carry: nothing was sent and
// no file changed.
constexpr int kExitProgrammeRefused = 4;

// Prints a line on standard output.
void printLine(const QString& text);
void printJson(const class QJsonValue& value);

// What printLine and printJson print on the thread that sets it, kept
// instead of printed: the output of one controller of several, printed
// whole and labelled once every controller has ended. nullptr prints again.
struct CapturedOutput {
    QStringList lines;
    std::vector<class QJsonValue> json;
};
void captureOutputOnThisThread(CapturedOutput* capture);

// The commands that run on several controllers at once with --device all
// or --device ID,ID,...
bool runsOnSeveralDevices(const CliCommand& command);
const std::vector<CliCommand>& productionCommands();

} // namespace qv
