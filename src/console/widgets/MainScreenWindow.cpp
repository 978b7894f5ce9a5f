#include "MainScreenWindow.h"

#include "AboutWindow.h"
#include "ConnectWindow.h"
#include "SplashWindow.h"
#include "device/Device.h"
#include "device/MemoryMap.h"
#include "link/DeviceWorker.h"
#include "link/Dialogs.h"
#include "ui_MainScreen.h"
#include "view/UiBridge.h"
#include "view/widgets/Brand.h"

#include <QCloseEvent>
#include <QFontDatabase>
#include <QProgressBar>
#include <QStatusBar>
#include <QStyle>
#include <QTextDocument>

namespace qv {

namespace {
const QString kTimerEntree = QStringLiteral("TimerEntree");
const QString kTest = QStringLiteral("test");
// How long the write cycle's wait sleeps when nothing comes.
constexpr int kQueuedEventsWaitMs = 20;
} // namespace

MainScreenWindow::MainScreenWindow(Device& device, ConfigDocument& config, Conditions& conditions,
                                   Dialogs& dialogs, DeviceWorker& worker, UiBridge& bridge,
                                   QWidget* parent)
    : QMainWindow(parent), ui_(std::make_unique<Ui::MainScreen>()), widgets_(this),
      marshalled_(bridge, widgets_), device_(device), config_(config), dialogs_(dialogs),
      worker_(worker), bridge_(bridge) {
    ui_->setupUi(this);
    setWindowIcon(applicationIcon());
    ui_->Image1->setPixmap(brandStrip(40, devicePixelRatioF()));
    ui_->Madate->setDate(QDate::currentDate());
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    ui_->JournalEEPROM->setFont(fixed);
    // An address and sixteen bytes a line, and room for eight lines before
    // it scrolls.
    const QFontMetrics metrics(fixed);
    const int scrollBar = ui_->JournalEEPROM->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    ui_->JournalEEPROM->setMinimumWidth(
        metrics.horizontalAdvance(QString(54, QLatin1Char('0'))) + scrollBar +
        2 * ui_->JournalEEPROM->frameWidth() +
        2 * static_cast<int>(ui_->JournalEEPROM->document()->documentMargin()));
    ui_->JournalEEPROM->setMinimumHeight(metrics.lineSpacing() * 8);

    // The device thread at work: a bar that moves while a job runs.
    activity_ = new QProgressBar(this);
    activity_->setObjectName(QStringLiteral("Activite"));
    activity_->setProperty("consoleKind", QStringLiteral("Other"));
    activity_->setRange(0, 0);
    activity_->setMaximumWidth(120);
    activity_->setTextVisible(false);
    activity_->hide();
    statusBar()->addPermanentWidget(activity_);

    TimerEntree.setObjectName(kTimerEntree);
    TimerEntree.setInterval(1000);
    test.setObjectName(kTest);
    // Timeur stands on the form and has never had anything to do.
    Timeur.setObjectName(QStringLiteral("Timeur"));

    logic_ =
        std::make_unique<MainScreenLogic>(marshalled_, *this, device, config, conditions, dialogs);
    worker_.setActivityObserver(
        [this](bool busy) { bridge_.post([this, busy] { showActivity(busy); }); });
    wire();
}

MainScreenWindow::~MainScreenWindow() {
    // The jobs refer to this window: none may outlive it.
    if (!closing_) {
        closing_ = true;
        bridge_.close();
        if (releaseDevice_)
            releaseDevice_();
        worker_.stop([this] { logic_->Form_Unload(); });
    }
    worker_.setActivityObserver({});
}

void MainScreenWindow::post(void (MainScreenLogic::*handler)()) {
    worker_.post([this, handler] { ((*logic_).*handler)(); });
}

void MainScreenWindow::afterJobs(std::function<void()> work) {
    worker_.post([this, work = std::move(work)] { bridge_.post(work); });
}

void MainScreenWindow::postTick(const QString& timer, void (MainScreenLogic::*handler)()) {
    worker_.postTick(timer, [this, handler] { ((*logic_).*handler)(); });
}

void MainScreenWindow::wire() {
    using L = MainScreenLogic;
    const auto click = [this](QAbstractButton* button, void (L::*handler)()) {
        // `clicked` is the operator's alone: a state set from code stays quiet.
        connect(button, &QAbstractButton::clicked, this, [this, handler] { post(handler); });
    };
    click(ui_->Lire, &L::Lire_Click);
    click(ui_->Ecrire, &L::Ecrire_Click);
    click(ui_->Sortir, &L::Sortir_Click);
    click(ui_->SetTime, &L::SetTime_Click);
    click(ui_->Activer, &L::Activer_Click);
    click(ui_->ArretProgramme, &L::ArretProgramme_Click);
    click(ui_->Continu, &L::Continu_Click);
    click(ui_->Programmer, &L::Programmer_Click);
    click(ui_->Seuilbatterie, &L::Seuilbatterie_Click);
    click(ui_->RazCtn, &L::RazCtn_Click);
    click(ui_->ForceBoot, &L::ForceBoot_Click);
    click(ui_->CommandCalibrationCLK, &L::CommandCalibrationCLK_Click);
    click(ui_->CheckClockSpeed, &L::CheckClockSpeed_Click);
    click(ui_->EnableDaylightSaving, &L::EnableDaylightSaving_Click);
    connect(ui_->LireJournal, &QAbstractButton::clicked, this, [this] { showDumpEEPROM(); });

    const auto menu = [this](QAction* action, void (L::*handler)()) {
        connect(action, &QAction::triggered, this, [this, handler] { post(handler); });
    };
    menu(ui_->mnuPLC, &L::mnuPLC_Click);
    menu(ui_->mnurapport, &L::mnurapport_Click);
    menu(ui_->nmuBootLoad, &L::nmuBootLoad_Click);
    menu(ui_->mnuApropos_1, &L::mnuApropos_Click);
    // The list opens once the jobs asked for before it are over, and the
    // read that may follow is a job of its own.
    connect(ui_->MnuConnect, &QAction::triggered, this, [this] {
        afterJobs([this] { openConnection([this] { logic_->MnuConnect_ApresConnexion(); }); });
    });

    connect(ui_->mnuProduction, &QAction::triggered, this, [this] { openProductionBench(); });

    connect(ui_->ListeLangues, &QComboBox::activated, this,
            [this] { post(&L::ListeLangues_Click); });
    connect(ui_->ValeurManualAction, &QLineEdit::textEdited, this,
            [this] { post(&L::ValeurManualAction_Change); });

    connect(&TimerEntree, &QTimer::timeout, this,
            [this] { postTick(kTimerEntree, &L::TimerEntree_Timer); });
    connect(&test, &QTimer::timeout, this, [this] { postTick(kTest, &L::test_Timer); });
}

void MainScreenWindow::start(std::function<void()> started) {
    using L = MainScreenLogic;
    // The start is one sequence: the list's choice, the first read and the
    // showing of the window follow each other with nothing between.
    post(&L::Form_Load_AvantConnexion);
    afterJobs([this, started = std::move(started)]() mutable {
        openConnection([this, started = std::move(started)]() mutable {
            logic_->Form_Load_ApresConnexion();
            bridge_.post([this, started = std::move(started)]() mutable {
                // The window shows once the start is over, then activates.
                loaded_ = true;
                if (!isVisible())
                    show();
                post(&L::Form_Activate);
                if (started)
                    afterJobs(std::move(started));
            });
        });
    });
}

void MainScreenWindow::openProductionBench() {
    if (!openProductionBench_) {
        worker_.post([this] { notInThisBuild(QStringLiteral("The production bench")); });
        return;
    }
    worker_.post([this] {
        logic_->LibereAppareil();
        bridge_.post([this] {
            openProductionBench_([this] {
                if (!closing_)
                    openConnection([this] { logic_->MnuConnect_ApresConnexion(); });
            });
        });
    });
}

void MainScreenWindow::openConnection(std::function<void()> afterClose) {
    auto* window = new ConnectWindow(
        device_, marshalled_, dialogs_, [this](const QString& key) { return logic_->message(key); },
        [this](bool demande) { UpdateFirmware(demande); }, this, &worker_, &bridge_);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setWindowModality(Qt::ApplicationModal);
    window->setAfterClose(std::move(afterClose));
    if (connectionScript_)
        connectionScript_(*window);
    window->show();
}

void MainScreenWindow::showActivity(bool busy) {
    activity_->setVisible(busy);
    if (busy)
        setCursor(Qt::BusyCursor);
    else
        unsetCursor();
}

void MainScreenWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && loaded_ && !closing_)
        post(&MainScreenLogic::Form_Activate);
}

