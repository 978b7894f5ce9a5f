#include "FrameDecoder.h"

#include "Identity.h"
#include "MemoryMap.h"
#include "link/Crc.h"

namespace qv {

namespace {

constexpr int kSubDayTime = 9;
constexpr int kSubRangeEnd = 10;
constexpr int kSubPeriod = 11;
constexpr int kNoOutput = 255;
constexpr int kClockSpeedWrite = 1;

int at(const QByteArray& bytes, int index) {
    return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0;
}

QString two(int value) {
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}

QString timeOfDay(int hour, int minute, int second) {
    return two(hour) + QLatin1Char(':') + two(minute) + QLatin1Char(':') + two(second);
}

QString weekday(int day) {
    static const char* const names[] = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    return day >= 1 && day <= 7 ? QString::fromLatin1(names[day - 1])
                                : QStringLiteral("day%1").arg(day);
}

QString withName(int address, const QString& name) {
    return name.isEmpty() ? QString::number(address)
                          : QStringLiteral("%1 (%2)").arg(address).arg(name);
}

QString lineLabel(const DecodeContext* context) {
    return context && context->programmeLine > 0
               ? QStringLiteral("programme line %1").arg(context->programmeLine)
               : QStringLiteral("programme line ?");
}

QString programmeBlock(const QByteArray& f, const DecodeContext* context) {
    const int sub = at(f, 1);
    const QString head = lineLabel(context) + QStringLiteral(" (sub %1)").arg(sub);
    switch (sub) {
    case kSubDayTime:
        return head + QStringLiteral(": day %1 at %2")
                          .arg(at(f, 2))
                          .arg(timeOfDay(at(f, 3), at(f, 4), at(f, 5)));
    case kSubRangeEnd:
        return head + QStringLiteral(": until day %1 at %2")
                          .arg(at(f, 2))
                          .arg(timeOfDay(at(f, 3), at(f, 4), at(f, 5)));
    case kSubPeriod:
        return head + QStringLiteral(": from %1/%2 at %3:%4, every %5 days")
                          .arg(two(at(f, 2)), two(at(f, 3)), two(at(f, 4)), two(at(f, 5)))
                          .arg(at(f, 6));
    default:
        return head;
    }
}

QString describeChecked(const QByteArray& f, DecodeContext* context) {
    switch (at(f, 0)) {
    case Command::Restart:
        return QStringLiteral("restart");
    case Command::SetDateTime: {
        QString text = QStringLiteral("set clock %1 %2/%3/%4 %5")
                           .arg(weekday(at(f, 1)), two(at(f, 5)), two(at(f, 6)), two(at(f, 7)),
                                timeOfDay(at(f, 2), at(f, 3), at(f, 4)));
        if (at(f, 8) != 0)
            text += QStringLiteral(", option %1").arg(at(f, 8));
        return text;
    }
    case Command::BeginProgramme:
        return QStringLiteral("begin programme, default state %1").arg(at(f, 2));
    case Command::ProgrammeCondition: {
        if (context)
            context->programmeLine = at(f, 2) + 1;
        return QStringLiteral("programme line %1: output %2, value %3, delay %4 s, day %5")
            .arg(at(f, 2) + 1)
            .arg(at(f, 1))
            .arg(at(f, 3))
            .arg(at(f, 8) * 256 + at(f, 9))
            .arg(at(f, 10));
    }
    case Command::ManualAction: {
        const QString programme =
            at(f, 3) ? QStringLiteral("programme stopped") : QStringLiteral("programme running");
        if (at(f, 1) == kNoOutput)
            return QStringLiteral("manual action: ") + programme;
        return QStringLiteral("manual action: output %1 %2, ")
                   .arg(at(f, 1))
                   .arg(at(f, 2) ? QStringLiteral("open") : QStringLiteral("close")) +
               programme;
    }
    case Command::ProgrammeBlock:
        return programmeBlock(f, context);
    case Command::Identity:
        return QStringLiteral("identity");
    case Command::ReadDateTime:
        return QStringLiteral("read clock");
    case Command::ClockSpeedCheck:
        if (at(f, 1) == kClockSpeedWrite)
            return QStringLiteral("set fast clock %1")
                .arg(at(f, 2) ? QStringLiteral("on") : QStringLiteral("off"));
        return QStringLiteral("read fast clock");
    case Command::ReloadCounters:
        return QStringLiteral("reload counters");
    case Command::ReadLiveValue:
        return QStringLiteral("live value ") + withName(at(f, 1), liveValueName(at(f, 1)));
    case Command::ReadEeprom: {
        const int address = at(f, 1) + 256 * at(f, 2);
        return QStringLiteral("read EEPROM ") + withName(address, eepromName(address));
    }
    case Command::WriteEeprom:
        return QStringLiteral("write EEPROM ") + withName(at(f, 1), eepromName(at(f, 1))) +
               QStringLiteral(" <- %1").arg(at(f, 2));
    default:
        return QStringLiteral("command 0x") +
               QString::number(at(f, 0), 16).rightJustified(2, QLatin1Char('0')).toUpper();
    }
}

QString identityText(const QByteArray& r) {
    const int minor = at(r, 3);
    const QString firmware = minor < 10
                                 ? QStringLiteral("%1.%2%3").arg(at(r, 1)).arg(at(r, 4)).arg(minor)
                                 : QStringLiteral("%1.%2").arg(at(r, 1)).arg(minor);
    return QStringLiteral("%1 (%2) %3")
        .arg(NomMateriel(at(r, 2), false))
        .arg(at(r, 2))
        .arg(firmware);
}

} // namespace

QString eepromName(int address) {
    using namespace Address;
    const auto part = [address](const char* name, int first) {
        return QStringLiteral("%1, byte %2").arg(QLatin1String(name)).arg(address - first);
    };
    if (address == ManualActionDelay || address == ManualActionDelay + 1)
        return address == ManualActionDelay ? QStringLiteral("manual action delay, low byte")
                                            : QStringLiteral("manual action delay, high byte");
    if (address >= SerialNumber && address < SerialNumber + 4)
        return part("serial number", SerialNumber);
    if (address >= ProgrammingDate && address < ProgrammingDate + 4)
        return part("programming date", ProgrammingDate);
    if (address == DefaultOutputStates)
        return QStringLiteral("default output states");
    if (address >= DaylightSavingRule && address < DaylightSavingRule + 7)
        return part("daylight-saving rule", DaylightSavingRule);
    if (address >= ClockCalibration && address < ClockCalibration + 4)
        return part("clock calibration", ClockCalibration);
    if (address == IlsAtLastWrite)
        return QStringLiteral("ILS at last write");
    if (address >= Counters && address < Counters + CounterCount)
        return QStringLiteral("counter %1").arg(address - Counters + 1);
    if (address == BatteryThreshold || address == BatteryThreshold + 1)
        return address == BatteryThreshold ? QStringLiteral("battery threshold, low byte")
                                           : QStringLiteral("battery threshold, high byte");
    if (address >= ProgrammeImage && address < BootRequest)
        return part("programme image", ProgrammeImage);
    if (address == BootRequest)
        return QStringLiteral("boot request");
    if (address >= LogArea && address < LogArea + LogAreaLength)
        return part("log area", LogArea);
    return QString();
}

QString liveValueName(int address) {
    if (address == LiveValue::OutputState)
        return QStringLiteral("output state");
    if (address == LiveValue::IlsInput)
        return QStringLiteral("ILS input");
    return QString();
}

bool checkValueGood(const QByteArray& frame) {
    return frame.size() > 2 && crc16(reinterpret_cast<const std::uint8_t*>(frame.constData()),
                                     static_cast<int>(frame.size())) == 0;
}

QString describeRequest(const QByteArray& request, DecodeContext* context) {
    if (request.isEmpty())
        return QStringLiteral("nothing");
    if (!isCheckedFrame(request)) {
        if (at(request, 0) == Command::Identity && request.size() == 12)
            return QStringLiteral("legacy probe");
        return QStringLiteral("%1 bytes unchecked").arg(request.size());
    }
    QString text = describeChecked(request, context);
    if (!checkValueGood(request))
        text += QStringLiteral(" [bad check value]");
    return text;
}

QString describeReply(const QByteArray& request, const QByteArray& reply) {
    if (reply.isEmpty())
        return QString();
    if (!isCheckedFrame(request))
        return at(request, 0) == Command::Identity ? identityText(reply) : QString();
    switch (at(request, 0)) {
    case Command::Identity: {
        const int battery = at(reply, 5) * 256 + at(reply, 6);
        return identityText(reply) +
               QStringLiteral(" BL V %1%2, battery %3 V")
                   .arg(at(reply, 7) * 10)
                   .arg(at(reply, 8))
                   .arg(QString::number(battery / kBatteryStepsPerVolt, 'f', 1));
    }
    case Command::ReadDateTime:
        return QStringLiteral("%1/%2/%3 %4")
            .arg(two(at(reply, 1)), two(at(reply, 2)), two(at(reply, 3)),
                 timeOfDay(at(reply, 4), at(reply, 5), at(reply, 6)));
    case Command::ClockSpeedCheck:
        return at(reply, 1) == 1 ? QStringLiteral("1 (fast)")
                                 : QStringLiteral("%1 (normal)").arg(at(reply, 1));
    case Command::ReloadCounters:
    case Command::ReadLiveValue:
    case Command::ReadEeprom:
    case Command::WriteEeprom:
        return QString::number(at(reply, 1));
    default:
        return QString();
    }
}

} // namespace qv
