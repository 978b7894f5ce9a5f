#include "MainScreenLogic.h"

#include "ConsoleHost.h"
#include "ConsoleView.h"
#include "config/ConfigDocument.h"
#include "config/DateHelpers.h"
#include "config/LocaleNumber.h"
#include "config/VbFormat.h"
#include "device/Device.h"
#include "device/DeviceClock.h"
#include "device/Identity.h"
#include "device/MemoryMap.h"
#include "device/Packing.h"
#include "link/Dialogs.h"
#include "programme/Conditions.h"
#include "programme/DefaultStates.h"
#include "programme/ProgrammeDownload.h"
#include "programme/ProgrammeStore.h"
#include "programme/ProgrammeUpload.h"
#include "timekeeping/ClockCalibration.h"
#include "timekeeping/DaylightSaving.h"

#include <array>
#include <cmath>
#include <exception>
#include <optional>

namespace qv {

namespace {

const QString kListeLangues = QStringLiteral("ListeLangues");
const QString kListeSorties = QStringLiteral("ListeSorties");
const QString kValeurSortieLogique = QStringLiteral("ValeurSortieLogique");
const QString kProgressBar2 = QStringLiteral("ProgressBar2");
const QString kValeurManualAction = QStringLiteral("ValeurManualAction");

// Serial numbers from here on belong to devices that measure their battery.
constexpr std::int64_t kFirstSerialWithBattery = 90601000;
constexpr int kWaitTicks = 5;
constexpr int kManualDelayMinimum = 2;
constexpr int kManualDelayMaximum = 65535;
// The valve, first output of every model: the only one driven by hand.
constexpr int kValveOutput = 3;

// The labels of the five counters, by index: they are not translated under
// the array's shared name but each under its own words.
const std::array<QString, Address::CounterCount> kCounterKeys = {
    QStringLiteral("Power on reset"), QStringLiteral("CRC errors"),
    QStringLiteral("Brown out errors"), QStringLiteral("Watch dog errors"),
    QStringLiteral("Soft Resets")};

// The controls that the wait after a restart takes away from the operator,
// so that nothing can reach the device while it comes back.
const std::array<QString, 10> kLockedDuringWrite = {QStringLiteral("Lire"),
                                                    QStringLiteral("Ecrire"),
                                                    QStringLiteral("Sortir"),
                                                    QStringLiteral("CommandCalibrationCLK"),
                                                    QStringLiteral("Programmer"),
                                                    QStringLiteral("Activer"),
                                                    QStringLiteral("Continu"),
                                                    QStringLiteral("ArretProgramme"),
                                                    QStringLiteral("ValeurSortieLogique"),
                                                    QStringLiteral("SetTime")};

const QStringList kBatteryControls = {QStringLiteral("LabelBatterie"), QStringLiteral("Batterie"),
                                      QStringLiteral("ProgressBar3"), QStringLiteral("VMIN"),
                                      QStringLiteral("VMAX")};

QString hexByte(int value) {
    return QStringLiteral("%1 ").arg(value, 2, 16, QLatin1Char('0')).toUpper();
}

} // namespace

// The daylight-saving rule and the clock calibration live in their own
// module; the console only says when to run them.
struct MainScreenLogic::Timekeeping {
    ClockState clock;
    std::optional<DaylightSavingRule> rule;
    std::optional<ClockCalibration> calibration;

