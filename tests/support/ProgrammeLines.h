#pragma once

#include "programme/Conditions.h"

namespace qv::test {

// A line that sets valve 3 to 1 after `temporisation` seconds, at the day
// and time given.
inline Condition programmeLine(std::int16_t jour, std::int16_t heure, std::int16_t minute,
                               std::int16_t seconde, std::int16_t temporisation) {
    Condition c;
    c.Nom = QStringLiteral("Line");
    c.sortie = 3;
    c.Format = 0;
    c.Valeur = 1;
    c.Temporisation = temporisation;
    c.Jour = jour;
    c.Heure = heure;
    c.Minute = minute;
    c.Seconde = seconde;
    return c;
}

// One line of each kind the download knows: no time, a day, a range, a
// periodic line.
inline Conditions siteProgramme() {
    Conditions c;
    c.Add(programmeLine(0, 0, 0, 0, 300));
    c.Add(programmeLine(3, 6, 30, 0, 60));
    Condition range = programmeLine(JourPlage, 22, 0, 0, 5);
    range.PlageFinJour = JourPlage;
    range.PlageFinHeure = 23;
    range.PlageFinMinute = 45;
    range.PlageFinSeconde = 30;
    c.Add(range);
    Condition periodic = programmeLine(JourPeriode, 7, 15, 3, 10);
    periodic.PlageFinHeure = 4;
    periodic.PlageFinMinute = 21;
    c.Add(periodic);
    return c;
}

} // namespace qv::test
