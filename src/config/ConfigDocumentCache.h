// The kept documents of ConfigDocument, shared by its copies; private to
// the document's own sources.
#pragma once

#include "config/ConfigDocument.h"

#include <QDateTime>
#include <QDomDocument>
#include <QDomElement>
#include <QHash>
#include <algorithm>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace qv {

// What was last read from or written to one file. A kept document is trusted
// only while the file shows the same time stamps and size as when its bytes
// were last compared, and only once those time stamps lie well before that
// comparison: a file written twice within the resolution of its clock keeps
// one time stamp, so a recent one proves nothing and the bytes are compared
// again.
struct ConfigDocument::CacheEntry {
    // The messages of one language by upper-cased key, first one of a key
    // only: what the walk of LitMessage would find.
    struct Language {
        QDomElement element;
        QHash<QString, QDomElement> messages;
    };

    QString path;
    QByteArray bytes;
    std::optional<QDomDocument> document;              // parsed from `bytes` on demand
    QHash<QString, std::optional<Language>> languages; // by upper-cased name
    qint64 size = -1;
    QDateTime modified;
    QDateTime changed;
    qint64 comparedAt = 0; // ms since the epoch, taken before the reading
    quint64 lastUse = 0;

    // The bytes were replaced: what was derived from the old ones goes.
    void setBytes(const QByteArray& newBytes) {
        bytes = newBytes;
        document.reset();
        languages.clear();
    }
};

struct ConfigDocument::Cache {
    using Entry = CacheEntry;

    // Held by every public operation: the device thread and the windows
    // share one document.
    std::recursive_mutex mutex;

    static constexpr std::size_t capacity = 4;
    static constexpr qint64 clockSlackMs = 2000;

    std::vector<std::unique_ptr<Entry>> entries;
    quint64 uses = 0;

    Entry* find(const QString& path) {
        for (auto& e : entries) {
            if (e->path == path) {
                e->lastUse = ++uses;
                return e.get();
            }
        }
        return nullptr;
    }

    Entry& insert(const QString& path) {
        if (Entry* e = find(path))
            return *e;
        if (entries.size() >= capacity) {
            auto oldest = std::min_element(entries.begin(), entries.end(), [](auto& a, auto& b) {
                return a->lastUse < b->lastUse;
            });
            entries.erase(oldest);
        }
        entries.push_back(std::make_unique<Entry>());
        entries.back()->path = path;
        entries.back()->lastUse = ++uses;
        return *entries.back();
    }

    void remove(const QString& path) {
        std::erase_if(entries, [&](auto& e) { return e->path == path; });
    }
};

// The key of a file in the cache: its absolute path.
QString configKeyOf(const QString& path);

} // namespace qv
