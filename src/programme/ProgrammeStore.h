#pragma once

#include "programme/Conditions.h"

#include <QDomDocument>
#include <QString>
#include <QStringList>

namespace qv {

class ConfigDocument;

// The programme has no file format of its own: it is the CONDITIONS node of
// config.xml, and a *.prg file is a whole copy of config.xml. Each child of
// that node is one row, one line; a non-empty node starts with a "MASTER"
// row, a copy of the first line that seeds the reading of the others.

// The attributes of a row, in the order the writer sets them: 69 names, one
// for each stored field. Derivee, integrale, ActionDerivee, ActionIntegrale
// and element 8 of the indexed properties have none.
const QStringList& conditionAttributeNames();

// Appends the lines of every CONDITIONS node of `document` to `conditions`
// (which is not emptied first) and returns their names in order: the rows
// of ListeConditions. One line object serves a whole node, so an attribute
// that a row lacks keeps the value of the row before. A row named "MASTER"
// in any case is not added, but still passes its values on. Names that are
// not in the schema are ignored, and a value that cannot be converted
// leaves its field as the row before had it.
QStringList LitConditions(const QDomDocument& document, Conditions& conditions);

// Replaces the rows of every CONDITIONS node of `document` with `conditions`,
// preceded by the "MASTER" row when there is a line at all. Returns the
// number of CONDITIONS nodes written; with none the lines go nowhere.
int SauveConditions(QDomDocument& document, const Conditions& conditions);

// The same over a file: `fichier` empty is config.xml, anything else a full
// path. Both throw ConfigError when the file can't be read (or written).
// A document without a CONDITIONS node is saved back as it was read.
QStringList LitConditions(const ConfigDocument& config, Conditions& conditions,
                          const QString& fichier = QString());
void SauveConditions(const ConfigDocument& config, const Conditions& conditions,
                     const QString& fichier = QString());

} // namespace qv
