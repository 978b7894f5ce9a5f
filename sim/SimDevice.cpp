#include "SimDevice.h"

#include "link/Crc.h"

#include <QRegularExpression>
#include <QTimeZone>
#include <cmath>

namespace qv {

namespace {

void fail(QString* error, const QString& text) {
    if (error)
        *error = text;
}

// The PC's local wall-clock reading as seconds since 1970, as if local time
// were UTC: the controller's clock has no notion of zones.
double localSeconds(qint64 nowMs) {
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(nowMs).toLocalTime();
    const QDateTime fields(local.date(), local.time(), QTimeZone::utc());
    return static_cast<double>(fields.toMSecsSinceEpoch()) / 1000.0;
}

// The unchecked identity request of old firmware: 0xF0 and eleven zeros.
QByteArray legacyRequest() {
    QByteArray request(12, '\0');
    request[0] = static_cast<char>(0xF0);
    return request;
}

QByteArray payload(int length, int command) {
    QByteArray reply(length, '\0');
    reply[0] = static_cast<char>(command);
    return reply;
}

std::uint64_t splitMix(std::uint64_t& state) {
    std::uint64_t z = (state += 0x9E3779B97F4A7C15ULL);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
    return z ^ (z >> 31);
}

} // namespace

QByteArray withCheckValue(const QByteArray& payload) {
    const std::uint16_t crc =
        crc16(reinterpret_cast<const std::uint8_t*>(payload.constData()), payload.size());
    QByteArray reply = payload;
    reply.append(static_cast<char>(crc & 0xFF));
    reply.append(static_cast<char>(crc >> 8));
    return reply;
}

std::optional<FirmwareVersion> FirmwareVersion::parse(const QString& text, QString* error) {
    static const QRegularExpression form(QStringLiteral("^(\\d{1,3})\\.(\\d{2,3})$"));
    const QRegularExpressionMatch match = form.match(text.trimmed());
    if (!match.hasMatch()) {
        fail(error, QStringLiteral("firmware version '%1' is not of the form 2.70 "
                                   "(major, point, two or three digits)")
                        .arg(text));
        return std::nullopt;
    }
    const QString fraction = match.captured(2);
    FirmwareVersion version{match.captured(1).toInt(), fraction.toInt()};
    // "2.05" is minor 5; a three-digit fraction must mean a minor of 100 or
    // more, since the reply has no way to carry "2.005".
    if (version.major > 255 || version.minor > 255 ||
        (fraction.size() == 3 && version.minor < 100)) {
        fail(
            error,
            QStringLiteral("firmware version '%1' cannot be reported by the controller").arg(text));
        return std::nullopt;
    }
    return version;
}

QString FirmwareVersion::text() const {
    return QStringLiteral("%1.%2").arg(major).arg(minor, 2, 10, QLatin1Char('0'));
}

std::optional<BootloaderVersion> BootloaderVersion::parse(const QString& text, QString* error) {
    static const QRegularExpression form(QStringLiteral("^(\\d{1,3})\\.(\\d{1,3})$"));
    const QRegularExpressionMatch match = form.match(text.trimmed());
    if (!match.hasMatch()) {
        fail(error, QStringLiteral("bootloader version '%1' is not of the form 1.3").arg(text));
        return std::nullopt;
    }
    BootloaderVersion version{match.captured(1).toInt(), match.captured(2).toInt()};
    if (version.first > 255 || version.second > 255) {
        fail(error, QStringLiteral("bootloader version '%1' has a part above 255").arg(text));
        return std::nullopt;
    }
    return version;
}

QString BootloaderVersion::text() const {
    return QStringLiteral("%1.%2").arg(first).arg(second);
}

std::array<std::uint8_t, 256> SimDevice::logBytes(std::int32_t uniqueId) {
    // Eight-byte event records: code, date, time and a 16-bit reading.
    std::array<std::uint8_t, 256> log{};
    std::uint64_t state = static_cast<std::uint32_t>(uniqueId);
    for (size_t record = 0; record < log.size() / 8; ++record) {
        const std::uint64_t r = splitMix(state);
        std::uint8_t* entry = log.data() + record * 8;
        entry[0] = static_cast<std::uint8_t>(1 + r % 5);
        entry[1] = static_cast<std::uint8_t>(1 + (r >> 8) % 28);
        entry[2] = static_cast<std::uint8_t>(1 + (r >> 16) % 12);
        entry[3] = static_cast<std::uint8_t>(20 + (r >> 24) % 7);
        entry[4] = static_cast<std::uint8_t>((r >> 32) % 24);
        entry[5] = static_cast<std::uint8_t>((r >> 40) % 60);
        const int reading = 700 + static_cast<int>((r >> 48) % 300);
        entry[6] = static_cast<std::uint8_t>(reading & 0xFF);
        entry[7] = static_cast<std::uint8_t>(reading >> 8);
    }
    return log;
}

SimDevice::SimDevice(const SimDeviceConfig& config)
    : uniqueId_(config.uniqueId), hardwareCode_(config.hardwareCode), firmware_(config.firmware),
      bootloader_(config.bootloader), battery_(config.battery), plugged_(config.plugged) {
    // What a controller fresh from the factory holds: a one-minute manual
    // action, the daylight rule switched off, a 7 V battery threshold, no
    // programme, and a log of past events.
    setEeprom(kManualDelayAddress, 60);
    const std::array<int, 7> daylightOff{60, 255, 3, 2, 255, 10, 3};
    for (size_t i = 0; i < daylightOff.size(); ++i)
        setEeprom(26 + static_cast<int>(i), daylightOff[i]);
    setEeprom(kBatteryThresholdAddress, 740 & 0xFF);
    setEeprom(kBatteryThresholdAddress + 1, 740 >> 8);
    setEeprom(kImageStart, kEndMark);
    setSerialNumber(config.serial.value_or(0));
    const auto log = logBytes(uniqueId_);
    for (size_t i = 0; i < log.size(); ++i)
        eeprom_[kLogStart + i] = log[i];
}

int SimDevice::eeprom(int address) const {
    if (address < 0 || address >= kEepromSize)
        return 0;
    return eeprom_[static_cast<size_t>(address)];
}

void SimDevice::setEeprom(int address, int value) {
    if (address < 0 || address >= kEepromSize)
        return;
    eeprom_[static_cast<size_t>(address)] = static_cast<std::uint8_t>(value & 0xFF);
}

std::uint32_t SimDevice::serialNumber() const {
    std::uint32_t serial = 0;
    for (int i = 3; i >= 0; --i)
        serial = (serial << 8) | static_cast<std::uint32_t>(eeprom(kSerialAddress + i));
    return serial;
}

void SimDevice::setSerialNumber(std::uint32_t serial) {
    for (int i = 0; i < 4; ++i)
        setEeprom(kSerialAddress + i, static_cast<int>((serial >> (8 * i)) & 0xFF));
}

int SimDevice::counter(int index) const {
    if (index < 0 || index >= kCounterCount)
        return 0;
    return counters_[static_cast<size_t>(index)];
}

void SimDevice::countEvent(int index) {
    if (index < 0 || index >= kCounterCount)
        return;
    int& value = counters_[static_cast<size_t>(index)];
    value = std::min(value + 1, 255);
    eeprom_[static_cast<size_t>(kCountersAddress + index)] = static_cast<std::uint8_t>(value);
}

void SimDevice::reloadCounters() {
    for (int i = 0; i < kCounterCount; ++i)
        counters_[static_cast<size_t>(i)] = eeprom(kCountersAddress + i);
}

void SimDevice::setClock(double offsetSeconds, double ratePpm, qint64 anchorMs) {
    clockOffset_ = offsetSeconds;
    clockRate_ = ratePpm;
    clockAnchor_ = anchorMs;
}

void SimDevice::setClockRate(double ratePpm, qint64 nowMs) {
    const double elapsed = static_cast<double>(nowMs - clockAnchor_) / 1000.0;
    clockOffset_ += elapsed * clockRate_ / 1e6;
    clockAnchor_ = nowMs;
    clockRate_ = ratePpm;
}

double SimDevice::deviceSeconds(qint64 nowMs) const {
    const double elapsed = static_cast<double>(nowMs - clockAnchor_) / 1000.0;
    return localSeconds(nowMs) + clockOffset_ + elapsed * clockRate_ / 1e6;
}

QDateTime SimDevice::deviceTime(qint64 nowMs) const {
    const double seconds = deviceSeconds(nowMs);
    // Rounded to the millisecond so that the float sum cannot show 09:59:59
    // for 10:00:00.
    return QDateTime::fromMSecsSinceEpoch(std::llround(seconds * 1000.0), QTimeZone::utc());
}

void SimDevice::setDeviceTime(const QDateTime& localTime, qint64 nowMs) {
    const QDateTime fields(localTime.date(), localTime.time(), QTimeZone::utc());
    clockOffset_ = static_cast<double>(fields.toMSecsSinceEpoch()) / 1000.0 - localSeconds(nowMs);
    clockAnchor_ = nowMs;
}

void SimDevice::restartFromBootloader() {
    inBootloader_ = false;
    if (eeprom(kBootAddress) == 255)
        setEeprom(kBootAddress, 0);
    silentUntil_ = 0;
    ++restarts_;
    programmeStop_ = false;
    imageEnd_ = -1;
    currentRecord_ = -1;
    reloadCounters();
}

void SimDevice::setImageCursor(int end, int record) {
    const bool valid = end >= kImageStart && end < kBootAddress &&
                       (record < 0 || (record >= kImageStart && record < end));
    imageEnd_ = valid ? end : -1;
    currentRecord_ = valid ? record : -1;
}

void SimDevice::restart(qint64 nowMs) {
    // The application starts over: the pending programme stop and any open
    // download are gone, the counters come back from EEPROM, and the ILS
    // state of this moment is recorded for the next read.
    ++restarts_;
    silentUntil_ = nowMs + restartSilenceMs_;
    programmeStop_ = false;
    imageEnd_ = -1;
    currentRecord_ = -1;
    setEeprom(kIlsAddress, ils_);
    reloadCounters();
}

SimDevice::Outcome SimDevice::receive(const QByteArray& transfer, qint64 nowMs) {
    if (silent(nowMs))
        return {};
    if (transfer.size() == 12)
        return legacyProbe(transfer);
    if (transfer.size() != 16)
        return {};
    return checkedFrame(transfer, nowMs);
}

SimDevice::Outcome SimDevice::legacyProbe(const QByteArray& transfer) const {
    // Only the exact old request, and only from old firmware; current
    // firmware drops the unchecked form without a word.
    Outcome outcome;
    if (!firmware_.answersLegacyProbe() || transfer != legacyRequest())
        return outcome;
    const QByteArray id = identity();
    QByteArray reply = id.left(5);
    reply.append(id.mid(5, 2)); // battery, high byte first
    outcome.reply = reply;
    return outcome;
}

QByteArray SimDevice::identity() const {
    QByteArray reply = payload(9, 0xF0);
    reply[1] = static_cast<char>(firmware_.major);
    reply[2] = static_cast<char>(hardwareCode_);
    reply[3] = static_cast<char>(firmware_.minor);
    reply[4] = 0; // the digit in front of a minor below 10: always the 0 of "2.05"
    reply[5] = static_cast<char>((battery_ >> 8) & 0xFF);
    reply[6] = static_cast<char>(battery_ & 0xFF);
    reply[7] = static_cast<char>(bootloader_.first);
    reply[8] = static_cast<char>(bootloader_.second);
    return reply;
}

int SimDevice::liveValue(int address) const {
    switch (address) {
    case 0:
        return output_ & 0xFF;
    case 2:
        return ils_ & 0xFF;
    default:
        return 0;
    }
}

bool SimDevice::appendToImage(const std::uint8_t* bytes, int length) {
    // The end mark must stay below the boot request at 255; a line that does
    // not fit is refused whole.
    if (imageEnd_ < 0 || imageEnd_ + length > kBootAddress - 1)
        return false;
    for (int i = 0; i < length; ++i)
        eeprom_[static_cast<size_t>(imageEnd_ + i)] = bytes[i];
    imageEnd_ += length;
    eeprom_[static_cast<size_t>(imageEnd_)] = kEndMark;
    return true;
}

bool SimDevice::programmeBlock(const std::uint8_t* frame) {
    if (currentRecord_ < 0)
        return false;
    const size_t header = static_cast<size_t>(currentRecord_);
    const auto addTerm = [&]() {
        if (eeprom_[header + 1] < 255)
            ++eeprom_[header + 1];
    };
    switch (frame[1]) {
    case 9:
        if (frame[2] == kRangeDay) {
            const std::uint8_t start[9] = {9, 1, frame[3], frame[4], frame[5], 0, 0, 0, 0};
            if (!appendToImage(start, 9))
                return false;
            eeprom_[header + 2] |= 1;
            return true;
        } else {
            const std::uint8_t term[10] = {9,        0, frame[2], frame[3], frame[4],
                                           frame[5], 0, 0,        0,        0};
            if (!appendToImage(term, 10))
                return false;
            addTerm();
            return true;
        }
    case 10: {
        const std::uint8_t end[9] = {9, 0, frame[3], frame[4], frame[5], 0, 0, 0, 0};
        return appendToImage(end, 9);
    }
    case 11: {
        const std::uint8_t term[10] = {11,       0,        frame[2], frame[3], frame[4],
                                       frame[5], frame[6], 0,        0,        0};
        if (!appendToImage(term, 10))
            return false;
        addTerm();
        return true;
    }
    default:
        return false;
    }
}

SimDevice::Outcome SimDevice::checkedFrame(const QByteArray& transfer, qint64 nowMs) {
    const auto* frame = reinterpret_cast<const std::uint8_t*>(transfer.constData());
    const std::uint16_t crc = crc16(frame, 14);
    if (frame[14] != (crc & 0xFF) || frame[15] != (crc >> 8))
        return {};

    Outcome outcome;
    const int command = frame[0];
    QByteArray reply;
    switch (command) {
    case 0x00:
        restart(nowMs);
        outcome.changed = true;
        return outcome;
    case 0x01: {
        // An impossible date is acknowledged and leaves the clock alone.
        const QDate date(2000 + frame[7], frame[6], frame[5]);
        const QTime time(frame[2], frame[3], frame[4]);
        if (date.isValid() && time.isValid())
            setDeviceTime(QDateTime(date, time, QTimeZone::utc()), nowMs);
        lastTimeOption_ = frame[8];
        reply = payload(8, command);
        outcome.changed = true;
        break;
    }
    case 0x02:
        setEeprom(kDefaultStatesAddress, frame[2]);
        imageEnd_ = kImageStart;
        currentRecord_ = -1;
        setEeprom(kImageStart, kEndMark);
        reply = payload(8, command);
        outcome.changed = true;
        break;
    case 0x03: {
        const int start = imageEnd_;
        const std::uint8_t record[13] = {frame[1], 0, 0, frame[3], 0,        0,       0,
                                         0,        0, 0, 0,        frame[9], frame[8]};
        if (!appendToImage(record, 13))
            return {};
        currentRecord_ = start;
        reply = payload(8, command);
        outcome.changed = true;
        break;
    }
    case 0x04:
        if (frame[1] == kValveOutput && frame[2] <= 1)
            output_ = frame[2];
        programmeStop_ = frame[3] != 0;
        reply = payload(8, command);
        outcome.changed = true;
        break;
    case 0x1F:
        if (!programmeBlock(frame))
            return {};
        reply = payload(8, command);
        outcome.changed = true;
        break;
    case 0xF0:
        reply = identity();
        break;
    case 0xF1: {
        const QDateTime now = deviceTime(nowMs);
        reply = payload(7, command);
        reply[1] = static_cast<char>(now.date().day());
        reply[2] = static_cast<char>(now.date().month());
        reply[3] = static_cast<char>(((now.date().year() % 100) + 100) % 100);
        reply[4] = static_cast<char>(now.time().hour());
        reply[5] = static_cast<char>(now.time().minute());
        reply[6] = static_cast<char>(now.time().second());
        break;
    }
    case 0xF3:
        if (frame[1] == 1) {
            fastClock_ = frame[2] != 0;
            clockSpeedAnswer_.reset();
            outcome.changed = true;
        }
        reply = payload(2, command);
        reply[1] = static_cast<char>(clockSpeedAnswer_.value_or(fastClock_ ? 1 : 0));
        break;
    case 0xFB:
        reloadCounters();
        reply = payload(2, command);
        reply[1] = 1;
        outcome.changed = true;
        break;
    case 0xFC:
        reply = payload(2, command);
        reply[1] = static_cast<char>(liveValue(frame[1]));
        break;
    case 0xFE:
        reply = payload(2, command);
        reply[1] = static_cast<char>(eeprom(frame[1] + 256 * frame[2]));
        break;
    case 0xFF:
        setEeprom(frame[1], frame[2]);
        reply = payload(2, command);
        reply[1] = static_cast<char>(eeprom(frame[1]));
        // The acknowledgement leaves before the jump to the loader.
        if (frame[1] == kBootAddress && frame[2] == 255)
            inBootloader_ = true;
        outcome.changed = true;
        break;
    default:
        return {};
    }
    outcome.reply = withCheckValue(reply);
    return outcome;
}

} // namespace qv
