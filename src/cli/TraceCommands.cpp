#include "Commands.h"
#include "device/ExchangeLog.h"
#include "link/TraceFormat.h"

#include <QJsonArray>
#include <QJsonObject>
#include <cstdio>

namespace qv {

namespace {

QString milliseconds(std::int64_t us) {
    return QString::number(static_cast<double>(us) / 1000.0, 'f', 1);
}

QString hex(const QByteArray& bytes) {
    return QString::fromLatin1(bytes.toHex(' ').toUpper());
}

QString deviceText(const Exchange& e) {
    return e.deviceKnown ? QString::number(e.device) : QStringLiteral("-");
}

QJsonObject exchangeJson(const Exchange& e) {
    QJsonObject o{{QStringLiteral("time"), static_cast<double>(e.atUs) / 1e6},
                  {QStringLiteral("attempt"), e.attempt},
                  {QStringLiteral("status"), statusWord(e.status)},
                  {QStringLiteral("durationMs"), static_cast<double>(e.durationUs) / 1000.0},
                  {QStringLiteral("request"), e.requestText},
                  {QStringLiteral("reply"), e.replyText},
                  {QStringLiteral("words"), e.words()},
                  {QStringLiteral("requestBytes"), hex(e.request)},
                  {QStringLiteral("replyBytes"), hex(e.reply)}};
    if (e.deviceKnown)
        o.insert(QStringLiteral("device"), e.device);
    return o;
}

int runTrace(Session& s, Arguments& args) {
    const QString path = args.takePositional(QStringLiteral("FILE"));
    args.expectEnd();
    QString error;
    const auto contents = readTraceFile(path, &error);
    if (!contents) {
        std::fprintf(stderr, "quorvelctl: %s\n", qUtf8Printable(error));
        return kExitUsage;
    }
    const std::vector<Exchange> exchanges = assembleExchanges(contents->records);
    const TraceSummary summary = summarize(exchanges);
    if (s.json) {
        QJsonArray rows;
        for (const Exchange& e : exchanges)
            rows.append(exchangeJson(e));
        printJson(QJsonObject{
            {QStringLiteral("exchanges"), rows},
            {QStringLiteral("summary"),
             QJsonObject{{QStringLiteral("exchanges"), summary.exchanges},
                         {QStringLiteral("failures"), summary.failures},
                         {QStringLiteral("retries"), summary.retries},
                         {QStringLiteral("pauseMs"), static_cast<double>(summary.pauseUs) / 1000.0},
                         {QStringLiteral("wireMs"), static_cast<double>(summary.wireUs) / 1000.0},
                         {QStringLiteral("skippedLines"), contents->skippedLines}}}});
        return kExitOk;
    }
    for (const Exchange& e : exchanges)
        printLine(QStringLiteral("%1  %2  #%3  %4  %5 ms  %6")
                      .arg(QString::number(static_cast<double>(e.atUs) / 1e6, 'f', 3), 10)
                      .arg(deviceText(e))
                      .arg(e.attempt)
                      .arg(statusWord(e.status), -9)
                      .arg(milliseconds(e.durationUs), 6)
                      .arg(e.words()));
    printLine(QStringLiteral("exchanges: %1, failures: %2, retries: %3")
                  .arg(summary.exchanges)
                  .arg(summary.failures)
                  .arg(summary.retries));
    printLine(QStringLiteral("time in pauses: %1 ms, time on the wire: %2 ms")
                  .arg(milliseconds(summary.pauseUs), milliseconds(summary.wireUs)));
    if (contents->skippedLines > 0)
        printLine(QStringLiteral("lines that were no transfer: %1").arg(contents->skippedLines));
    return kExitOk;
}

} // namespace

const std::vector<CliCommand>& traceCommands() {
    static const std::vector<CliCommand> commands = {
        {{QStringLiteral("trace")},
         QStringLiteral("a saved exchange trace, decoded, with a summary"),
         QStringLiteral("trace FILE\n  FILE as --trace, quorvel-sim --trace or the window's "
                        "Exchanges panel wrote it"),
         runTrace},
    };
    return commands;
}

} // namespace qv
