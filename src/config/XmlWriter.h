#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QString>
#include <optional>

namespace qv {

// The text of a document as config.xml and the programme files are written:
// UTF-8, two blanks of indentation per level, one element per line where an
// element holds only elements, except that one of at most four plain text
// fields (a message, a list row) stands on one line, and a mixed content
// written as it stands so that no text gains blanks. Attributes are written in name order: the DOM
// keeps them in no order at all, and a file that changes on every save for
// nothing is hard to compare. An XML declaration is kept, its encoding
// changed to UTF-8 when it named another one, since the bytes are UTF-8.
//
// nullopt, with the reason in `error`, when the document holds something
// XML cannot store (a control character in a text, "--" in a comment):
// writing it would leave a file that no longer loads.
std::optional<QByteArray> writeXmlDocument(const QDomDocument& document, QString* error);

} // namespace qv
