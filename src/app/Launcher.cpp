#include "Launcher.h"

#include "ProgrammationOpener.h"
#include "SimOptions.h"
#include "SimulatedBus.h"
#include "config/DateHelpers.h"
#include "console/widgets/ConnectWindow.h"
#include "inspector/widgets/ExchangePanel.h"
#include "link/TracingBus.h"
#include "linkoption/BusFactory.h"
#include "production/widgets/ProductionBench.h"
#include "programme/ProgrammeDownload.h"
#include "reports/widgets/ProductionWindow.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <cstdio>

namespace qv {

namespace {

// Answers every question of the demonstration's set-up with OK.
class AgreeingDialogs : public Dialogs {
public:
    int message(const QString&, const QString&, int) override { return MsgBox::AnswerOk; }
};

// A valve programme worth looking at: open on weekday mornings for a
// quarter of an hour, close every evening.
Conditions demoProgramme() {
    Conditions conditions;
    Condition morning;
    morning.Nom = QStringLiteral("Matin");
    morning.sortie = 3;
    morning.Valeur = 1;
    morning.Temporisation = 900;
    morning.Jour = 9; // Monday to Friday
    morning.Heure = 6;
    morning.Minute = 30;
    conditions.Add(morning);
    Condition evening;
    evening.Nom = QStringLiteral("Soir");
    evening.sortie = 3;
    evening.Valeur = 0;
    evening.Jour = 8; // every day
    evening.Heure = 18;
    conditions.Add(evening);
    return conditions;
}

void storeDemoProgramme(SimulatedBus& bus, std::int32_t id) {
    AgreeingDialogs dialogs;
    PublicState state;
    state.UsbID = id;
    FrameLink link(bus, dialogs, state);
    link.setPause([](int) {});
    Device device(link, [] { return QStringLiteral("Quorvel Absent"); });
    Envoi_Conditions(device, demoProgramme(), 0, QString(), QDate::currentDate());
}

QString takeValue(const QStringList& arguments, qsizetype& i, const QString& option,
                  QString* error) {
    const QString& argument = arguments[i];
    if (argument.startsWith(option + QLatin1Char('=')))
        return argument.mid(option.size() + 1);
    if (i + 1 >= arguments.size()) {
        *error = QStringLiteral("%1 needs a value").arg(option);
        return QString();
    }
    return arguments[++i];
}

} // namespace

LaunchOptions parseLaunchOptions(const QStringList& arguments) {
    LaunchOptions options;
    const auto is = [](const QString& argument, const char* option) {
        const QString name = QString::fromLatin1(option);
        return argument == name || argument.startsWith(name + QLatin1Char('='));
    };
    for (qsizetype i = 0; i < arguments.size() && options.error.isEmpty(); ++i) {
        const QString& argument = arguments[i];
        if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            options.help = true;
        } else if (argument == QLatin1String("--version")) {
            options.version = true;
        } else if (is(argument, "--app-dir")) {
            options.appDir = takeValue(arguments, i, QStringLiteral("--app-dir"), &options.error);
        } else if (is(argument, "--link")) {
            options.link = takeValue(arguments, i, QStringLiteral("--link"), &options.error);
        } else if (argument == QLatin1String("--demo")) {
            options.demo = LaunchOptions::Demo::Current;
        } else if (argument == QLatin1String("--demo=old") ||
                   argument == QLatin1String("--demo-old-firmware")) {
            options.demo = LaunchOptions::Demo::OldFirmware;
        } else if (argument.startsWith(QLatin1String("--demo="))) {
            options.error = QStringLiteral("--demo takes no value but \"old\"");
        } else if (is(argument, "--screenshot")) {
            options.screenshot =
                takeValue(arguments, i, QStringLiteral("--screenshot"), &options.error);
        } else if (is(argument, "--trace")) {
            options.tracePath = takeValue(arguments, i, QStringLiteral("--trace"), &options.error);
        } else if (argument == QLatin1String("--exchanges")) {
            options.showExchanges = true;
        } else if (is(argument, "--language")) {
            options.language =
                takeValue(arguments, i, QStringLiteral("--language"), &options.error);
        } else {
            options.error = QStringLiteral("unknown argument \"%1\"").arg(argument);
        }
    }
    if (options.error.isEmpty() && options.demo != LaunchOptions::Demo::None &&
        options.link != QLatin1String("usb"))
        options.error = QStringLiteral("--demo brings its own controllers; leave out --link");
    return options;
}

