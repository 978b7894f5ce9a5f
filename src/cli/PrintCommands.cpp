#include "Commands.h"

#include "programme/Conditions.h"
#include "programme/DefaultStates.h"
#include "programme/ProgrammePrintout.h"
#include "programme/ProgrammeStore.h"
#include "programme/widgets/ProgrammePrinting.h"

#include <QDate>
#include <QFileInfo>
#include <QJsonObject>
#include <cstdio>

namespace qv {

namespace {

// The page that the editor's "print" makes, as a PDF: of the stored
// programme, or of a programme file, which is read and left as it is
// (config.xml only gains the keys that the window's lookups would add).
int runPrint(Session& s, Arguments& args) {
    const auto pdf = args.takeOption(QStringLiteral("pdf"));
    const QString language = args.takeOption(QStringLiteral("language")).value_or(s.language);
    const auto file = args.takeOptionalPositional();
    args.expectEnd();
    if (!pdf || pdf->isEmpty())
        throw UsageError{QStringLiteral("programme print needs --pdf FILE")};
    const QStringList languages = s.config->ListeLanguesDisponibles();
    if (!languages.contains(language))
        throw UsageError{QStringLiteral("no language \"%1\" in config.xml (%2)")
                             .arg(language, languages.join(QStringLiteral(", ")))};

    QString programme;
    if (file) {
        programme = QFileInfo(*file).absoluteFilePath();
        if (!QFileInfo(programme).isFile())
            throw UsageError{QStringLiteral("no such programme file: %1").arg(programme)};
    }
    Conditions conditions;
    LitConditions(*s.config, conditions, programme);

    // The heading names the file as the editor's NomFichier does.
    const QString nomFichier = file ? QFileInfo(programme).fileName()
                                    : s.config->LitValeurXML(QStringLiteral("NomProgramme"))
                                          .value_or(QStringLiteral("False"));
    PrintoutTexts texts =
        printoutTextsFromConfig(*s.config, language, nomFichier, QDate::currentDate());
    if (file) {
        // A file carries its own default states, kept under the first language.
        const QString premiere = languages.first();
        for (size_t i = 0; i < texts.etatsDefaut.size(); ++i)
            texts.etatsDefaut[i] = Donne_EtatDefautSortie(*s.config, premiere,
                                                          static_cast<std::int16_t>(i), programme);
    }

    const QString target = QFileInfo(*pdf).absoluteFilePath();
    QString error;
    if (!printProgrammeToPdf(conditions, texts, target, &error)) {
        std::fprintf(stderr, "quorvelctl: %s\n", qUtf8Printable(error));
        return kExitDeviceFailed;
    }
    if (s.json)
        printJson(QJsonObject{{QStringLiteral("pdf"), target},
                              {QStringLiteral("lines"), conditions.Count()}});
    else
        printLine(QStringLiteral("%1 line(s) printed to %2").arg(conditions.Count()).arg(target));
    return kExitOk;
}

} // namespace

const std::vector<CliCommand>& printCommands() {
    static const std::vector<CliCommand> commands = {
        {{QStringLiteral("programme"), QStringLiteral("print")},
         QStringLiteral("the printed programme (stored, or of a file) as a PDF"),
         QStringLiteral("programme print --pdf FILE.pdf [--language NAME] [FILE.prg]\n"
                        "  the page of the editor's print, in the language NAME of config.xml\n"
                        "  (English by default); runs without a display"),
         runPrint},
    };
    return commands;
}

bool needsGuiApplication(const CliCommand& command) {
    return command.words == QStringList{QStringLiteral("programme"), QStringLiteral("print")};
}

} // namespace qv
