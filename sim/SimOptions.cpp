#include "SimOptions.h"

#include <QStringList>
#include <cmath>
#include <limits>

namespace qv {

namespace {

bool parseInt(const QString& key, const QString& value, long long low, long long high,
              long long& out, QString* error) {
    bool ok = false;
    const long long number = value.toLongLong(&ok);
    if (!ok || number < low || number > high) {
        if (error)
            *error = QStringLiteral("sim option '%1': '%2' is not a whole number from %3 to %4")
                         .arg(key, value)
                         .arg(low)
                         .arg(high);
        return false;
    }
    out = number;
    return true;
}

bool parseBool(const QString& key, const QString& value, bool& out, QString* error) {
    const QString v = value.toLower();
    if (v == QLatin1String("1") || v == QLatin1String("true") || v == QLatin1String("yes") ||
        v == QLatin1String("on")) {
        out = true;
        return true;
    }
    if (v == QLatin1String("0") || v == QLatin1String("false") || v == QLatin1String("no") ||
        v == QLatin1String("off")) {
        out = false;
        return true;
    }
    if (error)
        *error = QStringLiteral("sim option '%1': '%2' is not 0 or 1").arg(key, value);
    return false;
}

} // namespace

QString simOptionsHelp() {
    return QStringLiteral(
        "devices=N (1..16), firmware=X.YY, hardware=CODE (0..255), serial=N, bootloader=X.Y, "
        "battery=RAW (0..65535), demo=0|1, state=FILE, autosave=0|1, trace=FILE, drop=N, "
        "dropRate=P (0..1), seed=N, corrupt=N, short=N, shortLength=BYTES, late=N, "
        "lateMs=MS, unplug=N, unplugAfter=N, restartMs=MS, readWaitMs=MS");
}

std::optional<SimOptions> parseSimOptions(const QString& text, QString* error) {
    SimOptions options;
    QString rest = text.trimmed();
    if (rest.startsWith(QLatin1String("sim")))
        rest = rest.mid(3);
    if (rest.startsWith(QLatin1Char(':')))
        rest = rest.mid(1);

    const long long maxCount = std::numeric_limits<int>::max();
    for (const QString& item : rest.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const int equals = item.indexOf(QLatin1Char('='));
        if (equals <= 0) {
            if (error)
                *error = QStringLiteral("sim option '%1' is not of the form key=value").arg(item);
            return std::nullopt;
        }
        const QString key = item.left(equals).trimmed();
        const QString value = item.mid(equals + 1).trimmed();
        long long number = 0;
        bool ok = true;
        if (key == QLatin1String("devices")) {
            ok = parseInt(key, value, 1, 16, number, error);
            options.devices = static_cast<int>(number);
        } else if (key == QLatin1String("firmware")) {
            const auto version = FirmwareVersion::parse(value, error);
            ok = version.has_value();
            if (ok)
                options.firmware = *version;
        } else if (key == QLatin1String("bootloader")) {
            const auto version = BootloaderVersion::parse(value, error);
            ok = version.has_value();
            if (ok)
                options.bootloader = *version;
        } else if (key == QLatin1String("hardware")) {
            ok = parseInt(key, value, 0, 255, number, error);
            options.hardware = static_cast<int>(number);
        } else if (key == QLatin1String("serial")) {
            ok = parseInt(key, value, 0, std::numeric_limits<std::uint32_t>::max(), number, error);
            options.serial = static_cast<std::uint32_t>(number);
        } else if (key == QLatin1String("battery")) {
            ok = parseInt(key, value, 0, 65535, number, error);
            options.battery = static_cast<int>(number);
        } else if (key == QLatin1String("demo")) {
            ok = parseBool(key, value, options.demo, error);
        } else if (key == QLatin1String("state")) {
            options.statePath = value;
        } else if (key == QLatin1String("autosave")) {
            ok = parseBool(key, value, options.autosave, error);
        } else if (key == QLatin1String("trace")) {
            options.tracePath = value;
        } else if (key == QLatin1String("drop")) {
            ok = parseInt(key, value, 0, maxCount, number, error);
            options.drop = static_cast<int>(number);
        } else if (key == QLatin1String("dropRate")) {
            const double rate = value.toDouble(&ok);
            ok = ok && std::isfinite(rate) && rate >= 0 && rate <= 1;
            if (!ok && error)
                *error = QStringLiteral("sim option 'dropRate': '%1' is not a number from 0 to 1")
                             .arg(value);
            options.dropRate = rate;
        } else if (key == QLatin1String("seed")) {
            ok = parseInt(key, value, 0, std::numeric_limits<std::uint32_t>::max(), number, error);
            options.seed = static_cast<std::uint32_t>(number);
        } else if (key == QLatin1String("corrupt")) {
            ok = parseInt(key, value, 0, maxCount, number, error);
            options.corrupt = static_cast<int>(number);
        } else if (key == QLatin1String("short")) {
            ok = parseInt(key, value, 0, maxCount, number, error);
            options.shortCount = static_cast<int>(number);
        } else if (key == QLatin1String("shortLength")) {
            ok = parseInt(key, value, 0, 64, number, error);
            options.shortLength = static_cast<int>(number);
        } else if (key == QLatin1String("late")) {
            ok = parseInt(key, value, 0, maxCount, number, error);
            options.late = static_cast<int>(number);
        } else if (key == QLatin1String("lateMs")) {
            ok = parseInt(key, value, 0, 60000, number, error);
            options.lateMs = static_cast<int>(number);
        } else if (key == QLatin1String("unplug") || key == QLatin1String("unplugged")) {
            ok = parseInt(key, value, 0, 16, number, error);
            options.unplugged = static_cast<int>(number);
        } else if (key == QLatin1String("unplugAfter")) {
            ok = parseInt(key, value, 0, maxCount, number, error);
            options.unplugAfter = static_cast<int>(number);
        } else if (key == QLatin1String("restartMs")) {
            ok = parseInt(key, value, 0, 3600000, number, error);
            options.restartMs = static_cast<int>(number);
        } else if (key == QLatin1String("readWaitMs")) {
            ok = parseInt(key, value, 0, 60000, number, error);
            options.readWaitMs = static_cast<int>(number);
        } else {
            if (error)
                *error =
                    QStringLiteral("unknown sim option '%1'; known: %2").arg(key, simOptionsHelp());
            return std::nullopt;
        }
        if (!ok)
            return std::nullopt;
    }
    return options;
}

std::vector<SimDeviceConfig> deviceConfigs(const SimOptions& options) {
    if (options.demo)
        return demoDevices();
    std::vector<SimDeviceConfig> configs;
    for (int i = 0; i < options.devices; ++i) {
        SimDeviceConfig config;
        config.hardwareCode = options.hardware;
        config.firmware = options.firmware;
        config.bootloader = options.bootloader;
        config.battery = options.battery;
        if (options.serial)
            config.serial = *options.serial + static_cast<std::uint32_t>(i);
        configs.push_back(config);
    }
    return configs;
}

std::vector<SimDeviceConfig> demoDevices() {
    SimDeviceConfig current;
    current.serial = 1234;
    SimDeviceConfig other;
    other.hardwareCode = 4;
    other.battery = 870;
    return {current, other};
}

} // namespace qv
