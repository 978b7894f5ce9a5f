// Documents that are not ours, or are built to hurt: refused where they go
// wrong, in time that grows with their size only, and never written back.
#include "TestFiles.h"
#include "config/ConfigDocument.h"
#include "config/Windows1252.h"
#include "config/XmlGuard.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

namespace qv {
namespace {

using test::readFile;
using test::writeFile;

// `levels` elements inside the root, closed or not.
QByteArray nested(int levels, bool closed) {
    QByteArray bytes =
        "<Configuration>\n<Langue>English</Langue>\n" + QByteArray("<a>").repeated(levels);
    if (closed)
        bytes += QByteArray("</a>").repeated(levels) + "</Configuration>\n";
    return bytes;
}

TEST(HostileDocument, RefusalsNameTheFaultLineAndColumn) {
    struct Case {
        QByteArray document;
        const char* reason; // empty: accepted
        qint64 line;
        qint64 column;
    };
    const Case cases[] = {
        {"<Configuration><Conf/></Configuration>", "", 0, 0},
        {"<?xml version=\"1.0\"?>\n<!-- a note -->\n<Programme>\n</Programme>",
         "the root element is <Programme>, not <Configuration>", 3, 11},
        {"<configuration/>", "the root element is <configuration>", 1, 16},
        {nested(kMaxDocumentDepth - 1, true), "", 0, 0},
        {nested(kMaxDocumentDepth, true), "nested deeper than 64 levels", 3, 3 * 64},
        {nested(100000, false), "nested deeper than 64 levels", 3, 3 * 64},
        {"<Configuration>\n<a>\n</Configuration>", "", 3, 16},
        {"", "", 1, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.document.left(80).toStdString());
        const auto refusal = checkDocument(c.document);
        if (c.line == 0) {
            EXPECT_FALSE(refusal) << refusal->reason.toStdString();
            continue;
        }
        ASSERT_TRUE(refusal);
        EXPECT_TRUE(refusal->reason.contains(QString::fromUtf8(c.reason)))
            << refusal->reason.toStdString();
        EXPECT_EQ(refusal->line, c.line);
        EXPECT_EQ(refusal->column, c.column);
    }
}

// config.xml and programme files alike: the error names the file and
// nothing is written.
TEST(HostileDocument, ForeignFilesAreRefusedAndLeftAsTheyAre) {
    QTemporaryDir dir;
    const QString config = dir.filePath(QStringLiteral("config.xml"));
    const QString prg = dir.filePath(QStringLiteral("site.prg"));
    writeFile(config, nested(3, true));
    ConfigDocument doc(config);
    const QByteArray foreign = "<Programme><CONDITIONS/></Programme>";
    writeFile(prg, foreign);
    try {
        doc.ImporteConfiguration(prg);
        ADD_FAILURE() << "accepted";
    } catch (const ConfigError& e) {
        EXPECT_TRUE(e.text().contains(prg) && e.text().contains(QStringLiteral("column")))
            << e.text().toStdString();
    }
    EXPECT_EQ(readFile(prg), foreign);
    EXPECT_EQ(readFile(config), nested(3, true));
    // A document refused once is refused again, not taken from memory.
    writeFile(config, foreign);
    EXPECT_THROW(doc.LitMessage(QStringLiteral("English"), QStringLiteral("New key"), QString()),
                 ConfigError);
    EXPECT_THROW(doc.LitMessage(QStringLiteral("English"), QStringLiteral("New key"), QString()),
                 ConfigError);
    EXPECT_EQ(readFile(config), foreign);
}

TEST(Windows1252, TheHighHalfIsTheCodePagesAndGoesBothWays) {
    const std::pair<QByteArray, QString> cases[] = {
        {"caf\xE9", QStringLiteral("caf\u00E9")},
        {"\x80 \x92\x8A\x9F", QStringLiteral("\u20AC \u2019\u0160\u0178")},
        {"\x81\x8D\x8F\x90\x9D", QStringLiteral("\u0081\u008D\u008F\u0090\u009D")},
        {"\xA0\xFF", QStringLiteral("\u00A0\u00FF")},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(decodeWindows1252(bytes), text);
        EXPECT_EQ(encodeWindows1252(text), bytes);
    }
    EXPECT_EQ(encodeWindows1252(QStringLiteral("\u0153\u4E2D\U0001F600")), QByteArray("\x9C??"));
    EXPECT_EQ(xmlStorable(QStringLiteral("a\u0000b\u0008\t\n\r\uFFFE") + QChar(0xD800) +
                          QStringLiteral("\U0001F600")),
              QStringLiteral("a?b?\t\n\r??\U0001F600"));
}

} // namespace
} // namespace qv
