// The file side of the programme store and of the default states. Kept apart
// from the document side so that code which only works on documents doesn't
// pull in the configuration file handling.

#include "config/ConfigDocument.h"
#include "programme/DefaultStates.h"
#include "programme/ProgrammeStore.h"

namespace qv {

namespace {

// A damaged list is reported with the file it came from.
template <typename Walk>
auto naming(const ConfigDocument& config, const QString& fichier, Walk walk) {
    try {
        return walk();
    } catch (const ConfigError& error) {
        throw ConfigError(config.resolve(fichier) + QStringLiteral(": ") + error.text());
    }
}

} // namespace

QStringList LitConditions(const ConfigDocument& config, Conditions& conditions,
                          const QString& fichier) {
    const QDomDocument document = config.load(fichier);
    return LitConditions(document, conditions);
}

void SauveConditions(const ConfigDocument& config, const Conditions& conditions,
                     const QString& fichier) {
    QDomDocument document = config.load(fichier);
    SauveConditions(document, conditions);
    config.save(document, fichier);
}

std::int16_t Donne_EtatDefautSortie(const ConfigDocument& config, const QString& langue,
                                    std::int16_t index, const QString& fichier) {
    const QDomDocument document = config.load(fichier);
    return naming(config, fichier, [&] { return Donne_EtatDefautSortie(document, langue, index); });
}

void Sauve_EtatDefautSortie(const ConfigDocument& config, const QString& langue, std::int16_t index,
                            std::int16_t valeur, const QString& fichier) {
    QDomDocument document = config.load(fichier);
    const bool changed = naming(
        config, fichier, [&] { return Sauve_EtatDefautSortie(document, langue, index, valeur); });
    config.save(document, changed ? QString() : fichier);
}

} // namespace qv
