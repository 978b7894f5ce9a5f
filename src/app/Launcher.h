#pragma once

#include "config/AppDirectory.h"
#include "config/ConfigDocument.h"
#include "console/widgets/MainScreenWindow.h"
#include "console/widgets/MessageBoxDialogs.h"
#include "device/Device.h"
#include "firmware/FirmwareUpdate.h"
#include "firmware/LoaderStarter.h"
#include "firmware/MarshalledFileDialog.h"
#include "firmware/widgets/QtFileDialog.h"
#include "link/Bus.h"
#include "link/DeviceWorker.h"
#include "link/FrameLink.h"
#include "link/PublicState.h"
#include "link/ReleasableBus.h"
#include "link/TraceHub.h"
#include "programme/Conditions.h"
#include "view/MarshalledDialogs.h"
#include "view/UiBridge.h"

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <optional>

namespace qv {

class SimulatedBus;

// What the command line of `quorvel` asks for.
struct LaunchOptions {
    enum class Demo { None, Current, OldFirmware };

    std::optional<QString> appDir;
    QString link = QStringLiteral("usb");
    Demo demo = Demo::None;
    // Kept out of --help: pictures of the window for the documentation.
    QString screenshot;
    QString language;
    // --trace FILE: every transfer appended to FILE; --exchanges: the
    // exchange panel open from the start.
    QString tracePath;
    bool showExchanges = false;
    bool help = false;
    bool version = false;
    QString error; // not empty: the command line is wrong, and this says why
};

LaunchOptions parseLaunchOptions(const QStringList& arguments); // without the program name
QString launchHelp();

// Exit statuses, the same as quorvelctl's.
constexpr int kExitOk = 0;
constexpr int kExitUsage = 2;
constexpr int kExitConfiguration = 3;

// A bus with nothing on it: the window then starts as it does when no
// controller is plugged in.
class EmptyBus : public Bus {
public:
    int deviceCount() override { return 0; }
    std::int32_t uniqueId(int) override { return 0; }
    std::unique_ptr<BusHandle> open(std::int32_t) override { return nullptr; }
};

// The demonstration controllers: a current Quorvel with a serial number, a
// few events counted and a stored programme, and a controller of another
// model (listed with View All). With `oldFirmware` the Quorvel runs 2.60,
// and the connection list shows only the upgrade warning.
std::unique_ptr<SimulatedBus> makeDemoBus(bool oldFirmware);

// Everything one run of the window works with, built in dependency order.
class Launch {
public:
    explicit Launch(const LaunchOptions& options);
    ~Launch();

    // Finds the application folder (a scratch one for a demonstration) and
    // reads config.xml. False, with a message naming the file, when it is
    // missing or malformed.
    bool prepareConfiguration(QString* error);
    // Chooses the bus. False with a message when --link is wrong; the USB
    // link of a build without it gives a warning and an empty bus instead.
    bool prepareBus(QString* error, QString* warning);
    // Tests, before makeWindow(): the boxes and the file dialogs are
    // answered there instead of on the screen.
    void setDialogs(Dialogs& dialogs) { dialogsInUse_ = &dialogs; }
    void setFileDialog(FileDialog& fileDialog) { fileDialogInUse_ = &fileDialog; }

    // The window over all of it, with the programme editor, the production
    // report and the firmware update behind its menus; not shown yet.
    MainScreenWindow& makeWindow();

    const QString& configPath() const { return configPath_; }
    // The folder of config.xml: programme files, reports, the firmware loader.
    QString appDirectory() const;
    ConfigDocument& config() { return *config_; }
    Bus& bus() { return *bus_; }
    SimulatedBus* simulatedBus() { return simulated_; }
    Device& device() { return *device_; }
    DeviceWorker& worker() { return *worker_; }
    // The programme of the run; the device thread's while the window runs.
    Conditions& conditions() { return conditions_; }
    MessageBoxDialogs& dialogs() { return dialogs_; }
    // Every transfer of the window's exchanges: --trace and the exchange panel.
    TraceHub& traceHub() { return traceHub_; }

private:
    LaunchOptions options_;
    TraceHub traceHub_;
    std::unique_ptr<QTemporaryDir> scratch_;
    QString configPath_;
    std::unique_ptr<ConfigDocument> config_;
    std::unique_ptr<Bus> bus_;
    SimulatedBus* simulated_ = nullptr;
    std::unique_ptr<ReleasableBus> releasable_;
    MessageBoxDialogs dialogs_;
    Dialogs* dialogsInUse_ = &dialogs_;
    QtFileDialog fileDialog_;
    FileDialog* fileDialogInUse_ = &fileDialog_;
    // The device thread and how it reaches the windows; the link, the device
    // and the public state below are touched by that thread alone.
    std::unique_ptr<UiBridge> bridge_;
    std::unique_ptr<MarshalledDialogs> deviceDialogs_;
    std::unique_ptr<MarshalledFileDialog> deviceFileDialog_;
    std::unique_ptr<DeviceWorker> worker_;
    PublicState state_;
    std::unique_ptr<FrameLink> link_;
    std::unique_ptr<Device> device_;
    Conditions conditions_;
    std::unique_ptr<NativeLoaderStarter> loader_;
    std::unique_ptr<FirmwareUpdate> firmware_;
    std::unique_ptr<MainScreenWindow> window_;
};

// Starts the window, and for --screenshot saves its picture after the first
// read and ends. Returns the exit status.
int runLaunch(Launch& launch, const LaunchOptions& options);

} // namespace qv
