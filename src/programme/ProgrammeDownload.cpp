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
                               const QDate& madate, const QDateTime& now) {
    EnvoiResultat result;
    const int answer = device.link().dialogs().message(questionText, QString(), MsgBox::OkCancel);
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

    // The reply means nothing to us; only silence does.
    const auto send = [&](const Bytes& request) {
        device.transact(request, ReplyLength::Programme);
        return !state.TimeOut;
    };
    if (!send(beginProgrammeFrame(etatDefaut)))
        return result;

    const int count = conditions.Count();
    for (int n = 1; n <= count; ++n) {
        const Condition& c = *conditions.Item(n);
        if (!send(conditionFrame(c, n)))
            return result;
        if (c.Jour != JourPeriode && c.Jour != 0 && !send(dayTimeFrame(c)))
            return result;
        if (c.Jour == JourPlage && !send(rangeEndFrame(c)))
            return result;
        if (c.Jour == JourPeriode && !send(periodFrame(c)))
            return result;
    }
    result.resultat = true;
    return result;
}

} // namespace qv
