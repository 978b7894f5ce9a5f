#include "SimState.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QRegularExpression>
#include <QSet>
#include <cmath>
#include <limits>

namespace qv {

namespace {

const QString kFormat = QStringLiteral("quorvel-sim-state");
constexpr int kVersion = 1;

// Reads optional fields of one object; the first problem is kept with the
// field's name, and later reads do nothing.
class FieldReader {
public:
    FieldReader(const QJsonObject& object, QString where)
        : object_(object), where_(std::move(where)) {}

    bool ok() const { return error_.isEmpty(); }
    const QString& error() const { return error_; }
    bool has(const QString& key) const { return object_.contains(key); }

    void integer(const QString& key, long long low, long long high, long long& out) {
        if (!ok() || !has(key))
            return;
        const QJsonValue value = object_.value(key);
        const double number = value.toDouble();
        if (!value.isDouble() || std::floor(number) != number ||
            number < static_cast<double>(low) || number > static_cast<double>(high)) {
            fail(key, QStringLiteral("a whole number from %1 to %2").arg(low).arg(high));
            return;
        }
        out = static_cast<long long>(number);
    }

    void real(const QString& key, double& out) {
        if (!ok() || !has(key))
            return;
        const QJsonValue value = object_.value(key);
        if (!value.isDouble() || !std::isfinite(value.toDouble())) {
            fail(key, QStringLiteral("a number"));
            return;
        }
        out = value.toDouble();
    }

    void boolean(const QString& key, bool& out) {
        if (!ok() || !has(key))
            return;
        const QJsonValue value = object_.value(key);
        if (!value.isBool()) {
            fail(key, QStringLiteral("true or false"));
            return;
        }
        out = value.toBool();
    }

    void text(const QString& key, QString& out) {
        if (!ok() || !has(key))
            return;
        const QJsonValue value = object_.value(key);
        if (!value.isString()) {
            fail(key, QStringLiteral("a text"));
            return;
        }
        out = value.toString();
    }

