#include "ReportBlock.h"

#include "config/DateHelpers.h"
#include "config/LegacyNumber.h"
#include "config/OperatorText.h"
#include "device/Identity.h"

#include <QDir>
#include <QFile>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <limits>
#include <sys/file.h>

namespace qv {

namespace {

const QString kSeparator = QStringLiteral(" : ");
const QString kBlank = QStringLiteral(" ");

// Code page 1252 from 0x80 to 0x9F; 0 where the code page has no character
// (those bytes stand for the control characters of the same number).
constexpr char16_t kHighHalf[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                    0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

char windows1252(char32_t c) {
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return static_cast<char>(c);
    for (int i = 0; i < 32; ++i) {
        if (kHighHalf[i] == 0 && c == static_cast<char32_t>(0x80 + i))
            return static_cast<char>(0x80 + i);
        if (kHighHalf[i] != 0 && c == kHighHalf[i])
            return static_cast<char>(0x80 + i);
    }
    return '?';
}

} // namespace

VersionParts splitVersionCaption(const QString& caption) {
    VersionParts parts;
    if (caption == QLatin1String("--"))
        return parts;
    const QStringList pieces = caption.split(QLatin1Char(')'));
    if (pieces.size() < 2)
        throw Translated<ReportError>(
            QStringLiteral("The version \"%1\" does not name a hardware code."), {caption});
    QString code = pieces[0];
    code.remove(QLatin1Char('('));
    const auto value = parseLegacyNumber(code);
    // Read as a 32-bit integer, halves to the even neighbour.
    const double rounded = value ? std::nearbyint(*value) : 0;
    if (!value || rounded < std::numeric_limits<std::int32_t>::min() ||
        rounded > std::numeric_limits<std::int32_t>::max())
        throw Translated<ReportError>(
            QStringLiteral("The version \"%1\" does not name a hardware code."), {caption});
    parts.hardwareCode = static_cast<int>(rounded);
    parts.versionText = pieces[1];
    return parts;
}

QStringList productionReportLines(const ProductionReportValues& v) {
    const VersionParts version = splitVersionCaption(v.versionCaption);
    QStringList lines;
    lines << kBlank << QStringLiteral("------------------------------------------") << v.dateTime
          << kBlank << v.labelNumeroCommande + kBlank + v.commande << kBlank
          << v.labelVersion + kSeparator + NomMateriel(version.hardwareCode, false) +
                 version.versionText
          << v.label1 + kSeparator + v.numeroSerie << v.label2 + kSeparator + v.dateProgrammation
          << v.labelBatterie + kSeparator + v.batterie << kBlank;

    if (v.ruleOn) {
        lines << v.labeldelta + kSeparator + v.daylightAdjustment;
        for (size_t season = 0; season < 2; ++season) {
            const auto& s = v.seasons[season];
            lines << (season == 0 ? v.frameSummer : v.frameWinter);
            // The month line of winter has always borrowed summer's label.
            lines << v.seasons[0].labelMois + kSeparator + s.mois;
            lines << s.labelSemaine + kSeparator + s.semaine;
            lines << s.labelJour + kSeparator + s.jour;
            lines << s.labelHeure + kSeparator + s.heure;
        }
    }

    if (v.maintenance) {
        lines << kBlank
              << QStringLiteral("counters values------------------------------------------")
              << kBlank;
        for (const auto& counter : v.counters)
            lines << counter.label + kBlank + counter.value;
    }

    lines << kBlank << v.framevaleursDefaut << v.sortie + QLatin1Char(':') + v.etatDefaut
          << v.commentaires << kBlank;
    return lines;
}

QString reportDateTime(const QDateTime& dateTime, const QLocale& locale) {
    const QTime time = dateTime.time();
    return dateTime.date().toString(FormatDateCourte(locale)) + QLatin1Char(' ') +
           FormatHeure(time.hour(), time.minute(), time.second(), locale);
}

QString defaultReportPath(const QString& applicationDirectory, const QString& commande) {
    // The check meant to leave out a typed extension compares an upper-cased
    // text with ".log" and can never succeed; the extension is always added.
    const QString name =
        commande.isEmpty() ? QStringLiteral("report.log") : commande + QStringLiteral(".log");
    return QDir(applicationDirectory).filePath(name);
}

QByteArray toWindows1252(const QString& text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const auto c : text.toUcs4())
        bytes.append(windows1252(static_cast<char32_t>(c)));
    return bytes;
}

void appendReport(const QString& path, const QStringList& lines) {
    QByteArray block;
    for (const QString& line : lines)
        block += toWindows1252(line) + "\r\n";
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        throw Translated<ReportError>(QStringLiteral("The report file %1 cannot be opened: %2"),
                                      {QDir::toNativeSeparators(path), file.errorString()});
    // A bench appends from several threads and several processes to one log;
    // the lock keeps each block whole. flock() locks the open file, not the
    // process, so two threads of one process exclude each other too.
    const int fd = file.handle();
    int locked;
    do {
        locked = ::flock(fd, LOCK_EX);
    } while (locked != 0 && errno == EINTR);
    if (locked != 0)
        throw Translated<ReportError>(
            QStringLiteral("The report file %1 cannot be locked: %2"),
            {QDir::toNativeSeparators(path), QString::fromLocal8Bit(std::strerror(errno))});
    qint64 done = 0;
    while (done < block.size()) {
        const qint64 n = file.write(block.constData() + done, block.size() - done);
        if (n <= 0)
            break;
        done += n;
    }
    const bool whole = done == block.size();
    const QString error = file.errorString();
    ::flock(fd, LOCK_UN);
    if (!whole)
        throw Translated<ReportError>(QStringLiteral("The report could not be written to %1: %2"),
                                      {QDir::toNativeSeparators(path), error});
}

} // namespace qv