QString launchHelp() {
    return QStringLiteral(
               "usage: quorvel [--app-dir DIR] [--link usb|sim[:key=value,...]] [--demo | "
               "--demo=old]\n"
               "\n"
               "  --app-dir DIR  the folder of config.xml, programme files and reports; created "
               "and\n"
               "                 seeded with the shipped config.xml when new. By default the\n"
               "                 program's own folder when it holds a config.xml, otherwise\n"
               "                 ~/.local/share/quorvel.\n"
               "  --link LINK    usb (the default) or sim[:key=value,...] for simulated\n"
               "                 controllers. A build without the USB link says so once and\n"
               "                 opens with no controller: programmes can still be edited.\n"
               "  --demo         two simulated controllers (a Quorvel with a stored programme,\n"
               "                 and another model, listed with View All) and a scratch copy\n"
               "                 of config.xml with the maintenance panel on; nothing of the\n"
               "                 real application folder is touched.\n"
               "  --demo=old     the same with a Quorvel at firmware 2.60: the upgrade path.\n"
               "                 (also --demo-old-firmware)\n"
               "  --trace FILE   appends every transfer with the controllers to FILE\n"
               "                 (quorvelctl trace FILE decodes it)\n"
               "  --exchanges    opens with the exchange panel (View > Exchanges) shown\n"
               "  --version      the program's version\n"
               "\n"
               "Exit status: 0 normal end, 2 wrong command line, 3 config.xml missing or "
               "malformed.\n"
               "\n") +
           linkOptionHelp() + QLatin1Char('\n');
}

std::unique_ptr<SimulatedBus> makeDemoBus(bool oldFirmware) {
    auto configs = demoDevices();
    if (oldFirmware)
        configs.front().firmware = FirmwareVersion{2, 60};
    auto bus = std::make_unique<SimulatedBus>(configs);
    const std::int32_t quorvel = bus->deviceIds().front();
    bus->modify(quorvel, [](SimDevice& device) {
        // A serial number of the battery-measuring generation, a few events,
        // and the usual rule: last Sunday of March at 2, of October at 3.
        device.setSerialNumber(90601234);
        const int counters[] = {3, 0, 1, 0, 2};
        for (int i = 0; i < SimDevice::kCounterCount; ++i)
            device.setEeprom(SimDevice::kCountersAddress + i, counters[i]);
        const int rule[] = {60, 5 * 16 + 7, 3, 2, 5 * 16 + 7, 10, 3};
        for (int i = 0; i < 7; ++i)
            device.setEeprom(26 + i, rule[i]);
        device.setEeprom(SimDevice::kManualDelayAddress, 120);
    });
    // Programmed a week ago, in the device's own reckoning of dates.
    const std::int32_t programmed = DateEnSecondes(
        oleDateFromDateTime(QDateTime(QDate::currentDate().addDays(-7), QTime(9, 15))), -1.0);
    bus->modify(quorvel, [programmed](SimDevice& device) {
        for (int i = 0; i < 4; ++i)
            device.setEeprom(
                20 + i,
                static_cast<int>((static_cast<std::uint32_t>(programmed) >> (8 * i)) & 0xFF));
    });
    if (!oldFirmware)
        storeDemoProgramme(*bus, quorvel);
    return bus;
}

Launch::Launch(const LaunchOptions& options) : options_(options) {}

