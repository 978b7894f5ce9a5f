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

// Every field of a line that the store keeps, one "name=value" per entry,
// so that a comparison names the field that differs. Doubles are given with
// all their digits.
inline QStringList storedFields(const Condition& c) {
    QStringList fields;
    const auto add = [&](const char* name, const QString& value) {
        fields << QString::fromLatin1(name) + QLatin1Char('=') + value;
    };
    const auto number = [](double v) { return QString::number(v, 'g', 17); };
    add("Nom", c.Nom);
    add("sortie", QString::number(c.sortie));
    add("rang", QString::number(c.rang));
    add("Format", QString::number(c.Format));
    add("Valeur", number(c.Valeur));
    add("Temporisation", QString::number(c.Temporisation));
    add("Offset", number(c.Offset));
    add("Jour", QString::number(c.Jour));
    add("Heure", QString::number(c.Heure));
    add("Minute", QString::number(c.Minute));
    add("Seconde", QString::number(c.Seconde));
    add("PlageFinJour", QString::number(c.PlageFinJour));
    add("PlageFinHeure", QString::number(c.PlageFinHeure));
    add("PlageFinMinute", QString::number(c.PlageFinMinute));
    add("PlageFinSeconde", QString::number(c.PlageFinSeconde));
    add("RecopieEntree", QString::number(c.RecopieEntree));
    for (int i = 0; i < Condition::SubConditionCount; ++i) {
        const QString n = QString::number(i);
        fields << QStringLiteral("Numero(%1)=%2").arg(n).arg(int(*c.Numero(i)));
        fields << QStringLiteral("Operateur(%1)=%2").arg(n).arg(int(*c.Operateur(i)));
        fields << QStringLiteral("tempo(%1)=%2").arg(n).arg(int(*c.tempo(i)));
        fields << QStringLiteral("Valeur1(%1)=%2").arg(n, number(*c.Valeur1(i)));
        fields << QStringLiteral("Valeur2(%1)=%2").arg(n, number(*c.Valeur2(i)));
    }
    add("Regulation", c.Regulation ? QStringLiteral("true") : QStringLiteral("false"));
    add("Consigne", c.Consigne);
    add("DeltaAction", c.DeltaAction);
    add("DureeAction", c.DureeAction);
    add("FiltreRetour", c.FiltreRetour);
    add("ConsigneS1", c.ConsigneS1);
    add("ConsigneS2", c.ConsigneS2);
    add("EntreeConsigne", QString::number(c.EntreeConsigne));
    add("PeriodeEchantillonnage", c.PeriodeEchantillonnage);
    add("TypeCourbe", c.TypeCourbe);
    add("RecopieSortie", c.RecopieSortie);
    add("Commentaire", c.Commentaire);
    return fields;
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
