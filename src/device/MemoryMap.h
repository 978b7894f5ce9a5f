#pragma once

// The controller's command set and EEPROM map. Multi-byte values in memory are
// little-endian; the battery reading of the identity reply is the one
// big-endian value of the protocol.
namespace qv {

namespace Command {
constexpr int Restart = 0x00;
constexpr int SetDateTime = 0x01;
constexpr int BeginProgramme = 0x02;
constexpr int ProgrammeCondition = 0x03;
constexpr int ManualAction = 0x04;
constexpr int ProgrammeBlock = 0x1F;
constexpr int Identity = 0xF0;
constexpr int ReadDateTime = 0xF1;
constexpr int ClockSpeedCheck = 0xF3;
constexpr int ReloadCounters = 0xFB;
constexpr int ReadLiveValue = 0xFC;
constexpr int ReadEeprom = 0xFE;
constexpr int WriteEeprom = 0xFF;
} // namespace Command

// Reply lengths N (without the two check bytes) asked for with each command.
namespace ReplyLength {
constexpr int Restart = 8;
constexpr int SetDateTime = 8;
constexpr int Programme = 8;
constexpr int ManualAction = 8;
constexpr int Identity = 9;
constexpr int ReadDateTime = 7;
constexpr int ClockSpeedCheck = 2;
constexpr int ReloadCounters = 2;
constexpr int ReadLiveValue = 2;
constexpr int ReadEeprom = 2;
constexpr int WriteEeprom = 2;
} // namespace ReplyLength

constexpr int kFrameLength = 16;

namespace Address {
constexpr int ManualActionDelay = 9; // 16-bit
constexpr int SerialNumber = 16;     // 32-bit
constexpr int ProgrammingDate = 20;  // 32-bit, device seconds
constexpr int DefaultOutputStates = 24;
constexpr int DaylightSavingRule = 26; // 7 bytes
constexpr int ClockCalibration = 33;   // 32-bit signed
constexpr int IlsAtLastWrite = 39;
constexpr int Counters = 40; // 5 bytes
constexpr int CounterCount = 5;
constexpr int BatteryThreshold = 45; // 16-bit, raw converter steps
constexpr int ProgrammeImage = 48;
constexpr int BootRequest = 255;
constexpr int LogArea = 256; // 256 bytes, read only from the PC side
constexpr int LogAreaLength = 256;
constexpr int HighestWritable = 255;
constexpr int MemorySize = 512;
} // namespace Address

namespace LiveValue {
constexpr int OutputState = 0;
constexpr int IlsInput = 2;
} // namespace LiveValue

// Writing this at Address::BootRequest sends the device to its loader.
constexpr int kBootRequestValue = 255;

// One volt is this many steps of the device's converter, both ways.
constexpr double kBatteryStepsPerVolt = 105.76;

// The hardware code of the model this tool serves.
constexpr int kServedHardwareCode = 12;

} // namespace qv
