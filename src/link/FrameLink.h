#pragma once

#include "Bus.h"
#include "Bytes.h"
#include "Dialogs.h"
#include "PublicState.h"
#include "TransferRecord.h"

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>

namespace qv {

// One complete checked exchange with one device: open, send, wait, read,
// verify, close, up to three times. Every device command goes through
// EchangeUsb; only the legacy identity probe uses the raw calls.
//
// Not thread-safe by design: exchanges never overlap, and callers that run it
// off the user-interface thread must serialise the calls themselves.
class FrameLink {
public:
    FrameLink(Bus& bus, Dialogs& dialogs, PublicState& state);
    ~FrameLink();
    FrameLink(const FrameLink&) = delete;
    FrameLink& operator=(const FrameLink&) = delete;

    // `longueurReponse` is the reply length N without its check value; it
    // grows by 2 per attempt and the caller sees the final value. `reponse`
    // may be the same array as `donnees`.
    bool EchangeUsb(std::int32_t usbId, const Bytes& donnees, std::int16_t longueurEmission,
                    Bytes& reponse, std::int16_t& longueurReponse, const QString& message,
                    bool afficheErreur, const QString& titre);

    bool OuvreUsb(std::int32_t usbId);
    void FermeUsb();
    void EcritTrameUsb(const Bytes& donnees, int longueur);
    Bytes LitReponseUsb(std::int16_t& longueur, const QString& message, bool afficheErreur,
                        int reserve, const QString& titre);
    void EcritBrutUsb(const Bytes& donnees, int longueur);
    Bytes LitBrutUsb(int longueur, const QString& message, bool afficheErreur, int reserve,
                     const QString& titre);
    void ControleErreurApi(const QString& contexte, int code);

    Bus& bus() { return bus_; }
    Dialogs& dialogs() { return dialogs_; }
    PublicState& state() { return state_; }

    // Test seams. The pauses stay 10 ms in the product; a test may shorten
    // them. The clock gives the date and time of failure boxes' titles.
    void setPause(std::function<void(int milliseconds)> pause);
    void setClock(std::function<QDateTime()> clock);
    // Receives platform errors that ControleErreurApi sees; none by default.
    void setDiagnosticHook(std::function<void(const QString& contexte, const QString& text)> hook);

    // The 10 ms wait that precedes every write and read.
    void pause();

    static constexpr int kPauseMs = 10;
    static constexpr int kAttempts = 3;

private:
    QString boxTitle(const QString& titre) const;
    void writeTransfer(const QByteArray& transfer, bool checked);
    QByteArray readTransfer(int length);
    // Reports one transfer to the bus's trace sink, when it has one.
    void trace(TransferDirection direction, const QByteArray& bytes, TransferOutcome outcome,
               bool checked, std::int64_t atUs);

    Bus& bus_;
    Dialogs& dialogs_;
    PublicState& state_;
    std::unique_ptr<BusHandle> handleEcriture_;
    std::unique_ptr<BusHandle> handleLecture_;
    std::function<void(int)> pause_;
    std::function<QDateTime()> clock_;
    std::function<void(const QString&, const QString&)> diagnosticHook_;
    std::int32_t openedId_ = 0; // the device of the handles, for the trace
    int attempt_ = 0;           // within EchangeUsb: 1..3
};

// The system's message for a platform error code, without its line end;
// empty when the platform has none.
QString TexteErreurApi(int code);

// A date and time in the system's default text form: the locale's short
// date and its long time, without a time zone ("11/23/26 7:04:40 PM" in
// en_US, "23/11/2026 19:04:40" in fr_FR).
QString defaultDateTimeText(const QDateTime& when, const QLocale& locale = QLocale());

} // namespace qv
