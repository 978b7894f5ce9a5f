#include "config/ConfigDocumentCache.h"

#include "config/XmlGuard.h"
#include "config/XmlWriter.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace qv {

QString configKeyOf(const QString& path) {
    return QFileInfo(path).absoluteFilePath();
}

ConfigDocument::CacheEntry& ConfigDocument::entry(const QString& path) const {
    const QString key = configKeyOf(path);
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    const QFileInfo info(key);
    if (!info.exists()) {
        cache_->remove(key);
        throw ConfigError(
            QStringLiteral("Cannot open the configuration file \"%1\": no such file").arg(key));
    }

    Cache::Entry* entry = cache_->find(key);
    const bool sameStamps = entry && entry->size == info.size() &&
                            entry->modified == info.lastModified() &&
                            entry->changed == info.metadataChangeTime();
    const bool settled =
        sameStamps &&
        entry->modified.toMSecsSinceEpoch() < entry->comparedAt - Cache::clockSlackMs &&
        entry->changed.toMSecsSinceEpoch() < entry->comparedAt - Cache::clockSlackMs;

    if (!settled) {
        QFile file(key);
        if (!file.open(QIODevice::ReadOnly)) {
            cache_->remove(key);
            throw ConfigError(QStringLiteral("Cannot open the configuration file \"%1\": %2")
                                  .arg(key, file.errorString()));
        }
        const QByteArray bytes = file.readAll();
        if (file.error() != QFileDevice::NoError) {
            cache_->remove(key);
            throw ConfigError(QStringLiteral("Cannot read the configuration file \"%1\": %2")
                                  .arg(key, file.errorString()));
        }
        if (!entry || entry->bytes != bytes) {
            entry = &cache_->insert(key);
            entry->setBytes(bytes);
        }
        entry->size = info.size();
        entry->modified = info.lastModified();
        entry->changed = info.metadataChangeTime();
        entry->comparedAt = now;
    }

    if (!entry->document) {
        if (const auto refusal = checkDocument(entry->bytes)) {
            cache_->remove(key);
            throw ConfigError(QStringLiteral("The configuration file \"%1\" is refused: %2 "
                                             "(line %3, column %4)")
                                  .arg(key, refusal->reason)
                                  .arg(refusal->line)
                                  .arg(refusal->column));
        }
        QDomDocument document;
        QString message;
        int line = 0;
        int column = 0;
        if (!document.setContent(entry->bytes, &message, &line, &column)) {
            cache_->remove(key);
            throw ConfigError(QStringLiteral("The configuration file \"%1\" is not well-formed "
                                             "XML: %2 (line %3, column %4)")
                                  .arg(key, message)
                                  .arg(line)
                                  .arg(column));
        }
        if (document.documentElement().isNull()) {
            cache_->remove(key);
            throw ConfigError(
                QStringLiteral("The configuration file \"%1\" has no root element").arg(key));
        }
        entry->document = document;
    }
    return *entry;
}

QDomDocument ConfigDocument::current(const QString& path) const {
    return *entry(path).document;
}

void ConfigDocument::store(const QDomDocument& document, const QString& path) const {
    const QString key = configKeyOf(path);
    QString error;
    const auto bytes = writeXmlDocument(document, &error);
    if (!bytes) {
        forget(key);
        throw ConfigError(
            QStringLiteral("Cannot save the configuration file \"%1\": %2").arg(key, error));
    }

    // Written beside the file and renamed over it once complete and on the
    // disk: a full disk or a crash leaves the previous file as it was. The
    // writes are unbuffered and the sync is checked here, because a short
    // write in a buffer flush, or a failing sync, would otherwise go
    // unnoticed and the rename would put a truncated file in place.
    const qint64 before = QDateTime::currentMSecsSinceEpoch();
    QSaveFile file(key);
    QString reason;
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        reason = file.errorString();
    } else if (file.write(*bytes) != bytes->size()) {
        reason = file.errorString();
        if (file.error() == QFileDevice::NoError)
            reason = QStringLiteral("the file could not be written whole (disk full?)");
    } else if (::fsync(file.handle()) != 0) {
        reason = QString::fromLocal8Bit(std::strerror(errno));
    } else if (!file.commit()) {
        reason = file.errorString();
    }
    if (!reason.isEmpty()) {
        if (file.isOpen())
            file.cancelWriting();
        forget(key);
        throw ConfigError(
            QStringLiteral("Cannot save the configuration file \"%1\": %2").arg(key, reason));
    }

    // The document is parsed again from these bytes when next needed, so that
    // what is used is exactly what a reload of the file would give.
    Cache::Entry& entry = cache_->insert(key);
    const QFileInfo info(key);
    entry.setBytes(*bytes);
    entry.size = info.size();
    entry.modified = info.lastModified();
    entry.changed = info.metadataChangeTime();
    entry.comparedAt = before;
}

void ConfigDocument::forget(const QString& path) const {
    cache_->remove(configKeyOf(path));
}

} // namespace qv