    // Both read the entry boxes in the logic's locale, so they are made
    // again when it changes; the clock state stays.
    void rebuild(MainScreenLogic& logic) {
        rule.emplace(
            logic.view_, logic.device_, logic.config_, [&logic] { return logic.langue(); },
            logic.locale_);
        calibration.emplace(logic.view_, logic.device_, clock, logic.locale_,
                            [&logic] { return logic.now(); });
    }
};

// Marks a handler's exchanges so that the window holds back the continuous
// read meanwhile.
class MainScreenLogic::BusyScope {
public:
    explicit BusyScope(MainScreenLogic& logic) : logic_(logic) { ++logic_.busyDepth_; }
    ~BusyScope() { --logic_.busyDepth_; }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;

private:
    MainScreenLogic& logic_;
};

MainScreenLogic::MainScreenLogic(ConsoleView& view, ConsoleHost& host, Device& device,
                                 ConfigDocument& config, Conditions& conditions, Dialogs& dialogs)
    : view_(view), host_(host), device_(device), config_(config), conditions_(conditions),
      dialogs_(dialogs), clock_([] { return QDateTime::currentDateTime(); }),
      locale_(QLocale::system()), timekeeping_(std::make_unique<Timekeeping>()) {
    timekeeping_->rebuild(*this);
}

MainScreenLogic::~MainScreenLogic() = default;

void MainScreenLogic::setClock(std::function<QDateTime()> clock) {
    clock_ = std::move(clock);
}
void MainScreenLogic::setLocale(const QLocale& locale) {
    locale_ = locale;
    timekeeping_->rebuild(*this);
}

double MainScreenLogic::dateProgrammationCourante() const {
    return timekeeping_->clock.DateProgrammationCourante;
}

QDateTime MainScreenLogic::now() const {
    return clock_();
}

QDate MainScreenLogic::madate() const {
    const QDate shown = QDate::fromString(view_.text(QStringLiteral("Madate")), Qt::ISODate);
    return shown.isValid() ? shown : now().date();
}

QString MainScreenLogic::langue() const {
    return view_.text(kListeLangues);
}

QString MainScreenLogic::message(const QString& key) {
    return config_.LitMessage(langue(), key, QString());
}

template <typename F> void MainScreenLogic::guarded(F&& action) {
    // The old program died on these; the operator now gets the reason and
    // the window stays.
    try {
        action();
    } catch (const ConfigError& e) {
        dialogs_.message(e.text(), QStringLiteral("Quorvel"), MsgBox::Critical);
    } catch (const std::exception& e) {
        dialogs_.message(QString::fromStdString(e.what()), QStringLiteral("Quorvel"),
                         MsgBox::Critical);
    }
}

template <typename F> void MainScreenLogic::skipOnError(F&& statement) {
    // The read sequences pass over a failing statement and go on.
    try {
        statement();
    } catch (const std::exception&) {
    }
}

void MainScreenLogic::untickContinu() {
    // Unticking the box from code runs its handler, which stops the cycle.
    if (!view_.isChecked(QStringLiteral("Continu")))
        return;
    view_.setChecked(QStringLiteral("Continu"), false);
    Continu_Click();
}

void MainScreenLogic::setManualDelayText(const QString& text) {
    if (view_.text(kValeurManualAction) == text)
        return;
    view_.setText(kValeurManualAction, text);
    ValeurManualAction_Change();
}

// ---------------------------------------------------------------- window

void MainScreenLogic::Form_Load() {
    guarded([&] {
        PublicState& state = device_.state();
        state.UsbID = 1;
        state.bUsbConnected = false;
        view_.setEnabled(QStringLiteral("Ecrire"), false);
        view_.setEnabled(QStringLiteral("SetTime"), false);
        view_.setEnabled(QStringLiteral("mnuPLC"), false);

        // Every run starts in English; the language of the last run is
        // stored but deliberately not taken up.
        ChangeTextes(QStringLiteral("English"), true);
        DayLightSaving(false, false, true);
        DayLightSaving(false, true, false);
        aideVisible_ = false;
        ChangeAide(langue(), aideVisible_);

        view_.setVisible(QStringLiteral("FrameMaintenance"), config_.LitMaintenance());

        if (const auto rows = config_.RemplitListe(langue(), kListeSorties))
            view_.setRows(kListeSorties, toRows(*rows));
        RemplitListesSorties();
        view_.setVisible(kProgressBar2, false);

        conditions_ = Conditions();
        LitConditions(config_, conditions_);

        state.TimeOut = false;
        host_.showConnection();
        if (!state.TimeOut)
            LitParametres();
    });
}

void MainScreenLogic::Form_Activate() {
    guarded([&] {
        if (!splashMontre_ && config_.LitSplash()) {
            host_.showSplash();
            splashMontre_ = true;
        }
    });
}

void MainScreenLogic::Form_Unload() {
    device_.link().FermeUsb();
}

void MainScreenLogic::TimerEntree_Timer() {
    guarded([&] {
        BusyScope busy(*this);
        PublicState& state = device_.state();
        LitDateEtHeure();
        if (!state.TimeOut) {
            LitEtatsDirects();
            LitVersion();
            CalculeDeriveTemps();
        }
        if (!state.TimeOut && !state.CRCError)
            return;
        // The link has told the operator; the cycle just stops.
        untickContinu();
        host_.stopTimerEntree();
    });
}

void MainScreenLogic::test_Timer() {
    const int value = view_.progressValue(kProgressBar2);
    if (value != kWaitTicks)
        view_.setProgress(kProgressBar2, 0, kWaitTicks, value + 1);
}

// ----------------------------------------------------------------- menus

void MainScreenLogic::Sortir_Click() {
    guarded([&] {
        DayLightSaving(true, true, false);
        host_.stopTimerEntree();
        device_.link().FermeUsb();
    });
    host_.closeApplication();
}

void MainScreenLogic::MnuConnect_Click() {
    guarded([&] {
        host_.showConnection();
        if (!device_.state().TimeOut)
            Lire_Click();
    });
}

void MainScreenLogic::mnuPLC_Click() {
    host_.showProgrammation();
}
void MainScreenLogic::mnurapport_Click() {
    host_.showProduction();
}
void MainScreenLogic::nmuBootLoad_Click() {
    host_.UpdateFirmware(true);
}
void MainScreenLogic::mnuApropos_Click() {
    host_.showAbout();
}

// ---------------------------------------------------------- read and write

void MainScreenLogic::Lire_Click() {
    guarded([&] {
        BusyScope busy(*this);
        view_.setBusyCursor(true);
        host_.stopTimerEntree();
        view_.setEnabled(QStringLiteral("Lire"), false);
        view_.setEnabled(QStringLiteral("Lire"), true);
        view_.setFocus(QStringLiteral("Lire"));
        untickContinu();
        device_.state().TimeOut = false;
        LitParametres();
    });
    view_.setBusyCursor(false);
}

void MainScreenLogic::LitParametres() {
    guarded([&] {
        BusyScope busy(*this);
        const PublicState& state = device_.state();

        // A dead device must still walk every step up to the threshold, each
        // one trying and failing on its own, so no TimeOut test until then.
        skipOnError([&] { AfficheNumeroSerie(); });
        skipOnError([&] { LitVersion(); });
        skipOnError([&] { timekeeping_->calibration->LitValeurTimer(); });
        skipOnError([&] { CalculeDeriveTemps(); });
        // A changed box reports itself like a click, which sends the state
        // just read back to the device.
        skipOnError([&] { timekeeping_->calibration->LitVitesseHorloge(); });
        for (int i = 0; i < Address::CounterCount; ++i)
            skipOnError([&] {
                view_.setText(arrayMember(QStringLiteral("ctn_text"), i),
                              QString::number(device_.LitEEprom(Address::Counters + i)));
            });
        skipOnError([&] { DayLightSaving(false, false, false); });
        skipOnError([&] {
            const int low = device_.LitEEprom(Address::ManualActionDelay);
            const int high = device_.LitEEprom(Address::ManualActionDelay + 1);
            setManualDelayText(QString::number(low + 256 * high));
        });
        skipOnError([&] {
            const double volts =
                device_.LitEEpromMot(Address::BatteryThreshold) / kBatteryStepsPerVolt;
            view_.setText(QStringLiteral("MinBat"),
                          formatVb(volts, QStringLiteral("##.##"), locale_));
        });

        if (state.TimeOut) {
            AfficheLibellesSortie();
            return;
        }

        LitEtatsDirects();
        LitProgramme();
        // Read twice, with the identity between, as the device has always
        // been asked; only the second reading counts.
        LitDateProgrammation();
        LitVersion();
        const Bytes date = LitDateProgrammation();
        timekeeping_->clock.DateProgrammationCourante = AssembleLong(date);
        view_.setText(QStringLiteral("DateProgrammation"),
                      SecondesEnDate(timekeeping_->clock.DateProgrammationCourante, locale_));
        LitDateEtHeure();
        CalculeDeriveTemps();
        AfficheLibellesSortie();
        view_.setEnabled(QStringLiteral("Lire"), true);
    });
}

bool MainScreenLogic::AfficheNumeroSerie() {
    BusyScope busy(*this);
    Bytes octets(4, 0);
    for (int i = 0; i < 4; ++i) {
        octets[static_cast<size_t>(i)] = device_.LitEEprom(Address::SerialNumber + i);
        if (device_.state().TimeOut)
            return false;
    }
    const std::int32_t serie = AssembleLong(octets);
    view_.setText(QStringLiteral("ValeurNumeroSerie"), QString::number(serie));
    view_.setText(QStringLiteral("NumeroSerie"), QString::number(serie));
    const bool avecBatterie = serie >= kFirstSerialWithBattery;
    for (const QString& control : kBatteryControls)
        view_.setVisible(control, avecBatterie);
    view_.setText(QStringLiteral("Ils"),
                  QString::number(device_.LitEEprom(Address::IlsAtLastWrite)));
    return serie != 0;
}

void MainScreenLogic::LitVersion() {
    const MainIdentity identity = LitVersionPrincipale(device_);
    view_.setText(QStringLiteral("Version"), identity.versionCaption);
    view_.setText(QStringLiteral("FrameMaintenance"), identity.maintenanceCaption);
    // A reading beyond the converter's range leaves the bar where it was,
    // and the voltage is shown all the same.
    if (identity.batteryRaw >= 0 && identity.batteryRaw <= 1023)
        view_.setProgress(QStringLiteral("ProgressBar3"), 0, 1023, identity.batteryRaw);
    view_.setText(QStringLiteral("Batterie"), formatVb(identity.batteryRaw / kBatteryStepsPerVolt,
                                                       QStringLiteral("0.0"), locale_));
}

void MainScreenLogic::LitDateEtHeure() {
    timekeeping_->calibration->LitDateEtHeure();
}

void MainScreenLogic::LitProgramme() {
    const MessageLookup lookup = [this](const QString& key) { return message(key); };
    const OutputFormatLookup format = [this](int position) -> std::optional<double> {
        const auto rows = view_.rows(kListeSorties);
        if (position < 0 || position >= static_cast<int>(rows.size()))
            return std::nullopt;
        return rows[static_cast<size_t>(position)].itemData;
    };
    LitEtSauveProgramme(device_, config_, lookup, format);
}

void MainScreenLogic::AfficheLibellesSortie() {
    view_.setText(QStringLiteral("NomSortie"),
                  message(QStringLiteral("Electro Vanne Bist.")) + QStringLiteral(" 1"));
    setOutputStateRows();
}

void MainScreenLogic::setOutputStateRows() {
    const QString close = message(QStringLiteral("Close"));
    const QString open = message(QStringLiteral("Open"));
    if (view_.rows(kValeurSortieLogique).size() < 2) {
        const int row = view_.currentRow(kValeurSortieLogique);
        view_.setRows(kValeurSortieLogique, {{close, 0}, {open, 1}});
        view_.setCurrentRow(kValeurSortieLogique, row);
        return;
    }
    view_.setRowText(kValeurSortieLogique, 0, close);
    view_.setRowText(kValeurSortieLogique, 1, open);
}

void MainScreenLogic::LitEtatsDirects() {
    BusyScope busy(*this);
    const int sortie = device_.LitValeur(LiveValue::OutputState);
    view_.setCurrentRow(kValeurSortieLogique, sortie != 0 ? 1 : 0);
    view_.setText(QStringLiteral("Ils"), QString::number(device_.LitValeur(LiveValue::IlsInput)));
}

Bytes MainScreenLogic::LitDateProgrammation() {
    Bytes octets(4, 0);
    for (int i = 0; i < 4; ++i)
        octets[static_cast<size_t>(i)] = device_.LitEEprom(Address::ProgrammingDate + i);
    return octets;
}

void MainScreenLogic::RemplitListesSorties() {
    if (const auto rows = config_.RemplitListe(langue(), kListeSorties))
        view_.setRows(kListeSorties, toRows(*rows));
    const auto rows = view_.rows(kListeSorties);
    if (!rows.empty())
        view_.setText(QStringLiteral("NomSortie"), rows.front().text);
    view_.setText(QStringLiteral("Activer"), message(QStringLiteral("Activer")));
    setOutputStateRows();
}

void MainScreenLogic::Ecrire_Click() {
    guarded([&] {
        BusyScope busy(*this);
        PublicState& state = device_.state();
        state.TimeOut = false;
        LitVersion();
        if (state.TimeOut)
            return;
        untickContinu();

        // The default state always comes from the first language of the
        // list, whichever one is in use.
        const auto langues = view_.rows(kListeLangues);
        const QString premiere = langues.empty() ? QString() : langues.front().text;
        const std::int16_t etatDefaut = Donne_EtatDefautSortie(config_, premiere, 0);
        const EnvoiResultat envoi =
            Envoi_Conditions(device_, conditions_, etatDefaut,
                             message(QStringLiteral("Les anciennes valeurs seront écrasées")),
                             madate(), now(), [this](const QString& key) { return message(key); });
        if (envoi.cancelled)
            view_.setEnabled(QStringLiteral("Ecrire"), true);
        if (!envoi.resultat || state.TimeOut)
            return;

        // From here a lost device costs one box per exchange, and the cycle
        // still runs to its end: the operator reads the boxes.
        DayLightSaving(true, true, false);
        DayLightSaving(true, false, false);
        EcritDelaiManuel();
        EcritDateProgrammation();

        view_.setVisible(kProgressBar2, true);
        view_.setProgress(kProgressBar2, 0, kWaitTicks, 0);
        device_.ResetDevice();
        host_.startTest(1000);
        for (const QString& control : kLockedDuringWrite)
            view_.setEnabled(control, false);
        // The device needs five seconds to come back; the timer counts them
        // while the window stays alive.
        while (view_.progressValue(kProgressBar2) != kWaitTicks)
            view_.yieldToEvents();
        view_.setVisible(kProgressBar2, false);
        host_.stopTest();
        dialogs_.message(message(QStringLiteral("Programmation terminée")), QString(),
                         MsgBox::Exclamation);
        for (const QString& control : kLockedDuringWrite)
            view_.setEnabled(control, true);
    });
}

void MainScreenLogic::EcritDelaiManuel() {
    const auto value = parseLocaleNumber(view_.text(kValeurManualAction), locale_);
    if (!value)
        return;
    double delai = *value;
    if (delai > kManualDelayMaximum) {
        setManualDelayText(QString::number(kManualDelayMaximum));
        delai = kManualDelayMaximum;
    }
    const auto octets = DecoupeMot(delai);
    device_.EcritEEprom(Address::ManualActionDelay, static_cast<int>(octets[0]));
    device_.EcritEEprom(Address::ManualActionDelay + 1, static_cast<int>(octets[1]));
}

void MainScreenLogic::EcritDateProgrammation() {
    timekeeping_->calibration->EcritDateProgrammation();
}

void MainScreenLogic::SetTime_Click() {
    guarded([&] {
        BusyScope busy(*this);
        // No TimeOut test anywhere: the box closes the action in any case.
        MAH(device_, 0, madate(), now());
        DayLightSaving(true, false, false);
        EcritDelaiManuel();
        dialogs_.message(message(QStringLiteral("Date and Time Set")), QString(),
                         MsgBox::Exclamation);
    });
}

// ------------------------------------------------ monitoring and manual action

void MainScreenLogic::envoiManuel(int sortie, int valeur) {
    Bytes frame(kFrameLength, 0);
    frame[0] = Command::ManualAction;
    frame[1] = sortie;
    frame[2] = valeur;
    frame[3] = view_.isChecked(QStringLiteral("ArretProgramme")) ? 1 : 0;
    device_.transact(frame, ReplyLength::ManualAction);
}

void MainScreenLogic::Activer_Click() {
    guarded([&] {
        BusyScope busy(*this);
        device_.state().TimeOut = false;
        host_.startTest(80);
        envoiManuel(kValveOutput, view_.currentRow(kValeurSortieLogique));
    });
}

void MainScreenLogic::ArretProgramme_Click() {
    guarded([&] {
        BusyScope busy(*this);
        envoiManuel(255, 255);
    });
}

void MainScreenLogic::Continu_Click() {
    guarded([&] {
        device_.state().TimeOut = false;
        if (view_.isChecked(QStringLiteral("Continu")))
            LitParametres();
        // Switching on starts the cycle even after a failed read: its first
        // tick then stops it again.
        if (view_.isChecked(QStringLiteral("Continu")))
            host_.startTimerEntree();
        else
            host_.stopTimerEntree();
    });
}

void MainScreenLogic::ValeurManualAction_Change() {
    const QString text = view_.text(kValeurManualAction);
    const auto value = parseLocaleNumber(text, locale_);
    QString clamped = text;
    if (!value)
        clamped = QString::number(kManualDelayMinimum);
    else if (*value < kManualDelayMinimum)
        clamped = QString::number(kManualDelayMinimum);
    else if (*value > kManualDelayMaximum)
        clamped = QString::number(kManualDelayMaximum);
    if (clamped != text)
        view_.setText(kValeurManualAction, clamped);
}

// ----------------------------------------------------------------- service

void MainScreenLogic::Programmer_Click() {
    guarded([&] {
        BusyScope busy(*this);
        device_.state().TimeOut = false;
        const auto value =
            parseLocaleNumber(view_.text(QStringLiteral("ValeurNumeroSerie")), locale_);
        if (!value) {
            dialogs_.message(QStringLiteral("Le n° de série n'est pas valide"), QString(),
                             MsgBox::OkOnly);
        } else if (*value > 2147483647.0) {
            dialogs_.message(QStringLiteral("Le n° de série est trop grand (> 32 bits)"), QString(),
                             MsgBox::OkOnly);
        } else {
            // A negative number is let through and lands as its two's
            // complement, as it always has.
            const auto octets = DecoupeLong(*value);
            for (int i = 0; i < 4; ++i)
                device_.EcritEEprom(Address::SerialNumber + i,
                                    static_cast<int>(octets[static_cast<size_t>(i)]));
        }
        // The device restarts after a refused entry too.
        device_.ResetDevice();
    });
}

void MainScreenLogic::Seuilbatterie_Click() {
    guarded([&] {
        BusyScope busy(*this);
        EcritSeuilBatterie();
    });
}

void MainScreenLogic::EcritSeuilBatterie() {
    if (!ControleNumerique(QStringLiteral("MinBat")))
        return;
    const double volts = *parseLocaleNumber(view_.text(QStringLiteral("MinBat")), locale_);
    device_.EcritEEpromMot(Address::BatteryThreshold, toInt32Checked(volts * kBatteryStepsPerVolt));
}

bool MainScreenLogic::ControleNumerique(const QString& saisie) {
    if (parseLocaleNumber(view_.text(saisie), locale_))
        return true;
    view_.setFocus(saisie);
    view_.selectAll(saisie);
    dialogs_.message(message(QStringLiteral("erreur de saisie")), QString(), MsgBox::Exclamation);
    return false;
}

void MainScreenLogic::RazCtn_Click() {
    guarded([&] {
        BusyScope busy(*this);
        for (int i = 0; i < Address::CounterCount; ++i) {
            device_.EcritEEprom(Address::Counters + i, 0);
            view_.setText(arrayMember(QStringLiteral("ctn_text"), i), QStringLiteral("0"));
        }
        device_.ForceRelectureCompteur();
    });
}

void MainScreenLogic::ForceBoot_Click() {
    guarded([&] {
        BusyScope busy(*this);
        const int answer = dialogs_.message(message(QStringLiteral("Are You Sure ? ")), QString(),
                                            MsgBox::YesNo | MsgBox::Question);
        // Yes and No are both answers that are not zero: the request goes
        // either way, as operators have come to expect.
        if (answer != 0)
            device_.EcritEEprom(Address::BootRequest, kBootRequestValue);
    });
}

QStringList MainScreenLogic::DumpEEPROM() {
    QStringList lines;
    guarded([&] {
        BusyScope busy(*this);
        device_.state().TimeOut = false;
        QString line;
        for (int i = 0; i < Address::LogAreaLength; ++i) {
            const int value = device_.LitEEprom(Address::LogArea + i);
            // One box is enough: a dead device would otherwise raise one
            // for each of the 256 bytes.
            if (device_.state().TimeOut)
                break;
            line += hexByte(value);
            if ((i + 1) % 16 == 0) {
                lines.append(line);
                line.clear();
            }
        }
        if (!line.isEmpty())
            lines.append(line);
    });
    return lines;
}

// ------------------------------------------------------------- language

void MainScreenLogic::ChangeTextes(const QString& langueDemandee, bool init) {
    guarded([&] {
        if (init) {
            const QStringList langues = config_.ListeLanguesDisponibles();
            std::vector<ConsoleView::Row> rows;
            int selected = -1;
            for (int i = 0; i < langues.size(); ++i) {
                rows.push_back({langues[i], static_cast<double>(i)});
                if (langues[i] == langueDemandee && selected < 0)
                    selected = i;
            }
            view_.setRows(kListeLangues, rows);
            if (selected >= 0) {
                // Selecting the row is a selection like the operator's.
                view_.setCurrentRow(kListeLangues, selected);
                ListeLangues_Click();
            }
        }

        translateCaptions(view_, config_, langueDemandee, CaptionWalk::MainWindow);

        for (int i = 0; i < Address::CounterCount; ++i)
            view_.setText(
                arrayMember(QStringLiteral("Labelctn"), i),
                config_.LitMessage(langue(), kCounterKeys[static_cast<size_t>(i)], QString()));
        RemplitListesSorties();
    });
}

void MainScreenLogic::ChangeAide(const QString& langueDemandee, bool visible) {
    guarded([&] {
        for (const ConsoleView::Control& control : view_.controls()) {
            switch (control.kind) {
            case ConsoleView::Kind::Button:
            case ConsoleView::Kind::ComboBox:
            case ConsoleView::Kind::TextBox:
            case ConsoleView::Kind::OptionButton:
            case ConsoleView::Kind::DatePicker:
            case ConsoleView::Kind::CheckBox: {
                const QString key = controlKey(control.name);
                skipOnError([&] {
                    view_.setToolTip(control.name, visible ? config_.LitMessage(
                                                                 langueDemandee,
                                                                 QStringLiteral("AIDE_") + key, key)
                                                           : QString());
                });
                break;
            }
            default:
                break;
            }
        }
    });
}

void MainScreenLogic::BasculeAide() {
    aideVisible_ = !aideVisible_;
    ChangeAide(langue(), aideVisible_);
}

void MainScreenLogic::ListeLangues_Click() {
    guarded([&] {
        const QString choisie = langue();
        ChangeTextes(choisie, false);
        DayLightSaving(false, false, true);
        config_.EcritValeurXML(QStringLiteral("Langue"), choisie);
    });
}

// ---------------------------------------------------- daylight saving, clock

void MainScreenLogic::EnableDaylightSaving_Click() {
    guarded([&] { timekeeping_->rule->EnableDaylightSaving_Click(); });
}

void MainScreenLogic::CommandCalibrationCLK_Click() {
    guarded([&] {
        BusyScope busy(*this);
        timekeeping_->calibration->CommandCalibrationCLK_Click();
    });
}

void MainScreenLogic::CheckClockSpeed_Click() {
    guarded([&] {
        BusyScope busy(*this);
        timekeeping_->calibration->CheckClockSpeed_Click();
    });
}

void MainScreenLogic::DayLightSaving(bool ecriture, bool enConfiguration, bool initialisation) {
    timekeeping_->rule->DayLightSaving(ecriture, enConfiguration, initialisation);
}

void MainScreenLogic::CalculeDeriveTemps() {
    timekeeping_->calibration->CalculeDeriveTemps();
}

int MainScreenLogic::MesureHorloge(bool ecriture) {
    return timekeeping_->calibration->MesureHorloge(ecriture);
}

} // namespace qv
