// A programme file as `programme download` opens it: its lines and default
// state read, the whole checked, and, when the check passes, every frame
// built; then the lines stored as the editor stores them. A programme that
// passes the check must frame without an overflow, and a stored one must
// load again.
#include "FuzzSupport.h"
#include "config/ConfigDocument.h"
#include "config/XmlWriter.h"
#include "programme/DefaultStates.h"
#include "programme/ProgrammeCheck.h"
#include "programme/ProgrammeDownload.h"
#include "programme/ProgrammeStore.h"

#include <cstddef>
#include <cstdint>

using namespace qv;

namespace {

void frameAll(const Conditions& conditions, std::int16_t etatDefaut) {
    beginProgrammeFrame(etatDefaut);
    for (int n = 1; n <= conditions.Count(); ++n) {
        const Condition& c = *conditions.Item(n);
        conditionFrame(c, n);
        if (c.Jour != JourPeriode && c.Jour != 0)
            dayTimeFrame(c);
        if (c.Jour == JourPlage)
            rangeEndFrame(c);
        if (c.Jour == JourPeriode)
            periodFrame(c);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::initialiseQt();
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QString prg = fuzz::writeScratch(QStringLiteral("site.prg"), bytes);
    const ConfigDocument config(prg);
    Conditions conditions;
    std::int16_t etatDefaut = 0;
    QDomDocument document;
    try {
        LitConditions(config, conditions, prg);
        etatDefaut = Donne_EtatDefautSortie(config, QStringLiteral("English"), 0, prg);
        document = config.load(prg);
    } catch (const ConfigError&) {
        return 0;
    }
    if (!VerifieProgramme(conditions, etatDefaut)) {
        try {
            frameAll(conditions, etatDefaut);
        } catch (const OverflowError&) {
            fuzz::finding("a programme that passed the check does not frame");
        }
    }
    SauveConditions(document, conditions);
    QString error;
    if (const auto written = writeXmlDocument(document, &error)) {
        Conditions again;
        try {
            LitConditions(ConfigDocument(fuzz::writeScratch(QStringLiteral("again.prg"), *written)),
                          again, QString());
        } catch (const ConfigError& e) {
            std::fprintf(stderr, "%s\n", e.what());
            fuzz::finding("a stored programme does not load again");
        }
        if (again.Count() != conditions.Count())
            fuzz::finding("a stored programme loads with another number of lines");
    }
    return 0;
}
