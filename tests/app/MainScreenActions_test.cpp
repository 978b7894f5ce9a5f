// The main window's buttons clicked as the operator clicks them, over the
// simulated controller: the frames each one sends, in order, the boxes it
// shows, the texts a full read leaves, and what the device holds afterwards.
// Also the daylight-saving rule read onto the combos, and a device lost in
// the middle of a full read.
#include "AppTestSupport.h"
#include "programme/DefaultStates.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDateEdit>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <functional>

namespace qv::test {
namespace {

// The moment every clock frame and date stamp here is taken from: Saturday
// 21 November 2026, 14:05:09 (day of the week 6 on the wire).
const QDateTime kNow(QDate(2026, 11, 21), QTime(14, 5, 9));
const qint64 kNowSeconds = QDateTime(kNow.date(), kNow.time(), Qt::UTC).toSecsSinceEpoch();
const char* const kRuleCombos[] = {"Semaine_0", "Jour_0", "Mois_0", "Heure_0",
                                   "Semaine_1", "Jour_1", "Mois_1", "Heure_1"};

// The window over the demonstration controller behind that bus, with a fixed
// clock and numbers written with a decimal point.
class ActionsFixture : public WindowFixture {
protected:
    QTimer watcher;

    void SetUp() override {
        make(true, nullptr, true);
        window->logic().setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
        window->logic().setClock([] { return kNow; });
        startWindow();
        ASSERT_EQ(text("NumeroSerie"), QStringLiteral("90601234"));
        widget<QDateEdit>("Madate")->setDate(kNow.date());
        // The wait after a restart: ticks of 10 ms here instead of a second.
        QObject::connect(&watcher, &QTimer::timeout, [this] {
            if (window->testTimer().isActive() && window->testTimer().interval() > 10)
                window->testTimer().setInterval(10);
        });
        watcher.start(2);
    }
    template <typename W> W* widget(const char* name) {
        auto* w = window->findChild<W*>(QString::fromLatin1(name));
        EXPECT_NE(w, nullptr) << name;
        return w;
    }
    // The operator's click: the mouse on a push button, a click on a box.
    void press(const char* name) {
        auto* button = widget<QAbstractButton>(name);
        ASSERT_TRUE(button->isVisible() && button->isEnabled()) << name;
        if (qobject_cast<QPushButton*>(button))
            QTest::mouseClick(button, Qt::LeftButton);
        else
            button->click();
        // The click is a job of the device thread: its end is waited for.
        ASSERT_TRUE(settle(*window)) << name;
    }
    void type(const char* name, const QString& value) { widget<QLineEdit>(name)->setText(value); }
    // Summer: second week, Wednesday, May, 1 h; winter: last week, Sunday,
    // November, 4 h; 30 minutes. A manual delay of 300 s.
    void setKnownRule() {
        widget<QAbstractButton>("EnableDaylightSaving")->setChecked(true);
        type("DaylightAdjustment", QStringLiteral("30"));
        const double values[] = {2, 3, 5, 1, 5, 7, 11, 4};
        for (int i = 0; i < 8; ++i) {
            auto* list = widget<QComboBox>(kRuleCombos[i]);
            ASSERT_GE(list->findData(values[i]), 0) << kRuleCombos[i];
            list->setCurrentIndex(list->findData(values[i]));
        }
        type("ValeurManualAction", QStringLiteral("300"));
    }
    // The frames sent since the trace was cleared, without time or arrow.
    QStringList frames() const {
        QStringList sent;
        for (const QString& line : bus->traceLines())
            if (const auto at = line.indexOf(QLatin1String(" > ")); at >= 0)
                sent << line.mid(at + 3);
        return sent;
    }
    SimDevice sim() const { return *bus->device(quorvelId()); }
};

// "FF <address> <value>": one byte written to EEPROM; `writes` gives the
// `count` bytes of `value`, low byte first, from `address` on.
QString w(int address, qint64 value) {
    return QString::asprintf("FF %02X %02X", address, static_cast<int>(value & 0xFF));
}
QStringList writes(int address, qint64 value, int count) {
    QStringList frames;
    for (int i = 0; i < count; ++i)
        frames << w(address + i, value >> (8 * i));
    return frames;
}

// The rule of setKnownRule, in the order it goes out: 26, 28, 31, 29, 32, 27, 30.
const QStringList kRuleOn = {w(26, 30), w(28, 5),    w(31, 11),  w(29, 1),
                             w(32, 4),  w(27, 0x23), w(30, 0x57)};
const QStringList kRuleOff = {w(26, 30), w(28, 5),    w(31, 11),  w(29, 1),
                              w(32, 4),  w(27, 0xFF), w(30, 0xFF)};
const QString kRestart = QStringLiteral("00( 00){13}");
const QStringList kRestarts = {kRestart, kRestart, kRestart}; // the device stays silent
const QString kOverwrite = QStringLiteral("The values stored in the device will be overwritten.");
QStringList writeFrames(int defaultState = 0) {
    return QStringList{QStringLiteral("F0"), QStringLiteral("01 06 0E 05 09 15 0B 1A FF"),
                       QString::asprintf("02 00 %02X", defaultState),
                       // The programme below: a plain line, a day line, a range line.
                       QStringLiteral("03 03 00 00 00 00 00 00 01 2C 00"),
                       QStringLiteral("03 03 01 00 00 00 00 00 00 00 03"),
                       QStringLiteral("1F 09 03 06 1E 00"),
                       QStringLiteral("03 03 02 00 00 00 00 00 00 00 0B"),
                       QStringLiteral("1F 09 0B 07 00 00"), QStringLiteral("1F 0A 0C 08 00 00")} +
           kRuleOn + writes(9, 300, 2) + writes(20, kNowSeconds, 4) + kRestarts;
}
const QStringList kWriteFrames = writeFrames();
// "FE <low> <high>": reads of EEPROM from `from` to `to`.
QStringList reads(int from, int to) {
    QStringList frames;
    for (int a = from; a <= to; ++a)
        frames << QString::asprintf("FE %02X %02X", a & 0xFF, a >> 8);
    return frames;
}
// The full read, in its order: identity, counters, the rule, the delay and
// the threshold, the live values, the output, the programming date twice.
const QStringList kReadFrames =
    reads(16, 19) + reads(39, 39) + QStringList{"F0"} + reads(33, 36) + QStringList{"F3 00 00"} +
    reads(40, 44) + reads(26, 26) + reads(28, 28) + reads(31, 31) + reads(29, 29) + reads(32, 32) +
    reads(27, 27) + reads(30, 30) + reads(9, 10) + reads(45, 46) + QStringList{"FC 00", "FC 02"} +
    reads(48, 48) + reads(20, 23) + QStringList{"F0"} + reads(20, 23) + QStringList{"F1"};
// A full read of a device without a programme that holds these raw values:
// battery, the manual delay's two bytes and the threshold's two.
std::function<void(SimDevice&)> raw(int battery, int delayLow, int delayHigh, int thresholdLow,
                                    int thresholdHigh) {
    return [=](SimDevice& d) {
        d.setEeprom(48, 255);
        d.setBattery(battery);
        for (const auto& [address, value] :
             {std::pair{9, delayLow}, {10, delayHigh}, {45, thresholdLow}, {46, thresholdHigh}})
            d.setEeprom(address, value);
    };
}
// `count` boxes of a silent controller, then `last` when given.
std::vector<QString> absent(int count, const QString& last = {}) {
    std::vector<QString> texts(static_cast<size_t>(count),
                               QStringLiteral("Quorvel not responding (Time Out)"));
    if (!last.isEmpty())
        texts.push_back(last);
    return texts;
}
const QString kSetClock = QStringLiteral("01 06 0E 05 09 15 0B 1A 00");

// One click of one button: how the window is set before it, every frame it
// sends (patterns, in order), every box it shows (and the last one's style).
// Afterwards the device holds every byte that a literal "FF aa vv" frame
// wrote, the ten controls locked by a write are enabled, the wait bar is
// hidden, and the device restarted once exactly when a restart frame went.
struct Action {
    Action(const char* n, const char* b, QStringList f, std::vector<QString> x = {}, int s = 0)
        : name(n), button(b), frames(std::move(f)), boxes(std::move(x)), style(s) {}
    Action& in(const QString& l) { return language = l, *this; }
    Action& type(const char* box, const QString& t) { return typed.emplace_back(box, t), *this; }
    Action& tick(const char* box, bool on) { return ticked.emplace_back(box, on), *this; }
    Action& output(int row) { return outputRow = row, *this; }
    Action& answer(int a) { return firstAnswer = a, *this; }
    Action& then(std::function<bool(const SimDevice&)> h) { return holds = std::move(h), *this; }
    Action& waitingFiveTicks() { return waits = true, *this; }
    Action& holding(std::function<void(SimDevice&)> s) { return before = std::move(s), *this; }
    Action& shows(const char* control, const char* t) {
        return shown.emplace_back(control, t), *this;
    }
    Action& unplugged() { return dead = true, *this; }
    // The output's default state in config.xml under English and French.
    Action& defaultStates(int english, int french) { return states = {english, french}, *this; }

