#include "Device.h"

#include "MemoryMap.h"
#include "Packing.h"

namespace qv {

Device::Device(FrameLink& link, std::function<QString()> absentMessage)
    : link_(link), absentMessage_(std::move(absentMessage)) {}

Bytes Device::transact(const Bytes& request, int replyLength, bool showError) {
    Bytes reply;
    auto length = static_cast<std::int16_t>(replyLength);
    link_.EchangeUsb(state().UsbID, request, kFrameLength, reply, length,
                     showError ? absentMessage_() : QString(), showError, QString());
    return reply;
}

namespace {
Bytes frame(std::initializer_list<long long> leading) {
    Bytes request(kFrameLength, 0);
    size_t i = 0;
    for (long long value : leading)
        request[i++] = value;
    return request;
}
int replyByte(const Bytes& reply, size_t index) {
    return index < reply.size() ? static_cast<int>(reply[index]) : 0;
}
} // namespace

int Device::LitValeur(int adresse) {
    // A byte can never exceed 32767, so the legacy sign correction is moot.
    return replyByte(transact(frame({Command::ReadLiveValue, adresse}), ReplyLength::ReadLiveValue),
                     1);
}

std::int32_t Device::LitValeurMot(int adresse) {
    const int low = LitValeur(adresse);
    const int high = LitValeur(adresse + 1);
    return assembleWord(low, high);
}

int Device::LitEEprom(double adresse) {
    const Bytes request =
        frame({Command::ReadEeprom, OctetFaibleAdresse(adresse), OctetFortAdresse(adresse)});
    return replyByte(transact(request, ReplyLength::ReadEeprom), 1);
}

int Device::EcritEEprom(int adresse, int valeur) {
    toByte(adresse);
    toByte(valeur);
    return replyByte(
        transact(frame({Command::WriteEeprom, adresse, valeur}), ReplyLength::WriteEeprom), 1);
}

std::int16_t Device::LitEEpromMot(int adresse) {
    const int low = LitEEprom(adresse);
    const int high = LitEEprom(adresse + 1);
    return static_cast<std::int16_t>(assembleWord(low, high));
}

std::int32_t Device::LitEEpromlong(int adresse) {
    std::vector<long long> bytes(4);
    for (int i = 0; i < 4; ++i)
        bytes[static_cast<size_t>(i)] = LitEEprom(adresse + i);
    return AssembleLong(bytes);
}

void Device::EcritEEpromMot(int adresse, std::int32_t valeur) {
    // Bytes 2 and 3 are dropped: a negative 16-bit value lands as its two's
    // complement.
    const auto bytes = DecoupeLong(valeur);
    EcritEEprom(adresse, static_cast<int>(bytes[0]));
    EcritEEprom(adresse + 1, static_cast<int>(bytes[1]));
}

void Device::EcritEEpromLong(int adresse, std::int32_t valeur) {
    const auto bytes = DecoupeLong(valeur);
    for (int i = 0; i < 4; ++i)
        EcritEEprom(adresse + i, static_cast<int>(bytes[static_cast<size_t>(i)]));
}

std::int32_t Device::LitValeurTimer() {
    return LitEEpromlong(Address::ClockCalibration);
}

void Device::ResetDevice() {
    // The device restarts without answering; silence is the normal outcome.
    transact(Bytes(kFrameLength, 0), ReplyLength::Restart, false);
}

int Device::ForceRelectureCompteur() {
    return replyByte(
        transact(frame({Command::ReloadCounters, 0, 0, 0, 1}), ReplyLength::ReloadCounters), 1);
}

std::int32_t Device::LitLogsMot(const std::vector<int>& logs, int indice) {
    if (indice < 0 || indice + 1 >= static_cast<int>(logs.size()))
        return 0;
    return assembleWord(logs[static_cast<size_t>(indice)], logs[static_cast<size_t>(indice) + 1]);
}

} // namespace qv
