#include "MainScreenWindow.h"

#include "AboutWindow.h"
#include "Brand.h"
#include "SplashWindow.h"
#include "device/Device.h"
#include "device/widgets/ConnectWindow.h"
#include "link/Dialogs.h"
#include "ui_MainScreen.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFontDatabase>
#include <QStyle>
#include <QTextDocument>

namespace qv {

MainScreenWindow::MainScreenWindow(Device& device, ConfigDocument& config, Conditions& conditions,
                                   Dialogs& dialogs, QWidget* parent)
    : QMainWindow(parent), ui_(std::make_unique<Ui::MainScreen>()), view_(this), device_(device),
      config_(config), dialogs_(dialogs) {
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

    TimerEntree.setObjectName(QStringLiteral("TimerEntree"));
    TimerEntree.setInterval(1000);
    test.setObjectName(QStringLiteral("test"));
    // Timeur stands on the form and has never had anything to do.
    Timeur.setObjectName(QStringLiteral("Timeur"));

    logic_ = std::make_unique<MainScreenLogic>(view_, *this, device, config, conditions, dialogs);
    wire();
}

MainScreenWindow::~MainScreenWindow() = default;

void MainScreenWindow::wire() {
    using L = MainScreenLogic;
    const auto click = [this](QAbstractButton* button, void (L::*handler)()) {
        // `clicked` is the operator's alone: a state set from code stays quiet.
        connect(button, &QAbstractButton::clicked, this, [this, handler] { handle(handler); });
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
        connect(action, &QAction::triggered, this, [this, handler] { handle(handler); });
    };
    menu(ui_->MnuConnect, &L::MnuConnect_Click);
    menu(ui_->mnuPLC, &L::mnuPLC_Click);
    menu(ui_->mnurapport, &L::mnurapport_Click);
    menu(ui_->nmuBootLoad, &L::nmuBootLoad_Click);
    menu(ui_->mnuApropos_1, &L::mnuApropos_Click);

    connect(ui_->ListeLangues, &QComboBox::activated, this,
            [this] { handle(&L::ListeLangues_Click); });
    connect(ui_->ValeurManualAction, &QLineEdit::textEdited, this,
            [this] { handle(&L::ValeurManualAction_Change); });

    connect(&TimerEntree, &QTimer::timeout, this, [this] { onTimerEntree(); });
    // The wait of the write cycle runs inside a handler and needs these
    // ticks, so they are never held back.
    connect(&test, &QTimer::timeout, this, [this] { logic_->test_Timer(); });
}

void MainScreenWindow::handle(void (MainScreenLogic::*handler)()) {
    if (logic_->busy() || windowBusy_ > 0)
        return;
    ((*logic_).*handler)();
}

void MainScreenWindow::onTimerEntree() {
    // A tick that falls inside a running sequence (a box of the link, the
    // wait of an exchange) is skipped: exchanges never interleave.
    if (logic_->busy() || windowBusy_ > 0)
        return;
    logic_->TimerEntree_Timer();
}

void MainScreenWindow::start() {
    // The whole start is one sequence for the operator: hourglass, except
    // over the connection list, which takes it back while it waits for a
    // choice.
    view_.setBusyCursor(true);
    logic_->Form_Load();
    view_.setBusyCursor(false);
    loaded_ = true;
    if (!isVisible())
        show();
    logic_->Form_Activate();
}

void MainScreenWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && loaded_ && !closing_)
        logic_->Form_Activate();
}

void MainScreenWindow::closeEvent(QCloseEvent* event) {
    if (logic_->busy() || windowBusy_ > 0) {
        // The sequence under way owns the link; the window goes when it ends.
        event->ignore();
        return;
    }
    closing_ = true;
    TimerEntree.stop();
    test.stop();
    logic_->Form_Unload();
    event->accept();
}

void MainScreenWindow::showDumpEEPROM() {
    if (logic_->busy() || windowBusy_ > 0)
        return;
    ++windowBusy_;
    view_.setBusyCursor(true);
    const QStringList lines = logic_->DumpEEPROM();
    QStringList numbered;
    for (int i = 0; i < lines.size(); ++i)
        numbered << QStringLiteral("%1  %2").arg(256 + 16 * i, 3, 10).arg(lines[i].trimmed());
    ui_->JournalEEPROM->setPlainText(numbered.join(QLatin1Char('\n')));
    view_.setBusyCursor(false);
    --windowBusy_;
}

// ------------------------------------------------------------ ConsoleHost

void MainScreenWindow::startTimerEntree() {
    TimerEntree.start();
}

void MainScreenWindow::stopTimerEntree() {
    TimerEntree.stop();
}

bool MainScreenWindow::timerEntreeRunning() const {
    return TimerEntree.isActive();
}

void MainScreenWindow::startTest(int intervalMs) {
    test.start(intervalMs);
}

void MainScreenWindow::stopTest() {
    test.stop();
}

void MainScreenWindow::showConnection() {
    if (connectOverride_) {
        connectOverride_();
        return;
    }
    // The operator picks with the arrow, whatever sequence opened the list.
    QApplication::setOverrideCursor(Qt::ArrowCursor);
    // The window stands behind the list from the start, already in its
    // language, so the first read is seen to fill it.
    if (!isVisible())
        show();
    ConnectWindow window(
        device_, view_, dialogs_, [this](const QString& key) { return logic_->message(key); },
        [this](bool demande) { UpdateFirmware(demande); }, this);
    window.exec();
    QApplication::restoreOverrideCursor();
}

void MainScreenWindow::notInThisBuild(const QString& what) {
    dialogs_.message(QStringLiteral("%1 is not part of this version of the tool.").arg(what),
                     QString(), MsgBox::Exclamation);
}

void MainScreenWindow::showProgrammation() {
    if (openProgrammation_)
        openProgrammation_();
    else
        notInThisBuild(QStringLiteral("The programme editor"));
}

void MainScreenWindow::showProduction() {
    if (openProduction_)
        openProduction_();
    else
        notInThisBuild(QStringLiteral("The production report"));
}

void MainScreenWindow::showAbout() {
    AboutWindow about([this](const QString& key) { return logic_->message(key); }, this);
    about.exec();
}

void MainScreenWindow::showSplash() {
    auto* splash = new SplashWindow(nullptr);
    splash->showFor(SplashWindow::kDefaultMs);
}

void MainScreenWindow::UpdateFirmware(bool demande) {
    if (updateFirmware_)
        updateFirmware_(demande);
    else
        notInThisBuild(QStringLiteral("The firmware update"));
}

void MainScreenWindow::closeApplication() {
    close();
}

} // namespace qv
