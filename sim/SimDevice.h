#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <array>
#include <cstdint>
#include <optional>

namespace qv {

// A firmware version as the controller reports it: "2.70" is major 2, minor
// 70; "2.05" is major 2, minor 5, and the 0 in front of the 5 is the digit
// that the identity reply carries for minors below 10. The part after the
// point is taken as written, so it must have two digits ("2.5" is refused as
// ambiguous) or three for minors of 100 and more.
struct FirmwareVersion {
    int major = 2;
    int minor = 70;

    static std::optional<FirmwareVersion> parse(const QString& text, QString* error = nullptr);
    QString text() const;
    // Comparable number: 2.70 is 270, 2.05 is 205, 2.100 is 300.
    int number() const { return major * 100 + minor; }
    // Firmware from before 2.70 still speaks the unchecked 12-byte probe.
    bool answersLegacyProbe() const { return number() < 270; }

    friend bool operator==(const FirmwareVersion&, const FirmwareVersion&) = default;
};

// The bootloader's version: two numbers, written "1.3".
struct BootloaderVersion {
    int first = 1;
    int second = 3;

    static std::optional<BootloaderVersion> parse(const QString& text, QString* error = nullptr);
    QString text() const;

    friend bool operator==(const BootloaderVersion&, const BootloaderVersion&) = default;
};

// What a controller is made of when it is first plugged in. Everything else
// (EEPROM contents, clock, flags) starts from plausible defaults.
struct SimDeviceConfig {
    std::int32_t uniqueId = 0; // 0: the bus picks the next free id
    int hardwareCode = 12;
    FirmwareVersion firmware;
    BootloaderVersion bootloader;
    int battery = 950;                   // raw converter steps, 105.76 per volt
    std::optional<std::uint32_t> serial; // none: the serial bytes stay 0
    bool plugged = true;
};

// The model of one controller's firmware. Not thread-safe: the bus owns it
// and serialises every call behind its own lock.
class SimDevice {
public:
    static constexpr int kEepromSize = 512;
    static constexpr int kManualDelayAddress = 9;
    static constexpr int kSerialAddress = 16;
    static constexpr int kDefaultStatesAddress = 24;
    static constexpr int kCalibrationAddress = 33;
    static constexpr int kIlsAddress = 39;
    static constexpr int kCountersAddress = 40;
    static constexpr int kCounterCount = 5;
    static constexpr int kBatteryThresholdAddress = 45;
    static constexpr int kImageStart = 48;
    static constexpr int kBootAddress = 255;
    static constexpr int kLogStart = 256;
    static constexpr int kEndMark = 255;
    static constexpr int kValveOutput = 3;
    static constexpr int kRangeDay = 11; // JourPlage
    static constexpr int kDefaultRestartSilenceMs = 2000;

    // What one transfer did: the reply to queue, if any, and whether anything
    // worth saving changed.
    struct Outcome {
        std::optional<QByteArray> reply;
        bool changed = false;
    };

    explicit SimDevice(const SimDeviceConfig& config);

    // One transfer from the host at `nowMs` (milliseconds since the epoch).
    Outcome receive(const QByteArray& transfer, qint64 nowMs);

    std::int32_t uniqueId() const { return uniqueId_; }
    int hardwareCode() const { return hardwareCode_; }
    void setHardwareCode(int code) { hardwareCode_ = code; }
    const FirmwareVersion& firmware() const { return firmware_; }
    void setFirmware(const FirmwareVersion& version) { firmware_ = version; }
    const BootloaderVersion& bootloader() const { return bootloader_; }
    void setBootloader(const BootloaderVersion& version) { bootloader_ = version; }
    int battery() const { return battery_; }
    void setBattery(int raw) { battery_ = raw; }

    int eeprom(int address) const;
    void setEeprom(int address, int value);
    const std::array<std::uint8_t, kEepromSize>& eepromBytes() const { return eeprom_; }
    void setEepromBytes(const std::array<std::uint8_t, kEepromSize>& bytes) { eeprom_ = bytes; }
    std::uint32_t serialNumber() const;
    void setSerialNumber(std::uint32_t serial);

