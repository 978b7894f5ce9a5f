// config.xml as the operator's folder may hold it: every lookup the tool
// makes, and the saves they cause. A saved document must always load again.
#include "FuzzSupport.h"
#include "config/ConfigDocument.h"
#include "config/XmlWriter.h"

#include <cstddef>
#include <cstdint>

using namespace qv;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::initialiseQt();
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QString path = fuzz::writeScratch(QStringLiteral("config.xml"), bytes);
    ConfigDocument config(path);
    try {
        const QStringList languages = config.ListeLanguesDisponibles();
        const QString langue = languages.isEmpty() ? QStringLiteral("English") : languages.first();
        config.LitMessage(langue, QStringLiteral("Quorvel Absent"), QString());
        config.RemplitListe(langue, QStringLiteral("ListeSorties"));
        config.RemplitListe(langue, QStringLiteral("ListeJours"));
        config.LitSplash();
        config.LitMaintenance();
        config.LitValeurXML(QStringLiteral("NomProgramme"));
        config.LitConf(QStringLiteral("DAYLIGHT_SAVING"));
        // A key the document lacks: it grows by one message and is saved.
        config.LitMessage(langue, QStringLiteral("A key of the fuzzer"), QStringLiteral("text"));
        config.EcritConf(QStringLiteral("OF_MOIS_ETE"), 3);
    } catch (const ConfigError&) {
        return 0;
    }
    // What the tool wrote, it must be able to read.
    try {
        ConfigDocument(path).load();
    } catch (const ConfigError& e) {
        std::fprintf(stderr, "%s\n", e.what());
        fuzz::finding("a saved config.xml does not load again");
    }
    return 0;
}
