#include "FrameLink.h"

#include "Crc.h"
#include "TraceHub.h"
#include "TraceSink.h"

#include <QLocale>
#include <chrono>
#include <cstring>
#include <thread>

namespace qv {

namespace {
constexpr int kErrorIoPending = 997;
// The platform's code for a handle that failed to open.
constexpr int kInvalidHandle = 6;
} // namespace

FrameLink::FrameLink(Bus& bus, Dialogs& dialogs, PublicState& state)
    : bus_(bus), dialogs_(dialogs), state_(state),
      pause_([](int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }),
      clock_([] { return QDateTime::currentDateTime(); }) {}

FrameLink::~FrameLink() = default;

void FrameLink::setPause(std::function<void(int)> pause) {
    pause_ = std::move(pause);
}
void FrameLink::setClock(std::function<QDateTime()> clock) {
    clock_ = std::move(clock);
}
void FrameLink::setDiagnosticHook(std::function<void(const QString&, const QString&)> hook) {
    diagnosticHook_ = std::move(hook);
}

void FrameLink::pause() {
    pause_(kPauseMs);
}

bool FrameLink::OuvreUsb(std::int32_t usbId) {
    FermeUsb();
    openedId_ = usbId;
    // Both opens are always made, also when the first fails.
    handleEcriture_ = bus_.open(usbId);
    handleLecture_ = bus_.open(usbId);
    return handleEcriture_ && handleLecture_;
}

void FrameLink::FermeUsb() {
    if (handleEcriture_)
        handleEcriture_->cancel();
    if (handleLecture_)
        handleLecture_->cancel();
    handleEcriture_.reset();
    handleLecture_.reset();
}

void FrameLink::EcritTrameUsb(const Bytes& donnees, int longueur) {
    Bytes frame(static_cast<size_t>(longueur), 0);
    for (int i = 0; i < longueur && i < static_cast<int>(donnees.size()); ++i)
        frame[static_cast<size_t>(i)] = donnees[static_cast<size_t>(i)];
    // Built before the pause: a value that does not fit a byte fails here and
    // nothing is sent.
    QByteArray transfer = toTransfer(frame, longueur);
    if (longueur == 16) {
        const std::uint16_t crc =
            crc16(reinterpret_cast<const std::uint8_t*>(transfer.constData()), 14);
        transfer[14] = static_cast<char>(crc & 0xFF);
        transfer[15] = static_cast<char>(crc >> 8);
    }
    pause();
    writeTransfer(transfer, longueur == 16);
}

void FrameLink::EcritBrutUsb(const Bytes& donnees, int longueur) {
    writeTransfer(toTransfer(donnees, longueur), false);
}

void FrameLink::trace(TransferDirection direction, const QByteArray& bytes, TransferOutcome outcome,
                      bool checked, std::int64_t atUs) {
    TraceSink* sink = bus_.traceSink();
    if (!sink)
        return;
    TransferRecord r;
    r.atUs = atUs;
    r.device = openedId_;
    r.direction = direction;
    r.bytes = bytes;
    r.attempt = attempt_ > 0 ? attempt_ : 1;
    r.outcome = outcome;
    r.checked = checked;
    sink->record(r);
}

void FrameLink::writeTransfer(const QByteArray& transfer, bool checked) {
    // A refused write is tried again at once, three calls in all; what
    // follows is the read, which finds nothing if all three failed.
    const std::int64_t startUs = TraceHub::steadyNowUs();
    int code = 0;
    bool written = false;
    for (int call = 0; call < 3 && !written; ++call) {
        written = handleEcriture_ && handleEcriture_->write(transfer);
        code = written ? 0 : handleEcriture_ ? handleEcriture_->lastError() : kInvalidHandle;
    }
    trace(TransferDirection::ToDevice, transfer,
          written ? TransferOutcome::Sent : TransferOutcome::Refused, checked, startUs);
    ControleErreurApi(QStringLiteral("UsbWrite"), code);
}

QByteArray FrameLink::readTransfer(int length) {
    QByteArray received;
    if (handleLecture_)
        received = handleLecture_->read(length);
    ControleErreurApi(QStringLiteral("ReadFile"),
                      handleLecture_ ? handleLecture_->lastError() : kInvalidHandle);
    return received;
}

Bytes FrameLink::LitReponseUsb(std::int16_t& longueur, const QString& message, bool afficheErreur,
                               int /*reserve*/, const QString& titre) {
    Bytes result(static_cast<size_t>(longueur + 2), 0);
    // The caller's variable grows on purpose: retries ask for two more bytes.
    longueur = static_cast<std::int16_t>(longueur + 2);
    if (state_.TimeOut)
        return result;
    pause();
    const QByteArray received = readTransfer(longueur);
    const std::int64_t receivedUs = TraceHub::steadyNowUs();
    if (!received.isEmpty()) {
        Bytes buffer(static_cast<size_t>(longueur), 0);
        for (int i = 0; i < received.size() && i < longueur; ++i)
            buffer[static_cast<size_t>(i)] = static_cast<unsigned char>(received[i]);
        const bool good = CalculeCRC(buffer, longueur) == 0;
        trace(TransferDirection::FromDevice, received,
              good ? TransferOutcome::Answered : TransferOutcome::BadCheck, true, receivedUs);
        if (!good) {
            if (afficheErreur)
                dialogs_.message(QStringLiteral("CRC error"), titre, MsgBox::OkOnly);
            state_.CRCError = true;
        } else {
            result = buffer;
            state_.TimeOut = false;
            state_.CRCError = false;
        }
    } else {
        trace(TransferDirection::FromDevice, received, TransferOutcome::Silence, true, receivedUs);
        handleEcriture_.reset();
        handleLecture_.reset();
        if (afficheErreur)
            dialogs_.message(message, titre, MsgBox::OkOnly);
        state_.TimeOut = true;
    }
    return result;
}

Bytes FrameLink::LitBrutUsb(int longueur, const QString& message, bool afficheErreur,
                            int /*reserve*/, const QString& titre) {
    Bytes result(static_cast<size_t>(longueur), 0);
    // The raw read is the checked one without its pause and its check: after
    // a silent device it reads nothing either.
    if (state_.TimeOut)
        return result;
    const QByteArray received = readTransfer(longueur);
    trace(TransferDirection::FromDevice, received,
          received.isEmpty() ? TransferOutcome::Silence : TransferOutcome::Answered, false,
          TraceHub::steadyNowUs());
    if (!received.isEmpty()) {
        for (int i = 0; i < received.size() && i < longueur; ++i)
            result[static_cast<size_t>(i)] = static_cast<unsigned char>(received[i]);
        state_.TimeOut = false;
    } else {
        handleEcriture_.reset();
        handleLecture_.reset();
        if (afficheErreur)
            dialogs_.message(message, titre, MsgBox::OkOnly);
        state_.TimeOut = true;
    }
    return result;
}

bool FrameLink::EchangeUsb(std::int32_t usbId, const Bytes& donnees, std::int16_t longueurEmission,
                           Bytes& reponse, std::int16_t& longueurReponse, const QString& message,
                           bool afficheErreur, const QString& titre) {
    const Bytes request = donnees; // `reponse` may alias `donnees`
    int failures = 0;
    Bytes last;
    FermeUsb();
    do {
        attempt_ = failures + 1;
        OuvreUsb(usbId);
        state_.TimeOut = false;
        state_.CRCError = false;
        EcritTrameUsb(request, longueurEmission);
        last = LitReponseUsb(longueurReponse, QString(), false, 0, QString());
        if (state_.TimeOut || state_.CRCError)
            ++failures;
        FermeUsb();
    } while ((state_.TimeOut || state_.CRCError) && failures < kAttempts);
    attempt_ = 0;

    if (afficheErreur && state_.TimeOut)
        dialogs_.message(message + QStringLiteral(" (Time Out)"), boxTitle(titre), MsgBox::OkOnly);
    else if (afficheErreur && state_.CRCError)
        dialogs_.message(message + QStringLiteral(" (CRC error)"), boxTitle(titre), MsgBox::OkOnly);

    reponse.assign(static_cast<size_t>(longueurReponse > 0 ? longueurReponse : 0), 0);
    if (!state_.TimeOut && !state_.CRCError && failures != kAttempts) {
        for (size_t i = 0; i < reponse.size() && i < last.size(); ++i)
            reponse[i] = last[i];
        return true;
    }
    return false;
}

void FrameLink::ControleErreurApi(const QString& contexte, int code) {
    if (code == 0 || code == kErrorIoPending)
        return;
    const QString text = TexteErreurApi(code);
    if (diagnosticHook_)
        diagnosticHook_(contexte, text);
}

QString FrameLink::boxTitle(const QString& titre) const {
    return defaultDateTimeText(clock_()) + QLatin1Char(' ') + titre;
}

QString TexteErreurApi(int code) {
    // The platform text comes with a line end, which is cut off; a text of
    // two characters or fewer is no message.
    const QString raw = QString::fromLocal8Bit(std::strerror(code)) + QStringLiteral("\r\n");
    return raw.size() > 2 ? raw.left(raw.size() - 2) : QString();
}

namespace {

// The locale's long time picture without its time zone: the zone is no part
// of the platform's default rendering, and a date in a box title has none.
QString longTimeWithoutZone(const QLocale& locale) {
    const QString picture = locale.timeFormat(QLocale::LongFormat);
    QString result;
    bool quoted = false;
    for (qsizetype i = 0; i < picture.size(); ++i) {
        const QChar c = picture[i];
        if (c == QLatin1Char('\''))
            quoted = !quoted;
        if (!quoted && c == QLatin1Char('t')) {
            while (!result.isEmpty() && result.back().isSpace())
                result.chop(1);
            continue;
        }
        result += c;
    }
    return result.trimmed();
}

} // namespace

QString defaultDateTimeText(const QDateTime& when, const QLocale& locale) {
    return locale.toString(when.date(), QLocale::ShortFormat) + QLatin1Char(' ') +
           locale.toString(when.time(), longTimeWithoutZone(locale));
}

} // namespace qv
