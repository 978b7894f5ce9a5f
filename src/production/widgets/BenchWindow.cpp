#include "BenchWindow.h"

#include "ProductionBench.h"
#include "config/ConfigDocument.h"
#include "link/Bus.h"
#include "link/Dialogs.h"
#include "production/ControllerChannel.h"
#include "production/ProductionRun.h"
#include "ui_frmBench.h"

#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QProgressBar>
#include <stdexcept>

namespace qv {

namespace {

enum Column { ColumnId, ColumnModel, ColumnFirmware, ColumnSerial, ColumnState, ColumnProgress };

// Column headers, by the key of their text.
const char* const kHeaderKeys[] = {"Controller id", "Model", "Firmware",
                                   "Serial number", "State", "Progress"};

} // namespace

// Hears the controllers' threads and passes everything on as signals, which
// the window receives queued on its own thread.
class BenchWindow::Listener : public ProductionRun::Listener {
public:
    explicit Listener(BenchWindow& window) : window_(window) {}
    void stepStarted(size_t index, CommissionStep step) override {
        Q_EMIT window_.stepReached(static_cast<int>(index), static_cast<int>(step));
    }
    void controllerEnded(size_t index, const CommissionOutcome& o) override {
        const QString serial = o.serial ? QString::number(*o.serial) : o.serialRead;
        Q_EMIT window_.controllerEnded(static_cast<int>(index), o.ok, static_cast<int>(o.reached),
                                       serial, o.failure, o.seconds);
    }
    void runEnded() override { Q_EMIT window_.runEnded(); }

private:
    BenchWindow& window_;
};

BenchWindow::BenchWindow(Bus& bus, ConfigDocument& config, Dialogs& dialogs, QString language,
                         QWidget* parent)
    : QWidget(parent, Qt::Window), ui_(std::make_unique<Ui::frmBench>()), bus_(bus),
      config_(config), dialogs_(dialogs), language_(std::move(language)),
      listener_(std::make_unique<Listener>(*this)) {
    ui_->setupUi(this);
    // The state takes what room there is: it holds a failure's reason.
    QHeaderView* header = ui_->ListeControleurs->horizontalHeader();
    header->setStretchLastSection(false);
    header->setSectionResizeMode(QHeaderView::ResizeToContents);
    header->setSectionResizeMode(ColumnState, QHeaderView::Stretch);
    header->setSectionResizeMode(ColumnProgress, QHeaderView::Fixed);
    header->resizeSection(ColumnProgress, 110);
    translate();

    connect(this, &BenchWindow::identified, this, &BenchWindow::showIdentity, Qt::QueuedConnection);
    connect(this, &BenchWindow::stepReached, this, &BenchWindow::showStep, Qt::QueuedConnection);
    connect(this, &BenchWindow::controllerEnded, this, &BenchWindow::showEnd, Qt::QueuedConnection);
    connect(this, &BenchWindow::runEnded, this, &BenchWindow::finishRun, Qt::QueuedConnection);
    connect(ui_->Parcourir, &QPushButton::clicked, this, &BenchWindow::browse);
    connect(ui_->Demarrer, &QPushButton::clicked, this, [this] { start(); });
    connect(ui_->Arreter, &QPushButton::clicked, this, &BenchWindow::stop);
}

BenchWindow::~BenchWindow() {
    if (run_)
        run_->stop();
    run_.reset(); // joins the controllers' threads
    joinIdentityReader();
}

QString BenchWindow::text(const QString& key) {
    return config_.LitMessage(language_, key, QString());
}

void BenchWindow::translate() {
    setWindowTitle(config_.LitMessage(language_, QStringLiteral("frmBench"), windowTitle()));
    for (QLabel* label : {ui_->LabelFichier, ui_->LabelNumeroCommande, ui_->LabelPremiereSerie})
        label->setText(config_.LitMessage(language_, label->objectName(), label->text()));
    for (QPushButton* button : {ui_->Parcourir, ui_->Demarrer, ui_->Arreter})
        button->setText(config_.LitMessage(language_, button->objectName(), button->text()));
    QStringList headers;
    for (const char* key : kHeaderKeys)
        headers << text(QString::fromLatin1(key));
    ui_->ListeControleurs->setHorizontalHeaderLabels(headers);
}

void BenchWindow::setLinkSetup(std::function<void(FrameLink&)> setup) {
    linkSetup_ = std::move(setup);
}
void BenchWindow::setRestartWait(int milliseconds) {
    restartWaitMs_ = milliseconds;
}
void BenchWindow::setOnClosed(std::function<void()> onClosed) {
    onClosed_ = std::move(onClosed);
}

void BenchWindow::joinIdentityReader() {
    if (identityReader_.joinable())
        identityReader_.join();
}

void BenchWindow::setCell(int row, int column, const QString& value, const QString& toolTip) {
    auto* item = ui_->ListeControleurs->item(row, column);
    if (!item) {
        item = new QTableWidgetItem;
        ui_->ListeControleurs->setItem(row, column, item);
    }
    item->setText(value);
    item->setToolTip(toolTip);
}

void BenchWindow::refresh() {
    if (running())
        return;
    joinIdentityReader();
    ids_.clear();
    const int count = bus_.deviceCount();
    for (int i = 0; i < count; ++i)
        ids_.push_back(bus_.uniqueId(i));
    auto* table = ui_->ListeControleurs;
    table->setRowCount(static_cast<int>(ids_.size()));
    for (int row = 0; row < table->rowCount(); ++row) {
        setCell(row, ColumnId, QString::number(ids_[static_cast<size_t>(row)]));
        for (int column : {ColumnModel, ColumnFirmware, ColumnSerial})
            setCell(row, column, QStringLiteral("--"));
        setCell(row, ColumnState, text(QStringLiteral("Waiting")));
        auto* bar = new QProgressBar;
        bar->setRange(0, kCommissionSteps);
        bar->setFormat(QStringLiteral("%v/%m"));
        bar->setValue(0);
        table->setCellWidget(row, ColumnProgress, bar);
    }
    ui_->Resume->clear();
    updateButtons();

    // Each controller's identity on its own thread, as the run will go.
    const QString configPath = config_.configPath();
    identityReader_ = std::thread([this, ids = ids_, configPath, language = language_] {
        runOnEachController(ids, [&](size_t index, std::int32_t id) {
            ControllerIdentity identity;
            try {
                ControllerChannel channel(bus_, id, configPath, language);
                if (linkSetup_)
                    linkSetup_(channel.link());
                identity = readControllerIdentity(channel);
            } catch (const ConfigError&) {
            }
            Q_EMIT identified(static_cast<int>(index), identity.answered, identity.model,
                              identity.firmware, identity.serial);
        });
    });
}

void BenchWindow::showIdentity(int row, bool answered, const QString& model,
                               const QString& firmware, const QString& serial) {
    // An identity read before a run may arrive after its start: the reader
    // has ended by then, so it is still the controller's own.
    if (row >= ui_->ListeControleurs->rowCount())
        return;
    if (!answered) {
        setCell(row, ColumnState, text(QStringLiteral("Not responding")));
        return;
    }
    setCell(row, ColumnModel, model);
    setCell(row, ColumnFirmware, firmware);
    setCell(row, ColumnSerial, serial.isEmpty() ? QStringLiteral("--") : serial);
}

void BenchWindow::browse() {
    const QString chosen = QFileDialog::getOpenFileName(
        this, text(QStringLiteral("LabelFichier")), QFileInfo(config_.configPath()).absolutePath(),
        QStringLiteral("*.prg"));
    if (!chosen.isEmpty())
        ui_->Fichier->setText(QDir::toNativeSeparators(chosen));
}

bool BenchWindow::start() {
    if (running())
        return false;
    const QString file =
        QFileInfo(QDir::fromNativeSeparators(ui_->Fichier->text().trimmed())).absoluteFilePath();
    if (ui_->Fichier->text().trimmed().isEmpty() || !QFileInfo(file).isFile()) {
        dialogs_.message(text(QStringLiteral("Choose a programme file")), QString(),
                         MsgBox::Exclamation);
        return false;
    }
    try {
        config_.load(file);
    } catch (const ConfigError& e) {
        dialogs_.message(e.text(), QStringLiteral("Quorvel"), MsgBox::Critical);
        return false;
    }
    if (ids_.empty()) {
        dialogs_.message(text(QStringLiteral("No controller attached")), QString(),
                         MsgBox::Exclamation);
        return false;
    }
    std::optional<std::int64_t> firstSerial;
    const QString serialText = ui_->PremiereSerie->text().trimmed();
    if (!serialText.isEmpty()) {
        bool ok = false;
        firstSerial = serialText.toLongLong(&ok);
        if (!ok) {
            dialogs_.message(text(QStringLiteral("The first serial number is not valid")),
                             QString(), MsgBox::Exclamation);
            return false;
        }
    }

    CommissionJob job;
    job.programmeFile = file;
    job.order = ui_->Commande->text();
    job.applicationDirectory = QFileInfo(config_.configPath()).absolutePath();
    job.restartWaitMs = restartWaitMs_;
    joinIdentityReader();
    try {
        run_ = std::make_unique<ProductionRun>(bus_, config_.configPath(), language_, job, ids_,
                                               firstSerial);
    } catch (const std::range_error&) {
        dialogs_.message(text(QStringLiteral("The first serial number is not valid")), QString(),
                         MsgBox::Exclamation);
        return false;
    }
    if (linkSetup_)
        run_->setLinkSetup(linkSetup_);
    succeeded_ = failed_ = 0;
    for (int row = 0; row < ui_->ListeControleurs->rowCount(); ++row) {
        setCell(row, ColumnState, text(QStringLiteral("Waiting")));
        if (auto* bar =
                qobject_cast<QProgressBar*>(ui_->ListeControleurs->cellWidget(row, ColumnProgress)))
            bar->setValue(0);
    }
    ui_->Resume->setText(text(QStringLiteral("%1 controller(s) running")).arg(ids_.size()));
    run_->start(*listener_);
    updateButtons();
    return true;
}

void BenchWindow::stop() {
    if (run_)
        run_->stop();
}

bool BenchWindow::running() const {
    return run_ != nullptr;
}

void BenchWindow::showStep(int row, int step) {
    if (row >= ui_->ListeControleurs->rowCount())
        return;
    setCell(row, ColumnState, text(commissionStepName(static_cast<CommissionStep>(step))));
    if (auto* bar =
            qobject_cast<QProgressBar*>(ui_->ListeControleurs->cellWidget(row, ColumnProgress)))
        bar->setValue(step);
}

void BenchWindow::showEnd(int row, bool ok, int step, const QString& serial, const QString& failure,
                          double seconds) {
    if (row >= ui_->ListeControleurs->rowCount())
        return;
    (ok ? succeeded_ : failed_)++;
    if (!serial.isEmpty())
        setCell(row, ColumnSerial, serial);
    const QString where = text(commissionStepName(static_cast<CommissionStep>(step)));
    const QString seconds1 = QString::number(seconds, 'f', 1) + QStringLiteral(" s");
    if (ok)
        setCell(row, ColumnState,
                text(QStringLiteral("Succeeded")) + QStringLiteral(" (") + seconds1 +
                    QLatin1Char(')'));
    else
        setCell(row, ColumnState,
                text(QStringLiteral("Failed")) + QStringLiteral(" (") + where +
                    QStringLiteral(") : ") + failure,
                failure);
    if (auto* bar =
            qobject_cast<QProgressBar*>(ui_->ListeControleurs->cellWidget(row, ColumnProgress)))
        bar->setValue(ok ? kCommissionSteps : step);
}

void BenchWindow::finishRun() {
    run_.reset();
    ui_->Resume->setText(
        text(QStringLiteral("%1 succeeded, %2 failed")).arg(succeeded_).arg(failed_));
    updateButtons();
    if (closeWhenDone_)
        close();
}

void BenchWindow::updateButtons() {
    const bool busy = running();
    ui_->Demarrer->setEnabled(!busy && !ids_.empty());
    ui_->Arreter->setEnabled(busy);
    ui_->Parcourir->setEnabled(!busy);
    ui_->Fichier->setEnabled(!busy);
    ui_->Commande->setEnabled(!busy);
    ui_->PremiereSerie->setEnabled(!busy);
}

void BenchWindow::closeEvent(QCloseEvent* event) {
    // The controllers' threads end first: each stops before its next step,
    // and the window closes when the last has ended.
    if (running()) {
        closeWhenDone_ = true;
        stop();
        event->ignore();
        return;
    }
    joinIdentityReader();
    event->accept();
    if (onClosed_) {
        auto onClosed = std::move(onClosed_);
        onClosed_ = nullptr;
        onClosed();
    }
}

void openProductionBench(QWidget* parent, Bus& bus, ConfigDocument& config, Dialogs& dialogs,
                         const QString& language, std::function<void()> onClosed) {
    auto* window = new BenchWindow(bus, config, dialogs, language, parent);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setOnClosed(std::move(onClosed));
    window->show();
    window->refresh();
}

} // namespace qv
