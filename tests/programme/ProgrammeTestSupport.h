#pragma once

#include "programme/Condition.h"

#include <QLocale>
#include <QString>
#include <QStringList>
#include <ostream>

// Readable failure output for Qt strings.
inline void PrintTo(const QString& text, std::ostream* out) {
    *out << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QStringList& list, std::ostream* out) {
    *out << '[' << list.join(QStringLiteral(" | ")).toStdString() << ']';
}

namespace qv::test {

// Every field of a line that the store keeps, a few "name=value" to an
// entry, so that a comparison names the fields that differ. Doubles are
// given with all their digits.
inline QStringList storedFields(const Condition& c) {
    const auto n = [](double v) { return QString::number(v, 'g', 17); };
    QStringList f;
    f << QStringLiteral("Nom=%1 sortie=%2 rang=%3 Format=%4")
             .arg(c.Nom, n(c.sortie), n(c.rang), n(c.Format));
    f << QStringLiteral("Valeur=%1 Temporisation=%2 Offset=%3 RecopieEntree=%4")
             .arg(n(c.Valeur), n(c.Temporisation), n(c.Offset), n(c.RecopieEntree));
    f << QStringLiteral("Jour=%1 %2:%3:%4 Fin=%5 %6:%7:%8")
             .arg(n(c.Jour), n(c.Heure), n(c.Minute), n(c.Seconde), n(c.PlageFinJour),
                  n(c.PlageFinHeure), n(c.PlageFinMinute), n(c.PlageFinSeconde));
    for (int i = 0; i < Condition::SubConditionCount; ++i)
        f << QStringLiteral("[%1] Numero=%2 Operateur=%3 tempo=%4 Valeur1=%5 Valeur2=%6")
                 .arg(n(i), n(*c.Numero(i)), n(*c.Operateur(i)), n(*c.tempo(i)), n(*c.Valeur1(i)),
                      n(*c.Valeur2(i)));
    f << QStringLiteral("Regulation=%1 Consigne=%2 DeltaAction=%3 DureeAction=%4")
             .arg(n(c.Regulation), c.Consigne, c.DeltaAction, c.DureeAction);
    f << QStringLiteral("FiltreRetour=%1 ConsigneS1=%2 ConsigneS2=%3 EntreeConsigne=%4")
             .arg(c.FiltreRetour, c.ConsigneS1, c.ConsigneS2, n(c.EntreeConsigne));
    f << QStringLiteral("PeriodeEchantillonnage=%1 TypeCourbe=%2 RecopieSortie=%3")
             .arg(c.PeriodeEchantillonnage, c.TypeCourbe, c.RecopieSortie);
    f << QStringLiteral("Commentaire=") + c.Commentaire;
    return f;
}

// Sets the default locale for the life of a test.
class DefaultLocale {
public:
    explicit DefaultLocale(const QLocale& locale) { QLocale::setDefault(locale); }
    ~DefaultLocale() { QLocale::setDefault(previous_); }
    DefaultLocale(const DefaultLocale&) = delete;
    DefaultLocale& operator=(const DefaultLocale&) = delete;

private:
    QLocale previous_;
};

} // namespace qv::test
