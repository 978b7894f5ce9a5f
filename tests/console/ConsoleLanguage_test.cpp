#include "ConsoleTestSupport.h"

namespace qv::test {
namespace {

class ConsoleLanguage : public ConsoleFixture {
protected:
    void SetUp() override {
        ConsoleFixture::SetUp();
        host.onConnection = [this] { leaveConnection(); };
    }
    QStringList rowTexts(const char* control) const {
        QStringList texts;
        for (const auto& row : view.rows(QString::fromLatin1(control)))
            texts << row.text;
        return texts;
    }
};

TEST_F(ConsoleLanguage, TheStartShowsEnglishAndSwitchingTranslatesCaptionsAndLists) {
    logic->Form_Load();
    EXPECT_EQ(rowTexts("ListeLangues"), (QStringList{"English", "Français"}));
    EXPECT_EQ(text("ListeLangues"), QStringLiteral("English"));
    EXPECT_EQ(rowTexts("ValeurSortieLogique"), (QStringList{"Closed", "Open"}));
    // Each counter label has its own text; members of other arrays share one.
    QStringList captions;
    for (const char* c : {"Lire", "Continu", "NomSortie", "Labelctn_0", "Labelctn_1", "Labelctn_2",
                          "Labelctn_3", "Labelctn_4", "LabelMoisEte_0", "LabelMoisEte_1"})
        captions << text(c);
    EXPECT_EQ(captions, (QStringList{"Read parameters", "Continuous reading", "Bistable valve",
                                     "Power-on resets", "CRC errors", "Brown-out errors",
                                     "Watchdog errors", "Software resets", "Month", "Month"}));
    EXPECT_EQ(view[QStringLiteral("Lire")].toolTip, QString()); // help texts are off at the start

    view.setText(QStringLiteral("ListeLangues"), QStringLiteral("Français"));
    logic->ListeLangues_Click();
    captions.clear();
    for (const char* c : {"Lire", "Ecrire", "Continu", "Labelctn_0", "Labelctn_2", "NomSortie",
                          "Message", "Mois_0", "Mois_1"})
        captions << text(c);
    // The rule's lists come back in the new language, at their defaults.
    EXPECT_EQ(captions,
              (QStringList{"Lire les paramètres", "Écrire les paramètres", "Lecture en continu",
                           "Mises sous tension", "Baisses de tension", "Électrovanne bistable",
                           "ligne de validation", "Mars", "Octobre"}));
    EXPECT_EQ(rowTexts("ValeurSortieLogique").value(0), QStringLiteral("Fermée"));
    EXPECT_EQ(rowTexts("ListeSorties").value(0), QStringLiteral("Électrovanne bistable"));
    EXPECT_TRUE(configText().contains(QStringLiteral("<Langue>Français</Langue>")));
}

TEST_F(ConsoleLanguage, UnknownKeysAreStoredWithTheirCaptionAndShownFromTheNextWalk) {
    view.add(QStringLiteral("LabelNouveau"), ConsoleView::Kind::Label);
    view[QStringLiteral("LabelNouveau")].text = QStringLiteral("Nouveau libellé");
    logic->Form_Load();
    // The start walks twice: the first stores the key, the second finds it.
    EXPECT_EQ(text("LabelNouveau"), QStringLiteral("Nouveau libellé"));
    EXPECT_TRUE(configText().contains(QStringLiteral("LabelNouveau")));
}

TEST_F(ConsoleLanguage, HelpTextsComeAndGo) {
    logic->Form_Load();
    logic->ChangeAide(QStringLiteral("English"), true);
    EXPECT_EQ(view[QStringLiteral("Lire")].toolTip,
              QStringLiteral("Read all parameters from the device"));
    EXPECT_EQ(view[QStringLiteral("ListeLangues")].toolTip,
              QStringLiteral("Language of the application"));
    // Labels and frames get none.
    EXPECT_EQ(view[QStringLiteral("Version")].toolTip, QString());
    EXPECT_EQ(view[QStringLiteral("FrameMaintenance")].toolTip, QString());
    logic->BasculeAide(); // on
    logic->BasculeAide(); // off again
    EXPECT_EQ(view[QStringLiteral("Lire")].toolTip, QString());
}

} // namespace
} // namespace qv::test