    void fail(const QString& key, const QString& expected) {
        if (ok())
            error_ = QStringLiteral("%1: '%2' must be %3").arg(where_, key, expected);
    }
    void failWith(const QString& text) {
        if (ok())
            error_ = QStringLiteral("%1: %2").arg(where_, text);
    }

private:
    const QJsonObject& object_;
    QString where_;
    QString error_;
};

void setError(QString* error, const QString& text) {
    if (error)
        *error = text;
}

} // namespace

QJsonObject deviceToJson(const SimDevice& device) {
    QJsonObject object;
    object.insert(QStringLiteral("id"), device.uniqueId());
    object.insert(QStringLiteral("hardware"), device.hardwareCode());
    object.insert(QStringLiteral("firmware"), device.firmware().text());
    object.insert(QStringLiteral("bootloaderVersion"), device.bootloader().text());
    object.insert(QStringLiteral("battery"), device.battery());
    const auto& bytes = device.eepromBytes();
    object.insert(QStringLiteral("eeprom"),
                  QString::fromLatin1(QByteArray(reinterpret_cast<const char*>(bytes.data()),
                                                 static_cast<int>(bytes.size()))
                                          .toHex()));
    object.insert(QStringLiteral("output"), device.outputState());
    object.insert(QStringLiteral("ils"), device.ilsInput());
    object.insert(QStringLiteral("fastClock"), device.fastClock());
    object.insert(QStringLiteral("programmeStop"), device.programmeStopped());
    object.insert(QStringLiteral("clockOffset"), device.clockOffset());
    object.insert(QStringLiteral("clockRate"), device.clockRate());
    object.insert(QStringLiteral("clockAnchor"), static_cast<double>(device.clockAnchor()));
    object.insert(QStringLiteral("plugged"), device.plugged());
    object.insert(QStringLiteral("inBootloader"), device.inBootloader());
    object.insert(QStringLiteral("restarts"), device.restartCount());
    object.insert(QStringLiteral("silentUntil"), static_cast<double>(device.silentUntil()));
    object.insert(QStringLiteral("restartSilenceMs"), device.restartSilenceMs());
    object.insert(QStringLiteral("imageEnd"), device.imageEnd());
    object.insert(QStringLiteral("currentRecord"), device.currentRecord());
    return object;
}

std::optional<SimDevice> deviceFromJson(const QJsonObject& object, QString* error) {
    FieldReader read(object, QStringLiteral("device"));
    if (!read.has(QStringLiteral("id")) || !read.has(QStringLiteral("eeprom"))) {
        setError(error, QStringLiteral("device: 'id' and 'eeprom' are required"));
        return std::nullopt;
    }
    long long id = 0;
    read.integer(QStringLiteral("id"), std::numeric_limits<std::int32_t>::min(),
                 std::numeric_limits<std::int32_t>::max(), id);
    if (read.ok() && (id == 0 || id == 254 || id == 255))
        read.failWith(QStringLiteral("id %1 is reserved").arg(id));
    if (!read.ok()) {
        setError(error, read.error());
        return std::nullopt;
    }

    FieldReader fields(object, QStringLiteral("device %1").arg(id));
    SimDeviceConfig config;
    config.uniqueId = static_cast<std::int32_t>(id);
    long long hardware = config.hardwareCode;
    fields.integer(QStringLiteral("hardware"), 0, 255, hardware);
    config.hardwareCode = static_cast<int>(hardware);

    QString firmwareText = config.firmware.text();
    fields.text(QStringLiteral("firmware"), firmwareText);
    QString bootloaderText = config.bootloader.text();
    fields.text(QStringLiteral("bootloaderVersion"), bootloaderText);
    QString versionError;
    if (fields.ok()) {
        if (const auto version = FirmwareVersion::parse(firmwareText, &versionError))
            config.firmware = *version;
        else
            fields.failWith(versionError);
    }
    if (fields.ok()) {
        if (const auto version = BootloaderVersion::parse(bootloaderText, &versionError))
            config.bootloader = *version;
        else
            fields.failWith(versionError);
    }
    long long battery = config.battery;
    fields.integer(QStringLiteral("battery"), 0, 65535, battery);
    config.battery = static_cast<int>(battery);

    QString eepromText;
    fields.text(QStringLiteral("eeprom"), eepromText);
    static const QRegularExpression hexOnly(QStringLiteral("^[0-9a-fA-F]*$"));
    if (fields.ok() &&
        (eepromText.size() != 2 * SimDevice::kEepromSize || !hexOnly.match(eepromText).hasMatch()))
        fields.fail(QStringLiteral("eeprom"),
                    QStringLiteral("%1 hexadecimal digits").arg(2 * SimDevice::kEepromSize));

    long long output = 0, ils = 0, restarts = 0, restartSilence = 0, imageEnd = -1,
              currentRecord = -1;
    long long clockAnchor = 0, silentUntil = 0;
    double clockOffset = 0, clockRate = 0;
    bool fastClock = false, programmeStop = false, plugged = true, inBootloader = false;
    restartSilence = SimDevice::kDefaultRestartSilenceMs;
    const long long maxMs = 1LL << 52; // exact in a JSON number
    fields.integer(QStringLiteral("output"), 0, 255, output);
    fields.integer(QStringLiteral("ils"), 0, 255, ils);
    fields.boolean(QStringLiteral("fastClock"), fastClock);
    fields.boolean(QStringLiteral("programmeStop"), programmeStop);
    fields.real(QStringLiteral("clockOffset"), clockOffset);
    fields.real(QStringLiteral("clockRate"), clockRate);
    fields.integer(QStringLiteral("clockAnchor"), -maxMs, maxMs, clockAnchor);
    fields.boolean(QStringLiteral("plugged"), plugged);
    fields.boolean(QStringLiteral("inBootloader"), inBootloader);
    fields.integer(QStringLiteral("restarts"), 0, std::numeric_limits<int>::max(), restarts);
    fields.integer(QStringLiteral("silentUntil"), -maxMs, maxMs, silentUntil);
    fields.integer(QStringLiteral("restartSilenceMs"), 0, 3600000, restartSilence);
    fields.integer(QStringLiteral("imageEnd"), -1, SimDevice::kBootAddress - 1, imageEnd);
    fields.integer(QStringLiteral("currentRecord"), -1, SimDevice::kBootAddress - 1, currentRecord);
    if (!fields.ok()) {
        setError(error, fields.error());
        return std::nullopt;
    }

    SimDevice device(config);
    const QByteArray raw = QByteArray::fromHex(eepromText.toLatin1());
    std::array<std::uint8_t, SimDevice::kEepromSize> bytes{};
    for (int i = 0; i < SimDevice::kEepromSize; ++i)
        bytes[static_cast<size_t>(i)] = static_cast<std::uint8_t>(raw.at(i));
    device.setEepromBytes(bytes);
    device.reloadCounters();
    device.setOutputState(static_cast<int>(output));
    device.setIlsInput(static_cast<int>(ils));
    device.setFastClock(fastClock);
    device.setProgrammeStopped(programmeStop);
    device.setClock(clockOffset, clockRate, clockAnchor);
    device.setPlugged(plugged);
    device.setInBootloader(inBootloader);
    device.setRestartCount(static_cast<int>(restarts));
    device.setSilentUntil(silentUntil);
    device.setRestartSilenceMs(static_cast<int>(restartSilence));
    device.setImageCursor(static_cast<int>(imageEnd), static_cast<int>(currentRecord));
    return device;
}

QByteArray devicesToState(const std::vector<const SimDevice*>& devices) {
    QJsonArray list;
    for (const SimDevice* device : devices)
        list.append(deviceToJson(*device));
    QJsonObject root;
    root.insert(QStringLiteral("format"), kFormat);
    root.insert(QStringLiteral("version"), kVersion);
    root.insert(QStringLiteral("devices"), list);
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

std::optional<std::vector<SimDevice>> devicesFromState(const QByteArray& document, QString* error) {
    QJsonParseError parseError;
    const QJsonDocument json = QJsonDocument::fromJson(document, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        setError(error, QStringLiteral("not valid JSON at offset %1: %2")
                            .arg(parseError.offset)
                            .arg(parseError.errorString()));
        return std::nullopt;
    }
    if (!json.isObject()) {
        setError(error, QStringLiteral("the document is not a JSON object"));
        return std::nullopt;
    }
    const QJsonObject root = json.object();
    if (root.value(QStringLiteral("format")).toString() != kFormat) {
        setError(error, QStringLiteral("'format' is not \"%1\"").arg(kFormat));
        return std::nullopt;
    }
    if (root.value(QStringLiteral("version")).toInt(-1) != kVersion) {
        setError(error, QStringLiteral("'version' must be %1").arg(kVersion));
        return std::nullopt;
    }
    if (!root.value(QStringLiteral("devices")).isArray()) {
        setError(error, QStringLiteral("'devices' must be a list"));
        return std::nullopt;
    }
    std::vector<SimDevice> devices;
    QSet<std::int32_t> ids;
    const QJsonArray list = root.value(QStringLiteral("devices")).toArray();
    for (int i = 0; i < list.size(); ++i) {
        if (!list.at(i).isObject()) {
            setError(error, QStringLiteral("devices[%1] is not an object").arg(i));
            return std::nullopt;
        }
        QString deviceError;
        auto device = deviceFromJson(list.at(i).toObject(), &deviceError);
        if (!device) {
            setError(error, QStringLiteral("devices[%1]: %2").arg(i).arg(deviceError));
            return std::nullopt;
        }
        if (ids.contains(device->uniqueId())) {
            setError(
                error,
                QStringLiteral("devices[%1]: id %2 appears twice").arg(i).arg(device->uniqueId()));
            return std::nullopt;
        }
        ids.insert(device->uniqueId());
        devices.push_back(std::move(*device));
    }
    return devices;
}

} // namespace qv
