#include "ConsoleTestSupport.h"

#include "config/DateHelpers.h"

namespace qv::test {
namespace {

using ConsoleWrite = ConsoleFixture;

const QStringList kLocked = {
    "Lire",    "Ecrire",  "Sortir",         "CommandCalibrationCLK", "Programmer",
    "Activer", "Continu", "ArretProgramme", "ValeurSortieLogique",   "SetTime"};

// The rule a new device holds, read onto the form and written back as is,
// and the manual delay.
const QStringList kRuleAndDelay = {"W26=60",  "W28=3",   "W31=10", "W29=2", "W32=3",
                                   "W27=255", "W30=255", "W9=60",  "W10=0"};

TEST_F(ConsoleWrite, EcrireSendsRestartsWaitsFiveTicksAndReportsTheEnd) {
    startWithDevice();
    Condition line;
    line.sortie = 3;
    line.Jour = 8;
    line.Heure = 6;
    conditions = Conditions();
    conditions.Add(line);
    view.setChecked(QStringLiteral("Continu"), true);
    logic->Continu_Click();
    bus.clearTrace();
    host.calls.clear();

    QStringList enabledDuringWait;
    host.onQueuedRun = [&] {
        if (host.queuedRuns == 1) {
            for (const QString& c : kLocked)
                if (view.isEnabled(c))
                    enabledDuringWait << c;
        }
        logic->test_Timer();
    };
    logic->Ecrire_Click();

    QStringList expected = QStringList{"F0", "01 option 255", "02", "03", "1F 9"} + kRuleAndDelay;
    const std::int32_t s = DateEnSecondes(oleDateFromDateTime(pcNow), -1.0);
    for (int i = 0; i < 4; ++i)
        expected << QStringLiteral("W%1=%2").arg(20 + i).arg((s >> (8 * i)) & 0xFF);
    // The restarting device does not answer, and the link tries three times.
    EXPECT_EQ(requests(), expected + QStringList(3, QStringLiteral("00")));

    EXPECT_EQ(host.queuedRuns, 5);
    EXPECT_TRUE(enabledDuringWait.isEmpty()) << enabledDuringWait.join(' ').toStdString();
    for (const QString& c : kLocked)
        EXPECT_TRUE(view.isEnabled(c)) << c.toStdString();
    EXPECT_FALSE(view.isVisible(QStringLiteral("ProgressBar2")));
    EXPECT_EQ(view.progressValue(QStringLiteral("ProgressBar2")), 5);
    EXPECT_EQ(host.calls, (QStringList{"stopTimerEntree", "startTest 1000", "stopTest"}));
    EXPECT_FALSE(view.isChecked(QStringLiteral("Continu")));
    EXPECT_EQ(boxTexts(), (QStringList{"The values stored in the device will be overwritten.",
                                       "Programming complete"}));
    EXPECT_EQ(dialogs.boxes().back().style, MsgBox::Exclamation);
    EXPECT_EQ(sim().restartCount(), 1);
    // The rule went to config.xml as well.
    EXPECT_TRUE(configText().contains(QStringLiteral("OF_MOIS_HIVER=\" 10\"")));
}

TEST_F(ConsoleWrite, CancelOrADeadDeviceStopTheWriteAtTheIdentity) {
    startWithDevice();
    view.setEnabled(QStringLiteral("Ecrire"), false);
    dialogs.answerNext(MsgBox::AnswerCancel);
    logic->Ecrire_Click();
    EXPECT_EQ(requests(), QStringList{QStringLiteral("F0")});
    EXPECT_EQ(boxTexts(),
              QStringList{QStringLiteral("The values stored in the device will be overwritten.")});
    EXPECT_TRUE(view.isEnabled(QStringLiteral("Ecrire")));
    EXPECT_EQ(sim().restartCount(), 0);

    dialogs.clear();
    bus.unplug(id);
    logic->Ecrire_Click();
    EXPECT_EQ(boxTexts(), QStringList{QStringLiteral("Quorvel not responding (Time Out)")});
    EXPECT_EQ(host.queuedRuns, 0);
    EXPECT_TRUE(view.isEnabled(QStringLiteral("Ecrire")));
}

TEST_F(ConsoleWrite, TheDefaultStateComesFromTheFirstLanguage) {
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

TEST_F(ConsoleWrite, SetTimeSetsClockRuleAndDelayOnlyAndEndsWithItsBoxEvenWhenDead) {
    startWithDevice();
    logic->SetTime_Click();
    EXPECT_EQ(requests(), QStringList{"01 option 0"} + kRuleAndDelay);
    EXPECT_EQ(boxTexts(), QStringList{QStringLiteral("Date and time set")});
    EXPECT_EQ(dialogs.boxes()[0].style, MsgBox::Exclamation);
    EXPECT_EQ(sim().restartCount(), 0);
    EXPECT_EQ(sim().lastTimeOption(), 0);

    dialogs.clear();
    bus.unplug(id);
    state.TimeOut = true;
    logic->SetTime_Click();
    const QStringList texts = boxTexts();
    ASSERT_GE(texts.size(), 3);
    EXPECT_EQ(texts.mid(0, texts.size() - 1),
              QStringList(texts.size() - 1, QStringLiteral("Quorvel not responding (Time Out)")));
    EXPECT_EQ(texts.last(), QStringLiteral("Date and time set"));
}

TEST_F(ConsoleWrite, TheManualDelayIsWrittenClampedOrNotAtAll) {
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
