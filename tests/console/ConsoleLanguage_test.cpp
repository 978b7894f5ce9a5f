#include "ConsoleTestSupport.h"

namespace qv::test {
namespace {

using ConsoleLanguage = ConsoleFixture;

TEST_F(ConsoleLanguage, TheStartFillsTheListAndShowsEnglish) {
    host.onConnection = [this] { leaveConnection(); };
    logic->Form_Load();
    const auto rows = view.rows(QStringLiteral("ListeLangues"));
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0].text, QStringLiteral("English"));
    EXPECT_EQ(rows[1].text, QStringLiteral("Français"));
    EXPECT_EQ(text("ListeLangues"), QStringLiteral("English"));
    EXPECT_EQ(text("Lire"), QStringLiteral("Read parameters"));
    EXPECT_EQ(text("Continu"), QStringLiteral("Continuous reading"));
    EXPECT_EQ(text("NomSortie"), QStringLiteral("Bistable valve"));
    EXPECT_EQ(text("Activer"), QStringLiteral("Activate"));
    EXPECT_EQ(view.rows(QStringLiteral("ValeurSortieLogique"))[0].text, QStringLiteral("Closed"));
    EXPECT_EQ(view.rows(QStringLiteral("ValeurSortieLogique"))[1].text, QStringLiteral("Open"));
    // Help texts are off at the start.
    EXPECT_EQ(view[QStringLiteral("Lire")].toolTip, QString());
}

TEST_F(ConsoleLanguage, SwitchingTranslatesCaptionsListsAndCounterLabels) {
    host.onConnection = [this] { leaveConnection(); };
    logic->Form_Load();
    view.setText(QStringLiteral("ListeLangues"), QStringLiteral("Français"));
    logic->ListeLangues_Click();

    struct Case {
        const char* control;
        const char* caption;
    };
    for (const Case& c :
         {Case{"Lire", "Lire les paramètres"}, Case{"Ecrire", "Écrire les paramètres"},
          Case{"Continu", "Lecture en continu"}, Case{"Labelctn_0", "Mises sous tension"},
          Case{"Labelctn_2", "Baisses de tension"}, Case{"NomSortie", "Électrovanne bistable"},
          Case{"Activer", "Activer"}, Case{"Message", "ligne de validation"}}) {
        SCOPED_TRACE(c.control);
        EXPECT_EQ(text(c.control), QString::fromUtf8(c.caption));
    }
    EXPECT_EQ(view.rows(QStringLiteral("ValeurSortieLogique"))[0].text, QStringLiteral("Fermée"));
    EXPECT_EQ(view.rows(QStringLiteral("ListeSorties"))[0].text,
              QStringLiteral("Électrovanne bistable"));
    // The rule's lists come back in the new language, at their defaults.
    EXPECT_EQ(text("Mois_0"), QStringLiteral("Mars"));
    EXPECT_EQ(text("Mois_1"), QStringLiteral("Octobre"));
    EXPECT_TRUE(configText().contains(QStringLiteral("<Langue>Français</Langue>")));
}

TEST_F(ConsoleLanguage, EachCounterLabelHasItsOwnTextNotTheArrays) {
    host.onConnection = [this] { leaveConnection(); };
    logic->Form_Load();
    QStringList captions;
    for (int i = 0; i < 5; ++i)
        captions << view.text(QStringLiteral("Labelctn_%1").arg(i));
    EXPECT_EQ(captions,
              (QStringList{QStringLiteral("Power-on resets"), QStringLiteral("CRC errors"),
                           QStringLiteral("Brown-out errors"), QStringLiteral("Watchdog errors"),
                           QStringLiteral("Software resets")}));
    // Members of other arrays share their one text.
    EXPECT_EQ(text("LabelMoisEte_0"), QStringLiteral("Month"));
    EXPECT_EQ(text("LabelMoisEte_1"), QStringLiteral("Month"));
}

TEST_F(ConsoleLanguage, UnknownKeysAreStoredWithTheirCaptionAndShownFromTheNextWalk) {
    view.add(QStringLiteral("LabelNouveau"), ConsoleView::Kind::Label);
    view[QStringLiteral("LabelNouveau")].text = QStringLiteral("Nouveau libellé");
    host.onConnection = [this] { leaveConnection(); };
    logic->Form_Load();
    // The start walks twice: the first stores the key, the second finds it.
    EXPECT_EQ(text("LabelNouveau"), QStringLiteral("Nouveau libellé"));
    EXPECT_TRUE(configText().contains(QStringLiteral("LabelNouveau")));
}

TEST_F(ConsoleLanguage, HelpTextsComeAndGo) {
    host.onConnection = [this] { leaveConnection(); };
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
    EXPECT_EQ(view[QStringLiteral("ListeLangues")].toolTip, QString());
}

} // namespace
} // namespace qv::test
