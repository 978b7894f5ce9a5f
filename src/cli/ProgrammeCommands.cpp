#include "Commands.h"

#include "programme/DefaultStates.h"
#include "programme/ProgrammeCheck.h"
#include "programme/ProgrammeDownload.h"
#include "programme/ProgrammeStore.h"
#include "programme/ProgrammeUpload.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QSaveFile>
#include <cstdio>

namespace qv {

namespace {

// The item data of the output list's rows, as the window's list holds them.
OutputFormatLookup outputFormats(Session& s) {
    const auto rows = s.config->RemplitListe(s.language, QStringLiteral("ListeSorties"));
    std::vector<double> formats;
    if (rows)
        for (const ListRow& row : *rows)
            formats.push_back(row.itemData);
    return [formats](int position) -> std::optional<double> {
        if (position < 0 || position >= static_cast<int>(formats.size()))
            return std::nullopt;
        return formats[static_cast<size_t>(position)];
    };
}

QString firstLanguage(Session& s) {
    const QStringList languages = s.config->ListeLanguesDisponibles();
    return languages.isEmpty() ? QString() : languages.first();
}

QString absolute(const QString& path) {
    return QFileInfo(path).absoluteFilePath();
}

QString dayText(const Condition& c) {
    switch (c.Jour) {
    case 0:
        return QStringLiteral("-");
    case JourPlage:
        return QStringLiteral("range %1:%2:%3-%4:%5:%6")
            .arg(c.Heure, 2, 10, QLatin1Char('0'))
            .arg(c.Minute, 2, 10, QLatin1Char('0'))
            .arg(c.Seconde, 2, 10, QLatin1Char('0'))
            .arg(c.PlageFinHeure, 2, 10, QLatin1Char('0'))
            .arg(c.PlageFinMinute, 2, 10, QLatin1Char('0'))
            .arg(c.PlageFinSeconde, 2, 10, QLatin1Char('0'));
    case JourPeriode:
        return QStringLiteral("every %1 days from %2/%3 at %4:%5")
            .arg(c.Seconde)
            .arg(c.PlageFinMinute, 2, 10, QLatin1Char('0'))
            .arg(c.PlageFinHeure, 2, 10, QLatin1Char('0'))
            .arg(c.Heure, 2, 10, QLatin1Char('0'))
            .arg(c.Minute, 2, 10, QLatin1Char('0'));
    default:
        return QStringLiteral("day %1 at %2:%3:%4")
            .arg(c.Jour)
            .arg(c.Heure, 2, 10, QLatin1Char('0'))
            .arg(c.Minute, 2, 10, QLatin1Char('0'))
            .arg(c.Seconde, 2, 10, QLatin1Char('0'));
    }
}

void printConditions(Session& s, const Conditions& conditions) {
    if (s.json) {
        QJsonArray lines;
        for (const Condition& c : conditions)
            lines.append(QJsonObject{{QStringLiteral("nom"), c.Nom},
                                     {QStringLiteral("sortie"), c.sortie},
                                     {QStringLiteral("rang"), c.rang},
                                     {QStringLiteral("format"), c.Format},
                                     {QStringLiteral("valeur"), c.Valeur},
                                     {QStringLiteral("temporisation"), c.Temporisation},
                                     {QStringLiteral("jour"), c.Jour},
                                     {QStringLiteral("heure"), c.Heure},
                                     {QStringLiteral("minute"), c.Minute},
                                     {QStringLiteral("seconde"), c.Seconde},
                                     {QStringLiteral("finJour"), c.PlageFinJour},
                                     {QStringLiteral("finHeure"), c.PlageFinHeure},
                                     {QStringLiteral("finMinute"), c.PlageFinMinute},
                                     {QStringLiteral("finSeconde"), c.PlageFinSeconde},
                                     {QStringLiteral("commentaire"), c.Commentaire}});
        printJson(lines);
        return;
    }
    printLine(QStringLiteral("%1  %2  %3  %4  %5  %6")
                  .arg(QStringLiteral("#"), -2)
                  .arg(QStringLiteral("name"), -26)
                  .arg(QStringLiteral("output"), -6)
                  .arg(QStringLiteral("value"), -6)
                  .arg(QStringLiteral("delay s"), -7)
                  .arg(QStringLiteral("time")));
    int n = 0;
    for (const Condition& c : conditions)
        printLine(QStringLiteral("%1  %2  %3  %4  %5  %6")
                      .arg(++n, -2)
                      .arg(c.Nom, -26)
                      .arg(c.sortie, -6)
                      .arg(c.Valeur, -6)
                      .arg(c.Temporisation, -7)
                      .arg(dayText(c)));
}

int runShow(Session& s, Arguments& args) {
    const auto file = args.takeOptionalPositional();
    args.expectEnd();
    Conditions conditions;
    LitConditions(*s.config, conditions, file ? absolute(*file) : QString());
    printConditions(s, conditions);
    return kExitOk;
}

// What went to the controller and what did not, after a download that
// did not go through cleanly.
void reportDownload(const EnvoiResultat& sent, int count) {
    QStringList failed;
    if (sent.horlogeEnErreur)
        failed << QStringLiteral("the clock");
    if (sent.debutEnErreur)
        failed << QStringLiteral("the start of the programme");
    for (const int n : sent.lignesEnErreur)
        failed << QStringLiteral("line %1").arg(n);
    printLine(QStringLiteral("%1 of %2 line(s) sent").arg(sent.lignesEnvoyees).arg(count));
    if (!failed.isEmpty())
        printLine(QStringLiteral("not confirmed (CRC error): %1; the controller may not hold "
                                 "what was sent")
                      .arg(failed.join(QStringLiteral(", "))));
    if (!sent.resultat)
        printLine(QStringLiteral("not sent: line(s) %1 to %2; the controller holds the lines "
                                 "sent so far")
                      .arg(sent.lignesEnvoyees + 1)
                      .arg(count));
}

int runDownload(Session& s, Arguments& args) {
    const QString file = absolute(args.takePositional(QStringLiteral("FILE.prg")));
    args.expectEnd();
    if (!QFileInfo(file).isFile())
        throw UsageError{QStringLiteral("no such programme file: %1").arg(file)};
    // The file is read and checked whole before config.xml changes or a
    // frame goes: a malformed file, or a line the frames cannot carry,
    // leaves everything as it was.
    Conditions fromFile;
    LitConditions(*s.config, fromFile, file);
    const QString language = firstLanguage(s);
    const std::int16_t fileState = Donne_EtatDefautSortie(*s.config, language, 0, file);
    if (const auto fault = VerifieProgramme(fromFile, fileState)) {
        std::fprintf(stderr, "quorvelctl: %s\n",
                     qUtf8Printable(
                         texteRefus(*fault, [&s](const QString& key) { return s.message(key); })));
        std::fprintf(stderr, "quorvelctl: nothing sent, config.xml unchanged\n");
        return kExitProgrammeRefused;
    }

    // As the editor opens a file: its sections replace those of config.xml,
    // its name is remembered, and the default state shown from it is stored.
    s.config->ImporteConfiguration(file);
    Sauve_EtatDefautSortie(*s.config, language, 0, fileState);
    s.config->EcritValeurXML(QStringLiteral("NomProgramme"), QFileInfo(file).fileName());

    Conditions conditions;
    LitConditions(*s.config, conditions);
    s.state.TimeOut = false;
    const MessageLookup message = [&s](const QString& key) { return s.message(key); };
    const EnvoiResultat sent =
        Envoi_Conditions(*s.device, conditions, Donne_EtatDefautSortie(*s.config, language, 0),
                         message(QStringLiteral("Les anciennes valeurs seront écrasées")),
                         QDate::currentDate(), QDateTime::currentDateTime(), message);
    if (sent.refus)
        return kExitProgrammeRefused;
    if (sent.cancelled) {
        std::fprintf(stderr, "quorvelctl: download cancelled (use --yes to answer OK)\n");
        return kExitDeviceFailed;
    }
    if (!sent.resultat || sent.erreurCRC()) {
        reportDownload(sent, conditions.Count());
        return kExitDeviceFailed;
    }
    printLine(QStringLiteral("%1 line(s) sent").arg(conditions.Count()));
    return kExitOk;
}

int runUpload(Session& s, Arguments& args) {
    const auto output = args.takeOption(QStringLiteral("o"));
    args.expectEnd();
    s.state.TimeOut = false;
    const ProgrammeLu read = LitEtSauveProgramme(
        *s.device, *s.config, [&s](const QString& key) { return s.message(key); },
        outputFormats(s));
    if (read.fin != ProgrammeLu::Fin::MarqueDeFin && read.fin != ProgrammeLu::Fin::ImageVide) {
        const QString why = read.fin == ProgrammeLu::Fin::TimeOut ? QStringLiteral("no answer")
                            : read.fin == ProgrammeLu::Fin::ErreurCRC
                                ? QStringLiteral("CRC error")
                                : QStringLiteral("past the memory");
        const int lines = read.conditions ? read.conditions->Count() : 0;
        printLine(QStringLiteral("%1 line(s) read whole; the read of address %2 failed (%3)")
                      .arg(lines)
                      .arg(read.adresseEchec)
                      .arg(why));
        printLine(output ? QStringLiteral("nothing stored: config.xml and %1 unchanged")
                               .arg(QFileInfo(*output).fileName())
                         : QStringLiteral("nothing stored: config.xml unchanged"));
        return kExitDeviceFailed;
    }
    if (read.conditions)
        printConditions(s, *read.conditions);
    else if (!s.json)
        printLine(QStringLiteral("the controller holds no programme"));
    if (output) {
        // A copy of config.xml that names itself, as "save as" makes one.
        const QString path = absolute(*output);
        s.config->EcritValeurXML(QStringLiteral("NomProgramme"), QFileInfo(path).fileName());
        s.config->save(s.config->load(), path);
    }
    return kExitOk;
}

} // namespace

const std::vector<CliCommand>& programmeCommands() {
    static const std::vector<CliCommand> commands = {
        {{QStringLiteral("programme"), QStringLiteral("download")},
         QStringLiteral("send a programme file to the controller (also sets its clock)"),
         QStringLiteral("programme download FILE.prg\n"
                        "  imports the file into config.xml as the editor opens it, then sends\n"
                        "  it; asks first: answer with --yes"),
         runDownload},
        {{QStringLiteral("programme"), QStringLiteral("upload")},
         QStringLiteral("read the controller's programme into config.xml"),
         QStringLiteral("programme upload [-o FILE.prg]\n  -o  also save a programme file"),
         runUpload},
        {{QStringLiteral("programme"), QStringLiteral("show")},
         QStringLiteral("the lines of the stored programme or of a file"),
         QStringLiteral("programme show [FILE.prg]"),
         runShow},
    };
    return commands;
}

} // namespace qv
