#include "reports/ReportBlock.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QStringList& list, std::ostream* out) {
    *out << '[' << list.join(QStringLiteral(" | ")).toStdString() << ']';
}

namespace qv {
namespace {

ProductionReportValues sample() {
    ProductionReportValues v;
    v.dateTime = QStringLiteral("10/03/2026 14:30:05");
    v.labelNumeroCommande = QStringLiteral("Order number");
    v.commande = QStringLiteral("1234");
    v.labelVersion = QStringLiteral("Version");
    v.versionCaption = QStringLiteral("(12) 2.70");
    v.label1 = QStringLiteral("Serial number");
    v.numeroSerie = QStringLiteral("90601234");
    v.label2 = QStringLiteral("Programmed on");
    v.dateProgrammation = QStringLiteral("01/03/2026 09:00:00");
    v.labelBatterie = QStringLiteral("Battery (V)");
    v.batterie = QStringLiteral("9,0");
    v.labeldelta = QStringLiteral("Adjustment (mn)");
    v.daylightAdjustment = QStringLiteral("60");
    v.frameSummer = QStringLiteral("Summer");
    v.frameWinter = QStringLiteral("Winter");
    v.seasons[0] = {QStringLiteral("Month S"), QStringLiteral("March"), QStringLiteral("Week S"),
                    QStringLiteral("Last"),    QStringLiteral("Day S"), QStringLiteral("Sunday"),
                    QStringLiteral("Hour S"),  QStringLiteral("2")};
    v.seasons[1] = {QStringLiteral("Month W"), QStringLiteral("October"), QStringLiteral("Week W"),
                    QStringLiteral("Last"),    QStringLiteral("Day W"),   QStringLiteral("Sunday"),
                    QStringLiteral("Hour W"),  QStringLiteral("3")};
    for (size_t i = 0; i < v.counters.size(); ++i)
        v.counters[i] = {QStringLiteral("Counter %1").arg(i), QString::number(10 * i)};
    v.framevaleursDefaut = QStringLiteral("Default values");
    v.sortie = QStringLiteral("Bistable valve");
    v.etatDefaut = QStringLiteral("Closed");
    v.commentaires = QStringLiteral("checked by A.");
    return v;
}

const QStringList kHead = {
    QStringLiteral(" "),
    QStringLiteral("------------------------------------------"),
    QStringLiteral("10/03/2026 14:30:05"),
    QStringLiteral(" "),
    QStringLiteral("Order number 1234"),
    QStringLiteral(" "),
    QStringLiteral("Version : Quorvel 2.70"),
    QStringLiteral("Serial number : 90601234"),
    QStringLiteral("Programmed on : 01/03/2026 09:00:00"),
    QStringLiteral("Battery (V) : 9,0"),
    QStringLiteral(" "),
};
// The winter month line takes summer's label.
const QStringList kRule = {
    QStringLiteral("Adjustment (mn) : 60"),
    QStringLiteral("Summer"),
    QStringLiteral("Month S : March"),
    QStringLiteral("Week S : Last"),
    QStringLiteral("Day S : Sunday"),
    QStringLiteral("Hour S : 2"),
    QStringLiteral("Winter"),
    QStringLiteral("Month S : October"),
    QStringLiteral("Week W : Last"),
    QStringLiteral("Day W : Sunday"),
    QStringLiteral("Hour W : 3"),
};
const QStringList kCounters = {
    QStringLiteral(" "),
    QStringLiteral("counters values------------------------------------------"),
    QStringLiteral(" "),
    QStringLiteral("Counter 0 0"),
    QStringLiteral("Counter 1 10"),
    QStringLiteral("Counter 2 20"),
    QStringLiteral("Counter 3 30"),
    QStringLiteral("Counter 4 40"),
};
const QStringList kTail = {
    QStringLiteral(" "),
    QStringLiteral("Default values"),
    QStringLiteral("Bistable valve:Closed"),
    QStringLiteral("checked by A."),
    QStringLiteral(" "),
};

TEST(ReportBlock, ReportSectionsFollowTheRuleAndMaintenance) {
    struct Case {
        bool ruleOn;
        bool maintenance;
        QStringList expected;
    };
    const Case cases[] = {
        {true, true, kHead + kRule + kCounters + kTail},
        {true, false, kHead + kRule + kTail},
        {false, true, kHead + kCounters + kTail},
        {false, false, kHead + kTail},
    };
    for (const Case& c : cases) {
        ProductionReportValues v = sample();
        v.ruleOn = c.ruleOn;
        v.maintenance = c.maintenance;
        EXPECT_EQ(productionReportLines(v), c.expected)
            << "rule " << c.ruleOn << " maintenance " << c.maintenance;
    }
}

TEST(ReportBlock, ReportVersionLineNamesTheModel) {
    struct Case {
        QString caption;
        QString line; // empty: refused
    };
    const Case cases[] = {
        {QStringLiteral("(12) 2.70"), QStringLiteral("Version : Quorvel 2.70")},
        {QStringLiteral("--"), QStringLiteral("Version : Quorvel--")},
        {QStringLiteral("(2) 1.05"), QStringLiteral("Version : Varlin K1 1.05")},
        {QStringLiteral("(99) 3.00"), QStringLiteral("Version : Generic Sorvane 3.00")},
        {QStringLiteral("(x) 2.70"), QString()},
        {QStringLiteral("2.70"), QString()},
        {QString(), QString()},
    };
    for (const Case& c : cases) {
        ProductionReportValues v = sample();
        v.versionCaption = c.caption;
        if (c.line.isEmpty()) {
            EXPECT_THROW(productionReportLines(v), ReportError) << c.caption.toStdString();
            continue;
        }
        EXPECT_EQ(productionReportLines(v).at(6), c.line);
    }
}

TEST(ReportBlock, ReportDefaultNameAlwaysAddsTheExtension) {
    const struct {
        const char* commande;
        const char* name;
    } cases[] = {
        {"", "report.log"},           {"1234", "1234.log"}, {"1234.log", "1234.log.log"},
        {"1234.LOG", "1234.LOG.log"}, {"A 12", "A 12.log"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(defaultReportPath(QStringLiteral("/opt/q"), QString::fromUtf8(c.commande)),
                  QStringLiteral("/opt/q/") + QString::fromUtf8(c.name));
}

TEST(ReportBlock, ReportDateHoldsTheSecond) {
    const QDateTime at(QDate(2026, 3, 10), QTime(14, 30, 5));
    EXPECT_EQ(reportDateTime(at, QLocale(QLocale::French, QLocale::France)),
              QStringLiteral("10/03/2026 14:30:05"));
    EXPECT_TRUE(reportDateTime(at, QLocale(QLocale::English, QLocale::UnitedStates))
                    .endsWith(QStringLiteral(" 14:30:05")));
}

TEST(ReportBlock, ReportAppendsInTheAnsiCodePage) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("1234.log"));
    {
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write("earlier\r\n");
    }
    appendReport(path, {QStringLiteral("N° de commande 7"), QStringLiteral("€ œ 漢")});
    appendReport(path, {QStringLiteral("é")});
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(f.readAll(), QByteArray("earlier\r\nN\xB0 de commande 7\r\n\x80 \x9C ?\r\n\xE9\r\n"));
}

TEST(ReportBlock, ReportFileThatCannotBeWrittenIsAnError) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    EXPECT_THROW(appendReport(dir.filePath(QStringLiteral("missing/x.log")), {QStringLiteral(" ")}),
                 ReportError);
    EXPECT_THROW(appendReport(dir.path(), {QStringLiteral(" ")}), ReportError);
}

} // namespace
} // namespace qv
