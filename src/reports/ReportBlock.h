#pragma once

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <array>
#include <stdexcept>

// The production log: one block of lines per device, appended to a plain
// text file that production keeps per order. Its lines are the captions and
// texts the windows show, in the language in use, so the builder takes them
// as they stand.

namespace qv {

// A report that cannot be made or written. The message is for the operator.
class ReportError : public std::runtime_error {
public:
    explicit ReportError(const QString& message) : std::runtime_error(message.toStdString()) {}
    QString text() const { return QString::fromStdString(what()); }
};

// Everything a block prints, each a caption or a text as the window shows it.
struct ProductionReportValues {
    QString dateTime; // the present date and time, reportDateTime()

    QString labelNumeroCommande; // caption of LabelNumeroCommande
    QString commande;            // text of Commande

    QString labelVersion;   // caption of LabelVersion
    QString versionCaption; // caption of Version: "(12) 2.70", or "--" before any read
    QString label1;         // caption of Label1
    QString numeroSerie;    // caption of NumeroSerie
    QString label2;         // caption of Label2
    QString dateProgrammation;
    QString labelBatterie;
    QString batterie;

    // The daylight-saving rule, printed when `ruleOn` (EnableDaylightSaving
    // ticked). Index 0 summer, 1 winter.
    bool ruleOn = false;
    QString labeldelta;
    QString daylightAdjustment;
    QString frameSummer;
    QString frameWinter;
    struct Season {
        QString labelMois, mois;
        QString labelSemaine, semaine;
        QString labelJour, jour;
        QString labelHeure, heure;
    };
    std::array<Season, 2> seasons;

    // The counters, printed when the service panel is switched on in
    // config.xml (Maintenance).
    bool maintenance = false;
    struct Counter {
        QString label, value; // Labelctn(i), ctn_text(i)
    };
    std::array<Counter, 5> counters;

    // From the programme editor: the frame of the default states, the
    // output's caption, and the text of the output's default state.
    QString framevaleursDefaut;
    QString sortie;
    QString etatDefaut;

    QString commentaires;
};

// The hardware code and the version text of the caption of Version.
struct VersionParts {
    int hardwareCode = 12;
    QString versionText = QStringLiteral("--");
};
// "(12) 2.70" gives 12 and " 2.70" (the text keeps its blank); "--" gives
// 12 and "--", the model this tool serves. Throws ReportError for a caption
// whose code is not a number.
VersionParts splitVersionCaption(const QString& caption);

// The block, line by line, without line ends. Throws ReportError as above.
QStringList productionReportLines(const ProductionReportValues& values);

// The present date and time as the report prints it: the locale's short
// date and the time to the second, 24 hours ("10/03/2026 14:30:00").
QString reportDateTime(const QDateTime& dateTime, const QLocale& locale = QLocale::system());

// Where the report goes unless the operator says otherwise: the order
// number with ".log" in the application directory, or report.log when there
// is none. The extension is added even when typed: "1234.log" gives
// "1234.log.log", which is where existing logs are.
QString defaultReportPath(const QString& applicationDirectory, const QString& commande);

// Appends the lines to `path`, each ended by CR LF, in the Windows ANSI code
// page (1252) that the existing logs are in; a character it lacks becomes
// "?". Creates the file when missing; never truncates. The block goes in one
// write. Throws ReportError when the file cannot be opened or written.
void appendReport(const QString& path, const QStringList& lines);

// The text in code page 1252, "?" for what it cannot hold.
QByteArray toWindows1252(const QString& text);

} // namespace qv
