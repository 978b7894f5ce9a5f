#include "SimState.h"
#include "SimTestSupport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTextStream>

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

    QTemporaryDir dir;
};

TEST_F(SimState, SaveAndLoadKeepEveryDeviceAsItWas) {
    SimDeviceConfig old = firmware("2.05");
    old.bootloader = *BootloaderVersion::parse(QStringLiteral("0.9"));
    old.hardwareCode = 4;
    old.battery = 812;
    old.serial = 4000000000u;
    const std::int32_t a = add();
    const std::int32_t b = add(old);
    for (const QByteArray& frame :
         {checkedFrame({0xFF, 200, 17}), checkedFrame({0x04, 3, 1, 1}), checkedFrame({0xF3, 1, 1}),
          checkedFrame({0x01, 1, 8, 0, 0, 2, 2, 26, 0}), checkedFrame({0x02, 0, 0}),
          checkedFrame({0x03, 3, 0, 1, 0, 0, 0, 0, 0, 9, 1})})
        ASSERT_TRUE(transfer(a, frame).has_value());
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
    // Every field of each device, as one text.
    const auto fields = [](const SimDevice& d) {
        QString text;
        QTextStream out(&text);
        out.setRealNumberPrecision(17);
        out << QByteArray(reinterpret_cast<const char*>(d.eepromBytes().data()),
                          static_cast<int>(d.eepromBytes().size()))
                   .toHex()
            << ' ' << d.firmware().text() << ' ' << d.bootloader().text() << ' ' << d.hardwareCode()
            << ' ' << d.battery() << ' ' << d.serialNumber() << ' ' << d.outputState() << ' '
            << d.ilsInput() << ' ' << d.fastClock() << d.programmeStopped() << d.plugged()
            << d.inBootloader() << ' ' << d.clockOffset() << ' ' << d.clockRate() << ' '
            << d.clockAnchor() << ' ' << d.counter(4) << ' ' << d.imageEnd() << ' '
            << d.currentRecord();
        return text;
    };
    for (std::int32_t id : {a, b})
        EXPECT_EQ(fields(*copy.device(id)).toStdString(), fields(*bus.device(id)).toStdString());
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
    EXPECT_EQ(fields(*copy.device(a)), fields(*bus.device(a)));
}

TEST_F(SimState, MalformedFilesGiveAClearErrorAndLeaveTheBus) {
    // A valid saved document of one fresh device, spoilt one field at a time.
    SimulatedBus source;
    source.addDevice({});
    ASSERT_TRUE(source.save(path("valid.json")));
    QFile in(path("valid.json"));
    ASSERT_TRUE(in.open(QIODevice::ReadOnly));
    const QJsonObject valid = QJsonDocument::fromJson(in.readAll()).object();
    const auto with = [&](const char* key, const QJsonValue& value) {
        QJsonObject root = valid;
        QJsonArray devices = root.value(QStringLiteral("devices")).toArray();
        QJsonObject device = devices.at(0).toObject();
        if (value.isUndefined())
            device.remove(QString::fromLatin1(key));
        else
            device.insert(QString::fromLatin1(key), value);
        devices.replace(0, device);
        root.insert(QStringLiteral("devices"), devices);
        return QJsonDocument(root).toJson();
    };
    QJsonObject otherFormat = valid;
    otherFormat[QStringLiteral("format")] = QStringLiteral("something else");
    QJsonObject twice = valid;
    QJsonArray two = twice[QStringLiteral("devices")].toArray();
    two.append(two.at(0));
    twice[QStringLiteral("devices")] = two;

    const std::vector<std::pair<QByteArray, const char*>> cases = {
        {QByteArray(), "JSON"},
        {"[]", "object"},
        {QJsonDocument(otherFormat).toJson(), "format"},
        {"{\"format\":\"quorvel-sim-state\",\"version\":1}", "devices"},
        {"{\"format\":\"quorvel-sim-state\",\"version\":1,\"devices\":[3]}", "devices[0]"},
        {with("id", QJsonValue::Undefined), "id"},
        {with("id", 255), "255"},
        {QJsonDocument(twice).toJson(), "twice"},
        {with("eeprom", QStringLiteral("00ff")), "eeprom"},
        {with("hardware", 300), "hardware"},
        {with("firmware", QStringLiteral("new")), "new"},
        {with("fastClock", QStringLiteral("yes")), "fastClock"},
        {with("imageEnd", 300), "imageEnd"},
        {with("clockOffset", QStringLiteral("1")), "clockOffset"},
    };
    const std::int32_t kept = add();
    for (const auto& [content, mention] : cases) {
        SCOPED_TRACE(content.toStdString());
        const QString file = path("bad.json");
        writeFile(file, content);
        QString error;
        EXPECT_FALSE(bus.load(file, &error));
        EXPECT_TRUE(error.contains(QString::fromLatin1(mention))) << error.toStdString();
        EXPECT_TRUE(error.contains(file)) << error.toStdString();
        EXPECT_EQ(bus.deviceIds(), std::vector<std::int32_t>{kept});
    }
    QString error;
    EXPECT_FALSE(bus.load(path("missing.json"), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("missing.json")));
}

