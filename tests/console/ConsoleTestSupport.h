#pragma once

#include "RecordingDialogs.h"
#include "SimulatedBus.h"
#include "config/ConfigDocument.h"
#include "console/ConsoleHost.h"
#include "console/MainScreenLogic.h"
#include "device/Device.h"
#include "link/FrameLink.h"
#include "programme/Conditions.h"
#include "view/MapConsoleView.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QStringList& list, std::ostream* out) {
    *out << '[' << list.join(QStringLiteral(" | ")).toStdString() << ']';
}

namespace qv::test {

// The window's side of the timers and the other windows, as calls.
class FakeHost : public ConsoleHost {
public:
    QStringList calls;
    bool timerEntree = false;
    int testInterval = 0; // 0: stopped
    // What the connection window does while it is open.
    std::function<void()> onConnection;

    void startTimerEntree() override {
        timerEntree = true;
        calls << QStringLiteral("startTimerEntree");
    }
    void stopTimerEntree() override {
        timerEntree = false;
        calls << QStringLiteral("stopTimerEntree");
    }
    bool timerEntreeRunning() const override { return timerEntree; }
    void startTest(int intervalMs) override {
        testInterval = intervalMs;
        calls << QStringLiteral("startTest %1").arg(intervalMs);
    }
    void stopTest() override {
        testInterval = 0;
        calls << QStringLiteral("stopTest");
    }
    // Each turn of the write cycle's wait; stands in for the ticks and
    // clicks that come meanwhile.
    int queuedRuns = 0;
    std::function<void()> onQueuedRun;
    bool runQueuedEvents() override {
        ++queuedRuns;
        if (onQueuedRun)
            onQueuedRun();
        return true;
    }
    void showConnection() override {
        calls << QStringLiteral("showConnection");
        if (onConnection)
            onConnection();
    }
    void showProgrammation() override { calls << QStringLiteral("showProgrammation"); }
    void showProduction() override { calls << QStringLiteral("showProduction"); }
    void showAbout() override { calls << QStringLiteral("showAbout"); }
    void showSplash() override { calls << QStringLiteral("showSplash"); }
    void UpdateFirmware(bool demande) override {
        calls << QStringLiteral("UpdateFirmware ") + (demande ? "true" : "false");
    }
    void closeApplication() override { calls << QStringLiteral("closeApplication"); }
};

// The main window over the simulated controller, the real link and a scratch
// copy of the shipped config.xml. The PC's clock stands still at `pcNow`
// and the bus's with it; the link's pauses are skipped.
class ConsoleFixture : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString configPath;
    SimulatedBus bus;
    RecordingDialogs dialogs;
    PublicState state;
    FrameLink link{bus, dialogs, state};
    std::unique_ptr<ConfigDocument> config;
    std::unique_ptr<Device> device;
    Conditions conditions;
    MapConsoleView view;
    FakeHost host;
    std::unique_ptr<MainScreenLogic> logic;
    QDateTime pcNow{QDate(2026, 3, 10), QTime(14, 30, 0)};
    qint64 busMs = 0;
    std::int32_t id = 0;

    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        configPath = dir.filePath(QStringLiteral("config.xml"));
        copyConfig();
        link.setPause([](int) {});
        bus.setSleep([](int) {});
        busMs = pcNow.toMSecsSinceEpoch();
        bus.setClock([this] { return busMs; });
        declareControls();
        makeLogic();
    }

    // A fresh window and config.xml, the bus as it is.
    void restart() {
        QFile::remove(configPath);
        copyConfig();
        view = MapConsoleView();
        declareControls();
        host = FakeHost();
        dialogs.clear();
        makeLogic();
    }

    void copyConfig() {
        ASSERT_TRUE(QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), configPath));
        QFile::setPermissions(configPath, QFile::ReadOwner | QFile::WriteOwner);
    }

    void makeLogic() {
        config = std::make_unique<ConfigDocument>(configPath);
        device = std::make_unique<Device>(link, [this] {
            return config->LitMessage(view.text(QStringLiteral("ListeLangues")),
                                      QStringLiteral("Quorvel Absent"), QString());
        });
        logic =
            std::make_unique<MainScreenLogic>(view, host, *device, *config, conditions, dialogs);
        logic->setClock([this] { return pcNow; });
        logic->setLocale(QLocale(QLocale::French, QLocale::France));
        host.onQueuedRun = [this] { logic->test_Timer(); };
    }

    // A controller as frmConnect would leave it chosen.
    std::int32_t plug(std::uint32_t serial = 90601234, int battery = 950) {
        SimDeviceConfig c;
        c.serial = serial;
        c.battery = battery;
        id = bus.addDevice(c);
        host.onConnection = [this] { chooseDevice(); };
        return id;
    }

    void chooseDevice() {
        state.UsbID = id;
        state.bUsbConnected = true;
        state.TimeOut = false;
        for (const char* c : {"Lire", "Ecrire", "SetTime", "mnuPLC", "nmuBootLoad"})
            view.setEnabled(QString::fromLatin1(c), true);
    }

    // The operator leaves the connection window with Cancel.
    void leaveConnection() {
        state.TimeOut = true;
        state.bUsbConnected = false;
        for (const char* c : {"Lire", "Ecrire", "SetTime"})
            view.setEnabled(QString::fromLatin1(c), false);
        view.setEnabled(QStringLiteral("mnuPLC"), true);
    }

    // Started with a device, the trace and boxes of the start cleared.
    void startWithDevice(std::uint32_t serial = 90601234) {
        plug(serial);
        logic->Form_Load();
        bus.clearTrace();
        dialogs.clear();
        host.calls.clear();
    }

    SimDevice sim() const { return *bus.device(id); }
    void setEeprom(int address, int value) {
        bus.modify(id, [&](SimDevice& d) { d.setEeprom(address, value); });
    }

    QString text(const char* control) const { return view.text(QString::fromLatin1(control)); }

    // The frames sent, one short name each: R<address> and W<address>=<value>
    // for memory, V<n> for live values, the command in hex for the others
    // (with the bytes that matter to the test).
    QStringList requests() const {
        static const QRegularExpression line(QStringLiteral("^\\S+ >((?: [0-9A-F]{2}){16})$"));
        QStringList names;
        for (const QString& l : bus.traceLines()) {
            const auto m = line.match(l);
            if (!m.hasMatch())
                continue;
            const QByteArray b = QByteArray::fromHex(m.captured(1).toLatin1());
            const auto at = [&](int i) { return static_cast<unsigned char>(b[i]); };
            const QMap<int, QString> forms = {
                {0xFE, QStringLiteral("R%1").arg(at(1) + 256 * at(2))},
                {0xFF, QStringLiteral("W%1=%2").arg(at(1)).arg(at(2))},
                {0xFC, QStringLiteral("V%1").arg(at(1))},
                {0xF3, QStringLiteral("F3 %1 %2").arg(at(1)).arg(at(2))},
                {0x01, QStringLiteral("01 option %1").arg(at(8))},
                {0x04, QStringLiteral("04 %1 %2 %3").arg(at(1)).arg(at(2)).arg(at(3))},
                {0x1F, QStringLiteral("1F %1").arg(at(1))}};
            names << forms.value(at(0),
                                 QString::number(at(0), 16).rightJustified(2, '0').toUpper());
        }
        return names;
    }

    QStringList boxTexts() const {
        QStringList texts;
        for (const auto& box : dialogs.boxes())
            texts << box.text;
        return texts;
    }

    void replaceInConfig(const QString& from, const QString& to) {
        QFile f(configPath);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        QString xml = QString::fromUtf8(f.readAll());
        f.close();
        ASSERT_TRUE(xml.contains(from));
        xml.replace(from, to);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
        f.write(xml.toUtf8());
    }

    QString configText() const {
        QFile f(configPath);
        if (!f.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(f.readAll());
    }

private:
    // The main window's controls. Captions come from config.xml at the
    // start; only the values typed in at design time are set here.
    void declareControls() {
        using K = ConsoleView::Kind;
        const auto declare = [&](K kind, std::initializer_list<const char*> names) {
            for (const char* name : names)
                view.add(QString::fromLatin1(name), kind);
        };
        declare(K::Button, {"Lire", "Ecrire", "Sortir", "SetTime", "Seuilbatterie", "RazCtn",
                            "CommandCalibrationCLK", "ForceBoot", "Programmer", "Activer"});
        declare(K::Label, {"Label16", "Label17", "Version", "NumeroSerie", "DateProgrammation",
                           "txtCurrentTime", "Batterie", "LabelVersion", "Label1", "Label2"});
        declare(K::Label, {"lblCurrentTime", "LabelBatterie", "VMIN", "VMAX", "Labeldelta",
                           "LabelManualActionDelayTime", "LabelsemaineEte_0", "LabelsemaineEte_1"});
        declare(K::Label, {"LabelMoisEte_0", "LabelMoisEte_1", "LabelJour_0", "LabelJour_1",
                           "Labelheure_0", "Labelheure_1", "LabelVBatMin", "LabelILS"});
        declare(K::Label, {"Labelctn_0", "Labelctn_1", "Labelctn_2", "Labelctn_3", "Labelctn_4",
                           "LabelCalibrationHorloge", "Label15", "NomSortie", "Message"});
        declare(K::Frame,
                {"FrameInformations", "FrameManualActionDelay", "DaylightFrame", "FrameWinter",
                 "FrameSummer", "FrameMaintenance", "FrameMonitoringSorties", "FrameMessage"});
        declare(K::ComboBox,
                {"ListeLangues", "Liste", "Semaine_0", "Semaine_1", "Mois_0", "Mois_1", "Jour_0",
                 "Jour_1", "Heure_0", "Heure_1", "ListeSorties", "ValeurSortieLogique"});
        declare(K::TextBox,
                {"ValeurManualAction", "DaylightAdjustment", "MinBat", "ctn_text_0", "ctn_text_1",
                 "ctn_text_2", "ctn_text_3", "ctn_text_4", "Ils", "ValeurHorloge_0",
                 "ValeurHorloge_1", "ValeurHorloge_2", "ValeurNumeroSerie"});
        declare(K::CheckBox,
                {"EnableDaylightSaving", "CheckClockSpeed", "Continu", "ArretProgramme"});
        declare(K::MenuEntry, {"MnuMode", "mnurapport", "nmuBootLoad", "mnuPLC", "MnuConnect",
                               "mnuAide_0", "mnuApropos_1"});
        declare(K::ProgressBar, {"ProgressBar2", "ProgressBar3"});
        declare(K::ListBox, {"ListeEntrees"});
        declare(K::DatePicker, {"Madate"});
        declare(K::Other, {"TimerEntree", "Timeur", "Com", "Image1", "test"});
        // Design-time texts: what the boxes hold and what the report reads
        // of a window never translated.
        for (const auto& [name, value] : {std::pair{"ValeurManualAction", "2"},
                                          {"DaylightAdjustment", "0"},
                                          {"MinBat", "7,2"},
                                          {"Message", "ligne de validation"},
                                          {"LabelVersion", "Version"},
                                          {"Label1", "N° Série"},
                                          {"Label2", "Date de programmation"},
                                          {"LabelBatterie", "Tension batterie (Volts)"},
                                          {"Labeldelta", "Daylight saving adjustment (mn)"},
                                          {"FrameSummer", "Summer"},
                                          {"FrameWinter", "Winter"}})
            view[QString::fromUtf8(name)].text = QString::fromUtf8(value);
        for (const char* value :
             {"Version", "NumeroSerie", "DateProgrammation", "txtCurrentTime", "Batterie"})
            view[QString::fromLatin1(value)].text = QStringLiteral("--"); // until a read
        view[QStringLiteral("Madate")].text = pcNow.date().toString(Qt::ISODate);
        view.setRows(QStringLiteral("ValeurSortieLogique"),
                     {{QStringLiteral("= 0"), 0}, {QStringLiteral("= 1"), 1}});
    }
};

} // namespace qv::test
