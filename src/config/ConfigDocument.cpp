#include "config/ConfigDocument.h"

#include "config/ConfigDocumentCache.h"
#include "config/LegacyNumber.h"
#include "link/Bytes.h"

#include <QDomNamedNodeMap>
#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>
#include <utility>

namespace qv {

namespace {

// The legacy trim: blanks only, tabs and line breaks stay.
QString trimBlanks(const QString& s) {
    qsizetype begin = 0;
    qsizetype end = s.size();
    while (begin < end && s[begin] == QLatin1Char(' '))
        ++begin;
    while (end > begin && s[end - 1] == QLatin1Char(' '))
        --end;
    return s.mid(begin, end - begin);
}

// Child `n` by position among the element children; names are not read.
QDomElement childAt(const QDomElement& parent, int n) {
    QDomElement e = parent.firstChildElement();
    for (int i = 0; i < n && !e.isNull(); ++i)
        e = e.nextSiblingElement();
    return e;
}

QDomElement childByUpperName(const QDomElement& parent, const QString& upperName) {
    for (QDomElement e = parent.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        if (e.tagName().toUpper() == upperName)
            return e;
    }
    return {};
}

bool isNomAttribute(const QDomAttr& attr) {
    return attr.name().toUpper() == QLatin1String("NOM");
}

// The first child of a `Messages` or `Listes` section with an attribute named
// NOM (any case) whose value is `langue` (any case).
QDomElement languageElement(const QDomElement& section, const QString& langue) {
    const QString wanted = langue.toUpper();
    for (QDomElement e = section.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        const QDomNamedNodeMap attributes = e.attributes();
        for (int i = 0; i < attributes.count(); ++i) {
            const QDomAttr attr = attributes.item(i).toAttr();
            if (isNomAttribute(attr) && attr.value().toUpper() == wanted)
                return e;
        }
    }
    return {};
}

void setText(QDomElement element, const QString& text) {
    while (!element.firstChild().isNull())
        element.removeChild(element.firstChild());
    if (!text.isEmpty())
        element.appendChild(element.ownerDocument().createTextNode(text));
}

QString valueText(const QVariant& value) {
    if (value.typeId() == QMetaType::Bool)
        return value.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    return value.toString();
}

bool isNumericType(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Float:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

bool isXmlName(const QString& name) {
    if (name.isEmpty())
        return false;
    for (qsizetype i = 0; i < name.size(); ++i) {
        const QChar c = name[i];
        const bool start = c.isLetter() || c == QLatin1Char('_') || c == QLatin1Char(':');
        const bool other = c.isDigit() || c == QLatin1Char('.') || c == QLatin1Char('-');
        if (!(start || (i > 0 && other)))
            return false;
    }
    return true;
}

} // namespace

ConfigDocument::ConfigDocument(QString configPath)
    : configPath_(std::move(configPath)), cache_(std::make_shared<Cache>()) {}

QString ConfigDocument::resolve(const QString& fichier) const {
    return fichier.isEmpty() ? configPath_ : fichier;
}

// "//Configuration/A/B": the root, if named Configuration, then at each step
// the first child element of exactly that name.
QDomElement ConfigDocument::select(const QDomDocument& document, const QString& path) const {
    QDomElement element = document.documentElement();
    if (element.tagName() != QLatin1String("Configuration"))
        return {};
    for (const QString& step : path.split(QLatin1Char('/'))) {
        if (step.isEmpty())
            return {};
        element = element.firstChildElement(step);
        if (element.isNull())
            return {};
    }
    return element;
}

QDomDocument ConfigDocument::load(const QString& fichier) const {
    const std::lock_guard hold(cache_->mutex);
    // A copy: the caller may change it without touching the kept one.
    return current(resolve(fichier)).cloneNode(true).toDocument();
}

void ConfigDocument::save(const QDomDocument& document, const QString& fichier) const {
    const std::lock_guard hold(cache_->mutex);
    store(document, resolve(fichier));
}

QString ConfigDocument::LitMessage(const QString& langue, const QString& index,
                                   const QString& init) {
    const std::lock_guard hold(cache_->mutex);
    CacheEntry& kept = entry(configPath_);
    QDomDocument document = *kept.document;

    // The walk over the language's messages is done once per kept document;
    // any save drops the table with the document.
    const QString upperLangue = langue.toUpper();
    auto found = kept.languages.find(upperLangue);
    if (found == kept.languages.end()) {
        std::optional<CacheEntry::Language> table;
        const QDomElement messages = childByUpperName(document.documentElement(), "MESSAGES");
        const QDomElement element =
            messages.isNull() ? QDomElement() : languageElement(messages, langue);
        if (!element.isNull()) {
            table.emplace();
            table->element = element;
            for (QDomElement m = element.firstChildElement(); !m.isNull();
                 m = m.nextSiblingElement()) {
                const QDomElement key = childAt(m, 0);
                if (key.isNull())
                    continue;
                // Stored keys are compared without their surrounding blanks,
                // as the XML reader of the files' first users gave them:
                // " Unsupported hardware..." must find itself.
                const QString upperKey = trimBlanks(key.text()).toUpper();
                if (!table->messages.contains(upperKey)) // the walk stops at the first
                    table->messages.insert(upperKey, m);
            }
        }
        found = kept.languages.insert(upperLangue, table);
    }

    if (!found->has_value()) {
        // The legacy program saved here too; the file is rewritten as it is.
        store(document, configPath_);
        return index;
    }
    QDomElement language = (*found)->element;
    const auto message = (*found)->messages.constFind(trimBlanks(index).toUpper());
    if (message != (*found)->messages.constEnd())
        return childAt(*message, 1).text();

    // The language's first message is the pattern of the new one. Without a
    // usable pattern the table cannot grow; the key stands for its text.
    const QDomElement pattern = language.firstChildElement();
    if (pattern.isNull() || childAt(pattern, 1).isNull())
        return index;
    QDomElement added = pattern.cloneNode(true).toElement();
    setText(childAt(added, 0), index);
    setText(childAt(added, 1), init.isEmpty() ? index : init);
    language.appendChild(added);
    store(document, configPath_);
    return index;
}

QStringList ConfigDocument::ListeLanguesDisponibles() const {
    const std::lock_guard hold(cache_->mutex);
    const QDomDocument document = current(configPath_);
    const QDomElement messages = childByUpperName(document.documentElement(), "MESSAGES");
    QStringList names;
    for (QDomElement e = messages.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        const QDomNamedNodeMap attributes = e.attributes();
        // Attributes have no order in the DOM; two NOM spellings on one
        // element come out in name order.
        QList<QDomAttr> noms;
        for (int i = 0; i < attributes.count(); ++i) {
            const QDomAttr attr = attributes.item(i).toAttr();
            if (isNomAttribute(attr))
                noms.append(attr);
        }
        std::sort(noms.begin(), noms.end(),
                  [](const QDomAttr& a, const QDomAttr& b) { return a.name() < b.name(); });
        for (const QDomAttr& attr : noms)
            names.append(attr.value());
    }
    return names;
}

std::optional<std::vector<ListRow>> ConfigDocument::RemplitListe(const QString& langue,
                                                                 const QString& liste) const {
    const std::lock_guard hold(cache_->mutex);
    const QDomDocument document = current(configPath_);
    const QDomElement listes = childByUpperName(document.documentElement(), "LISTES");
    if (listes.isNull())
        return std::nullopt;
    const QDomElement language = languageElement(listes, langue);
    if (language.isNull())
        return std::nullopt;
    const QDomElement list = childByUpperName(language, trimBlanks(liste).toUpper());
    if (list.isNull())
        return std::nullopt;

    std::vector<ListRow> rows;
    for (QDomElement ligne = list.firstChildElement(); !ligne.isNull();
         ligne = ligne.nextSiblingElement()) {
        ListRow row;
        row.text = childAt(ligne, 0).text();
        try {
            const double position = std::nearbyint(legacyLeadingNumber(childAt(ligne, 1).text()));
            row.position = int(std::clamp(position, double(std::numeric_limits<int>::min()),
                                          double(std::numeric_limits<int>::max())));
            row.itemData = legacyLeadingNumber(childAt(ligne, 2).text());
        } catch (const OverflowError&) {
            throw ConfigError(QStringLiteral("The list %1 of language %2 in \"%3\" holds a number "
                                             "out of range in the row \"%4\"")
                                  .arg(liste, langue, configKeyOf(configPath_), row.text));
        }
        const QDomElement extra = childAt(ligne, 3);
        if (!extra.isNull())
            row.extra = extra.text();
        // A row goes where its Index says, as in a list box; an Index beyond
        // the rows so far (a gap, or rows out of order) puts it at the end
        // rather than losing it.
        const auto at = std::size_t(std::clamp<qsizetype>(row.position, 0, qsizetype(rows.size())));
        rows.insert(rows.begin() + qsizetype(at), std::move(row));
    }
    return rows;
}

bool ConfigDocument::LitSplash() const {
    const std::lock_guard hold(cache_->mutex);
    const QDomElement e = select(current(configPath_), QStringLiteral("Splash"));
    // A text that is no boolean counts as absent.
    return e.isNull() ? true : parseLegacyBoolean(e.text()).value_or(true);
}

bool ConfigDocument::LitMaintenance() const {
    const std::lock_guard hold(cache_->mutex);
    const QDomElement e = select(current(configPath_), QStringLiteral("Maintenance"));
    return e.isNull() ? false : parseLegacyBoolean(e.text()).value_or(false);
}

std::optional<QString> ConfigDocument::LitValeurXML(const QString& index,
                                                    const QString& fichier) const {
    const std::lock_guard hold(cache_->mutex);
    const QDomElement e = select(current(resolve(fichier)), index);
    if (e.isNull())
        return std::nullopt;
    return e.text();
}

void ConfigDocument::EcritValeurXML(const QString& index, const QVariant& valeur,
                                    const QString& fichier) {
    const std::lock_guard hold(cache_->mutex);
    const QString path = resolve(fichier);
    QDomDocument document = current(path);
    QDomElement e = select(document, index);
    if (e.isNull())
        return;
    setText(e, valueText(valeur));
    store(document, path);
}

void ConfigDocument::EcritConf(const QString& index, const QVariant& valeur,
                               const QString& fichier) {
    const std::lock_guard hold(cache_->mutex);
    const QString path = resolve(fichier);
    QDomDocument document = current(path);
    QDomElement conf = select(document, QStringLiteral("Conf"));
    if (conf.isNull()) {
        throw ConfigError(QStringLiteral("The configuration file \"%1\" has no element "
                                         "Configuration/Conf to hold the setting %2")
                              .arg(configKeyOf(path), index));
    }
    if (!isXmlName(index)) {
        throw ConfigError(QStringLiteral("\"%1\" cannot be the name of a setting in \"%2\"")
                              .arg(index, configKeyOf(path)));
    }

    QString text;
    if (isNumericType(valeur)) {
        text = legacyNumberText(valeur.toDouble());
    } else if (valeur.typeId() == QMetaType::QString) {
        const auto number = parseLegacyNumber(valeur.toString());
        text = number ? legacyNumberText(*number) : valeur.toString();
    } else {
        text = valueText(valeur);
    }
    conf.setAttribute(index, text);
    store(document, path);
}

QVariant ConfigDocument::LitConf(const QString& index, const QString& fichier) const {
    const std::lock_guard hold(cache_->mutex);
    const QDomElement conf = select(current(resolve(fichier)), QStringLiteral("Conf"));
    // The legacy program put a 0 into its loaded copy for a missing
    // attribute, but never saved it; the kept document is left alone.
    if (conf.isNull() || !conf.hasAttribute(index))
        return QVariant(0);
    const QString value = conf.attribute(index);
    if (const auto number = parseLegacyNumber(value))
        return QVariant(*number);
    return QVariant(value);
}

void ConfigDocument::ImporteConfiguration(const QString& fichier) {
    const std::lock_guard hold(cache_->mutex);
    QDomDocument shared = current(configPath_);
    const QDomDocument programme = load(fichier);
    QDomElement sharedRoot = shared.documentElement();
    const QDomElement programmeRoot = programme.documentElement();

    static const QStringList kept = {
        QStringLiteral("MESSAGES"),    QStringLiteral("LISTES"), QStringLiteral("UNITES"),
        QStringLiteral("MAINTENANCE"), QStringLiteral("SPLASH"), QStringLiteral("PORT"),
        QStringLiteral("LANGUE"),
    };

    QStringList names;
    for (QDomElement e = programmeRoot.firstChildElement(); !e.isNull(); e = e.nextSiblingElement())
        names.append(e.tagName());

    for (const QString& name : names) {
        const QDomElement incoming = programmeRoot.firstChildElement(name);
        const QDomElement existing = sharedRoot.firstChildElement(name);
        if (incoming.isNull() || existing.isNull() || kept.contains(name.toUpper()))
            continue;
        const QDomNode copy = shared.importNode(incoming, true);
        sharedRoot.removeChild(existing);
        sharedRoot.appendChild(copy);
    }
    store(shared, configPath_);
}

} // namespace qv
