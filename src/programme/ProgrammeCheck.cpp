#include "programme/ProgrammeCheck.h"

#include "device/Packing.h"
#include "link/Bytes.h"

#include <initializer_list>
#include <utility>

namespace qv {

namespace {

constexpr std::int16_t kDernierJour = JourPeriode;

bool fitsByte(long long value) {
    return value >= 0 && value <= 255;
}

// Only the low byte of Valeur goes, and only for Format 0, but the value
// must first have a 32-bit form to take it from.
bool valeurFits(double valeur) {
    try {
        OctetFaibleAdresse(valeur);
        return true;
    } catch (const OverflowError&) {
        return false;
    }
}

std::optional<ProgrammeFault>
firstOutOfByte(int line, std::initializer_list<std::pair<const char*, std::int16_t>> fields) {
    for (const auto& [name, value] : fields) {
        if (!fitsByte(value))
            return ProgrammeFault{ProgrammeFault::Kind::Field, line, QString::fromLatin1(name),
                                  QString::number(value)};
    }
    return std::nullopt;
}

std::optional<ProgrammeFault> lineFault(const Condition& c, int n) {
    if (auto fault = firstOutOfByte(n, {{"SORTIE", c.sortie}}))
        return fault;
    if (c.Format == 0 && !valeurFits(c.Valeur))
        return ProgrammeFault{ProgrammeFault::Kind::Field, n, QStringLiteral("VALEUR"),
                              QString::number(c.Valeur, 'g', 17)};
    if (c.Jour < 0 || c.Jour > kDernierJour)
        return ProgrammeFault{ProgrammeFault::Kind::Field, n, QStringLiteral("JOUR"),
                              QString::number(c.Jour)};
    if (c.Jour != 0 && c.Jour != JourPeriode) {
        if (auto fault = firstOutOfByte(
                n, {{"HEURE", c.Heure}, {"MINUTE", c.Minute}, {"SECONDE", c.Seconde}}))
            return fault;
    }
    if (c.Jour == JourPlage) {
        if (auto fault = firstOutOfByte(n, {{"JOURFIN", c.PlageFinJour},
                                            {"HEUREFIN", c.PlageFinHeure},
                                            {"MINUTEFIN", c.PlageFinMinute},
                                            {"SECONDEFIN", c.PlageFinSeconde}}))
            return fault;
    }
    if (c.Jour == JourPeriode) {
        if (auto fault = firstOutOfByte(n, {{"MINUTEFIN", c.PlageFinMinute},
                                            {"HEUREFIN", c.PlageFinHeure},
                                            {"HEURE", c.Heure},
                                            {"MINUTE", c.Minute},
                                            {"SECONDE", c.Seconde}}))
            return fault;
    }
    return std::nullopt;
}

QString text(const MessageLookup& message, const QString& key) {
    return message ? message(key) : key;
}

} // namespace

std::optional<ProgrammeFault> VerifieProgramme(const Conditions& conditions,
                                               std::int16_t etatDefaut) {
    if (!fitsByte(etatDefaut))
        return ProgrammeFault{ProgrammeFault::Kind::DefaultState, 0, QString(),
                              QString::number(etatDefaut)};
    const int count = conditions.Count();
    if (count > kMaxLignesEnvoi)
        return ProgrammeFault{ProgrammeFault::Kind::LineCount, count, QString(), QString()};
    for (int n = 1; n <= count; ++n) {
        if (auto fault = lineFault(*conditions.Item(n), n))
            return fault;
    }
    return std::nullopt;
}

QString texteRefus(const ProgrammeFault& fault, const MessageLookup& message) {
    switch (fault.kind) {
    case ProgrammeFault::Kind::LineCount:
        return text(message,
                    QStringLiteral("The programme cannot be sent: it has %1 lines, the controller "
                                   "takes at most %2."))
            .arg(fault.line)
            .arg(kMaxLignesEnvoi);
    case ProgrammeFault::Kind::DefaultState:
        return text(message, QStringLiteral("The programme cannot be sent: the default state of "
                                            "the output, %1, is out of range."))
            .arg(fault.value);
    case ProgrammeFault::Kind::Field:
        break;
    }
    return text(message, QStringLiteral("The programme cannot be sent: line %1, field %2: %3 is "
                                        "out of range."))
        .arg(fault.line)
        .arg(fault.field, fault.value);
}

} // namespace qv
