// The main window's logic for what the operator types and config.xml holds:
// entries checked at their limits, the keys that decide the start, and what
// reaches the controller.
#include "ConsoleTestSupport.h"

namespace qv::test {
namespace {

using ConsoleSettings = ConsoleFixture;

TEST_F(ConsoleSettings, UnknownKeysAreStoredWithTheirCaptionAndShownFromTheNextWalk) {
    view.add(QStringLiteral("LabelNouveau"), ConsoleView::Kind::Label);
    view[QStringLiteral("LabelNouveau")].text = QStringLiteral("Nouveau libellé");
    host.onConnection = [this] { leaveConnection(); };
    logic->Form_Load();
    // The start walks twice: the first stores the key, the second finds it.
    EXPECT_EQ(text("LabelNouveau"), QStringLiteral("Nouveau libellé"));
    EXPECT_TRUE(configText().contains(QStringLiteral("LabelNouveau")));
}

TEST_F(ConsoleSettings, ClearedCountersShowZeroEvenFromADeadDevice) {
    startWithDevice();
    view.setText(QStringLiteral("ctn_text_0"), QStringLiteral("4"));
    bus.unplug(id);
    dialogs.clear();
    logic->RazCtn_Click();
    EXPECT_EQ(text("ctn_text_0"), QStringLiteral("0"));
    EXPECT_EQ(dialogs.boxes().size(), 6u);
}

TEST_F(ConsoleSettings, TheDefaultStateComesFromTheFirstLanguage) {
    // English is the first language of the document: its row decides, even
    // while the window shows French.
    replaceInConfig(QStringLiteral("<Texte>Bistable valve</Texte><Index>0</Index><Valeur>0</"
                                   "Valeur><Etat>0</Etat>"),
                    QStringLiteral("<Texte>Bistable valve</Texte><Index>0</Index><Valeur>0</"
                                   "Valeur><Etat>1</Etat>"));
    startWithDevice();
    view.setText(QStringLiteral("ListeLangues"), QStringLiteral("Français"));
    logic->ListeLangues_Click();
    logic->Ecrire_Click();
    EXPECT_EQ(sim().eeprom(24), 1);
}

TEST_F(ConsoleSettings, SetTimeEndsWithItsBoxEvenWhenTheDeviceIsDead) {
    startWithDevice();
    bus.unplug(id);
    state.TimeOut = true;
    logic->SetTime_Click();
    const QStringList texts = boxTexts();
    ASSERT_GE(texts.size(), 3);
    EXPECT_EQ(texts.mid(0, texts.size() - 1),
              QStringList(texts.size() - 1, QStringLiteral("Quorvel not responding (Time Out)")));
    EXPECT_EQ(texts.last(), QStringLiteral("Date and time set"));
}

TEST_F(ConsoleSettings, TheManualDelayIsWrittenClampedOrNotAtAll) {
    struct Case {
        const char* typed;
        const char* shown;
        int low, high; // 7: nothing written
    };
    startWithDevice();
    for (const Case& c : {Case{"70000", "65535", 255, 255}, Case{"300", "300", 44, 1},
                          Case{"2", "2", 2, 0}, Case{"abc", "abc", 7, 7}}) {
        setEeprom(9, 7);
        setEeprom(10, 7);
        // Set as if typed before the box's own check ran.
        view[QStringLiteral("ValeurManualAction")].text = QString::fromUtf8(c.typed);
        logic->EcritDelaiManuel();
        EXPECT_EQ(text("ValeurManualAction"), QString::fromUtf8(c.shown)) << c.typed;
        EXPECT_EQ(sim().eeprom(9), c.low) << c.typed;
        EXPECT_EQ(sim().eeprom(10), c.high) << c.typed;
    }
    // The progress tick counts to five and stops.
    view.setProgress(QStringLiteral("ProgressBar2"), 0, 5, 3);
    for (int expected : {4, 5, 5}) {
        logic->test_Timer();
        EXPECT_EQ(view.progressValue(QStringLiteral("ProgressBar2")), expected);
    }
}

} // namespace
} // namespace qv::test
