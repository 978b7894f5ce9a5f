// The main window's start, timers, menus and languages.
#include "MainScreenParts.h"

#include "ConsoleHost.h"
#include "config/ConfigDocument.h"
#include "config/OperatorText.h"
#include "device/Device.h"
#include "link/Dialogs.h"
#include "programme/Conditions.h"
#include "programme/ProgrammeStore.h"

namespace qv {

using namespace mainscreen;

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

void MainScreenLogic::guarded(const std::function<void()>& action) {
    // The old program died on these; the operator now gets the reason and
    // the window stays.
    try {
        action();
    } catch (const std::exception& e) {
        QString text;
        try {
            text = operatorText(e, config_, langue());
        } catch (const std::exception&) {
            // config.xml itself is what failed: its own words, untranslated.
            text = QString::fromStdString(e.what());
        }
        dialogs_.message(text, QStringLiteral("Quorvel"), MsgBox::Critical);
    }
}

void MainScreenLogic::skipOnError(const std::function<void()>& statement) {
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
    Form_Load_AvantConnexion();
    host_.showConnection();
    Form_Load_ApresConnexion();
}

void MainScreenLogic::Form_Load_AvantConnexion() {
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
    });
}

void MainScreenLogic::Form_Load_ApresConnexion() {
    guarded([&] {
        if (!device_.state().TimeOut)
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
    guarded([&] { host_.showConnection(); });
    MnuConnect_ApresConnexion();
}

void MainScreenLogic::MnuConnect_ApresConnexion() {
    guarded([&] {
        if (!device_.state().TimeOut)
            Lire_Click();
    });
}

void MainScreenLogic::LibereAppareil() {
    guarded([&] {
        untickContinu();
        host_.stopTimerEntree();
        device_.link().FermeUsb();
        device_.state().bUsbConnected = false;
        for (const char* control : {"Lire", "Ecrire", "SetTime"})
            view_.setEnabled(QString::fromLatin1(control), false);
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

} // namespace qv
