#include "Commands.h"

#include "device/DeviceClock.h"
#include "device/DeviceSelection.h"
#include "device/Identity.h"
#include "device/MemoryMap.h"

#include <QDate>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

namespace qv {

namespace {
thread_local CapturedOutput* t_capture = nullptr;
} // namespace

void captureOutputOnThisThread(CapturedOutput* capture) {
    t_capture = capture;
}

void printLine(const QString& text) {
    if (t_capture) {
        t_capture->lines << text;
        return;
    }
    std::fputs(qUtf8Printable(text), stdout);
    std::fputc('\n', stdout);
}

void printJson(const QJsonValue& value) {
    if (t_capture) {
        t_capture->json.push_back(value);
        return;
    }
    const QByteArray text = value.isArray()
                                ? QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact)
                                : QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact);
    std::fputs(text.constData(), stdout);
    std::fputc('\n', stdout);
}

namespace {

int status(const Session& session) {
    return session.failed() ? kExitDeviceFailed : kExitOk;
}

int runDevices(Session& s, Arguments& args) {
    const bool all = args.takeFlag(QStringLiteral("all"));
    args.expectEnd();
    DeviceSelection selection(*s.device, [&s](const QString& key) { return s.message(key); });
    const DeviceList list = selection.RafraichitListe(all);
    if (s.json) {
        QJsonArray lines;
        for (const auto& line : list.lines)
            lines.append(QJsonObject{{QStringLiteral("text"), line.text},
                                     {QStringLiteral("id"), static_cast<qint64>(line.itemData)}});
        printJson(lines);
    } else {
        for (const auto& line : list.lines)
            printLine(line.text);
    }
    return kExitOk;
}

int runIdentity(Session& s, Arguments& args) {
    args.expectEnd();
    s.state.TimeOut = false;
    const MainIdentity id = LitVersionPrincipale(*s.device);
    if (s.failed())
        return kExitDeviceFailed;
    DeviceSelection selection(*s.device, [&s](const QString& key) { return s.message(key); });
    const QString serial = selection.LitSerieAppareil();
    if (s.json) {
        printJson(QJsonObject{
            {QStringLiteral("id"), static_cast<qint64>(s.state.UsbID)},
            {QStringLiteral("hardware"), id.hardwareCode},
            {QStringLiteral("model"), NomMateriel(id.hardwareCode, false)},
            {QStringLiteral("version"), id.versionCaption},
            {QStringLiteral("firmware"), id.firmwareText},
            {QStringLiteral("bootloader"), id.bootloaderText},
            {QStringLiteral("batteryRaw"), id.batteryRaw},
            {QStringLiteral("batteryVolts"), id.batteryRaw / kBatteryStepsPerVolt},
            {QStringLiteral("serial"), serial},
        });
    } else {
        printLine(QStringLiteral("Device id:   %1").arg(s.state.UsbID));
        printLine(QStringLiteral("Model:       %1").arg(NomMateriel(id.hardwareCode, false)));
        printLine(QStringLiteral("Version:     %1").arg(id.versionCaption));
        printLine(QStringLiteral("Bootloader:  %1").arg(id.bootloaderText));
        printLine(
            QStringLiteral("Battery:     %1 V (raw %2)").arg(id.batteryText).arg(id.batteryRaw));
        printLine(QStringLiteral("Serial:      %1").arg(serial));
    }
    return status(s);
}

int runEepromRead(Session& s, Arguments& args) {
    const int address = static_cast<int>(
        parseNumber(args.takePositional(QStringLiteral("ADDR")), QStringLiteral("ADDR"), 0, 511));
    const auto countText = args.takeOptionalPositional();
    const int count =
        countText
            ? static_cast<int>(parseNumber(*countText, QStringLiteral("COUNT"), 1, 512 - address))
            : 1;
    args.expectEnd();
    s.state.TimeOut = false;
    QJsonArray values;
    for (int i = 0; i < count; ++i) {
        const int value = s.device->LitEEprom(address + i);
        if (s.state.TimeOut)
            return kExitDeviceFailed;
        if (s.json)
            values.append(value);
        else
            printLine(QStringLiteral("%1 %2").arg(address + i).arg(value));
    }
    if (s.json)
        printJson(
            QJsonObject{{QStringLiteral("address"), address}, {QStringLiteral("values"), values}});
    return status(s);
}

int runEepromWrite(Session& s, Arguments& args) {
    const int address = static_cast<int>(
        parseNumber(args.takePositional(QStringLiteral("ADDR")), QStringLiteral("ADDR"), 0, 511));
    const int value = static_cast<int>(
        parseNumber(args.takePositional(QStringLiteral("VALUE")), QStringLiteral("VALUE"), 0, 255));
    args.expectEnd();
    s.state.TimeOut = false;
    int answer = 0;
    try {
        answer = s.device->EcritEEprom(address, value);
    } catch (const OverflowError&) {
        throw UsageError{QStringLiteral("address %1 cannot be written: the memory above 255 is "
                                        "read only from the PC")
                             .arg(address)};
    }
    if (s.failed())
        return kExitDeviceFailed;
    if (s.json)
        printJson(
            QJsonObject{{QStringLiteral("address"), address}, {QStringLiteral("answer"), answer}});
    else
        printLine(QStringLiteral("%1 %2").arg(address).arg(answer));
    return kExitOk;
}

int runValueRead(Session& s, Arguments& args) {
    const int address = static_cast<int>(
        parseNumber(args.takePositional(QStringLiteral("ADDR")), QStringLiteral("ADDR"), 0, 255));
    args.expectEnd();
    s.state.TimeOut = false;
    const int value = s.device->LitValeur(address);
    if (s.failed())
        return kExitDeviceFailed;
    if (s.json)
        printJson(
            QJsonObject{{QStringLiteral("address"), address}, {QStringLiteral("value"), value}});
    else
        printLine(QString::number(value));
    return kExitOk;
}

int runClockRead(Session& s, Arguments& args) {
    args.expectEnd();
    s.state.TimeOut = false;
    const auto reading = LitDateEtHeure(*s.device);
    if (!reading || s.failed())
        return kExitDeviceFailed;
    if (s.json) {
        QJsonObject o{{QStringLiteral("text"), reading->caption}};
        if (reading->heureDevice)
            o.insert(QStringLiteral("seconds"), *reading->heureDevice);
        printJson(o);
    } else {
        printLine(reading->caption);
    }
    return kExitOk;
}

int runClockSet(Session& s, Arguments& args) {
    args.expectEnd();
    s.state.TimeOut = false;
    MAH(*s.device, 0, QDate::currentDate());
    if (s.failed())
        return kExitDeviceFailed;
    const QString done = s.message(QStringLiteral("Date and Time Set"));
    if (s.json)
        printJson(QJsonObject{{QStringLiteral("message"), done}});
    else
        printLine(done);
    return kExitOk;
}

} // namespace

