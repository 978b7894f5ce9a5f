#pragma once

#include <QDomDocument>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <memory>
#include <optional>
#include <stdexcept>
#include <vector>

namespace qv {

// A configuration or programme file that cannot be read, parsed or saved.
// The message names the file and, for a parse error, the line and column.
class ConfigError : public std::runtime_error {
public:
    explicit ConfigError(const QString& message) : std::runtime_error(message.toStdString()) {}
    QString text() const { return QString::fromStdString(what()); }
};

// One row of a language-dependent list.
struct ListRow {
    QString text;        // child 0: what is shown
    int position = 0;    // child 1: `Index`, the row's position
    double itemData = 0; // child 2: the value that goes to the device
    QString extra;       // child 3 when present (ListeSorties: default state)
};

// config.xml: the one store of texts, lists, switches and the working
// programme. Every access sees what the last save left on disk; saves are
// atomic. `fichier` empty means config.xml itself, anything else a full path.
//
// Parsed documents are kept between calls, and checked against the file
// before each use (time, size, and the bytes themselves while the file is
// too recent for its time to tell), so that a lookup does not parse the
// whole file again. Copies of one object share what they keep, and one lock:
// each operation is whole, from any thread.
class ConfigDocument {
public:
    explicit ConfigDocument(QString configPath);

    const QString& configPath() const { return configPath_; }
    QString resolve(const QString& fichier) const;

    // Whole-document access for the programme store and the default states.
    // Throws ConfigError when the file is missing or malformed.
    QDomDocument load(const QString& fichier = QString()) const;
    // Atomic: a failed save leaves the previous file as it was. Throws
    // ConfigError on failure.
    void save(const QDomDocument& document, const QString& fichier = QString()) const;

    // The text of `index` in `langue`. A key not yet in the document is
    // added with `init` (or the key) as its text and the file saved; the key
    // itself is returned then, the stored text from the next lookup on.
    QString LitMessage(const QString& langue, const QString& index, const QString& init);
    // Language names in document order. The row to select is the one equal
    // to the current language exactly (case counts here, unlike lookups).
    QStringList ListeLanguesDisponibles() const;
    // nullopt when the list is not in the document: the control stays as it was.
    std::optional<std::vector<ListRow>> RemplitListe(const QString& langue,
                                                     const QString& liste) const;
    bool LitSplash() const;
    bool LitMaintenance() const;
    // nullopt stands for the legacy boolean false: the element is absent.
    std::optional<QString> LitValeurXML(const QString& index,
                                        const QString& fichier = QString()) const;
    void EcritValeurXML(const QString& index, const QVariant& valeur,
                        const QString& fichier = QString());
    void EcritConf(const QString& index, const QVariant& valeur,
                   const QString& fichier = QString());
    // A double for a numeric attribute, the raw text otherwise, int 0 when
    // the attribute or the element is missing.
    QVariant LitConf(const QString& index, const QString& fichier = QString()) const;
    // Replaces each top-level section of config.xml by its namesake in the
    // programme file `fichier`, except the language, list, unit and machine
    // sections; a replaced section moves to the end. Saves config.xml.
    void ImporteConfiguration(const QString& fichier);

private:
    struct Cache;
    struct CacheEntry;

    // What is kept of `path`, checked against the disk first.
    CacheEntry& entry(const QString& path) const;
    // The kept document of `path`, checked against the disk first. It is
    // the kept one itself, not a copy: a change to it must be followed by
    // store() or forget().
    QDomDocument current(const QString& path) const;
    // Writes `document` to `path` atomically and records what was written.
    void store(const QDomDocument& document, const QString& path) const;
    void forget(const QString& path) const;
    QDomElement select(const QDomDocument& document, const QString& path) const;

    QString configPath_;
    std::shared_ptr<Cache> cache_;
};

} // namespace qv
