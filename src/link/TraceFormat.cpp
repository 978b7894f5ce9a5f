#include "TraceFormat.h"

#include <QFile>
#include <QSaveFile>
#include <cctype>

namespace qv {

namespace {

bool isHexByte(QStringView token) {
    if (token.size() != 2)
        return false;
    for (QChar c : token)
        if (!std::isxdigit(static_cast<unsigned char>(c.toLatin1())))
            return false;
    return true;
}

} // namespace

QString outcomeWord(TransferOutcome outcome) {
    switch (outcome) {
    case TransferOutcome::Sent:
        return QStringLiteral("sent");
    case TransferOutcome::Refused:
        return QStringLiteral("refused");
    case TransferOutcome::Answered:
        return QStringLiteral("answered");
    case TransferOutcome::Silence:
        return QStringLiteral("silence");
    case TransferOutcome::BadCheck:
        return QStringLiteral("bad-check");
    case TransferOutcome::Unknown:
        break;
    }
    return QString();
}

TransferOutcome outcomeFromWord(const QString& word) {
    for (TransferOutcome o :
         {TransferOutcome::Sent, TransferOutcome::Refused, TransferOutcome::Answered,
          TransferOutcome::Silence, TransferOutcome::BadCheck})
        if (word == outcomeWord(o))
            return o;
    return TransferOutcome::Unknown;
}

QString formatTraceLine(const TransferRecord& r) {
    QString line = QString::number(static_cast<double>(r.atUs) / 1e6, 'f', 6);
    line +=
        r.direction == TransferDirection::ToDevice ? QStringLiteral(" >") : QStringLiteral(" <");
    if (!r.bytes.isEmpty())
        line += QLatin1Char(' ') + QString::fromLatin1(r.bytes.toHex(' ').toUpper());
    if (r.attempt > 0)
        line += QStringLiteral(" #") + QString::number(r.attempt);
    if (r.deviceKnown)
        line += QStringLiteral(" @") + QString::number(r.device);
    const QString word = outcomeWord(r.outcome);
    if (!word.isEmpty())
        line += QLatin1Char(' ') + word;
    if (!r.checked)
        line += QStringLiteral(" raw");
    return line;
}

std::optional<TransferRecord> parseTraceLine(const QString& line) {
    const QStringList tokens = line.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (tokens.size() < 2)
        return std::nullopt;
    bool ok = false;
    const double seconds = tokens[0].toDouble(&ok);
    if (!ok || seconds < 0)
        return std::nullopt;
    TransferRecord r;
    r.atUs = static_cast<std::int64_t>(seconds * 1e6 + 0.5);
    if (tokens[1] == QLatin1String(">"))
        r.direction = TransferDirection::ToDevice;
    else if (tokens[1] == QLatin1String("<"))
        r.direction = TransferDirection::FromDevice;
    else
        return std::nullopt;
    r.deviceKnown = false;
    qsizetype i = 2;
    for (; i < tokens.size() && isHexByte(tokens[i]); ++i)
        r.bytes.append(static_cast<char>(tokens[i].toInt(nullptr, 16)));
    for (; i < tokens.size(); ++i) {
        const QString& t = tokens[i];
        if (t.startsWith(QLatin1Char('#'))) {
            const int attempt = t.mid(1).toInt(&ok);
            if (ok && attempt > 0)
                r.attempt = attempt;
        } else if (t.startsWith(QLatin1Char('@'))) {
            const int device = t.mid(1).toInt(&ok);
            if (ok) {
                r.device = device;
                r.deviceKnown = true;
            }
        } else if (t == QLatin1String("raw")) {
            r.checked = false;
        } else if (const TransferOutcome o = outcomeFromWord(t); o != TransferOutcome::Unknown) {
            r.outcome = o;
        }
    }
    return r;
}

TraceFileContents parseTraceText(const QString& text) {
    TraceFileContents contents;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (const QString& raw : lines) {
        const QString line = raw.trimmed();
        if (line.isEmpty())
            continue;
        if (auto record = parseTraceLine(line))
            contents.records.push_back(std::move(*record));
        else
            ++contents.skippedLines;
    }
    return contents;
}

std::optional<TraceFileContents> readTraceFile(const QString& path, QString* error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = QStringLiteral("cannot read the trace %1: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    return parseTraceText(QString::fromUtf8(file.readAll()));
}

bool writeTraceFile(const QString& path, const std::vector<TransferRecord>& records,
                    QString* error) {
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        QByteArray text;
        for (const TransferRecord& r : records)
            text += formatTraceLine(r).toUtf8() + '\n';
        file.write(text);
        if (file.commit())
            return true;
    }
    if (error)
        *error = QStringLiteral("cannot write the trace %1: %2").arg(path, file.errorString());
    return false;
}

} // namespace qv