Launch::~Launch() {
    // The window talks to everything below; it goes first.
    window_.reset();
    firmware_.reset();
}

bool Launch::prepareConfiguration(QString* error) {
    std::optional<QString> directory = options_.appDir;
    if (options_.demo != LaunchOptions::Demo::None) {
        scratch_ = std::make_unique<QTemporaryDir>(
            QDir::temp().filePath(QStringLiteral("quorvel-demo-XXXXXX")));
        if (!scratch_->isValid()) {
            *error = QStringLiteral("Cannot create a scratch folder for the demonstration: %1")
                         .arg(scratch_->errorString());
            return false;
        }
        directory = scratch_->path();
    }
    const AppDirectoryResult folder =
        resolveAppDirectory(defaultAppDirectorySources(std::move(directory)));
    if (!folder.ok()) {
        *error = folder.error;
        return false;
    }
    configPath_ = folder.configPath();
    config_ = std::make_unique<ConfigDocument>(configPath_);
    try {
        config_->load();
        if (scratch_)
            config_->EcritValeurXML(QStringLiteral("Maintenance"), QStringLiteral("True"));
    } catch (const ConfigError& e) {
        *error = e.text();
        return false;
    }
    return true;
}

bool Launch::prepareBus(QString* error, QString* warning) {
    if (options_.demo != LaunchOptions::Demo::None) {
        auto simulated = makeDemoBus(options_.demo == LaunchOptions::Demo::OldFirmware);
        simulated_ = simulated.get();
        bus_ = std::move(simulated);
    } else {
        // What the bus has to say while it works (a controller it may not
        // open, say) may come from the thread of an exchange: it is shown
        // from the window's thread, in a box that holds nothing up.
        const bool unattended = !options_.screenshot.isEmpty();
        const BusReport report = [unattended](const QString& text) {
            std::fprintf(stderr, "quorvel: %s\n", qUtf8Printable(text));
            if (unattended || !QCoreApplication::instance())
                return;
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [text] {
                    auto* box =
                        new QMessageBox(QMessageBox::Warning, QStringLiteral("Quorvel"), text,
                                        QMessageBox::Ok, QApplication::activeWindow());
                    box->setAttribute(Qt::WA_DeleteOnClose);
                    box->setModal(false);
                    box->show();
                },
                Qt::QueuedConnection);
        };
        // The window starts in English, whatever the last run chose.
        const auto say = [this](const QString& key) {
            return config_ ? config_->LitMessage(QStringLiteral("English"), key, QString()) : key;
        };
        QString problem;
        bus_ = makeBus(options_.link, &problem, report, say);
        if (!bus_) {
            // A technician who starts the tool without its USB link can
            // still work on programme files: say why no controller shows,
            // and open. A mistyped --link is a different matter.
            if (!options_.link.trimmed().startsWith(QLatin1String("usb"))) {
                *error = problem;
                return false;
            }
            *warning = say(QStringLiteral("No controller can be reached: %1")).arg(problem) +
                       QStringLiteral("\n\n") +
                       say(QStringLiteral("The window opens without a controller; programmes "
                                          "can still be edited."));
            bus_ = std::make_unique<EmptyBus>();
        }
        simulated_ = dynamic_cast<SimulatedBus*>(bus_.get());
    }
    // The exchange trace: the panel always listens, --trace also writes.
    if (!options_.tracePath.isEmpty() && !traceHub_.openFile(options_.tracePath, error))
        return false;
    bus_ = std::make_unique<TracingBus>(std::move(bus_), traceHub_);

    releasable_ = std::make_unique<ReleasableBus>(*bus_);
    return true;
}

QString Launch::appDirectory() const {
    return QFileInfo(configPath_).absolutePath();
}

