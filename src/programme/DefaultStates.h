#pragma once

#include <QDomDocument>
#include <QString>
#include <cstdint>

namespace qv {

class ConfigDocument;

// The default state of an output, the one it takes when no line applies
// (valve: 0 "Close", 1 "Open"), lives in config.xml as child 3 of the
// output's row of ListeSorties under the `langue` element of LISTES. The
// row is the first one whose child 1 is the output's number. Names and the
// language are matched in upper case.
//
// A row that the walk reaches with fewer than four children, or a state
// that is not an integer, makes a ConfigError: the list is damaged and no
// guess goes to a device.

// The state of output `index`; 0 when there is no such row.
std::int16_t Donne_EtatDefautSortie(const QDomDocument& document, const QString& langue,
                                    std::int16_t index);

// Writes `valeur` in decimal as the state of output `index`. false, and the
// document untouched, when there is no such row.
bool Sauve_EtatDefautSortie(QDomDocument& document, const QString& langue, std::int16_t index,
                            std::int16_t valeur);

// Over a file: `fichier` empty is config.xml, anything else a full path.
// Throws ConfigError when the file can't be read or written.
std::int16_t Donne_EtatDefautSortie(const ConfigDocument& config, const QString& langue,
                                    std::int16_t index, const QString& fichier = QString());

// Reads `fichier`; a changed document is saved to config.xml whatever
// `fichier` was (so a *.prg passed here replaces config.xml as a whole),
// an unchanged one back to `fichier`. Callers pass an empty `fichier`.
void Sauve_EtatDefautSortie(const ConfigDocument& config, const QString& langue, std::int16_t index,
                            std::int16_t valeur, const QString& fichier = QString());

} // namespace qv
