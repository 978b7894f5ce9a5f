#pragma once

#include <QString>
#include <array>
#include <cstdint>
#include <optional>

namespace qv {

// Day codes of `Jour` with a meaning of their own. Every other non-zero code
// is a day choice taken from the ListeJours rows of config.xml.
inline constexpr std::int16_t JourPlage = 11;   // a range between start and end fields
inline constexpr std::int16_t JourPeriode = 12; // a periodic line, see below

// One programme line. The fields are public: the editor, the store, the
// printout, the download and the upload all read and write them directly.
//
// A JourPeriode line reuses the time fields, and that reuse is the stored
// form: Heure and Minute are the time of day of the action, Seconde the
// period in days, PlageFinHeure the month and PlageFinMinute the day of the
// month of the first run, PlageFinSeconde 0.
class Condition {
public:
    // The indexed properties hold nine elements. Elements 0 to 7 are the
    // logic sub-conditions; element 8 exists (the upload may land there) but
    // is neither copied by Conditions::Add nor stored.
    static constexpr int IndexedSize = 9;
    static constexpr int SubConditionCount = 8;

    static constexpr bool inBounds(int index) { return index >= 0 && index < IndexedSize; }

    // Output and action.
    QString Nom;
    std::int16_t sortie = 0;
    std::int16_t rang = 0;
    std::int16_t Format = 0;
    double Valeur = 0.0;
    std::int16_t Temporisation = 0;
    double Offset = 0.0;
    // When the action runs.
    std::int16_t Jour = 0;
    std::int16_t Heure = 0;
    std::int16_t Minute = 0;
    std::int16_t Seconde = 0;
    std::int16_t PlageFinJour = 0;
    std::int16_t PlageFinHeure = 0;
    std::int16_t PlageFinMinute = 0;
    std::int16_t PlageFinSeconde = 0;
    std::int16_t RecopieEntree = 0;
    // Regulation block: kept verbatim, never edited nor sent to a device.
    bool Regulation = false;
    QString Consigne;
    QString DeltaAction;
    QString DureeAction;
    QString FiltreRetour;
    QString ConsigneS1;
    QString ConsigneS2;
    std::int16_t EntreeConsigne = 0;
    QString PeriodeEchantillonnage;
    QString TypeCourbe;
    QString RecopieSortie;
    // These four survive Conditions::Add but have no place in the file.
    bool Derivee = false;
    bool integrale = false;
    QString ActionDerivee;
    QString ActionIntegrale;
    QString Commentaire;

    // Indexed properties. Outside 0..8 a read gives nullopt and a write
    // returns false and changes nothing: the callers that meet a bad index
    // (a corrupt device image) skip it and go on.
    std::optional<std::uint8_t> Numero(int index) const;
    bool setNumero(int index, std::uint8_t value);
    std::optional<std::uint8_t> Operateur(int index) const;
    bool setOperateur(int index, std::uint8_t value);
    std::optional<std::int16_t> tempo(int index) const;
    bool setTempo(int index, std::int16_t value);
    std::optional<double> Valeur1(int index) const;
    bool setValeur1(int index, double value);
    std::optional<double> Valeur2(int index) const;
    bool setValeur2(int index, double value);

    bool operator==(const Condition&) const = default;

private:
    std::array<std::uint8_t, IndexedSize> numero_{};
    std::array<std::uint8_t, IndexedSize> operateur_{};
    std::array<std::int16_t, IndexedSize> tempo_{};
    std::array<double, IndexedSize> valeur1_{};
    std::array<double, IndexedSize> valeur2_{};
};

} // namespace qv
