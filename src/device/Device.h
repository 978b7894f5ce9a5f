#pragma once

#include "link/Bytes.h"
#include "link/FrameLink.h"

#include <QString>
#include <cstdint>
#include <functional>
#include <vector>

namespace qv {

// The device primitives: one memory byte or one live value per transaction,
// and their 16- and 32-bit combinations. A failed read returns 0 with
// TimeOut or CRCError set and the link's box already shown; callers test
// TimeOut between steps, never the zeros.
class Device {
public:
    // `absentMessage` gives the text of "Quorvel Absent" in the language in
    // use at the moment of the failure.
    Device(FrameLink& link, std::function<QString()> absentMessage);

    FrameLink& link() { return link_; }
    PublicState& state() { return link_.state(); }
    QString absentMessage() const { return absentMessage_(); }

    // One exchange of a 16-byte frame with the device in use, as every
    // command of the tool makes it. Returns the reply (N+2 elements at least,
    // all zero after a failure).
    Bytes transact(const Bytes& request, int replyLength, bool showError = true);

    int LitValeur(int adresse);
    std::int32_t LitValeurMot(int adresse);
    int LitEEprom(double adresse);
    // Throws OverflowError for an address or value outside 0..255, before
    // anything is sent: the area above 255 is read only from this side.
    int EcritEEprom(int adresse, int valeur);
    std::int16_t LitEEpromMot(int adresse);
    std::int32_t LitEEpromlong(int adresse);
    void EcritEEpromMot(int adresse, std::int32_t valeur);
    void EcritEEpromLong(int adresse, std::int32_t valeur);
    // The calibration number at 33..36.
    std::int32_t LitValeurTimer();
    void ResetDevice();
    int ForceRelectureCompteur();

    // A word of the cached log bytes; no device access. 0 past the end.
    static std::int32_t LitLogsMot(const std::vector<int>& logs, int indice);

private:
    FrameLink& link_;
    std::function<QString()> absentMessage_;
};

} // namespace qv
