#pragma once

#include "link/Bytes.h"

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

namespace qv {

class ConsoleView;
class ConsoleHost;
class Device;
class ConfigDocument;
class Conditions;
class Dialogs;

// The main window's behaviour without the window: start-up, the read and
// write cycles, the continuous read, monitoring and the service actions. The
// window forwards each event to the handler of the same name, and owns the
// two timers through ConsoleHost.
//
// The logic is single-threaded and does not know which thread runs it: the
// window runs every handler as a job of its device thread (its view, host
// and dialogs reach the screen from there), quorvelctl and the tests run
// them in place. A handler returns once its exchanges are over, except that
// Ecrire_Click, while the device restarts, lets the events that wait run
// (host.runQueuedEvents()) until the timer `test` has counted five seconds.
//
// Controls are used by name (array members as "Name_N"). Changes made from
// code raise no handler: where a change by code has always raised one (a
// language row selected, Continu unticked, CheckClockSpeed set by a read, the
// text of ValeurManualAction set), the logic calls it itself, so the window
// forwards only the operator's own clicks, selections and edits.
//
// What the old program died of (a number that does not fit its byte of a
// frame, an unusable config.xml) ends the handler with a box titled
// "Quorvel" instead; the window stays.
//
// The date picker `Madate` is read through view.text("Madate") as an ISO date
// ("2026-11-21"); an empty or unreadable text counts as today.
class MainScreenLogic {
public:
    MainScreenLogic(ConsoleView& view, ConsoleHost& host, Device& device, ConfigDocument& config,
                    Conditions& conditions, Dialogs& dialogs);
    ~MainScreenLogic();
    MainScreenLogic(const MainScreenLogic&) = delete;
    MainScreenLogic& operator=(const MainScreenLogic&) = delete;

    // The present time for clock frames, dates of programming and drift;
    // the number formats of the text boxes. Tests fix both.
    void setClock(std::function<QDateTime()> clock);
    void setLocale(const QLocale& locale);

    // Window events. Form_Load is the whole start for a host whose
    // showConnection() returns once the connection list has closed; a host
    // that shows the list without waiting runs the part before it and the
    // part after it itself (MnuConnect_Click likewise).
    void Form_Load();
    void Form_Load_AvantConnexion();
    void Form_Load_ApresConnexion();
    void Form_Activate();
    void Form_Unload();
    void TimerEntree_Timer();
    void test_Timer();

    // Menus.
    void Sortir_Click();
    void MnuConnect_Click();
    void MnuConnect_ApresConnexion();
    // Lets go of the controller in use for a window that takes the bus over
    // (the production bench): the continuous read stops, the link closes,
    // and the controls that need a controller wait for the connection list.
    void LibereAppareil();
    void mnuPLC_Click();
    void mnurapport_Click();
    void nmuBootLoad_Click();
    void mnuApropos_Click();

    // Read and write.
    void Lire_Click();
    void Ecrire_Click();
    void SetTime_Click();

    // Output monitoring and manual action.
    void Activer_Click();
    void ArretProgramme_Click();
    void Continu_Click();
    void ValeurManualAction_Change();

    // Service panel.
    void Programmer_Click();
    void Seuilbatterie_Click();
    void RazCtn_Click();
    void ForceBoot_Click();
    void CommandCalibrationCLK_Click();
    void CheckClockSpeed_Click();

    // Language and daylight-saving rule.
    void ListeLangues_Click();
    void EnableDaylightSaving_Click();

    // The full read and its parts.
    void LitParametres();
    void LitEtatsDirects();
    // true when the serial number read is not zero; false, with nothing
    // shown, when a read went unanswered.
    bool AfficheNumeroSerie();
    void AfficheLibellesSortie();
    void RemplitListesSorties();
    // Addresses 20 to 23 in rising order.
    Bytes LitDateProgrammation();

    // Writes of the cycles.
    void EcritDelaiManuel();
    void EcritDateProgrammation();
    void EcritSeuilBatterie();
    // true when the text of the text box `saisie` is numeric; otherwise the
    // box gets the focus with its text selected, "erreur de saisie" is
    // shown, and false.
    bool ControleNumerique(const QString& saisie);

    // The parts of the read shared with the continuous cycle: identity and
    // battery, the device's clock, the drift, the programme image.
    void LitVersion();
    void LitDateEtHeure();
    void CalculeDeriveTemps();
    void LitProgramme();
    // The daylight-saving rule between the controls, the device and
    // config.xml; the mode as the three flags choose it.
    void DayLightSaving(bool ecriture, bool enConfiguration, bool initialisation);
    // The clock speed command; the device's answer (1: fast clock on).
    int MesureHorloge(bool ecriture);

    // Translation of the captions and of the help texts.
    void ChangeTextes(const QString& langue, bool init);
    void ChangeAide(const QString& langue, bool visible);
    void BasculeAide();

    // The device's log area, 256 to 511: sixteen lines of sixteen bytes in
    // upper-case hex, each byte followed by a blank ("0A FF ... "). The read
    // stops at the first unanswered byte (one box, not 256), and the lines
    // then hold what came before it.
    QStringList DumpEEPROM();

    // The language in use: the text of ListeLangues.
    QString langue() const;
    // The text of `key` in the language in use.
    QString message(const QString& key);

    // The date of the last programming as read (device seconds).
    double dateProgrammationCourante() const;

private:
    struct Timekeeping;

    QDateTime now() const;
    QDate madate() const;
    void envoiManuel(int sortie, int valeur);
    void untickContinu();
    void setManualDelayText(const QString& text);
    void setOutputStateRows();
    // Runs a handler's body; what the old program died of becomes a box.
    void guarded(const std::function<void()>& action);
    // Runs one statement of a sequence that passes over failing statements.
    void skipOnError(const std::function<void()>& statement);

    ConsoleView& view_;
    ConsoleHost& host_;
    Device& device_;
    ConfigDocument& config_;
    Conditions& conditions_;
    Dialogs& dialogs_;

    std::function<QDateTime()> clock_;
    QLocale locale_;
    std::unique_ptr<Timekeeping> timekeeping_;

    bool splashMontre_ = false;
    bool aideVisible_ = false;
};

} // namespace qv
