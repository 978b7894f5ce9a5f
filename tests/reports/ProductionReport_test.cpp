#include "../console/ConsoleTestSupport.h"

#include "firmware/FileDialog.h"
#include "programme/DefaultStates.h"
#include "reports/ProductionReport.h"

#include <QDir>

namespace qv::test {
namespace {

class AnsweringFileDialog : public FileDialog {
public:
    std::function<QString(const Request&)> answer;
    std::vector<Request> saved;
    QString openFile(const Request&) override { return QString(); }
    QString saveFile(const Request& request) override {
        saved.push_back(request);
        return answer ? answer(request) : request.fileName;
    }
};

// The main window after a start with a simulated controller, and the report
// form beside it.
class ProductionReportTest : public ConsoleFixture {
protected:
    MapConsoleView form;
    AnsweringFileDialog fileDialog;
    int hidden = 0;
    std::unique_ptr<ProductionReport> report;

    void SetUp() override {
        ConsoleFixture::SetUp();
        makeReport();
    }

    void makeReport() {
        using K = ConsoleView::Kind;
        form = MapConsoleView();
        form.add(QStringLiteral("LabelNumeroCommande"), K::Label);
        form[QStringLiteral("LabelNumeroCommande")].text = QStringLiteral("N° de commande");
        form.add(QStringLiteral("Commande"), K::TextBox);
        form.add(QStringLiteral("Commentaires"), K::TextBox);
        form.add(QStringLiteral("PrintReport"), K::Button);
        report = std::make_unique<ProductionReport>(form, view, *config, dialogs, fileDialog,
                                                    dir.path(), [this] { ++hidden; });
        report->setClock([this] { return pcNow; });
        report->setLocale(QLocale(QLocale::French, QLocale::France));
    }

    void fill(const QString& commande, const QString& commentaires) {
        form.setText(QStringLiteral("Commande"), commande);
        form.setText(QStringLiteral("Commentaires"), commentaires);
    }