void MainScreenWindow::closeEvent(QCloseEvent* event) {
    if (!closing_) {
        // Nothing may wait for this thread from here on, the sequence under
        // way ends at its next exchange, and the link is closed once more
        // on the device thread before it ends.
        closing_ = true;
        TimerEntree.stop();
        test.stop();
        bridge_.close();
        if (releaseDevice_)
            releaseDevice_();
        worker_.stop([this] { logic_->Form_Unload(); });
    }
    event->accept();
}

void MainScreenWindow::showDumpEEPROM() {
    worker_.post([this] {
        if (!device_.state().bUsbConnected)
            return;
        const QStringList lines = logic_->DumpEEPROM();
        QStringList numbered;
        for (int i = 0; i < lines.size(); ++i)
            numbered << QStringLiteral("%1  %2")
                            .arg(Address::LogArea + 16 * i, 3, 10)
                            .arg(lines[i].trimmed());
        bridge_.post([this, text = numbered.join(QLatin1Char('\n'))] {
            ui_->JournalEEPROM->setPlainText(text);
        });
    });
}

// ------------------------------------------------------------ ConsoleHost

void MainScreenWindow::restartTimer(QTimer& timer, int intervalMs) {
    bridge_.call([&] {
        // A tick that waits belongs to the timer as it was.
        if (intervalMs > 0)
            timer.start(intervalMs);
        else
            timer.stop();
        worker_.dropTick(timer.objectName());
    });
}

