#include "ProgrammeDownload.h"

#include "device/DeviceClock.h"
#include "device/MemoryMap.h"
#include "device/Packing.h"

#include <initializer_list>

namespace qv {

namespace {

constexpr int kSubDayTime = 9;
constexpr int kSubRangeEnd = 10;
constexpr int kSubPeriod = 11;

// Checked here rather than in the link, so that a field out of range stops
// the download before the link opens anything for the frame.
Bytes frame(std::initializer_list<long long> leading) {
    Bytes request(kFrameLength, 0);
    size_t i = 0;
    for (long long value : leading) {
        toByte(value);
        request[i++] = value;
    }
    return request;
}

} // namespace

Bytes beginProgrammeFrame(std::int16_t etatDefaut) {
    return frame({Command::BeginProgramme, 0, etatDefaut});
}

Bytes conditionFrame(const Condition& c, int n) {
    const long long valeur = c.Format == 0 ? OctetFaibleAdresse(c.Valeur) : 0;
    return frame({Command::ProgrammeCondition, c.sortie, n - 1, valeur, 0, 0, 0, 0,
                  OctetFortAdresse(c.Temporisation), OctetFaibleAdresse(c.Temporisation), c.Jour});
}

Bytes dayTimeFrame(const Condition& c) {
    return frame({Command::ProgrammeBlock, kSubDayTime, c.Jour, c.Heure, c.Minute, c.Seconde});
}

Bytes rangeEndFrame(const Condition& c) {
    return frame({Command::ProgrammeBlock, kSubRangeEnd, c.PlageFinJour, c.PlageFinHeure,
                  c.PlageFinMinute, c.PlageFinSeconde});
}

Bytes periodFrame(const Condition& c) {
    return frame({Command::ProgrammeBlock, kSubPeriod, c.PlageFinMinute, c.PlageFinHeure, c.Heure,
                  c.Minute, c.Seconde});
}

EnvoiResultat Envoi_Conditions(Device& device, const Conditions& conditions,
                               std::int16_t etatDefaut, const QString& questionText,
                               const QDate& madate, const QDateTime& now,
                               const MessageLookup& message) {
    EnvoiResultat result;
    Dialogs& dialogs = device.link().dialogs();
    // Checked before the first frame: a field found out of range half-way
    // would leave the device holding part of the programme.
    result.refus = VerifieProgramme(conditions, etatDefaut);
    if (result.refus) {
        dialogs.message(texteRefus(*result.refus, message), QString(),
                        MsgBox::OkOnly | MsgBox::Exclamation);
        return result;
    }
    const int answer = dialogs.message(questionText, QString(), MsgBox::OkCancel);
    if (answer != MsgBox::AnswerOk) {
        result.cancelled = true;
        return result;
    }
    const PublicState& state = device.state();
    if (state.TimeOut)
        return result;

    MAH(device, 255, madate, now);
    if (state.TimeOut)
        return result;
    result.horlogeEnErreur = state.CRCError;

    // The reply means nothing to us; only silence does. A reply that fails
    // its check lets the download go on, but is remembered.
    bool lineFailed = false;
    const auto send = [&](const Bytes& request) {
        device.transact(request, ReplyLength::Programme);
        lineFailed = lineFailed || state.CRCError;
        return !state.TimeOut;
    };
    if (!send(beginProgrammeFrame(etatDefaut)))
        return result;
    result.debutEnErreur = lineFailed;

    const int count = conditions.Count();
    for (int n = 1; n <= count; ++n) {
        const Condition& c = *conditions.Item(n);
        lineFailed = false;
        const bool sent = send(conditionFrame(c, n)) &&
                          (c.Jour == JourPeriode || c.Jour == 0 || send(dayTimeFrame(c))) &&
                          (c.Jour != JourPlage || send(rangeEndFrame(c))) &&
                          (c.Jour != JourPeriode || send(periodFrame(c)));
        if (lineFailed)
            result.lignesEnErreur.push_back(n);
        if (!sent)
            return result;
        ++result.lignesEnvoyees;
    }
    result.resultat = true;
    return result;
}

} // namespace qv
