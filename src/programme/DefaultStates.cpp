#include "programme/DefaultStates.h"

#include "config/ConfigDocument.h"
#include "config/LegacyNumber.h"

#include <QDomNamedNodeMap>
#include <cmath>
#include <limits>
#include <optional>

namespace qv {

namespace {

const QString kLists = QStringLiteral("LISTES");
const QString kOutputs = QStringLiteral("LISTESORTIES");
const QString kNameAttribute = QStringLiteral("NOM");

bool named(const QDomElement& element, const QString& upperName) {
    return element.nodeName().toUpper() == upperName;
}

bool isLanguage(const QDomElement& element, const QString& upperLangue) {
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        const QDomAttr attribute = attributes.item(i).toAttr();
        if (attribute.name().toUpper() == kNameAttribute &&
            attribute.value().toUpper() == upperLangue) {
            return true;
        }
    }
    return false;
}

// Child 3 of the first row of ListeSorties whose child 1 is `index`, or a
// null element. Rows are read by position: children are counted as elements,
// so a comment in a row doesn't shift them.
QDomElement findState(const QDomDocument& document, const QString& langue, std::int16_t index) {
    const QString upperLangue = langue.toUpper();
    const QDomElement root = document.documentElement();
    for (QDomElement lists = root.firstChildElement(); !lists.isNull();
         lists = lists.nextSiblingElement()) {
        if (!named(lists, kLists)) {
            continue;
        }
        for (QDomElement language = lists.firstChildElement(); !language.isNull();
             language = language.nextSiblingElement()) {
            if (!isLanguage(language, upperLangue)) {
                continue;
            }
            for (QDomElement list = language.firstChildElement(); !list.isNull();
                 list = list.nextSiblingElement()) {
                if (!named(list, kOutputs)) {
                    continue;
                }
                int rowNumber = 0;
                for (QDomElement row = list.firstChildElement(); !row.isNull();
                     row = row.nextSiblingElement(), ++rowNumber) {
                    QDomElement children[4];
                    int found = 0;
                    for (QDomElement child = row.firstChildElement(); !child.isNull() && found < 4;
                         child = child.nextSiblingElement()) {
                        children[found++] = child;
                    }
                    if (found < 4) {
                        throw ConfigError(
                            QStringLiteral("row %1 of the list %2 (language %3) has %4 of the "
                                           "four children it needs")
                                .arg(rowNumber)
                                .arg(list.nodeName(),
                                     language.attribute(QStringLiteral("Nom"), langue))
                                .arg(found));
                    }
                    const std::optional<double> number = parseLegacyNumber(children[1].text());
                    if (number && *number == index) {
                        return children[3];
                    }
                }
            }
        }
    }
    return {};
}

} // namespace

std::int16_t Donne_EtatDefautSortie(const QDomDocument& document, const QString& langue,
                                    std::int16_t index) {
    const QDomElement state = findState(document, langue, index);
    if (state.isNull()) {
        return 0;
    }
    const std::optional<double> number = parseLegacyNumber(state.text());
    const double rounded = number ? std::nearbyint(*number) : 0.0;
    if (!number || rounded < std::numeric_limits<std::int16_t>::min() ||
        rounded > std::numeric_limits<std::int16_t>::max()) {
        throw ConfigError(
            QStringLiteral("the default state of output %1 is not a small integer: \"%2\"")
                .arg(index)
                .arg(state.text()));
    }
    return static_cast<std::int16_t>(rounded);
}

bool Sauve_EtatDefautSortie(QDomDocument& document, const QString& langue, std::int16_t index,
                            std::int16_t valeur) {
    QDomElement state = findState(document, langue, index);
    if (state.isNull()) {
        return false;
    }
    while (state.hasChildNodes()) {
        state.removeChild(state.firstChild());
    }
    state.appendChild(document.createTextNode(QString::number(valeur)));
    return true;
}

} // namespace qv
