#include "ProgrammeTestSupport.h"
#include "programme/Conditions.h"
#include "programme/ProgrammePrintout.h"
#include "programme/widgets/ProgrammePrinting.h"

#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace qv::test {
namespace {

PrintoutTexts englishTexts() {
    PrintoutTexts t;
    t.date = QDate(2026, 3, 10);
    t.nomFichier = QStringLiteral("six.prg");
    t.page = QStringLiteral("Page");
    t.valeursDefaut = QStringLiteral("Default values");
    t.condition = QStringLiteral("Condition");
    t.programmationJournaliere = QStringLiteral("Daily schedule");
    t.sorties = {QStringLiteral("Bistable valve")};
    t.etatsDefaut = {1};
    t.valeursLogiques = {QStringLiteral("Closed"), QStringLiteral("Open")};
    t.jours = {{QStringLiteral("No time condition"), 0},
               {QStringLiteral("Every day"), 8},
               {QStringLiteral("Monday"), 1},
               {QStringLiteral("Periodic"), 12}};
    return t;
}

Conditions sixLines() {
    const auto line = [](double valeur, int jour, int h, int m, int s) {
        Condition c;
        c.sortie = 3;
        c.Valeur = valeur;
        c.Jour = static_cast<std::int16_t>(jour);
        c.Heure = static_cast<std::int16_t>(h);
        c.Minute = static_cast<std::int16_t>(m);
        c.Seconde = static_cast<std::int16_t>(s);
        return c;
    };
    Conditions programme;
    programme.Add(line(1, 0, 0, 0, 0));
    Condition monday = line(0, 1, 8, 5, 0);
    monday.Commentaire = QStringLiteral("Morning watering");
    programme.Add(monday);
    Condition range = line(1, JourPlage, 6, 0, 0);
    range.PlageFinHeure = 18;
    range.PlageFinMinute = 30;
    range.PlageFinSeconde = 15;
    programme.Add(range);
    Condition periodic = line(1, JourPeriode, 6, 30, 7);
    periodic.PlageFinHeure = 2;
    periodic.PlageFinMinute = 15;
    programme.Add(periodic);
    programme.Add(line(0, 8, 23, 59, 59));
    programme.Add(line(1, 0, 0, 0, 0));
    return programme;
}

// The text of a PDF as pdftotext lays it out, line by line.
QStringList pdfLines(const QString& pdf) {
    QProcess process;
    process.start(QStringLiteral(QUORVEL_PDFTOTEXT),
                  {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
    if (!process.waitForFinished(30000) || process.exitCode() != 0)
        return {};
    return QString::fromUtf8(process.readAllStandardOutput()).split(QLatin1Char('\n'));
}

class PrintoutPdf : public ::testing::Test {
protected:
    void SetUp() override {
        if (QStringLiteral(QUORVEL_PDFTOTEXT).isEmpty())
            GTEST_SKIP() << "pdftotext is not installed";
        ASSERT_TRUE(dir.isValid());
    }
    QTemporaryDir dir;
};

// The heading's date is day first on every machine.
TEST_F(PrintoutPdf, PrintoutPdfHoldsTheLinesOfThePage) {
    DefaultLocale american(QLocale(QLocale::English, QLocale::UnitedStates));
    const QString pdf = dir.filePath(QStringLiteral("six.pdf"));
    QString error;
    ASSERT_TRUE(printProgrammeToPdf(sixLines(), englishTexts(), pdf, &error))
        << error.toStdString();

    QStringList lines;
    for (const QString& l : pdfLines(pdf))
        if (!l.trimmed().isEmpty())
            lines << l.simplified();
    EXPECT_EQ(lines, (QStringList{
                         QStringLiteral("10/03/2026 six.prg - Page : 1"),
                         QStringLiteral("Default values"),
                         QStringLiteral("Bistable valve Open"),
                         QStringLiteral("Condition 1"),
                         QStringLiteral("Bistable valve = Open"),
                         QStringLiteral("Condition 2"),
                         QStringLiteral("Morning watering"),
                         QStringLiteral("Bistable valve = Closed"),
                         QStringLiteral("Daily schedule Monday = 8:5:0"),
                         QStringLiteral("Condition 3"),
                         QStringLiteral("Bistable valve = Open"),
                         QStringLiteral("Daily schedule Monday = 6:0:0 / 18:30:15"),
                         QStringLiteral("Condition 4"),
                         QStringLiteral("Bistable valve = Open"),
                         QStringLiteral("Daily schedule Periodic = 6:30:7"),
                         QStringLiteral("Condition 5"),
                         QStringLiteral("Bistable valve = Closed"),
                         QStringLiteral("Daily schedule Every day = 23:59:59"),
                         QStringLiteral("Condition 6"),
                         QStringLiteral("Bistable valve = Open"),
                     }));
}

TEST_F(PrintoutPdf, PrintoutPdfToAnUnwritablePlaceIsReported) {
    const QString pdf = dir.filePath(QStringLiteral("missing/folder/six.pdf"));
    QString error;
    EXPECT_FALSE(printProgrammeToPdf(sixLines(), englishTexts(), pdf, &error));
    EXPECT_TRUE(error.contains(pdf)) << error.toStdString();
}

} // namespace
} // namespace qv::test
