#pragma once

#include "Launcher.h"
#include "RecordingDialogs.h"
#include "SimulatedBus.h"
#include "config/ConfigDocument.h"
#include "console/widgets/MainScreenWindow.h"
#include "device/Device.h"
#include "console/widgets/ConnectWindow.h"
#include "link/FrameLink.h"
#include "link/ResponsiveWait.h"
#include "programme/Conditions.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <memory>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}

namespace qv::test {

// A scratch copy of the shipped config.xml, with the switches a test asks for.
inline QString scratchConfig(const QTemporaryDir& dir, bool maintenance = false) {
    const QString path = dir.filePath(QStringLiteral("config.xml"));
    QFile::remove(path);
    QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), path);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    ConfigDocument config(path);
    config.EcritValeurXML(QStringLiteral("Splash"), QStringLiteral("False"));
    config.EcritValeurXML(QStringLiteral("Maintenance"),
                          maintenance ? QStringLiteral("True") : QStringLiteral("False"));
    return path;
}

// The link over a bus as the window uses it: transfers off the window's
// thread, pauses as waits that keep the window alive. The pause is 1 ms
// instead of 10 to keep the tests short; the probe wait of the connection
// list is skipped.
class LinkRig {
public:
    explicit LinkRig(Bus& bus) : responsive(bus), link(responsive, dialogs, state) {
        link.setPause([](int) { waitResponsively(1); });
    }

    RecordingDialogs dialogs;
    PublicState state;
    ResponsiveBus responsive;
    FrameLink link;
    Device device{link, [] { return QStringLiteral("Quorvel Absent"); }};
};

// The main window over the demonstration controllers and a scratch
// config.xml; the connection list takes the line `connectRow` (-1: Cancel).
class WindowFixture : public ::testing::Test {
protected:
    QTemporaryDir dir;
    std::unique_ptr<SimulatedBus> bus = makeDemoBus(false);
    std::unique_ptr<LinkRig> rig;
    std::unique_ptr<ConfigDocument> config;
    Conditions conditions;
    std::unique_ptr<MainScreenWindow> window;
    int connectRow = 0;
    int connections = 0;

    void SetUp() override { make(true); }

    void make(bool maintenance) {
        window.reset();
        rig = std::make_unique<LinkRig>(*bus);
        config = std::make_unique<ConfigDocument>(scratchConfig(dir, maintenance));
        window = std::make_unique<MainScreenWindow>(rig->device, *config, conditions, rig->dialogs);
        window->setConnectionOverride([this] { connect(); });
    }

    void connect() {
        ++connections;
        ConnectWindow connection(
            window->device(), window->view(), rig->dialogs,
            [this](const QString& key) { return window->logic().message(key); }, [](bool) {},
            window.get());
        connection.setProbeWait([](int) {});
        connection.Form_Load();
        if (connectRow < 0) {
            connection.ExitEtalonnage_Click();
            return;
        }
        connection.view().setCurrentRow(QStringLiteral("ListeSorvane"), connectRow);
        connection.ListeSorvane_Click();
    }

    QString text(const char* control) { return window->view().text(QString::fromLatin1(control)); }
    std::int32_t quorvelId() const { return bus->deviceIds().front(); }
};

} // namespace qv::test
