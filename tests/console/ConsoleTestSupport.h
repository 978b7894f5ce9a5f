#pragma once

#include "FakeConsoleView.h"
#include "RecordingDialogs.h"
#include "SimulatedBus.h"
#include "config/ConfigDocument.h"
#include "console/ConsoleHost.h"
#include "console/MainScreenLogic.h"
#include "device/Device.h"
#include "link/FrameLink.h"
#include "programme/Conditions.h"

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
        calls << QStringLiteral("UpdateFirmware %1").arg(demande ? "true" : "false");
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
    FakeConsoleView view;
    FakeHost host;
    std::unique_ptr<MainScreenLogic> logic;
    QDateTime pcNow{QDate(2026, 3, 10), QTime(14, 30, 0)};
    qint64 busMs = 0;
    std::int32_t id = 0;

    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        configPath = dir.filePath(QStringLiteral("config.xml"));
        ASSERT_TRUE(QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), configPath));
        QFile::setPermissions(configPath, QFile::ReadOwner | QFile::WriteOwner);
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
        ASSERT_TRUE(QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), configPath));
        QFile::setPermissions(configPath, QFile::ReadOwner | QFile::WriteOwner);
        view = FakeConsoleView();
        declareControls();
        host = FakeHost();
        dialogs.clear();
        makeLogic();
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
        view.onYield = [this] { logic->test_Timer(); };
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
            switch (at(0)) {
            case 0xFE:
                names << QStringLiteral("R%1").arg(at(1) + 256 * at(2));
                break;
            case 0xFF:
                names << QStringLiteral("W%1=%2").arg(at(1)).arg(at(2));
                break;
            case 0xFC:
                names << QStringLiteral("V%1").arg(at(1));
                break;
            case 0xF3:
                names << QStringLiteral("F3 %1 %2").arg(at(1)).arg(at(2));
                break;
            case 0x01:
                names << QStringLiteral("01 option %1").arg(at(8));
                break;
            case 0x04:
                names << QStringLiteral("04 %1 %2 %3").arg(at(1)).arg(at(2)).arg(at(3));
                break;
            case 0x1F:
                names << QStringLiteral("1F %1").arg(at(1));
                break;
            default:
                names << QStringLiteral("%1").arg(at(0), 2, 16, QLatin1Char('0')).toUpper();
            }
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
    void declareControls() {
        using K = ConsoleView::Kind;
        const auto add = [&](const QString& name, K kind, const QString& caption = QString()) {
            view.add(name, kind);
            view[name].text = caption;
        };
        const auto array = [&](const QString& name, int count, K kind, const QString& caption) {
            for (int i = 0; i < count; ++i)
                add(name + QLatin1Char('_') + QString::number(i), kind, caption);
        };
        add(QStringLiteral("Lire"), K::Button, QStringLiteral("Lire les paramètres"));
        add(QStringLiteral("Ecrire"), K::Button, QStringLiteral("Ecrire les paramètres"));
        add(QStringLiteral("Sortir"), K::Button, QStringLiteral("Quitter l'application"));
        add(QStringLiteral("ProgressBar2"), K::ProgressBar);
        add(QStringLiteral("ListeLangues"), K::ComboBox);
        add(QStringLiteral("TimerEntree"), K::Other);
        add(QStringLiteral("Timeur"), K::Other);
        add(QStringLiteral("Com"), K::Other);
        add(QStringLiteral("Madate"), K::DatePicker, pcNow.date().toString(Qt::ISODate));
        add(QStringLiteral("Liste"), K::ComboBox);
        add(QStringLiteral("Label16"), K::Label, QStringLiteral("Page"));
        add(QStringLiteral("Label17"), K::Label, QStringLiteral("Buffer"));
        add(QStringLiteral("Image1"), K::Other);

        add(QStringLiteral("FrameInformations"), K::Frame, QStringLiteral("Informations"));
        for (const char* value :
             {"Version", "NumeroSerie", "DateProgrammation", "txtCurrentTime", "Batterie"})
            add(QString::fromLatin1(value), K::Label, QStringLiteral("--"));
        add(QStringLiteral("LabelVersion"), K::Label, QStringLiteral("Version"));
        add(QStringLiteral("Label1"), K::Label, QStringLiteral("N° Série"));
        add(QStringLiteral("Label2"), K::Label, QStringLiteral("Date de programmation"));
        add(QStringLiteral("lblCurrentTime"), K::Label, QStringLiteral("Date et heure"));
        add(QStringLiteral("LabelBatterie"), K::Label, QStringLiteral("Tension batterie (Volts)"));
        add(QStringLiteral("VMIN"), K::Label, QStringLiteral("Min."));
        add(QStringLiteral("VMAX"), K::Label, QStringLiteral("Max."));
        add(QStringLiteral("ProgressBar3"), K::ProgressBar);

        add(QStringLiteral("FrameManualActionDelay"), K::Frame,
            QStringLiteral("Manuel Action Delay"));
        add(QStringLiteral("ValeurManualAction"), K::TextBox, QStringLiteral("2"));
        add(QStringLiteral("LabelManualActionDelayTime"), K::Label,
            QStringLiteral("(2...65535 secs)"));

        add(QStringLiteral("DaylightFrame"), K::Frame, QStringLiteral(" Daylight Saving"));
        add(QStringLiteral("EnableDaylightSaving"), K::CheckBox, QStringLiteral("Enable"));
        add(QStringLiteral("FrameWinter"), K::Frame, QStringLiteral("Winter"));
        add(QStringLiteral("FrameSummer"), K::Frame, QStringLiteral("Summer"));
        for (const char* list : {"Semaine", "Mois", "Jour", "Heure"})
            array(QString::fromLatin1(list), 2, K::ComboBox, QString());
        array(QStringLiteral("LabelsemaineEte"), 2, K::Label, QStringLiteral("Week Number"));
        array(QStringLiteral("LabelMoisEte"), 2, K::Label, QStringLiteral("Month"));
        array(QStringLiteral("LabelJour"), 2, K::Label, QStringLiteral("Day"));
        array(QStringLiteral("Labelheure"), 2, K::Label, QStringLiteral("Hour"));
        add(QStringLiteral("DaylightAdjustment"), K::TextBox, QStringLiteral("0"));
        add(QStringLiteral("Labeldelta"), K::Label,
            QStringLiteral("Daylight saving adjustment (mn)"));
        add(QStringLiteral("SetTime"), K::Button, QStringLiteral("Set Time"));

        add(QStringLiteral("FrameMaintenance"), K::Frame, QStringLiteral("Maintenance"));
        add(QStringLiteral("Seuilbatterie"), K::Button, QStringLiteral("Min Bat."));
        add(QStringLiteral("MinBat"), K::TextBox, QStringLiteral("7,2"));
        add(QStringLiteral("LabelVBatMin"), K::Label, QStringLiteral("(V)"));
        add(QStringLiteral("RazCtn"), K::Button, QStringLiteral("Raz CPU counters"));
        array(QStringLiteral("ctn_text"), 5, K::TextBox, QString());
        array(QStringLiteral("Labelctn"), 5, K::Label, QString());
        add(QStringLiteral("Ils"), K::TextBox);
        add(QStringLiteral("LabelILS"), K::Label, QStringLiteral("ILS"));
        add(QStringLiteral("CheckClockSpeed"), K::CheckBox, QStringLiteral("FastClock"));
        array(QStringLiteral("ValeurHorloge"), 3, K::TextBox, QString());
        add(QStringLiteral("LabelCalibrationHorloge"), K::Label,
            QStringLiteral("Clock Calibration"));
        add(QStringLiteral("CommandCalibrationCLK"), K::Button, QStringLiteral("Calibrate"));
        add(QStringLiteral("ForceBoot"), K::Button, QStringLiteral(" Force BootLoad"));
        add(QStringLiteral("Programmer"), K::Button, QStringLiteral("Programmer"));
        add(QStringLiteral("ValeurNumeroSerie"), K::TextBox);
        add(QStringLiteral("Label15"), K::Label, QStringLiteral("Saisir le N° de série"));
        add(QStringLiteral("test"), K::Other);

        add(QStringLiteral("FrameMonitoringSorties"), K::Frame,
            QStringLiteral("Monitoring Sorties"));
        add(QStringLiteral("NomSortie"), K::Label, QStringLiteral("Sortie"));
        add(QStringLiteral("ListeSorties"), K::ComboBox);
        add(QStringLiteral("ValeurSortieLogique"), K::ComboBox);
        view.setRows(QStringLiteral("ValeurSortieLogique"),
                     {{QStringLiteral("= 0"), 0}, {QStringLiteral("= 1"), 1}});
        add(QStringLiteral("Activer"), K::Button, QStringLiteral("Activer"));
        add(QStringLiteral("Continu"), K::CheckBox, QStringLiteral("Lecture en continue"));
        add(QStringLiteral("ArretProgramme"), K::CheckBox, QStringLiteral("Arret Programme"));
        add(QStringLiteral("ListeEntrees"), K::ListBox);

        add(QStringLiteral("FrameMessage"), K::Frame, QStringLiteral("Message"));
        add(QStringLiteral("Message"), K::Label, QStringLiteral("ligne de validation"));

        add(QStringLiteral("MnuMode"), K::MenuEntry, QStringLiteral("Paramètres"));
        add(QStringLiteral("mnurapport"), K::MenuEntry, QStringLiteral("Rapport"));
        add(QStringLiteral("nmuBootLoad"), K::MenuEntry, QStringLiteral("Changer de version"));
        add(QStringLiteral("mnuPLC"), K::MenuEntry, QStringLiteral("Programmation"));
        add(QStringLiteral("MnuConnect"), K::MenuEntry, QStringLiteral("Connect"));
        add(QStringLiteral("mnuAide_0"), K::MenuEntry, QStringLiteral("?"));
        add(QStringLiteral("mnuApropos_1"), K::MenuEntry, QStringLiteral("A propos"));
    }
};

} // namespace qv::test