TEST_F(SimState, LoadingReplacesDevicesAndOptionalFieldsFallBackToAFreshController) {
    const std::int32_t id = add();
    auto old = bus.open(id);
    QJsonObject device{{"id", 1000}, {"eeprom", QString(1024, QLatin1Char('0'))}};
    QJsonObject root{
        {"format", "quorvel-sim-state"}, {"version", 1}, {"devices", QJsonArray{device}}};
    writeFile(path("minimal.json"), QJsonDocument(root).toJson());
    QString error;
    ASSERT_TRUE(bus.load(path("minimal.json"), &error)) << error.toStdString();
    EXPECT_FALSE(old->write(checkedFrame({0xF0})));
    EXPECT_EQ(bus.deviceIds(), std::vector<std::int32_t>{1000});
    const auto loaded = bus.device(1000);
    EXPECT_EQ(loaded->firmware().text(), QStringLiteral("2.70"));
    EXPECT_EQ(loaded->hardwareCode(), 12);
    EXPECT_TRUE(loaded->plugged());
    EXPECT_EQ(loaded->imageEnd(), -1);
    EXPECT_TRUE(command(1000, {0xF0}).has_value());
}

TEST_F(SimState, OptionsCreateTheFileOnceAndLaterRunsKeepIt) {
    const QString file = path("sim.json");
    QString error;
    const auto run = [&](const char* options) {
        return SimulatedBus::fromOptions(
            *parseSimOptions(QString::fromLatin1(options) + ",state=" + file), &error);
    };
    auto bus1 = run("devices=2,serial=1234");
    ASSERT_NE(bus1, nullptr) << error.toStdString();
    EXPECT_TRUE(QFile::exists(file));
    const std::int32_t id = bus1->uniqueId(0);
    bus1->open(id)->write(checkedFrame({0xFF, 16, 0x99}));
    EXPECT_TRUE(bus1->lastAutosaveError().isEmpty());

    // A second run with other shaping options finds the saved controllers.
    auto bus2 = run("devices=1,firmware=2.60");
    ASSERT_NE(bus2, nullptr) << error.toStdString();
    EXPECT_EQ(bus2->deviceCount(), 2);
    EXPECT_EQ(bus2->device(id)->firmware().text(), QStringLiteral("2.70"));
    EXPECT_EQ(bus2->device(id)->serialNumber(), 0x499u) << "1234 with its low byte rewritten";
    EXPECT_EQ(bus2->device(bus2->uniqueId(1))->serialNumber(), 1235u);

    // Unplugging is part of the saved state, and unplug=0 plugs all back.
    EXPECT_EQ(run("unplug=1")->deviceCount(), 1);
    EXPECT_EQ(run("devices=1")->deviceCount(), 1);
    EXPECT_EQ(run("unplug=0")->deviceCount(), 2);

    // A broken state file, or an unwritable trace, fail clearly.
    writeFile(file, "not json at all");
    EXPECT_EQ(run("devices=1"), nullptr);
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
