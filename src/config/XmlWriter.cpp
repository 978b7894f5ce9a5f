#include "config/XmlWriter.h"

#include "config/AttributeOrder.h"
#include "config/XmlGuard.h"

#include <QDomNamedNodeMap>
#include <QRegularExpression>
#include <QTextStream>
#include <algorithm>
#include <utility>
#include <vector>

namespace qv {

namespace {

class Writer {
public:
    bool document(const QDomDocument& doc) {
        for (QDomNode child = doc.firstChild(); !child.isNull(); child = child.nextSibling()) {
            if (child.isProcessingInstruction() &&
                child.toProcessingInstruction().target() == QLatin1String("xml")) {
                declaration(child.toProcessingInstruction().data());
            } else if (child.isDocumentType()) {
                QString text;
                QTextStream stream(&text);
                child.save(stream, 0);
                stream.flush();
                out_ += text.trimmed();
            } else if (!node(child, 0, false)) {
                return false;
            }
            out_ += QLatin1Char('\n');
        }
        return true;
    }

    QString text() const { return out_; }
    QString error() const { return error_; }

private:
    void declaration(const QString& data) {
        static const QRegularExpression pseudoAttribute(
            QStringLiteral("([A-Za-z]+)\\s*=\\s*(['\"])(.*?)\\2"));
        QString version = QStringLiteral("1.0");
        std::optional<QString> encoding;
        std::optional<QString> standalone;
        for (auto it = pseudoAttribute.globalMatch(data); it.hasNext();) {
            const auto match = it.next();
            const QString name = match.captured(1);
            if (name == QLatin1String("version"))
                version = match.captured(3);
            else if (name == QLatin1String("encoding"))
                encoding = match.captured(3);
            else if (name == QLatin1String("standalone"))
                standalone = match.captured(3);
        }
        out_ += QStringLiteral("<?xml version=\"%1\"").arg(version);
        if (encoding) {
            const bool utf8 = encoding->compare(QLatin1String("UTF-8"), Qt::CaseInsensitive) == 0;
            out_ +=
                QStringLiteral(" encoding=\"%1\"").arg(utf8 ? *encoding : QStringLiteral("UTF-8"));
        }
        if (standalone)
            out_ += QStringLiteral(" standalone=\"%1\"").arg(*standalone);
        out_ += QStringLiteral("?>");
    }

    void indent(int depth) { out_ += QString(2 * depth, QLatin1Char(' ')); }

    static bool isTextLike(const QDomNode& n) {
        return n.isText() || n.isCDATASection() || n.isEntityReference();
    }

    static bool isLeaf(const QDomNode& n) {
        for (QDomNode c = n.firstChild(); !c.isNull(); c = c.nextSibling()) {
            if (!isTextLike(c))
                return false;
        }
        return true;
    }

    bool node(const QDomNode& n, int depth, bool inLine) {
        switch (n.nodeType()) {
        case QDomNode::ElementNode:
            return element(n.toElement(), depth, inLine);
        case QDomNode::TextNode:
            return escaped(n.nodeValue(), false);
        case QDomNode::CDATASectionNode: {
            const QString data = n.nodeValue();
            if (!checkChars(data))
                return false;
            QString safe = data;
            safe.replace(QLatin1String("]]>"), QLatin1String("]]]]><![CDATA[>"));
            out_ += QLatin1String("<![CDATA[") + safe + QLatin1String("]]>");
            return true;
        }
        case QDomNode::CommentNode: {
            const QString data = n.nodeValue();
            if (!checkChars(data))
                return false;
            if (data.contains(QLatin1String("--")) || data.endsWith(QLatin1Char('-'))) {
                error_ = QStringLiteral("the comment \"%1\" cannot be written").arg(data);
                return false;
            }
            out_ += QLatin1String("<!--") + data + QLatin1String("-->");
            return true;
        }
        case QDomNode::ProcessingInstructionNode: {
            const auto pi = n.toProcessingInstruction();
            if (!checkChars(pi.data()))
                return false;
            out_ += QLatin1String("<?") + pi.target();
            if (!pi.data().isEmpty())
                out_ += QLatin1Char(' ') + pi.data();
            out_ += QLatin1String("?>");
            return true;
        }
        case QDomNode::EntityReferenceNode:
            out_ += QLatin1Char('&') + n.nodeName() + QLatin1Char(';');
            return true;
        default:
            // Entities and notations belong to the document type, which is
            // written as a whole.
            return true;
        }
    }

