#include "../console/ConsoleTestSupport.h"

#include "firmware/FileDialog.h"
#include "programme/DefaultStates.h"
#include "reports/ProductionReport.h"

namespace qv::test {
namespace {

class AnsweringFileDialog : public FileDialog {
public:
    std::function<QString(const Request&)> answer;
    QString openFile(const Request&) override { return QString(); }
    QString saveFile(const Request& request) override {
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
};

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
