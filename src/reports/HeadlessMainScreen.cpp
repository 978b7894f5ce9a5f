#include "HeadlessMainScreen.h"

#include "console/ConsoleHost.h"
#include "console/MainScreenLogic.h"
#include "device/Device.h"
#include "programme/Conditions.h"

#include <chrono>
#include <functional>
#include <thread>

namespace qv {

// Timers never tick here and there are no other windows: the connection
// window is the device already chosen.
class HeadlessMainScreen::Host : public ConsoleHost {
public:
    Host(Device& device, ConsoleView& view) : device_(device), view_(view) {}

    std::int32_t chosen = 1;
    int testInterval = 0;
    std::function<void()> testTick;

    void startTimerEntree() override {}
    void stopTimerEntree() override {}
    bool timerEntreeRunning() const override { return false; }
    void startTest(int intervalMs) override { testInterval = intervalMs; }
    void stopTest() override { testInterval = 0; }
    // No window and no other events: the wait of the write cycle is the
    // timer `test` alone, ticking in real time.
    bool runQueuedEvents() override {
        if (testInterval <= 0)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(testInterval));
        if (testTick)
            testTick();
        return true;
    }
    void showConnection() override {
        PublicState& state = device_.state();
        state.UsbID = chosen;
        state.bUsbConnected = true;
        state.TimeOut = false;
        for (const char* control : {"Lire", "Ecrire", "SetTime", "mnuPLC", "nmuBootLoad"})
            view_.setEnabled(QString::fromLatin1(control), true);
    }
    void showProgrammation() override {}
    void showProduction() override {}
    void showAbout() override {}
    void showSplash() override {}
    void UpdateFirmware(bool) override {}
    void closeApplication() override {}

private:
    Device& device_;
    ConsoleView& view_;
};

struct HeadlessMainScreen::Programme {
    Conditions conditions;
};

namespace {

void declareControls(MapConsoleView& view) {
    using K = ConsoleView::Kind;
    struct Declared {
        const char* name;
        K kind;
        const char* caption;
    };
    static const Declared controls[] = {
        {"Lire", K::Button, "Lire les paramètres"},
        {"Ecrire", K::Button, "Ecrire les paramètres"},
        {"Sortir", K::Button, "Quitter l'application"},
        {"ListeLangues", K::ComboBox, ""},
        {"FrameInformations", K::Frame, "Informations"},
        {"LabelVersion", K::Label, "Version"},
        {"Version", K::Label, "--"},
        {"Label1", K::Label, "N° Série"},
        {"NumeroSerie", K::Label, "--"},
        {"Label2", K::Label, "Date de programmation"},
        {"DateProgrammation", K::Label, "--"},
        {"lblCurrentTime", K::Label, "Date et heure"},
        {"txtCurrentTime", K::Label, "--"},
        {"LabelBatterie", K::Label, "Tension batterie (Volts)"},
        {"Batterie", K::Label, "--"},
        {"VMIN", K::Label, "Min."},
        {"VMAX", K::Label, "Max."},
        {"ProgressBar3", K::ProgressBar, ""},
        {"FrameManualActionDelay", K::Frame, "Manuel Action Delay"},
        {"ValeurManualAction", K::TextBox, "2"},
        {"FrameMonitoringSorties", K::Frame, "Monitoring Sorties"},
        {"NomSortie", K::Label, "Sortie"},
        {"ListeSorties", K::ComboBox, ""},
        {"ValeurSortieLogique", K::ComboBox, ""},
        {"Continu", K::CheckBox, "Lecture en continue"},
        {"ArretProgramme", K::CheckBox, "Arret Programme"},
        {"DaylightFrame", K::Frame, " Daylight Saving"},
        {"EnableDaylightSaving", K::CheckBox, "Enable"},
        {"FrameSummer", K::Frame, "Summer"},
        {"FrameWinter", K::Frame, "Winter"},
        {"LabelsemaineEte_0", K::Label, "Week Number"},
        {"LabelsemaineEte_1", K::Label, "Week Number"},
        {"LabelJour_0", K::Label, "Jour"},
        {"LabelJour_1", K::Label, "Jour"},
        {"LabelMoisEte_0", K::Label, "Month"},
        {"LabelMoisEte_1", K::Label, "Month"},
        {"Labelheure_0", K::Label, "Hour"},
        {"Labelheure_1", K::Label, "Hour"},
        {"Semaine_0", K::ComboBox, ""},
        {"Semaine_1", K::ComboBox, ""},
        {"Jour_0", K::ComboBox, ""},
        {"Jour_1", K::ComboBox, ""},
        {"Mois_0", K::ComboBox, ""},
        {"Mois_1", K::ComboBox, ""},
        {"Heure_0", K::ComboBox, ""},
        {"Heure_1", K::ComboBox, ""},
        {"Labeldelta", K::Label, "Daylight saving adjustment (mn)"},
        {"DaylightAdjustment", K::TextBox, "0"},
        {"SetTime", K::Button, "Set Time"},
        {"FrameMaintenance", K::Frame, "Maintenance"},
        {"MinBat", K::TextBox, "7,2"},
        {"ValeurNumeroSerie", K::TextBox, ""},
        {"Labelctn_0", K::Label, "Compteur"},
        {"Labelctn_1", K::Label, "Compteur"},
        {"Labelctn_2", K::Label, "Compteur"},
        {"Labelctn_3", K::Label, "Compteur"},
        {"Labelctn_4", K::Label, "Compteur"},
        {"ctn_text_0", K::TextBox, ""},
        {"ctn_text_1", K::TextBox, ""},
        {"ctn_text_2", K::TextBox, ""},
        {"ctn_text_3", K::TextBox, ""},
        {"ctn_text_4", K::TextBox, ""},
        {"Ils", K::TextBox, ""},
        {"CheckClockSpeed", K::CheckBox, "FastClock"},
        {"ValeurHorloge_0", K::TextBox, ""},
        {"ValeurHorloge_1", K::TextBox, ""},
        {"ValeurHorloge_2", K::TextBox, ""},
    };
    for (const Declared& c : controls)
        view.add(QString::fromUtf8(c.name), c.kind, QString::fromUtf8(c.caption));
}

} // namespace

HeadlessMainScreen::HeadlessMainScreen(Device& device, ConfigDocument& config, Dialogs& dialogs)
    : device_(device), host_(std::make_unique<Host>(device, view_)),
      programme_(std::make_unique<Programme>()) {
    declareControls(view_);
    logic_ = std::make_unique<MainScreenLogic>(view_, *host_, device, config,
                                               programme_->conditions, dialogs);
    host_->testTick = [this] { logic_->test_Timer(); };
}

HeadlessMainScreen::~HeadlessMainScreen() = default;

bool HeadlessMainScreen::start() {
    // The start resets the device in use to 1 before the connection window;
    // the window then hands back the one chosen.
    host_->chosen = device_.state().UsbID;
    logic_->Form_Load();
    const PublicState& state = device_.state();
    return !state.TimeOut && !state.CRCError;
}

} // namespace qv