void MainScreenWindow::startTimerEntree() {
    restartTimer(TimerEntree, TimerEntree.interval());
}

void MainScreenWindow::stopTimerEntree() {
    restartTimer(TimerEntree, 0);
}

bool MainScreenWindow::timerEntreeRunning() const {
    bool running = false;
    bridge_.call([&] { running = TimerEntree.isActive(); });
    return running;
}

void MainScreenWindow::startTest(int intervalMs) {
    restartTimer(test, intervalMs);
}

void MainScreenWindow::stopTest() {
    restartTimer(test, 0);
}

bool MainScreenWindow::runQueuedEvents() {
    return worker_.runQueued(kQueuedEventsWaitMs);
}

void MainScreenWindow::showConnection() {
    // The window drives the list itself (start(), the Connect menu), so as
    // not to hold the device thread while the operator chooses; a sequence
    // that asks for it here gets the list without waiting for it.
    bridge_.post([this] { openConnection({}); });
}

void MainScreenWindow::notInThisBuild(const QString& what) {
    dialogs_.message(logic_->message(QStringLiteral("%1 is not part of this version of the tool."))
                         .arg(logic_->message(what)),
                     QString(), MsgBox::Exclamation);
}

void MainScreenWindow::showProgrammation() {
    if (!openProgrammation_) {
        notInThisBuild(QStringLiteral("The programme editor"));
        return;
    }
    // The editor's only exchange, the default state, is made here, before
    // the form opens, so that the form never waits for the device.
    EditorDeviceState state;
    state.timeOut = device_.state().TimeOut;
    if (!state.timeOut)
        state.defaultStateByte = device_.LitEEprom(Address::DefaultOutputStates);
    bridge_.post([this, state] { openProgrammation_(state); });
}

void MainScreenWindow::showProduction() {
    if (!openProduction_) {
        notInThisBuild(QStringLiteral("The production report"));
        return;
    }
    bridge_.post([this] { openProduction_(); });
}

void MainScreenWindow::showAbout() {
    bridge_.post([this] {
        auto* about =
            new AboutWindow([this](const QString& key) { return logic_->message(key); }, this);
        about->setAttribute(Qt::WA_DeleteOnClose);
        about->open();
    });
}

void MainScreenWindow::showSplash() {
    bridge_.post([] {
        auto* splash = new SplashWindow(nullptr);
        splash->showFor(SplashWindow::kDefaultMs);
    });
}

void MainScreenWindow::UpdateFirmware(bool demande) {
    if (updateFirmware_)
        updateFirmware_(demande);
    else
        notInThisBuild(QStringLiteral("The firmware update"));
}

void MainScreenWindow::closeApplication() {
    bridge_.post([this] { close(); });
}

} // namespace qv
