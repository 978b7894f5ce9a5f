#pragma once

// What the parts of the programme editor share: the names of its controls,
// the limits of its fields, and small helpers. Private to programme/.

#include "ProgrammeEditor.h"
#include "config/LocaleNumber.h"

#include <QLocale>
#include <QRegularExpression>
#include <QString>
#include <cmath>
#include <cstdint>
#include <exception>
#include <stdexcept>

namespace qv {

namespace editor {

inline const QString kForm = QStringLiteral("Programmation");
inline const QString kListeConditions = QStringLiteral("ListeConditions");
inline const QString kListeSorties = QStringLiteral("ListeSorties");
inline const QString kListeJours = QStringLiteral("ListeJours");
inline const QString kListeValeurLogique = QStringLiteral("ListeValeurLogique");
inline const QString kValeurLogiqueDefaut0 = QStringLiteral("ValeurLogiqueDefaut_0");
inline const QString kValeurPeriode = QStringLiteral("ValeurPeriode");
inline const QString kValeurTemporisation = QStringLiteral("ValeurTemporisation");
inline const QString kHeureDebut = QStringLiteral("HeureDebut");
inline const QString kHeureFin = QStringLiteral("HeureFin");
inline const QString kLabelPeriode = QStringLiteral("LabelPeriode");
inline const QString kLabelHHMMSS0 = QStringLiteral("LabelHHMMSS_0");
inline const QString kLabelHHMMSS1 = QStringLiteral("LabelHHMMSS_1");
inline const QString kFrameSortie = QStringLiteral("FrameSortie");
inline const QString kFrameCondition = QStringLiteral("FrameCondition");
inline const QString kNomFichier = QStringLiteral("NomFichier");
inline const QString kMessage = QStringLiteral("Message");
inline const QString kSorties = QStringLiteral("Sorties");

inline const QString kFormatHeure = QStringLiteral("HH:mm:ss");
inline const QString kFormatHeureMinute = QStringLiteral("HH:mm");

// The form holds one output button; a list with more outputs than buttons
// gives the extra ones no button.
inline constexpr int kBoutonsSorties = 1;
// The code of the valve output, the one output a committed line drives.
inline constexpr std::int16_t kSortieVanne = 3;
inline constexpr int kTemporisationMax = 32000;
inline constexpr int kPeriodeMax = 255;
inline constexpr int kTemporisationSaisieMax = 65535;
// The device's byte of the default output state.
inline constexpr int kAdresseEtatDefaut = 24;

// A field that cannot take what the form holds: the old form's conversion
// error, which ended the program wherever nothing ignored it.
class ConversionFault : public std::runtime_error {
public:
    ConversionFault() : std::runtime_error("conversion") {}
};

enum class Part { Hour, Minute, Second };

// A text box read as a 16-bit integer, rounded half to even.
inline std::int16_t entier(const QString& text, const QLocale& locale) {
    const auto value = parseLocaleNumber(text, locale);
    if (!value)
        throw ConversionFault();
    const double rounded = std::nearbyint(*value);
    if (rounded < -32768 || rounded > 32767)
        throw ConversionFault();
    return static_cast<std::int16_t>(rounded);
}

// The bare name of a chosen path: its last piece.
inline QString dernierMorceau(const QString& chemin) {
    static const QRegularExpression separateurs(QStringLiteral("[\\\\/]"));
    return chemin.section(separateurs, -1);
}

template <typename F> void skip(F&& statement) {
    try {
        statement();
    } catch (const std::exception&) {
    }
}

// Sets the flag for the life of a scope, whatever ends it.
class Chargement {
public:
    explicit Chargement(bool& flag) : flag_(flag) { flag_ = true; }
    ~Chargement() { flag_ = false; }
    Chargement(const Chargement&) = delete;
    Chargement& operator=(const Chargement&) = delete;

private:
    bool& flag_;
};

} // namespace editor

} // namespace qv