    bool element(const QDomElement& e, int depth, bool inLine) {
        // The reader refuses such a document; writing one would leave a file
        // that never loads again, and each level costs stack here.
        if (depth >= kMaxDocumentDepth) {
            error_ = QStringLiteral("the element <%1> is nested deeper than %2 levels")
                         .arg(e.tagName())
                         .arg(kMaxDocumentDepth);
            return false;
        }
        out_ += QLatin1Char('<') + e.tagName();

        const QDomNamedNodeMap map = e.attributes();
        std::vector<std::pair<QString, QString>> attributes;
        attributes.reserve(std::size_t(map.count()));
        for (int i = 0; i < map.count(); ++i) {
            const QDomAttr attr = map.item(i).toAttr();
            attributes.emplace_back(attr.name(), attr.value());
        }
        std::sort(attributes.begin(), attributes.end());
        const QStringList order = attributeOrder(e);
        if (!order.isEmpty()) {
            // Ranked once each: a programme row has some seventy attributes.
            std::vector<std::pair<qsizetype, std::size_t>> ranked;
            ranked.reserve(attributes.size());
            for (std::size_t i = 0; i < attributes.size(); ++i) {
                const qsizetype at = order.indexOf(attributes[i].first.toUpper());
                ranked.emplace_back(at < 0 ? order.size() : at, i);
            }
            std::stable_sort(ranked.begin(), ranked.end(),
                             [](const auto& a, const auto& b) { return a.first < b.first; });
            std::vector<std::pair<QString, QString>> sorted;
            sorted.reserve(attributes.size());
            for (const auto& [rank, i] : ranked)
                sorted.push_back(std::move(attributes[i]));
            attributes = std::move(sorted);
        }
        for (const auto& [name, value] : attributes) {
            out_ += QLatin1Char(' ') + name + QLatin1String("=\"");
            if (!escaped(value, true))
                return false;
            out_ += QLatin1Char('"');
        }

        const QDomNodeList children = e.childNodes();
        if (children.isEmpty()) {
            out_ += QLatin1String("/>");
            return true;
        }
        out_ += QLatin1Char('>');

        bool structured = !inLine;
        for (int i = 0; structured && i < children.count(); ++i)
            structured = !isTextLike(children.item(i));
        // A message or a list row, a few fields of text, reads best on one
        // line, as the files are written by hand.
        if (structured && children.count() <= 4) {
            bool fields = true;
            for (int i = 0; fields && i < children.count(); ++i)
                fields = children.item(i).isElement() && !children.item(i).hasAttributes() &&
                         isLeaf(children.item(i));
            structured = !fields;
        }

        for (int i = 0; i < children.count(); ++i) {
            if (structured) {
                out_ += QLatin1Char('\n');
                indent(depth + 1);
            }
            if (!node(children.item(i), depth + 1, !structured))
                return false;
        }
        if (structured) {
            out_ += QLatin1Char('\n');
            indent(depth);
        }
        out_ += QLatin1String("</") + e.tagName() + QLatin1Char('>');
        return true;
    }

    bool checkChars(const QString& s) {
        for (qsizetype i = 0; i < s.size(); ++i) {
            const char16_t c = s[i].unicode();
            bool ok = c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c < 0xD800) ||
                      (c >= 0xE000 && c <= 0xFFFD);
            if (QChar::isHighSurrogate(c) && i + 1 < s.size() && s[i + 1].isLowSurrogate()) {
                ok = true;
                ++i;
            }
            if (!ok) {
                error_ = QStringLiteral("the text \"%1\" holds the character U+%2, which XML "
                                        "cannot store")
                             .arg(s)
                             .arg(uint(c), 4, 16, QLatin1Char('0'));
                return false;
            }
        }
        return true;
    }

    // Attribute values keep their line breaks and tabs, which a parser would
    // otherwise turn into blanks; texts keep their carriage returns.
    bool escaped(const QString& s, bool attribute) {
        if (!checkChars(s))
            return false;
        for (QChar c : s) {
            switch (c.unicode()) {
            case '&':
                out_ += QLatin1String("&amp;");
                break;
            case '<':
                out_ += QLatin1String("&lt;");
                break;
            case '>':
                out_ += QLatin1String("&gt;");
                break;
            case '"':
                out_ += attribute ? QLatin1String("&quot;") : QLatin1String("\"");
                break;
            case '\r':
                out_ += QLatin1String("&#xd;");
                break;
            case '\n':
                out_ += attribute ? QLatin1String("&#xa;") : QLatin1String("\n");
                break;
            case '\t':
                out_ += attribute ? QLatin1String("&#x9;") : QLatin1String("\t");
                break;
            default:
                out_ += c;
            }
        }
        return true;
    }

    QString out_;
    QString error_;
};

} // namespace

std::optional<QByteArray> writeXmlDocument(const QDomDocument& document, QString* error) {
    Writer writer;
    if (!writer.document(document)) {
        if (error)
            *error = writer.error();
        return std::nullopt;
    }
    return writer.text().toUtf8();
}

} // namespace qv