    QByteArray fileBytes(const QString& name) const {
        QFile f(dir.filePath(name));
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    QStringList fileLines(const QString& name) const {
        QStringList lines = QString::fromLatin1(fileBytes(name)).split(QStringLiteral("\r\n"));
        if (!lines.isEmpty() && lines.last().isEmpty())
            lines.removeLast();
        return lines;
    }
    QString line(const char* label, const char* value) const {
        return text(label) + QStringLiteral(" : ") + text(value);
    }
};

TEST_F(ProductionReportTest, ReportTwoRunsAppendTwoBlocks) {
    startWithDevice();
    report->Form_Load();
    fill(QStringLiteral("1234"), QStringLiteral("first"));
    report->PrintReport_Click();
    fill(QStringLiteral("1234"), QStringLiteral("second"));
    report->PrintReport_Click();

    EXPECT_EQ(hidden, 2);
    const QByteArray bytes = fileBytes(QStringLiteral("1234.log"));
    EXPECT_EQ(bytes.count("\r\n"), bytes.count('\n')) << "every line ends in CR LF";
    const QStringList lines = fileLines(QStringLiteral("1234.log"));
    const int blockSize = static_cast<int>(lines.size()) / 2;
    ASSERT_EQ(lines.size(), 2 * blockSize);
    for (int b = 0; b < 2; ++b) {
        SCOPED_TRACE(b);
        const QStringList block = lines.mid(b * blockSize, blockSize);
        EXPECT_EQ(block[0], QStringLiteral(" "));
        EXPECT_EQ(block[1], QStringLiteral("------------------------------------------"));
        EXPECT_EQ(block[2], QStringLiteral("10/03/2026 14:30:00"));
        EXPECT_EQ(block[4], QStringLiteral("Order number 1234"));
        EXPECT_EQ(block[6], text("LabelVersion") + QStringLiteral(" : Quorvel 2.70"));
        EXPECT_EQ(block[7], text("Label1") + QStringLiteral(" : 90601234"));
        EXPECT_EQ(block[8], line("Label2", "DateProgrammation"));
        EXPECT_EQ(block[9], line("LabelBatterie", "Batterie"));
        EXPECT_EQ(block[blockSize - 3], QStringLiteral("Bistable valve:Closed"));
        EXPECT_EQ(block[blockSize - 2],
                  b == 0 ? QStringLiteral("first") : QStringLiteral("second"));
    }
    // Hidden, not cleared.
    EXPECT_EQ(form.text(QStringLiteral("Commande")), QStringLiteral("1234"));
    EXPECT_EQ(form.text(QStringLiteral("Commentaires")), QStringLiteral("second"));
}

TEST_F(ProductionReportTest, ReportRuleLinesOnlyWithTheRule) {
    startWithDevice();
    report->Form_Load();
    view.setText(QStringLiteral("LabelMoisEte_1"), QStringLiteral("Winter month"));
    fill(QStringLiteral("off"), QString());
    view.setChecked(QStringLiteral("EnableDaylightSaving"), false);
    report->PrintReport_Click();
    fill(QStringLiteral("on"), QString());
    view.setChecked(QStringLiteral("EnableDaylightSaving"), true);
    report->PrintReport_Click();

    const QStringList off = fileLines(QStringLiteral("off.log"));
    ASSERT_EQ(off.size(), 16);
    EXPECT_EQ(off[10], QStringLiteral(" "));
    EXPECT_EQ(off[11], QStringLiteral(" "));
    EXPECT_EQ(off[12], QStringLiteral("Default values"));

    const QStringList on = fileLines(QStringLiteral("on.log"));
    ASSERT_EQ(on.size(), 27);
    const QStringList rule = on.mid(11, 11);
    EXPECT_EQ(rule,
              (QStringList{line("Labeldelta", "DaylightAdjustment"), text("FrameSummer"),
                           line("LabelMoisEte_0", "Mois_0"), line("LabelsemaineEte_0", "Semaine_0"),
                           line("LabelJour_0", "Jour_0"), line("Labelheure_0", "Heure_0"),
                           text("FrameWinter"), line("LabelMoisEte_0", "Mois_1"),
                           line("LabelsemaineEte_1", "Semaine_1"), line("LabelJour_1", "Jour_1"),
                           line("Labelheure_1", "Heure_1")}));
    EXPECT_FALSE(on.join(QLatin1Char('\n')).contains(QStringLiteral("Winter month")));
    EXPECT_FALSE(text("Mois_1").isEmpty());
}

TEST_F(ProductionReportTest, ReportCountersOnlyWithMaintenance) {
    replaceInConfig(QStringLiteral("<Maintenance>False</Maintenance>"),
                    QStringLiteral("<Maintenance>True</Maintenance>"));
    startWithDevice();
    setEeprom(42, 7);
    logic->Lire_Click();
    view.setChecked(QStringLiteral("EnableDaylightSaving"), false);
    fill(QStringLiteral("m"), QString());
    report->PrintReport_Click();
    const QStringList lines = fileLines(QStringLiteral("m.log"));
    ASSERT_EQ(lines.size(), 24);
    EXPECT_EQ(
        lines.mid(11, 3),
        (QStringList{QStringLiteral(" "),
                     QStringLiteral("counters values------------------------------------------"),
                     QStringLiteral(" ")}));
    EXPECT_EQ(lines[14], text("Labelctn_0") + QStringLiteral(" ") + text("ctn_text_0"));
    EXPECT_EQ(lines[16], text("Labelctn_2") + QStringLiteral(" 7"));
    EXPECT_EQ(lines[18], text("Labelctn_4") + QStringLiteral(" ") + text("ctn_text_4"));
}

TEST_F(ProductionReportTest, ReportDialogProposesTheDefaultName) {
    const struct {
        const char* commande;
        const char* name;
    } cases[] = {{"", "report.log"}, {"1234", "1234.log"}, {"1234.log", "1234.log.log"}};
    for (const auto& c : cases) {
        fileDialog.saved.clear();
        fill(QString::fromUtf8(c.commande), QString());
        report->PrintReport_Click();
        ASSERT_EQ(fileDialog.saved.size(), 1u);
        const FileDialog::Request& r = fileDialog.saved[0];
        EXPECT_EQ(r.fileName, dir.filePath(QString::fromUtf8(c.name)));
        EXPECT_EQ(r.folder, dir.path());
        EXPECT_EQ(r.filter, QStringLiteral("Log Files (*.LOG)|*.LOG"));
        EXPECT_TRUE(r.title.isEmpty());
        EXPECT_FALSE(fileBytes(QString::fromUtf8(c.name)).isEmpty());
    }
    EXPECT_TRUE(dialogs.boxes().empty()) << "an empty order number is not refused";
}

TEST_F(ProductionReportTest, ReportCancelledWritesNothingAndStaysOpen) {
    fileDialog.answer = [](const FileDialog::Request&) { return QString(); };
    fill(QStringLiteral("1234"), QStringLiteral("x"));
    report->PrintReport_Click();
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("1234.log"))));
    EXPECT_EQ(hidden, 0);
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(ProductionReportTest, ReportOfADeviceNeverReadNamesModelTwelve) {
    fill(QStringLiteral("n"), QString());
    report->PrintReport_Click();
    const QStringList lines = fileLines(QStringLiteral("n.log"));
    ASSERT_GT(lines.size(), 6);
    EXPECT_EQ(lines[6], QStringLiteral("Version : Quorvel--"));
}

TEST_F(ProductionReportTest, ReportDefaultStateUnderTheFirstLanguage) {
    startWithDevice();
    Sauve_EtatDefautSortie(*config, QStringLiteral("English"), 0, 1);
    Sauve_EtatDefautSortie(*config, QStringLiteral("Français"), 0, 0);
    view.setCurrentRow(QStringLiteral("ListeLangues"), 1);
    logic->ListeLangues_Click();
    ASSERT_EQ(view.text(QStringLiteral("ListeLangues")), QStringLiteral("Français"));
    report->Form_Load();
    fill(QStringLiteral("fr"), QString());
    report->PrintReport_Click();
    const QStringList lines = fileLines(QStringLiteral("fr.log"));
    ASSERT_GT(lines.size(), 3);
    EXPECT_EQ(lines[lines.size() - 4], QStringLiteral("Valeurs par défaut"));
    EXPECT_EQ(lines[lines.size() - 3], QStringLiteral("Électrovanne bistable:Ouverte"));
    EXPECT_EQ(lines[4], QStringLiteral("N° de commande fr"));
}

TEST_F(ProductionReportTest, ReportFormTakesItsCaptionsInTheLanguageInUse) {
    startWithDevice();
    report->Form_Load();
    EXPECT_EQ(form.text(QStringLiteral("LabelNumeroCommande")), QStringLiteral("Order number"));
    EXPECT_EQ(form.text(QStringLiteral("PrintReport")), QStringLiteral("Write report"));
    form.setText(QStringLiteral("Commande"), QStringLiteral("Commande"));
    report->ChangeTextes(QStringLiteral("Français"));
    EXPECT_EQ(form.text(QStringLiteral("LabelNumeroCommande")), QStringLiteral("N° de commande"));
    EXPECT_EQ(form.text(QStringLiteral("Commande")), QStringLiteral("Commande"))
        << "a text box keeps its text";
}

TEST_F(ProductionReportTest, ReportThatCannotBeWrittenTellsWhyInTheLanguageInUseAndStaysOpen) {
    startWithDevice();
    const QString path = dir.filePath(QStringLiteral("no such folder/r.log"));
    fileDialog.answer = [&](const FileDialog::Request&) { return path; };
    const struct {
        int row;
        const char* start;
    } cases[] = {{0, "The report file "}, {1, "Le fichier de rapport "}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.row);
        view.setCurrentRow(QStringLiteral("ListeLangues"), c.row);
        logic->ListeLangues_Click();
        // The switch leaves "--" in the value fields until the next read.
        logic->Lire_Click();
        dialogs.clear();
        report->PrintReport_Click();
        ASSERT_EQ(dialogs.boxes().size(), 1u);
        const QString text = dialogs.boxes()[0].text;
        EXPECT_TRUE(text.startsWith(QString::fromUtf8(c.start))) << text.toStdString();
        EXPECT_TRUE(text.contains(QDir::toNativeSeparators(path))) << text.toStdString();
        EXPECT_EQ(dialogs.boxes()[0].title, QStringLiteral("Quorvel"));
        EXPECT_EQ(dialogs.boxes()[0].style, MsgBox::Critical);
        EXPECT_EQ(hidden, 0);
    }
}

} // namespace
} // namespace qv::test
