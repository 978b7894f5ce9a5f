#include "ConnectWindow.h"

#include "link/Dialogs.h"
#include "link/ResponsiveWait.h"
#include "ui_frmConnect.h"

#include <QTimer>

namespace qv {

namespace {

const QString kListe = QStringLiteral("ListeSorvane");
const QString kViewAll = QStringLiteral("ViewAll");

} // namespace

ConnectWindow::ConnectWindow(Device& device, ConsoleView& mainScreen, Dialogs& dialogs,
                             MessageLookup message, std::function<void(bool)> updateFirmware,
                             QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::frmConnect>()), view_(this), device_(device),
      mainScreen_(mainScreen), dialogs_(dialogs), message_(std::move(message)),
      updateFirmware_(std::move(updateFirmware)),
      selection_(device, [this](const QString& key) { return text(key); }) {
    ui_->setupUi(this);
    // A second of waiting per controller: the window keeps painting meanwhile.
    selection_.setProbeWait(&waitResponsively);

    // Operator-only signals: selecting a line from code must not connect.
    connect(ui_->ListeSorvane, &QListWidget::itemClicked, this, [this] { ListeSorvane_Click(); });
    connect(ui_->ListeSorvane, &QListWidget::itemActivated, this, [this] { ListeSorvane_Click(); });
    connect(ui_->ViewAll, &QCheckBox::clicked, this, [this] { ViewAll_Click(); });
    connect(ui_->ExitEtalonnage, &QPushButton::clicked, this, [this] { ExitEtalonnage_Click(); });

    // The window's captions in the language of the main window.
    for (const QString& name : {kViewAll, QStringLiteral("ExitEtalonnage")}) {
        const QString caption = message_ ? message_(name) : QString();
        if (!caption.isEmpty())
            view_.setText(name, caption);
    }
    QString title = mainScreen_.text(QStringLiteral("MnuConnect"));
    title.remove(QLatin1Char('&'));
    if (!title.isEmpty())
        setWindowTitle(title);
}

ConnectWindow::~ConnectWindow() = default;

QString ConnectWindow::text(const QString& key) const {
    return message_ ? message_(key) : key;
}

void ConnectWindow::setProbeWait(std::function<void(int)> wait) {
    selection_.setProbeWait(std::move(wait));
}

void ConnectWindow::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!loaded_)
        QTimer::singleShot(0, this, [this] {
            if (!loaded_)
                Form_Load();
        });
}

void ConnectWindow::Form_Load() {
    loaded_ = true;
    enRafraichissement_ = true;
    view_.setChecked(kViewAll, false);
    RafraichitListe(false);
    enRafraichissement_ = false;
    device_.state().bUsbConnected = false;
    for (const char* control : {"Lire", "Ecrire", "SetTime", "mnuPLC"})
        mainScreen_.setEnabled(QString::fromLatin1(control), false);
}

void ConnectWindow::ViewAll_Click() {
    enRafraichissement_ = true;
    RafraichitListe(view_.isChecked(kViewAll));
    enRafraichissement_ = false;
}

void ConnectWindow::RafraichitListe(bool toutAfficher) {
    view_.setRows(kListe, {});
    view_.setBusyCursor(true);
    const DeviceList list = selection_.RafraichitListe(toutAfficher);
    nombreUsb_ = list.NombreUsb;
    std::vector<ConsoleView::Row> rows;
    for (const DeviceListLine& line : list.lines)
        rows.push_back({line.text, static_cast<double>(line.itemData)});
    view_.setRows(kListe, rows);
    view_.setCurrentRow(kListe, list.selectedRow);
    view_.setBusyCursor(false);
}

void ConnectWindow::ListeSorvane_Click() {
    if (enRafraichissement_ || result() == QDialog::Accepted)
        return;
    const int row = view_.currentRow(kListe);
    const auto rows = view_.rows(kListe);
    if (row < 0 || row >= static_cast<int>(rows.size()))
        return;
    const auto itemData = static_cast<std::int32_t>(rows[static_cast<size_t>(row)].itemData);
    PublicState& state = device_.state();

    if (itemData == kMarkerOldFirmware) {
        mainScreen_.setEnabled(QStringLiteral("nmuBootLoad"), true);
        const int answer = dialogs_.message(
            text(QStringLiteral(" The connected device firmware must be updated to v2.70 or "
                                "higher. Would you like to proceed with firmware update?")),
            QStringLiteral("Quorvel"), MsgBox::OkCancel | MsgBox::Critical);
        if (answer == MsgBox::AnswerOk && updateFirmware_)
            updateFirmware_(false);
        state.TimeOut = true;
    } else if (itemData == kMarkerUnsupported) {
        dialogs_.message(text(QStringLiteral(" Unsupported hardware. Please contact Tessaluk")),
                         QStringLiteral("Quorvel"), MsgBox::Critical);
        mainScreen_.setEnabled(QStringLiteral("nmuBootLoad"), false);
        state.TimeOut = true;
    } else {
        state.UsbID = itemData;
        mainScreen_.setEnabled(QStringLiteral("nmuBootLoad"), true);
        state.bUsbConnected = true;
        for (const char* control : {"Lire", "Ecrire", "SetTime", "mnuPLC"})
            mainScreen_.setEnabled(QString::fromLatin1(control), true);
    }
    accept();
}

void ConnectWindow::ExitEtalonnage_Click() {
    PublicState& state = device_.state();
    state.TimeOut = true;
    state.bUsbConnected = false;
    for (const char* control : {"Lire", "Ecrire", "SetTime"})
        mainScreen_.setEnabled(QString::fromLatin1(control), false);
    // The programme editor stays usable without a device.
    mainScreen_.setEnabled(QStringLiteral("mnuPLC"), true);
    reject();
}

} // namespace qv
