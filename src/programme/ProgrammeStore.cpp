#include "programme/ProgrammeStore.h"

#include "config/AttributeOrder.h"
#include "config/LegacyNumber.h"
#include "link/Bytes.h"

#include <QDomNamedNodeMap>
#include <QHash>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <vector>

namespace qv {

namespace {

const QString kRowsNode = QStringLiteral("CONDITIONS");
const QString kRowName = QStringLiteral("Condition");
const QString kNameAttribute = QStringLiteral("NOM");
const QString kMaster = QStringLiteral("MASTER");

// One attribute of a row. `write` gives nullopt for a value that has no
// text form, and the attribute is then left out of that row; `read` stores a
// converted value or leaves the field alone. TAG has no field and no reader.
struct RowAttribute {
    QString name;
    std::function<std::optional<QString>(const Condition&)> write;
    std::function<void(Condition&, const QString&)> read;
};

// Integer attributes go through the runtime's text-to-integer conversion:
// the machine's decimal separator is accepted, and a fraction rounds half to
// even. A text that isn't a number, or a number out of the field's range,
// is not stored.
template <typename T> std::optional<T> integerFromText(const QString& text) {
    const std::optional<double> number = parseLegacyNumber(text);
    if (!number) {
        return std::nullopt;
    }
    const double rounded = std::nearbyint(*number);
    if (rounded < double(std::numeric_limits<T>::min()) ||
        rounded > double(std::numeric_limits<T>::max())) {
        return std::nullopt;
    }
    return static_cast<T>(rounded);
}

// Number text fields read the number at the front of the text, "." as the
// separator on every machine: "2,5" is 2, "abc" is 0. Only a number beyond
// the double range fails.
std::optional<double> numberFromText(const QString& text) {
    try {
        return legacyLeadingNumber(text);
    } catch (const OverflowError&) {
        return std::nullopt;
    }
}

std::optional<QString> numberText(double value) {
    try {
        return legacyNumberText(value);
    } catch (const OverflowError&) {
        return std::nullopt;
    }
}

QString booleanText(bool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

RowAttribute textAttribute(const char* name, QString Condition::*field) {
    return {QString::fromLatin1(name),
            [field](const Condition& c) -> std::optional<QString> { return c.*field; },
            [field](Condition& c, const QString& text) { c.*field = text; }};
}

RowAttribute integerAttribute(const char* name, std::int16_t Condition::*field) {
    return {
        QString::fromLatin1(name),
        [field](const Condition& c) -> std::optional<QString> { return QString::number(c.*field); },
        [field](Condition& c, const QString& text) {
            if (const auto value = integerFromText<std::int16_t>(text)) {
                c.*field = *value;
            }
        }};
}

RowAttribute numberAttribute(const char* name, double Condition::*field) {
    return {QString::fromLatin1(name), [field](const Condition& c) { return numberText(c.*field); },
            [field](Condition& c, const QString& text) {
                if (const auto value = numberFromText(text)) {
                    c.*field = *value;
                }
            }};
}

RowAttribute booleanAttribute(const char* name, bool Condition::*field) {
    return {QString::fromLatin1(name),
            [field](const Condition& c) -> std::optional<QString> { return booleanText(c.*field); },
            [field](Condition& c, const QString& text) {
                if (const auto value = parseLegacyBoolean(text)) {
                    c.*field = *value;
                }
            }};
}

// The five indexed properties, as getter and setter of one element.
template <typename T> using IndexedGetter = std::optional<T> (Condition::*)(int) const;
template <typename T> using IndexedSetter = bool (Condition::*)(int, T);

template <typename T>
void addIntegerElements(std::vector<RowAttribute>& table, const char* prefix, IndexedGetter<T> get,
                        IndexedSetter<T> set) {
    for (int i = 0; i < Condition::SubConditionCount; ++i) {
        table.push_back({QString::fromLatin1(prefix) + QString::number(i),
                         [get, i](const Condition& c) -> std::optional<QString> {
                             return QString::number((c.*get)(i).value_or(0));
                         },
                         [set, i](Condition& c, const QString& text) {
                             if (const auto value = integerFromText<T>(text)) {
                                 (c.*set)(i, *value);
                             }
                         }});
    }
}

void addNumberElements(std::vector<RowAttribute>& table, const char* prefix,
                       IndexedGetter<double> get, IndexedSetter<double> set) {
    for (int i = 0; i < Condition::SubConditionCount; ++i) {
        table.push_back(
            {QString::fromLatin1(prefix) + QString::number(i),
             [get, i](const Condition& c) { return numberText((c.*get)(i).value_or(0)); },
             [set, i](Condition& c, const QString& text) {
                 if (const auto value = numberFromText(text)) {
                     (c.*set)(i, *value);
                 }
             }});
    }
}

// Reader and writer share this one table, so they can't drift apart: the
// order is the order in which the field's files have always had them.
std::vector<RowAttribute> buildSchema() {
    std::vector<RowAttribute> table;
    table.reserve(69);
    table.push_back(textAttribute("NOM", &Condition::Nom));
    table.push_back({QStringLiteral("TAG"),
                     [](const Condition&) -> std::optional<QString> { return QString(); },
                     nullptr});
    table.push_back(integerAttribute("SORTIE", &Condition::sortie));
    table.push_back(integerAttribute("RANG", &Condition::rang));
    table.push_back(integerAttribute("FORMAT", &Condition::Format));
    table.push_back(numberAttribute("VALEUR", &Condition::Valeur));
    table.push_back(integerAttribute("TEMPORISATION", &Condition::Temporisation));
    table.push_back(numberAttribute("OFFSET", &Condition::Offset));
    table.push_back(integerAttribute("JOUR", &Condition::Jour));
    table.push_back(integerAttribute("HEURE", &Condition::Heure));
    table.push_back(integerAttribute("MINUTE", &Condition::Minute));
    table.push_back(integerAttribute("SECONDE", &Condition::Seconde));
    table.push_back(integerAttribute("JOURFIN", &Condition::PlageFinJour));
    table.push_back(integerAttribute("HEUREFIN", &Condition::PlageFinHeure));
    table.push_back(integerAttribute("MINUTEFIN", &Condition::PlageFinMinute));
    table.push_back(integerAttribute("SECONDEFIN", &Condition::PlageFinSeconde));
    table.push_back(integerAttribute("RECOPIEENTREE", &Condition::RecopieEntree));
    addIntegerElements<std::uint8_t>(table, "NUMERO", &Condition::Numero, &Condition::setNumero);
    addIntegerElements<std::uint8_t>(table, "OPERATEUR", &Condition::Operateur,
                                     &Condition::setOperateur);
    addIntegerElements<std::int16_t>(table, "TEMPORISATION", &Condition::tempo,
                                     &Condition::setTempo);
    addNumberElements(table, "VALEUR1", &Condition::Valeur1, &Condition::setValeur1);
    addNumberElements(table, "VALEUR2", &Condition::Valeur2, &Condition::setValeur2);
    table.push_back(booleanAttribute("REGULATION", &Condition::Regulation));
    table.push_back(textAttribute("CONSIGNE", &Condition::Consigne));
    table.push_back(textAttribute("DELTAACTION", &Condition::DeltaAction));
    table.push_back(textAttribute("DUREEACTION", &Condition::DureeAction));
    table.push_back(textAttribute("FILTRERETOUR", &Condition::FiltreRetour));
    table.push_back(textAttribute("CONSIGNES1", &Condition::ConsigneS1));
    table.push_back(textAttribute("CONSIGNES2", &Condition::ConsigneS2));
    table.push_back(integerAttribute("ENTREECONSIGNE", &Condition::EntreeConsigne));
    table.push_back(textAttribute("PERIODEECHANTILLONNAGE", &Condition::PeriodeEchantillonnage));
    table.push_back(textAttribute("TYPECOURBE", &Condition::TypeCourbe));
    table.push_back(textAttribute("RECOPIESORTIE", &Condition::RecopieSortie));
    table.push_back(textAttribute("COMMENTAIRE", &Condition::Commentaire));
    return table;
}

const std::vector<RowAttribute>& schema() {
    static const std::vector<RowAttribute> table = buildSchema();
    return table;
}

// Attribute names of a row are matched in upper case.
const QHash<QString, const RowAttribute*>& schemaByName() {
    static const QHash<QString, const RowAttribute*> byName = [] {
        QHash<QString, const RowAttribute*> names;
        for (const RowAttribute& attribute : schema()) {
            names.insert(attribute.name, &attribute);
        }
        return names;
    }();
    return byName;
}

bool isRowsNode(const QDomNode& node) {
    return node.isElement() && node.nodeName().toUpper() == kRowsNode;
}

} // namespace

const QStringList& conditionAttributeNames() {
    return conditionRowAttributeOrder();
}

QStringList LitConditions(const QDomDocument& document, Conditions& conditions) {
    QStringList added;
    const QDomElement root = document.documentElement();
    for (QDomNode node = root.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (!isRowsNode(node)) {
            continue;
        }
        // One object for the whole node: a row only overwrites what it
        // carries, which is how files with short rows have always read.
        Condition line;
        for (QDomElement row = node.firstChildElement(); !row.isNull();
             row = row.nextSiblingElement()) {
            const QDomNamedNodeMap attributes = row.attributes();
            for (int i = 0; i < attributes.count(); ++i) {
                const QDomAttr attribute = attributes.item(i).toAttr();
                const RowAttribute* known = schemaByName().value(attribute.name().toUpper());
                if (known != nullptr && known->read) {
                    known->read(line, attribute.value());
                }
            }
            if (line.Nom.toUpper() != kMaster) {
                conditions.Add(line);
                added << line.Nom;
            }
        }
    }
    return added;
}

int SauveConditions(QDomDocument& document, const Conditions& conditions) {
    int written = 0;
    const QDomElement root = document.documentElement();
    for (QDomNode node = root.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (!isRowsNode(node)) {
            continue;
        }
        while (node.hasChildNodes()) {
            node.removeChild(node.firstChild());
        }
        bool first = true;
        for (const Condition& line : conditions) {
            QDomElement row = document.createElement(kRowName);
            for (const RowAttribute& attribute : schema()) {
                if (const std::optional<QString> text = attribute.write(line)) {
                    row.setAttribute(attribute.name, *text);
                }
            }
            if (first) {
                QDomElement master = row.cloneNode(true).toElement();
                master.setAttribute(kNameAttribute, kMaster);
                node.appendChild(master);
                first = false;
            }
            node.appendChild(row);
        }
        ++written;
    }
    return written;
}

} // namespace qv
