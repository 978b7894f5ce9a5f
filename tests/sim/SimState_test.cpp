#include "SimState.h"
#include "SimTestSupport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

namespace qv::test {
namespace {

class SimState : public SimFixture {
protected:
    QString path(const char* name) const { return dir.filePath(QString::fromLatin1(name)); }

    void writeFile(const QString& file, const QByteArray& content) {
        QFile out(file);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(content);
    }

    // A valid saved document of one fresh device, for the malformed cases
    // to spoil one field at a time.
    QJsonObject validDocument() {
        SimulatedBus source;
        source.addDevice({});
        const QString file = path("valid.json");
        EXPECT_TRUE(source.save(file));
        QFile in(file);
        EXPECT_TRUE(in.open(QIODevice::ReadOnly));
        return QJsonDocument::fromJson(in.readAll()).object();
    }

    QTemporaryDir dir;
};

TEST_F(SimState, SaveAndLoadKeepEveryDeviceAsItWas) {
    SimDeviceConfig old;
    old.firmware = *FirmwareVersion::parse(QStringLiteral("2.05"));
    old.bootloader = *BootloaderVersion::parse(QStringLiteral("0.9"));
    old.hardwareCode = 4;
    old.battery = 812;
    old.serial = 4000000000u;
    const std::int32_t a = add();
    const std::int32_t b = add(old);
    ASSERT_TRUE(command(a, {0xFF, 200, 17}).has_value());
    ASSERT_TRUE(command(a, {0x04, 3, 1, 1}).has_value());
    ASSERT_TRUE(command(a, {0xF3, 1, 1}).has_value());
    ASSERT_TRUE(command(a, {0x01, 1, 8, 0, 0, 2, 2, 26, 0}).has_value());
    ASSERT_TRUE(command(a, {0x02, 0, 0}).has_value());
    ASSERT_TRUE(command(a, {0x03, 3, 0, 1, 0, 0, 0, 0, 0, 9, 1}).has_value());
    bus.modify(a, [this](SimDevice& d) {
        d.setIlsInput(3);
        d.countEvent(4);
        d.setClockRate(-25.5, nowMs);
    });
    bus.modify(b, [](SimDevice& d) { d.setInBootloader(true); });
    bus.unplug(b);
    const QString file = path("state.json");
    QString error;
    ASSERT_TRUE(bus.save(file, &error)) << error.toStdString();

    SimulatedBus copy;
    copy.setClock([this] { return nowMs; });
    ASSERT_TRUE(copy.load(file, &error)) << error.toStdString();
    ASSERT_EQ(copy.deviceIds(), bus.deviceIds());
    for (std::int32_t id : {a, b}) {
        SCOPED_TRACE(id);
        const SimDevice before = *bus.device(id);
        const SimDevice after = *copy.device(id);
        EXPECT_EQ(after.eepromBytes(), before.eepromBytes());
        EXPECT_EQ(after.firmware(), before.firmware());
        EXPECT_EQ(after.bootloader(), before.bootloader());
        EXPECT_EQ(after.hardwareCode(), before.hardwareCode());
        EXPECT_EQ(after.battery(), before.battery());
        EXPECT_EQ(after.serialNumber(), before.serialNumber());
        EXPECT_EQ(after.outputState(), before.outputState());
        EXPECT_EQ(after.ilsInput(), before.ilsInput());
        EXPECT_EQ(after.fastClock(), before.fastClock());
        EXPECT_EQ(after.programmeStopped(), before.programmeStopped());
        EXPECT_DOUBLE_EQ(after.clockOffset(), before.clockOffset());
        EXPECT_DOUBLE_EQ(after.clockRate(), before.clockRate());
        EXPECT_EQ(after.clockAnchor(), before.clockAnchor());
        EXPECT_EQ(after.plugged(), before.plugged());
        EXPECT_EQ(after.inBootloader(), before.inBootloader());
        EXPECT_EQ(after.counter(4), before.counter(4));
        EXPECT_EQ(after.imageEnd(), before.imageEnd());
        EXPECT_EQ(after.currentRecord(), before.currentRecord());
    }
    EXPECT_EQ(copy.deviceCount(), 1);
    // The loaded controller answers as the saved one did, and the open
    // download goes on where it stopped.
    nowMs += 3600000;
    auto reader = [&](SimulatedBus& which, std::initializer_list<int> bytes) {
        auto handle = which.open(a);
        handle->write(checkedFrame(bytes));
        return handle->read(64);
    };
    EXPECT_EQ(reader(copy, {0xF1}), reader(bus, {0xF1}));
    EXPECT_EQ(reader(copy, {0xF0}), reader(bus, {0xF0}));
    EXPECT_EQ(reader(copy, {0x1F, 9, 1, 7, 0, 0}), reader(bus, {0x1F, 9, 1, 7, 0, 0}));
    EXPECT_EQ(copy.device(a)->eepromBytes(), bus.device(a)->eepromBytes());
}

TEST_F(SimState, MalformedFilesGiveAClearErrorAndLeaveTheBus) {
    const QJsonObject valid = validDocument();
    auto with = [&](const QString& key, const QJsonValue& value) {
        QJsonObject root = valid;
        QJsonArray devices = root.value(QStringLiteral("devices")).toArray();
        QJsonObject device = devices.at(0).toObject();
        if (value.isUndefined())
            device.remove(key);
        else
            device.insert(key, value);
        devices.replace(0, device);
        root.insert(QStringLiteral("devices"), devices);
        return QJsonDocument(root).toJson();
    };
    QJsonObject twice = valid;
    QJsonArray two = twice.value(QStringLiteral("devices")).toArray();
    two.append(two.at(0));
    twice.insert(QStringLiteral("devices"), two);
    QJsonObject otherFormat = valid;
    otherFormat.insert(QStringLiteral("format"), QStringLiteral("something else"));

    struct Case {
        const char* what;
        QByteArray content;
        const char* mention;
    };
    const std::vector<Case> cases = {
        {"empty file", QByteArray(), "JSON"},
        {"not JSON", "{\"devices\": [", "JSON"},
        {"a list", "[]", "object"},
        {"other format", QJsonDocument(otherFormat).toJson(), "format"},
        {"no devices list", "{\"format\":\"quorvel-sim-state\",\"version\":1}", "devices"},
        {"device not an object",
         "{\"format\":\"quorvel-sim-state\",\"version\":1,"
         "\"devices\":[3]}",
         "devices[0]"},
        {"no id", with(QStringLiteral("id"), QJsonValue::Undefined), "id"},
        {"reserved id", with(QStringLiteral("id"), 255), "255"},
        {"id not whole", with(QStringLiteral("id"), 1.5), "id"},
        {"id twice", QJsonDocument(twice).toJson(), "twice"},
        {"short eeprom", with(QStringLiteral("eeprom"), QStringLiteral("00ff")), "eeprom"},
        {"eeprom not hex", with(QStringLiteral("eeprom"), QString(1024, QLatin1Char('g'))),
         "eeprom"},
        {"eeprom a number", with(QStringLiteral("eeprom"), 5), "eeprom"},
        {"hardware too big", with(QStringLiteral("hardware"), 300), "hardware"},
        {"firmware words", with(QStringLiteral("firmware"), QStringLiteral("new")), "new"},
        {"battery negative", with(QStringLiteral("battery"), -1), "battery"},
        {"flag as text", with(QStringLiteral("fastClock"), QStringLiteral("yes")), "fastClock"},
        {"image past the boot request", with(QStringLiteral("imageEnd"), 300), "imageEnd"},
        {"clock offset text", with(QStringLiteral("clockOffset"), QStringLiteral("1")),
         "clockOffset"},
    };
    const std::int32_t kept = add();
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const QString file = path("bad.json");
        writeFile(file, c.content);
        QString error;
        EXPECT_FALSE(bus.load(file, &error));
        EXPECT_TRUE(error.contains(QString::fromLatin1(c.mention))) << error.toStdString();
        EXPECT_TRUE(error.contains(file)) << error.toStdString();
        EXPECT_EQ(bus.deviceIds(), std::vector<std::int32_t>{kept});
    }
    QString error;
    EXPECT_FALSE(bus.load(path("missing.json"), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("missing.json")));
}

TEST_F(SimState, LoadingReplacesDevicesAndStalesTheirHandles) {
    const std::int32_t id = add();
    const QString file = path("reload.json");
    ASSERT_TRUE(bus.save(file));
    auto old = bus.open(id);
    ASSERT_TRUE(bus.load(file));
    EXPECT_FALSE(old->write(checkedFrame({0xF0})));
    EXPECT_TRUE(command(id, {0xF0}).has_value());
}

TEST_F(SimState, OptionalFieldsFallBackToAFreshController) {
    QJsonObject device;
    device.insert(QStringLiteral("id"), 1000);
    device.insert(QStringLiteral("eeprom"), QString(1024, QLatin1Char('0')));
    QJsonObject root;
    root.insert(QStringLiteral("format"), QStringLiteral("quorvel-sim-state"));
    root.insert(QStringLiteral("version"), 1);
    root.insert(QStringLiteral("devices"), QJsonArray{device});
    const QString file = path("minimal.json");
    writeFile(file, QJsonDocument(root).toJson());
    QString error;
    ASSERT_TRUE(bus.load(file, &error)) << error.toStdString();
    const auto loaded = bus.device(1000);
    ASSERT_TRUE(loaded.has_value());
    EXPECT_EQ(loaded->firmware().text(), QStringLiteral("2.70"));
    EXPECT_EQ(loaded->hardwareCode(), 12);
    EXPECT_TRUE(loaded->plugged());
    EXPECT_EQ(loaded->imageEnd(), -1);
}

TEST_F(SimState, OptionsCreateTheFileOnceAndLaterRunsKeepIt) {
    const QString file = path("sim.json");
    QString error;
    auto first = parseSimOptions(QStringLiteral("devices=2,serial=1234,state=") + file, &error);
    ASSERT_TRUE(first.has_value()) << error.toStdString();
    auto bus1 = SimulatedBus::fromOptions(*first, &error);
    ASSERT_NE(bus1, nullptr) << error.toStdString();
    EXPECT_TRUE(QFile::exists(file));
    const std::int32_t id = bus1->uniqueId(0);
    auto handle = bus1->open(id);
    handle->write(checkedFrame({0xFF, 16, 0x99}));
    EXPECT_TRUE(bus1->lastAutosaveError().isEmpty());

    // A second run with other shaping options finds the saved controllers.
    auto second = parseSimOptions(QStringLiteral("devices=1,firmware=2.60,state=") + file);
    auto bus2 = SimulatedBus::fromOptions(*second, &error);
    ASSERT_NE(bus2, nullptr) << error.toStdString();
    EXPECT_EQ(bus2->deviceCount(), 2);
    EXPECT_EQ(bus2->device(id)->firmware().text(), QStringLiteral("2.70"));
    EXPECT_EQ(bus2->device(id)->serialNumber(), 0x499u) << "1234 with its low byte rewritten";
    EXPECT_EQ(bus2->device(bus2->uniqueId(1))->serialNumber(), 1235u);

    // Unplugging is part of the saved state, and unplug=0 plugs all back.
    auto third =
        SimulatedBus::fromOptions(*parseSimOptions(QStringLiteral("unplug=1,state=") + file));
    ASSERT_NE(third, nullptr);
    EXPECT_EQ(third->deviceCount(), 1);
    auto fourth = SimulatedBus::fromOptions(*parseSimOptions(QStringLiteral("state=") + file));
    EXPECT_EQ(fourth->deviceCount(), 1);
    auto fifth =
        SimulatedBus::fromOptions(*parseSimOptions(QStringLiteral("unplug=0,state=") + file));
    EXPECT_EQ(fifth->deviceCount(), 2);
}

TEST_F(SimState, OptionsWithABrokenStateFileFailClearly) {
    const QString file = path("broken.json");
    writeFile(file, "not json at all");
    QString error;
    EXPECT_EQ(SimulatedBus::fromOptions(*parseSimOptions(QStringLiteral("state=") + file), &error),
              nullptr);
    EXPECT_TRUE(error.contains(file));
    EXPECT_EQ(SimulatedBus::fromOptions(
                  *parseSimOptions(QStringLiteral("trace=/nonexistent-dir/t.log")), &error),
              nullptr);
    EXPECT_TRUE(error.contains(QStringLiteral("trace")));
}

TEST_F(SimState, AutosaveFollowsEveryChangeButNotPlainReads) {
    const QString file = path("auto.json");
    const std::int32_t id = add();
    bus.setAutosave(file);
    command(id, {0xFE, 16, 0});
    EXPECT_FALSE(QFile::exists(file)) << "a read changes nothing";
    command(id, {0xFF, 20, 1});
    SimulatedBus reloaded;
    ASSERT_TRUE(reloaded.load(file));
    EXPECT_EQ(reloaded.device(id)->eeprom(20), 1);
    bus.setAutosave(path("no-such-dir/auto.json"));
    command(id, {0xFF, 20, 2});
    EXPECT_FALSE(bus.lastAutosaveError().isEmpty());
}

} // namespace
} // namespace qv::test
