#include "ConnectLogic.h"

#include "link/Dialogs.h"
#include "view/ConsoleView.h"

namespace qv {

namespace {

const QString kListe = QStringLiteral("ListeSorvane");
const QString kViewAll = QStringLiteral("ViewAll");

} // namespace

ConnectLogic::ConnectLogic(ConsoleView& form, ConsoleView& mainScreen, Device& device,
                           Dialogs& dialogs, MessageLookup message,
                           std::function<void(bool)> updateFirmware,
                           std::function<void(bool)> close)
    : form_(form), mainScreen_(mainScreen), device_(device), dialogs_(dialogs),
      message_(std::move(message)), updateFirmware_(std::move(updateFirmware)),
      close_(std::move(close)),
      selection_(device, [this](const QString& key) { return text(key); }) {}

QString ConnectLogic::text(const QString& key) const {
    return message_ ? message_(key) : key;
}

void ConnectLogic::setProbeWait(std::function<void(int)> wait) {
    selection_.setProbeWait(std::move(wait));
}

void ConnectLogic::setMainControls(bool enabled) {
    for (const char* control : {"Lire", "Ecrire", "SetTime", "mnuPLC"})
        mainScreen_.setEnabled(QString::fromLatin1(control), enabled);
}

void ConnectLogic::Form_Load() {
    enRafraichissement_ = true;
    form_.setChecked(kViewAll, false);
    RafraichitListe(false);
    enRafraichissement_ = false;
    device_.state().bUsbConnected = false;
    setMainControls(false);
}

void ConnectLogic::ViewAll_Click() {
    enRafraichissement_ = true;
    RafraichitListe(form_.isChecked(kViewAll));
    enRafraichissement_ = false;
}

void ConnectLogic::RafraichitListe(bool toutAfficher) {
    form_.setRows(kListe, {});
    form_.setBusyCursor(true);
    const DeviceList list = selection_.RafraichitListe(toutAfficher);
    nombreUsb_ = list.NombreUsb;
    std::vector<ConsoleView::Row> rows;
    for (const DeviceListLine& line : list.lines)
        rows.push_back({line.text, static_cast<double>(line.itemData)});
    form_.setRows(kListe, rows);
    form_.setCurrentRow(kListe, list.selectedRow);
    form_.setBusyCursor(false);
}

void ConnectLogic::ListeSorvane_Click(int row) {
    if (enRafraichissement_ || closed_)
        return;
    if (row < 0)
        row = form_.currentRow(kListe);
    const auto rows = form_.rows(kListe);
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
        setMainControls(true);
    }
    finish(true);
}

void ConnectLogic::ExitEtalonnage_Click() {
    if (closed_)
        return;
    PublicState& state = device_.state();
    state.TimeOut = true;
    state.bUsbConnected = false;
    for (const char* control : {"Lire", "Ecrire", "SetTime"})
        mainScreen_.setEnabled(QString::fromLatin1(control), false);
    // The programme editor stays usable without a device.
    mainScreen_.setEnabled(QStringLiteral("mnuPLC"), true);
    finish(false);
}

void ConnectLogic::finish(bool accepted) {
    closed_ = true;
    if (close_)
        close_(accepted);
}

} // namespace qv
