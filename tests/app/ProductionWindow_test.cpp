// The report form over the main window and a simulated controller: the
// report in the language of the window, and a log that cannot be written.
#include "AppTestSupport.h"
#include "RecordingFileDialog.h"
#include "TestFiles.h"
#include "programme/DefaultStates.h"
#include "reports/widgets/ProductionWindow.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

namespace qv::test {
namespace {

class ProductionWindowTest : public WindowFixture {
protected:
    RecordingFileDialog fileDialog;
    std::unique_ptr<ProductionWindow> form;

    void SetUp() override {
        make(true);
        startWindow();
    }
    // As the operator picks it; the switch leaves "--" in the value fields
    // until the next read.
    void chooseLanguage(const QString& language) {
        auto* list = window->findChild<QComboBox*>(QStringLiteral("ListeLangues"));
        list->setCurrentIndex(list->findText(language));
        Q_EMIT list->activated(list->currentIndex());
        window->post(&MainScreenLogic::Lire_Click);
        ASSERT_TRUE(settle(*window));
    }
    void openForm() {
        form = std::make_unique<ProductionWindow>(*window, *config, fileDialog);
        form->load();
        form->show();
    }
    void print(const QString& order) {
        form->findChild<QLineEdit*>(QStringLiteral("Commande"))->setText(order);
        form->findChild<QPushButton*>(QStringLiteral("PrintReport"))->click();
        ASSERT_TRUE(settle(*window));
    }
};

TEST_F(ProductionWindowTest, TheDefaultStateIsTheFirstLanguagesInTheWordsOfTheWindow) {
    Sauve_EtatDefautSortie(*config, QStringLiteral("English"), 0, 1);
    Sauve_EtatDefautSortie(*config, QStringLiteral("Français"), 0, 0);
    chooseLanguage(QStringLiteral("Français"));
    openForm();
    fileDialog.takeProposedName = true;
    print(QStringLiteral("fr"));
    QStringList lines =
        QString::fromLatin1(readFile(dir.filePath(QStringLiteral("fr.log")))).split("\r\n");
    ASSERT_GT(lines.size(), 5);
    EXPECT_EQ(lines[4], QStringLiteral("N° de commande fr"));
    EXPECT_EQ(lines[lines.size() - 5], QStringLiteral("Valeurs par défaut"));
    EXPECT_EQ(lines[lines.size() - 4], QStringLiteral("Électrovanne bistable:Ouverte"));
    EXPECT_FALSE(form->isVisible()) << "a written report closes the form";
}

TEST_F(ProductionWindowTest, ALogThatCannotBeWrittenIsNamedInTheLanguageInUseAndTheFormStays) {
    const QString path = dir.filePath(QStringLiteral("no such folder/r.log"));
    fileDialog.answer = path;
    for (const auto& [language, start] :
         {std::pair{"English", "The report file "}, {"Français", "Le fichier de rapport "}}) {
        SCOPED_TRACE(language);
        chooseLanguage(QString::fromUtf8(language));
        openForm();
        rig->dialogs.clear();
        print(QStringLiteral("x"));
        ASSERT_EQ(rig->dialogs.boxes().size(), 1u);
        const auto& box = rig->dialogs.boxes()[0];
        EXPECT_TRUE(box.text.startsWith(QString::fromUtf8(start))) << box.text.toStdString();
        EXPECT_TRUE(box.text.contains(QDir::toNativeSeparators(path))) << box.text.toStdString();
        EXPECT_EQ(box.title, QStringLiteral("Quorvel"));
        EXPECT_EQ(box.style, MsgBox::Critical);
        EXPECT_TRUE(form->isVisible());
    }
}

} // namespace
} // namespace qv::test
