#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace qv {

// config.xml and the programme files need six levels of elements; anything
// nested far deeper is no document of ours, and a tree that deep costs the
// DOM time that grows with the square of the depth and stack at every walk.
constexpr int kMaxDocumentDepth = 64;

// Why a document is refused, and where.
struct DocumentRefusal {
    QString reason;
    qint64 line = 0;
    qint64 column = 0;
};

// Reads `bytes` as a stream, once, and refuses them when they are not
// well-formed XML, nest deeper than kMaxDocumentDepth, or have a root other
// than `Configuration`. Stops at the first fault, so a hostile file costs
// no more than the bytes read up to it.
std::optional<DocumentRefusal> checkDocument(const QByteArray& bytes);

} // namespace qv