MainScreenWindow& Launch::makeWindow() {
    bridge_ = std::make_unique<UiBridge>(QCoreApplication::instance());
    // Real boxes come without a local event loop; the boxes of tests answer
    // at once on this thread.
    auto* presenter = dialogsInUse_ == &dialogs_ ? &dialogs_ : nullptr;
    deviceDialogs_ = std::make_unique<MarshalledDialogs>(*bridge_, *dialogsInUse_, presenter);
    deviceFileDialog_ = std::make_unique<MarshalledFileDialog>(*bridge_, *fileDialogInUse_);
    link_ = std::make_unique<FrameLink>(*releasable_, *deviceDialogs_, state_);
    device_ = std::make_unique<Device>(*link_, [this] {
        return window_ ? window_->logic().message(QStringLiteral("Quorvel Absent"))
                       : QStringLiteral("Quorvel Absent");
    });
    worker_ = std::make_unique<DeviceWorker>();
    window_ = std::make_unique<MainScreenWindow>(*device_, *config_, conditions_, *deviceDialogs_,
                                                 *worker_, *bridge_);
    window_->setDeviceRelease([this] { releasable_->release(); });
    dialogs_.setParent(window_.get());

    installProgrammationEditor(*window_, *config_, conditions_);
    installProductionReport(*window_, *config_, *fileDialogInUse_);
    ExchangePanel* exchanges = installExchangePanel(*window_, traceHub_, *config_, [this] {
        return window_->view().text(QStringLiteral("ListeLangues"));
    });
    if (options_.showExchanges)
        exchanges->show();
    // The same update from the menu (which asks first) and from the
    // connection list's upgrade line (which has asked already); it runs on
    // the device thread, which owns the device state it lets go of.
    loader_ = std::make_unique<NativeLoaderStarter>(appDirectory());
    firmware_ = std::make_unique<FirmwareUpdate>(window_->deviceThreadView(), state_, *config_,
                                                 *deviceDialogs_, *deviceFileDialog_, *loader_,
                                                 appDirectory());
    window_->setFirmwareUpdater([this](bool demande) { firmware_->UpdateFirmware(demande); });
    window_->setProductionBenchOpener([this](std::function<void()> onClosed) {
        openProductionBench(window_.get(), *bus_, *config_, *dialogsInUse_,
                            window_->view().text(QStringLiteral("ListeLangues")),
                            std::move(onClosed));
    });
    return *window_;
}

int runLaunch(Launch& launch, const LaunchOptions& options) {
    MainScreenWindow& window = launch.makeWindow();
    if (options.screenshot.isEmpty()) {
        // Started from the event loop, so that the windows have a loop to
        // live in from their first moment.
        QTimer::singleShot(0, &window, [&window] { window.start(); });
        return QApplication::exec();
    }

    // The picture of the documentation: the first line of the connection
    // list taken, the first read made, the log area read, then the window
    // as it stands. Each step waits for the jobs of the one before.
    launch.dialogs().setUnattended(true);
    window.setConnectionScript([&window](ConnectWindow& connection) {
        connection.Form_Load();
        window.afterJobs([list = QPointer<ConnectWindow>(&connection)] {
            if (!list)
                return;
            if (list->view().rows(QStringLiteral("ListeSorvane")).empty()) {
                list->ExitEtalonnage_Click();
                return;
            }
            list->view().setCurrentRow(QStringLiteral("ListeSorvane"), 0);
            list->ListeSorvane_Click();
        });
    });
    int status = 1;
    window.start([&] {
        if (!options.language.isEmpty()) {
            window.view().setText(QStringLiteral("ListeLangues"), options.language);
            window.post(&MainScreenLogic::ListeLangues_Click);
            window.post(&MainScreenLogic::Lire_Click);
        }
        window.showDumpEEPROM();
        window.afterJobs([&] {
            window.adjustSize();
            // The last paint events before the picture.
            QTimer::singleShot(200, &window, [&] {
                status = window.grab().save(options.screenshot) ? kExitOk : 1;
                window.close();
                QApplication::quit();
            });
        });
    });
    QApplication::exec();
    return status;
}

} // namespace qv