    int outputState() const { return output_; }
    void setOutputState(int state) { output_ = state; }
    int ilsInput() const { return ils_; }
    void setIlsInput(int value) { ils_ = value; }
    bool fastClock() const { return fastClock_; }
    void setFastClock(bool on) {
        fastClock_ = on;
        clockSpeedAnswer_.reset();
    }
    // What the clock speed command answers until the next write, instead of
    // the mode: firmware in a transition answers 2.
    void setClockSpeedAnswer(int answer) { clockSpeedAnswer_ = answer; }
    bool programmeStopped() const { return programmeStop_; }
    void setProgrammeStopped(bool stopped) { programmeStop_ = stopped; }

    // The running counters; an event is stored through to EEPROM at once, and
    // command 0xFB takes the EEPROM values back over.
    int counter(int index) const;
    void countEvent(int index);
    // What the firmware does on 0xFB and at start: counters := EEPROM 40..44.
    void reloadCounters();

    // The clock: the PC's local time plus an offset in seconds, drifting by
    // `rate` parts per million from the moment it was last set (the anchor).
    double clockOffset() const { return clockOffset_; }
    double clockRate() const { return clockRate_; }
    qint64 clockAnchor() const { return clockAnchor_; }
    void setClock(double offsetSeconds, double ratePpm, qint64 anchorMs);
    // A new drift rate from now on, keeping the present reading.
    void setClockRate(double ratePpm, qint64 nowMs);
    // Device time as a wall-clock reading, in seconds since 1970 counted in
    // local time (the controller knows no time zone).
    double deviceSeconds(qint64 nowMs) const;
    QDateTime deviceTime(qint64 nowMs) const;
    void setDeviceTime(const QDateTime& localTime, qint64 nowMs);
    int lastTimeOption() const { return lastTimeOption_; }

    bool plugged() const { return plugged_; }
    void setPlugged(bool plugged) { plugged_ = plugged; }
    bool inBootloader() const { return inBootloader_; }
    void setInBootloader(bool on) { inBootloader_ = on; }
    // What the loader does when it is done: clear the boot request and start
    // the application again, answering at once.
    void restartFromBootloader();

    int restartCount() const { return restarts_; }
    void setRestartCount(int count) { restarts_ = count; }
    qint64 silentUntil() const { return silentUntil_; }
    void setSilentUntil(qint64 ms) { silentUntil_ = ms; }
    bool silent(qint64 nowMs) const { return inBootloader_ || nowMs < silentUntil_; }
    int restartSilenceMs() const { return restartSilenceMs_; }
    void setRestartSilenceMs(int ms) { restartSilenceMs_ = ms; }

    // The programme image being built: where the end mark stands and where
    // the last record begins; -1 when no download is open.
    int imageEnd() const { return imageEnd_; }
    int currentRecord() const { return currentRecord_; }
    void setImageCursor(int end, int record);

    // Plausible log bytes, the same for the same id on every run.
    static std::array<std::uint8_t, 256> logBytes(std::int32_t uniqueId);

private:
    Outcome checkedFrame(const QByteArray& frame, qint64 nowMs);
    Outcome legacyProbe(const QByteArray& transfer) const;
    void restart(qint64 nowMs);
    bool programmeBlock(const std::uint8_t* frame);
    bool appendToImage(const std::uint8_t* bytes, int length);
    int liveValue(int address) const;
    QByteArray identity() const;

    std::int32_t uniqueId_;
    int hardwareCode_;
    FirmwareVersion firmware_;
    BootloaderVersion bootloader_;
    int battery_;
    std::array<std::uint8_t, kEepromSize> eeprom_{};
    std::array<int, kCounterCount> counters_{};
    int output_ = 0;
    int ils_ = 0;
    bool fastClock_ = false;
    std::optional<int> clockSpeedAnswer_;
    bool programmeStop_ = false;
    double clockOffset_ = 0;
    double clockRate_ = 0;
    qint64 clockAnchor_ = 0;
    int lastTimeOption_ = 0;
    bool plugged_ = true;
    bool inBootloader_ = false;
    int restarts_ = 0;
    qint64 silentUntil_ = 0;
    int restartSilenceMs_ = kDefaultRestartSilenceMs;
    int imageEnd_ = -1;
    int currentRecord_ = -1;
};

// The reply form of the checked protocol: the payload, then its CRC-16, low
// byte first.
QByteArray withCheckValue(const QByteArray& payload);

} // namespace qv