    const char* name;
    const char* button;
    QStringList frames;
    std::vector<QString> boxes;
    int style;
    QString language; // empty: English
    std::vector<std::pair<const char*, QString>> typed;
    std::vector<std::pair<const char*, bool>> ticked; // set quietly
    int outputRow = -1;                               // of ValeurSortieLogique
    int firstAnswer = 0;                              // 0: OK
    std::function<bool(const SimDevice&)> holds;
    bool waits = false;
    std::function<void(SimDevice&)> before;
    std::vector<std::pair<const char*, const char*>> shown;
    bool dead = false;
    std::optional<std::pair<int, int>> states;
};
void PrintTo(const Action& a, std::ostream* out) {
    *out << a.name;
}

class Button : public ActionsFixture, public ::testing::WithParamInterface<Action> {};

TEST_P(Button, SendsItsFramesAndShowsItsBoxes) {
    const Action& a = GetParam();
    Condition plain, day, range;
    plain.sortie = day.sortie = range.sortie = 3;
    plain.Temporisation = 300;
    day.Jour = 3, day.Heure = 6, day.Minute = 30;
    range.Jour = JourPlage, range.Heure = 7, range.PlageFinJour = 12, range.PlageFinHeure = 8;
    conditions = Conditions();
    for (const Condition* c : {&plain, &day, &range})
        conditions.Add(*c);
    if (auto* list = widget<QComboBox>("ListeLangues"); !a.language.isEmpty()) {
        list->setCurrentIndex(list->findText(a.language)); // as the operator picks it
        Q_EMIT list->activated(list->currentIndex());
        ASSERT_TRUE(settle(*window));
    }
    setKnownRule();
    for (const auto& [box, value] : a.typed)
        type(box, value);
    for (const auto& [box, on] : a.ticked)
        widget<QAbstractButton>(box)->setChecked(on);
    if (a.outputRow >= 0)
        widget<QComboBox>("ValeurSortieLogique")->setCurrentIndex(a.outputRow);
    if (a.firstAnswer)
        rig->dialogs.answerNext(a.firstAnswer);
    if (a.before)
        bus->modify(quorvelId(), a.before);
    if (a.states) {
        Sauve_EtatDefautSortie(*config, QStringLiteral("English"), 0, a.states->first);
        Sauve_EtatDefautSortie(*config, QStringLiteral("Français"), 0, a.states->second);
    }
    if (a.dead)
        bus->unplug(quorvelId());
    std::vector<int> progress;
    QObject::connect(widget<QProgressBar>("ProgressBar2"), &QProgressBar::valueChanged, [&](int v) {
        if (v == 0)
            progress.clear();
        else
            progress.push_back(v);
    });
    const int restarts = sim().restartCount();
    bus->clearTrace();
    rig->dialogs.clear();

    press(a.button);

    const QStringList sent = frames();
    for (int i = 0; i < std::max(sent.size(), a.frames.size()); ++i) {
        const QString got = i < sent.size() ? sent[i] : QStringLiteral("<nothing>");
        const QString want = i < a.frames.size() ? a.frames[i] : QStringLiteral("<nothing>");
        EXPECT_TRUE(QRegularExpression(QLatin1Char('^') + want).match(got).hasMatch())
            << "frame " << i << ": " << got.toStdString() << " is not " << want.toStdString();
    }
    std::vector<QString> shown;
    for (const auto& box : rig->dialogs.boxes())
        shown.push_back(box.text);
    EXPECT_EQ(shown, a.boxes);
    if (!a.boxes.empty()) {
        EXPECT_EQ(rig->dialogs.boxes().back().style, a.style);
    }
    const SimDevice device = sim();
    // A literal "FF aa vv" among the frames is a byte the device now holds.
    for (const QString& frame : a.frames.filter(QRegularExpression(QStringLiteral("^FF .. ..$"))))
        EXPECT_EQ(device.eeprom(frame.mid(3, 2).toInt(nullptr, 16)),
                  frame.mid(6, 2).toInt(nullptr, 16))
            << frame.toStdString();
    if (a.holds) {
        EXPECT_TRUE(a.holds(device));
    }
    for (const auto& [control, shownText] : a.shown)
        EXPECT_EQ(text(control), QString::fromUtf8(shownText)) << control;
    EXPECT_EQ(device.restartCount() - restarts, a.frames.contains(kRestart) ? 1 : 0);
    if (a.waits) {
        EXPECT_EQ(progress, (std::vector<int>{1, 2, 3, 4, 5})) << "one step a tick, up to five";
    }
    EXPECT_FALSE(widget<QProgressBar>("ProgressBar2")->isVisible());
    for (const char* c :
         {"Lire", "Ecrire", "Sortir", "SetTime", "Activer", "Programmer", "CommandCalibrationCLK",
          "Continu", "ArretProgramme", "ValeurSortieLogique"})
        EXPECT_TRUE(window->view().isEnabled(QString::fromLatin1(c))) << c;
}

const Action kActions[] = {
    Action("EcrireInEnglish", "Ecrire", kWriteFrames,
           {kOverwrite, QStringLiteral("Programming complete")}, MsgBox::Exclamation)
        .waitingFiveTicks(),
    Action("EcrireInFrench", "Ecrire", kWriteFrames,
           {QStringLiteral("Les valeurs enregistrées dans l'appareil seront écrasées."),
            QStringLiteral("Programmation terminée")},
           MsgBox::Exclamation)
        .in(QStringLiteral("Français"))
        .waitingFiveTicks(),
    Action("EcrireTakesTheDefaultStateOfTheFirstLanguage", "Ecrire", writeFrames(1),
           {QStringLiteral("Les valeurs enregistrées dans l'appareil seront écrasées."),
            QStringLiteral("Programmation terminée")},
           MsgBox::Exclamation)
        .in(QStringLiteral("Français"))
        .defaultStates(1, 0)
        .then([](const SimDevice& d) { return d.eeprom(24) == 1; }),
    Action("EcrireCancelled", "Ecrire", {QStringLiteral("F0")}, {kOverwrite}, MsgBox::OkCancel)
        .answer(MsgBox::AnswerCancel),
    Action("SetTime", "SetTime", QStringList{kSetClock} + kRuleOn + writes(9, 300, 2),
           {QStringLiteral("Date and time set")}, MsgBox::Exclamation),
    Action("SetTimeWithTheRuleOff", "SetTime",
           QStringList{kSetClock} + kRuleOff + writes(9, 300, 2),
           {QStringLiteral("Date and time set")}, MsgBox::Exclamation)
        .tick("EnableDaylightSaving", false),
    Action("SetTimeClampsTheManualDelay", "SetTime",
           QStringList{kSetClock} + kRuleOn + writes(9, 65535, 2),
           {QStringLiteral("Date and time set")}, MsgBox::Exclamation)
        .type("ValeurManualAction", QStringLiteral("70000"))
        .shows("ValeurManualAction", "65535"),
    Action("SetTimeOnADeadDeviceEndsWithItsBox", "SetTime", {},
           absent(10, QStringLiteral("Date and time set")), MsgBox::Exclamation)
        .unplugged(),
    Action("ActiverOpen", "Activer", {QStringLiteral("04 03 01 00( 00){10} ")}).output(1),
    Action("ActiverClosedWithTheProgrammeStopped", "Activer",
           {QStringLiteral("04 03 00 01( 00){10} ")})
        .output(0)
        .tick("ArretProgramme", true),
    Action("ArretProgrammeTicked", "ArretProgramme", {QStringLiteral("04 FF FF 01( 00){10} ")})
        .then([](const SimDevice& d) { return d.programmeStopped(); }),
    Action("ArretProgrammeUnticked", "ArretProgramme", {QStringLiteral("04 FF FF 00( 00){10} ")})
        .tick("ArretProgramme", true)
        .then([](const SimDevice& d) { return !d.programmeStopped(); }),
    Action("ProgrammerASerialNumber", "Programmer", writes(16, 90601999, 4) + kRestarts)
        .type("ValeurNumeroSerie", QStringLiteral("90601999"))
        .then([](const SimDevice& d) { return d.serialNumber() == 90601999U; }),
    Action("ProgrammerRefusesAnEntryAndStillRestarts", "Programmer", kRestarts,
           {QStringLiteral("Le n° de série n'est pas valide")}, MsgBox::OkOnly)
        .type("ValeurNumeroSerie", QStringLiteral("abc"))
        .then([](const SimDevice& d) { return d.serialNumber() == 90601234U; }),
    // The serial is a signed 32-bit number written as its four bytes.
    Action("ProgrammerTheLargestSerial", "Programmer", writes(16, 2147483647, 4) + kRestarts)
        .type("ValeurNumeroSerie", QStringLiteral("2147483647"))
        .then([](const SimDevice& d) { return d.serialNumber() == 2147483647U; }),
    Action("ProgrammerMinusOneIsAllOnes", "Programmer", writes(16, -1, 4) + kRestarts)
        .type("ValeurNumeroSerie", QStringLiteral("-1"))
        .then([](const SimDevice& d) { return d.serialNumber() == 0xFFFFFFFFU; }),
    Action("ProgrammerRefusesMoreThan32Bits", "Programmer", kRestarts,
           {QStringLiteral("Le n° de série est trop grand (> 32 bits)")}, MsgBox::OkOnly)
        .type("ValeurNumeroSerie", QStringLiteral("2147483648"))
        .then([](const SimDevice& d) { return d.serialNumber() == 90601234U; }),
    // 7.2 V is 761.472 converter steps.
    Action("SeuilbatterieWritesTheRawThreshold", "Seuilbatterie", writes(45, 761, 2))
        .type("MinBat", QStringLiteral("7.2")),
    Action("SeuilbatterieZero", "Seuilbatterie", writes(45, 0, 2))
        .type("MinBat", QStringLiteral("0")),
    Action("SeuilbatterieAboveTheConverter", "Seuilbatterie", writes(45, 1026, 2))
        .type("MinBat", QStringLiteral("9.7")),
    Action("SeuilbatterieRefusesABadEntry", "Seuilbatterie", {},
           {QStringLiteral("Invalid entry: please type a number")}, MsgBox::Exclamation)
        .type("MinBat", QStringLiteral("x")),
    Action("RazCtnClearsTheCounters", "RazCtn",
           writes(40, 0, 5) + QStringList{QStringLiteral("FB 00 00 00 01")}),
    Action("RazCtnOnADeadDeviceStillShowsZero", "RazCtn", {}, absent(6))
        .unplugged()
        .shows("ctn_text_0", "0"),
    Action("Lire", "Lire", kReadFrames)
        .holding([](SimDevice& d) {
            raw(950, 0x2C, 0x01, 0xE4, 0x02)(d);
            for (int i = 0; i < 5; ++i)
                d.setEeprom(40 + i, 11 * (i + 1));
            d.setEeprom(27, 255); // the rule off
            d.setOutputState(1);
            d.setIlsInput(5);
        })
        .shows("ValeurNumeroSerie", "90601234")
        .shows("Version", "(12) 2.70")
        .shows("FrameMaintenance", "Maintenance (Bootloader V103)")
        .shows("Batterie", "9.0") // 950 / 105.76
        .shows("ctn_text_0", "11")
        .shows("ctn_text_4", "55")
        .shows("Ils", "5")
        .shows("ValeurSortieLogique", "Open")
        .shows("NomSortie", "Bistable valve 1")
        .shows("ValeurHorloge_2", "32.0000"),
    // A new device's threshold word 740 is 6.997 V, shown through "##.##".
    Action("LireRawValuesAtTheirLimits", "Lire", kReadFrames)
        .holding(raw(0, 0xFF, 0xFF, 0xE4, 0x02))
        .shows("Batterie", "0.0")
        .shows("ValeurManualAction", "65535")
        .shows("MinBat", "7."),
    Action("LireRawValuesBeyondTheConverter", "Lire", kReadFrames)
        .holding(raw(2000, 0x3C, 0x00, 79, 0))
        .shows("Batterie", "18.9")
        .shows("ValeurManualAction", "60")
        .shows("MinBat", ".75"),
    Action("ForceBootAnsweredNoStillWritesTheRequest", "ForceBoot", {w(255, 255)},
           {QStringLiteral("Restart the device in its bootloader. Are you sure?")},
           MsgBox::YesNo | MsgBox::Question)
        .answer(MsgBox::AnswerNo)
        .then([](const SimDevice& d) { return d.inBootloader(); }),
    Action("CommandCalibrationCLKFromTheFrequency", "CommandCalibrationCLK", writes(33, -321, 4))
        .type("ValeurHorloge_2", QStringLiteral("32.1")),
    Action("CheckClockSpeedTicked", "CheckClockSpeed", {QStringLiteral("F3 01 01( 00){11} ")})
        .then([](const SimDevice& d) { return d.fastClock(); }),
    Action("CheckClockSpeedUnticked", "CheckClockSpeed", {QStringLiteral("F3 01 00( 00){11} ")})
        .tick("CheckClockSpeed", true)
        .then([](const SimDevice& d) { return !d.fastClock(); }),
};

INSTANTIATE_TEST_SUITE_P(MainScreenActions, Button, ::testing::ValuesIn(kActions),
                         [](const auto& info) { return std::string(info.param.name); });

class MainScreenActionsRead : public ActionsFixture {};

TEST_F(MainScreenActionsRead, LireShowsTheDevicesRuleOnTheCombos) {
    struct Case {
        std::vector<int> bytes; // 26..32
        bool enabled;
        QStringList shown; // in the order of kRuleCombos
    } cases[] = {
        {{45, 0x23, 4, 1, 0x51, 11, 5},
         true,
         QStringLiteral("Second week,Wednesday,April,1,Last week,Monday,November,5")
             .split(QLatin1Char(','))},
        // Off: day 15 and week 16 & 15 = 0 have no rows, which stay as they were.
        {{0, 255, 6, 22, 0x14, 1, 0},
         false,
         QStringLiteral("Second week,Wednesday,June,22,First week,Thursday,January,0")
             .split(QLatin1Char(','))},
    };
    for (const Case& c : cases) {
        bus->modify(quorvelId(), [&](SimDevice& d) {
            for (int i = 0; i < 7; ++i)
                d.setEeprom(26 + i, c.bytes[static_cast<size_t>(i)]);
        });
        press("Lire");
        EXPECT_EQ(text("DaylightAdjustment"), QString::number(c.bytes[0]));
        EXPECT_EQ(widget<QAbstractButton>("EnableDaylightSaving")->isChecked(), c.enabled);
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(widget<QComboBox>(kRuleCombos[i])->currentText(), c.shown[i])
                << kRuleCombos[i] << " after " << c.bytes[1];
    }
    EXPECT_TRUE(rig->dialogs.boxes().empty());
}

TEST_F(MainScreenActionsRead, ADeviceLostInTheMiddleOfAReadLeavesWhatWasReadBeforeIt) {
    // Where the counters begin in a healthy read: the device dies there.
    bus->clearTrace();
    press("Lire");
    const int counters = static_cast<int>(frames().indexOf(QRegularExpression("FE 28 00.*")));
    ASSERT_GT(counters, 4);

    bus->modify(quorvelId(), [](SimDevice& d) {
        d.setSerialNumber(90605555);
        d.setEeprom(40, 9);
    });
    rig->dialogs.clear();
    bus->unplugAfter(quorvelId(), counters);
    QElapsedTimer clock;
    clock.start();
    press("Lire");
    EXPECT_LT(clock.elapsed(), 30000);

    EXPECT_EQ(text("NumeroSerie"), QStringLiteral("90605555")) << "read before the loss";
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(window->view().text(QStringLiteral("ctn_text_%1").arg(i)), QStringLiteral("0"));
    // One box for each exchange that failed: five counters, seven bytes of
    // the rule, two of the delay, two of the threshold; then the read stops.
    EXPECT_EQ(rig->dialogs.boxes().size(), 16U);
    for (const auto& box : rig->dialogs.boxes())
        EXPECT_EQ(box.text, QStringLiteral("Quorvel not responding (Time Out)"));
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);

    // Plugged back in, the same button reads everything again.
    bus->replug(quorvelId());
    rig->dialogs.clear();
    press("Lire");
    EXPECT_EQ(text("ctn_text_0"), QStringLiteral("9"));
    EXPECT_TRUE(rig->dialogs.boxes().empty());
}

} // namespace
} // namespace qv::test