const std::vector<CliCommand>& deviceCommands() {
    static const std::vector<CliCommand> commands = {
        {{QStringLiteral("devices")},
         QStringLiteral("list the attached controllers as the connection window does"),
         QStringLiteral("devices [--all]\n  --all  also list models other than the Quorvel"),
         runDevices},
        {{QStringLiteral("identity")},
         QStringLiteral("model, firmware, bootloader, battery and serial number"),
         QStringLiteral("identity"),
         runIdentity},
        {{QStringLiteral("eeprom"), QStringLiteral("read")},
         QStringLiteral("read memory bytes (one line each: address value)"),
         QStringLiteral(
             "eeprom read ADDR [COUNT]\n  ADDR   0..511\n  COUNT  number of bytes, default 1"),
         runEepromRead},
        {{QStringLiteral("eeprom"), QStringLiteral("write")},
         QStringLiteral("write one memory byte (addresses 0..255)"),
         QStringLiteral("eeprom write ADDR VALUE\n  prints the address and the device's answer"),
         runEepromWrite},
        {{QStringLiteral("value"), QStringLiteral("read")},
         QStringLiteral("read a live value (0: output state, 2: ILS input)"),
         QStringLiteral("value read ADDR"),
         runValueRead},
        {{QStringLiteral("clock"), QStringLiteral("read")},
         QStringLiteral("read the controller's date and time"),
         QStringLiteral("clock read"),
         runClockRead},
        {{QStringLiteral("clock"), QStringLiteral("set")},
         QStringLiteral("set the controller's clock from this PC"),
         QStringLiteral("clock set"),
         runClockSet},
    };
    return commands;
}

} // namespace qv
