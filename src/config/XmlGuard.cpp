#include "config/XmlGuard.h"

#include <QXmlStreamReader>

namespace qv {

std::optional<DocumentRefusal> checkDocument(const QByteArray& bytes) {
    QXmlStreamReader reader(bytes);
    int depth = 0;
    bool rootSeen = false;
    const auto refuse = [&reader](const QString& reason) {
        return DocumentRefusal{reason, reader.lineNumber(), reader.columnNumber()};
    };
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (++depth > kMaxDocumentDepth) {
                return refuse(
                    QStringLiteral("elements nested deeper than %1 levels").arg(kMaxDocumentDepth));
            }
            if (!rootSeen) {
                rootSeen = true;
                if (reader.name() != QLatin1String("Configuration")) {
                    return refuse(QStringLiteral("the root element is <%1>, not <Configuration>")
                                      .arg(reader.name().toString()));
                }
            }
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    if (reader.hasError())
        return refuse(reader.errorString());
    if (!rootSeen)
        return refuse(QStringLiteral("no root element"));
    return std::nullopt;
}

} // namespace qv
