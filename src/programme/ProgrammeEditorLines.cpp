// The lines of the programme: shown, chosen, committed, added and deleted.
#include "ProgrammeEditorParts.h"

#include "config/ConfigDocument.h"
#include "config/DateHelpers.h"
#include "config/LocaleNumber.h"
#include "config/OperatorText.h"
#include "link/Dialogs.h"
#include "programme/Conditions.h"
#include "programme/DefaultStates.h"
#include "programme/ProgrammeStore.h"
#include "view/ConsoleView.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>
#include <cmath>
#include <exception>
#include <stdexcept>

namespace qv {

using namespace editor;

// -------------------------------------------------------------- lines

void ProgrammeEditor::chargeListe(const QString& fichier) {
    view_.setRows(kListeConditions, {});
    Conditions lues;
    try {
        LitConditions(config_, lues, fichier);
    } catch (const ConfigError&) {
        // An unreadable file reads as no lines at all.
        return;
    }
    int compteur = 0;
    for (const Condition& ligne : lues) {
        conditions_.Add(ligne, 0);
        auto rows = view_.rows(kListeConditions);
        const auto at = std::min(static_cast<size_t>(compteur), rows.size());
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(at), {ligne.Nom, 0});
        view_.setRows(kListeConditions, rows);
        view_.setCurrentRow(kListeConditions, compteur);
        ListeConditions_Click();
        ++compteur;
    }
}

void ProgrammeEditor::ChargeConditions(const QString& fichier) {
    conditions_ = Conditions();
    chargeListe(fichier);
    AfficheEtatDefaut(fichier);
}

void ProgrammeEditor::ListeConditions_Click() {
    AfficheCondition(true);
}

void ProgrammeEditor::selectJour(int row) {
    if (row < 0 || row >= static_cast<int>(view_.rows(kListeJours).size()))
        return;
    view_.setCurrentRow(kListeJours, row);
    ListeJours_Click();
}

void ProgrammeEditor::ListeJours_Click() {
    const bool periode = view_.currentRow(kListeJours) == kRangPeriode;
    if (periode) {
        const QString dateCourte = FormatDateCourte(locale_);
        view_.setText(kLabelHHMMSS0, dateCourte);
        view_.setVisible(kLabelHHMMSS0, true);
        view_.setText(kLabelHHMMSS1, QStringLiteral("hh:mm"));
        view_.setVisible(kLabelHHMMSS1, true);
        view_.setVisible(kHeureDebut, true);
        controls_.setDisplayFormat(kHeureDebut, dateCourte);
        view_.setVisible(kHeureFin, true);
        controls_.setDisplayFormat(kHeureFin, kFormatHeureMinute);
    } else {
        view_.setText(kLabelHHMMSS0, QStringLiteral("hh:mm:ss"));
        view_.setVisible(kLabelHHMMSS0, true);
        view_.setVisible(kLabelHHMMSS1, false);
        view_.setVisible(kHeureDebut, true);
        controls_.setDisplayFormat(kHeureDebut, kFormatHeure);
        view_.setVisible(kHeureFin, false);
    }
    view_.setVisible(kLabelPeriode, periode);
    view_.setVisible(kValeurPeriode, periode);
}

void ProgrammeEditor::Sorties_Click(int index) {
    view_.setEnabled(kValeurLogiqueDefaut0, index == 0);
}

void ProgrammeEditor::setCheckedText(const QString& control, const QString& text) {
    if (view_.text(control) == text)
        return;
    view_.setText(control, text);
    if (control == kValeurPeriode)
        ValeurPeriode_Change();
    else if (control == kValeurTemporisation)
        ValeurTemporisation_Change();
}

void ProgrammeEditor::setTimePart(const QString& control, int part, int value) {
    // One field of the picker at a time; a value it can't show leaves it.
    QDateTime moment = controls_.dateTime(control);
    if (!moment.isValid())
        moment = clock_();
    const QTime t = moment.time();
    const QTime changed(part == static_cast<int>(Part::Hour) ? value : t.hour(),
                        part == static_cast<int>(Part::Minute) ? value : t.minute(),
                        part == static_cast<int>(Part::Second) ? value : t.second());
    if (!changed.isValid())
        return;
    moment.setTime(changed);
    controls_.setDateTime(control, moment);
}

void ProgrammeEditor::setDatePart(const QString& control, int month, int day) {
    QDateTime moment = controls_.dateTime(control);
    if (!moment.isValid())
        moment = clock_();
    QDate date = moment.date();
    const int annee = date.year();
    if (month >= 1 && month <= 12) {
        // The day goes with the month, so that 31 January shown before
        // doesn't keep a February date from being shown.
        const int jours = QDate(annee, month, 1).daysInMonth();
        date = QDate(annee, month, std::min(date.day(), jours));
    }
    if (day >= 1 && day <= date.daysInMonth())
        date = QDate(annee, date.month(), day);
    moment.setDate(date);
    controls_.setDateTime(control, moment);
}

void ProgrammeEditor::AfficheCondition(bool flagProgrammation) {
    skip([&] {
        const int lignes = static_cast<int>(view_.rows(kListeConditions).size());
        if (lignes == 0 || lignes != conditions_.Count())
            return;
        if (flagProgrammation)
            skip([&] { commit(indexCondition_, OnFault::Ignore); });

        indexCondition_ = view_.currentRow(kListeConditions);
        view_.setText(kFrameSortie, view_.text(kListeConditions));
        const Condition* stored = conditions_.Item(indexCondition_ + 1);
        if (!stored)
            return;
        const Condition ligne = *stored;

        // The valve's code 3 has no button: a committed line sets none.
        if (ligne.sortie >= 0 && ligne.sortie < kBoutonsSorties) {
            view_.setChecked(arrayMember(kSorties, ligne.sortie), true);
            Sorties_Click(ligne.sortie);
        }
        setCheckedText(kValeurTemporisation, QString::number(ligne.Temporisation));
        view_.setVisible(kListeValeurLogique, true);
        // 4.0, the value of a line never committed, has no row: the row
        // shown stays.
        if (std::isfinite(ligne.Valeur)) {
            const double row = std::nearbyint(ligne.Valeur);
            if (row >= 0 && row < static_cast<double>(view_.rows(kListeValeurLogique).size()))
                view_.setCurrentRow(kListeValeurLogique, static_cast<int>(row));
        }

        const auto jours = view_.rows(kListeJours);
        const auto selectJourCode = [&](int code) {
            for (size_t i = 0; i < jours.size(); ++i)
                if (jours[i].itemData == code) {
                    selectJour(static_cast<int>(i));
                    return;
                }
        };
        if (ligne.Jour == JourPeriode) {
            const QString dateCourte = FormatDateCourte(locale_);
            controls_.setDisplayFormat(kHeureDebut, dateCourte);
            setDatePart(kHeureDebut, ligne.PlageFinHeure, ligne.PlageFinMinute);
            setTimePart(kHeureFin, static_cast<int>(Part::Hour), ligne.Heure);
            setTimePart(kHeureFin, static_cast<int>(Part::Minute), ligne.Minute);
            setTimePart(kHeureFin, static_cast<int>(Part::Second), 0);
            setCheckedText(kValeurPeriode, QString::number(ligne.Seconde));
            selectJourCode(JourPeriode);
            view_.setText(kLabelHHMMSS0, dateCourte);
            view_.setVisible(kLabelHHMMSS0, true);
            view_.setVisible(kHeureDebut, true);
            view_.setVisible(kHeureFin, true);
        } else {
            controls_.setDisplayFormat(kHeureDebut, kFormatHeure);
            setTimePart(kHeureDebut, static_cast<int>(Part::Hour), ligne.Heure);
            setTimePart(kHeureDebut, static_cast<int>(Part::Minute), ligne.Minute);
            setTimePart(kHeureDebut, static_cast<int>(Part::Second), ligne.Seconde);
            selectJourCode(ligne.Jour);
            view_.setText(kLabelHHMMSS0, QStringLiteral("hh:mm:ss"));
            view_.setVisible(kLabelHHMMSS0, true);
            view_.setVisible(kHeureDebut, true);
        }
    });
}

void ProgrammeEditor::commit(int index, OnFault onFault) {
    if (enChargement_)
        return;
    if (!parseLocaleNumber(view_.text(kValeurTemporisation), locale_))
        return;
    const int lignes = static_cast<int>(view_.rows(kListeConditions).size());
    if (lignes == 0 || lignes != conditions_.Count())
        return;
    const Condition* stored = conditions_.Item(index + 1);
    const auto valeurs = view_.rows(kListeValeurLogique);
    const int rangValeur = view_.currentRow(kListeValeurLogique);
    if (!stored || rangValeur < 0 || rangValeur >= static_cast<int>(valeurs.size()))
        return;

    const Condition avant = *stored;
    Condition ligne = avant;
    ligne.sortie = kSortieVanne;
    ligne.Valeur = valeurs[static_cast<size_t>(rangValeur)].itemData;
    conditions_.Remove(index + 1);
    ligne.Commentaire.clear();

    try {
        if (view_.currentRow(kListeJours) == kRangPeriode) {
            const QDateTime debut = controls_.dateTime(kHeureDebut);
            const QDateTime fin = controls_.dateTime(kHeureFin);
            ligne.Jour = JourPeriode;
            ligne.Heure = static_cast<std::int16_t>(fin.time().hour());
            ligne.Minute = static_cast<std::int16_t>(fin.time().minute());
            ligne.Seconde = entier(view_.text(kValeurPeriode), locale_);
            ligne.PlageFinHeure = static_cast<std::int16_t>(debut.date().month());
            ligne.PlageFinMinute = static_cast<std::int16_t>(debut.date().day());
            ligne.PlageFinSeconde = 0;
        } else {
            const auto jours = view_.rows(kListeJours);
            const int rangJour = view_.currentRow(kListeJours);
            if (rangJour < 0 || rangJour >= static_cast<int>(jours.size()))
                throw ConversionFault();
            const double code = jours[static_cast<size_t>(rangJour)].itemData;
            if (!(code >= -32768 && code <= 32767))
                throw ConversionFault();
            ligne.Jour = static_cast<std::int16_t>(std::nearbyint(code));
            const QTime debut = controls_.dateTime(kHeureDebut).time();
            ligne.Heure = static_cast<std::int16_t>(debut.hour());
            ligne.Minute = static_cast<std::int16_t>(debut.minute());
            ligne.Seconde = static_cast<std::int16_t>(debut.second());
        }
    } catch (const ConversionFault&) {
        if (onFault == OnFault::Report)
            conditions_.Add(avant, index + 1);
        throw;
    }

    view_.setVisible(kListeValeurLogique, true);
    ligne.Valeur = valeurs[static_cast<size_t>(rangValeur)].itemData;
    ligne.Offset = 0.0;

    const auto duree = parseLocaleNumber(view_.text(kValeurTemporisation), locale_);
    if (duree) {
        if (*duree < 0)
            setCheckedText(kValeurTemporisation, QStringLiteral("0"));
        else if (*duree > kTemporisationMax)
            setCheckedText(kValeurTemporisation, QString::number(kTemporisationMax));
        ligne.Temporisation = entier(view_.text(kValeurTemporisation), locale_);
    } else {
        ligne.Temporisation = 0;
    }

    conditions_.Add(ligne, index + 1);
    SauveConditions(config_, conditions_);
}

void ProgrammeEditor::EnregistreCondition(int index) {
    guarded([&] { commit(index, OnFault::Report); });
}

void ProgrammeEditor::ModifierCondition_Click() {
    EnregistreCondition(view_.currentRow(kListeConditions));
}

void ProgrammeEditor::Ajouter_Click() {
    guarded([&] {
        // Six lines make a programme; a seventh is refused without a word.
        if (view_.rows(kListeConditions).size() >= static_cast<size_t>(kLignesMax))
            return;
        commit(indexCondition_, OnFault::Report);

        int bouton = -1;
        for (int i = 0; i < kBoutonsSorties; ++i)
            if (view_.isChecked(arrayMember(kSorties, i))) {
                bouton = i;
                break;
            }
        if (bouton < 0)
            return;
        const QString legende = view_.text(arrayMember(kSorties, bouton));
        const std::int16_t code = tableSorties_[static_cast<size_t>(bouton)];
        const auto tag = static_cast<std::int16_t>(
            parseLocaleNumber(tagsSorties_[static_cast<size_t>(bouton)], QLocale::c()).value_or(0));

        auto rows = view_.rows(kListeConditions);
        const int n = static_cast<int>(rows.size());
        const QString nom = legende + QLatin1Char('-') + QString::number(n + 1);
        rows.push_back({nom, static_cast<double>(tag)});
        view_.setRows(kListeConditions, rows);
        view_.setCurrentRow(kListeConditions, n);
        // The list is one row ahead of the collection: the click does nothing.
        ListeConditions_Click();

        Condition ligne;
        ligne.sortie = code;
        ligne.Format = tag;
        ligne.rang = static_cast<std::int16_t>(view_.currentRow(kListeConditions));
        ligne.Nom = nom;
        ligne.Valeur = 4.0;
        ligne.Jour = 0;
        selectJour(0);
        conditions_.Add(ligne, 0);

        if (!view_.rows(kListeConditions).empty())
            AfficheCondition(false);
    });
}

void ProgrammeEditor::DetruireCondition_Click() {
    guarded([&] {
        const int i = view_.currentRow(kListeConditions);
        auto rows = view_.rows(kListeConditions);
        if (i < 0 || i >= static_cast<int>(rows.size()))
            return;
        rows.erase(rows.begin() + i);
        view_.setRows(kListeConditions, rows);
        conditions_.Remove(i + 1);
        // The rows keep their numbers. The click commits the fields, still
        // those of the deleted line, into the line now at its place, since
        // IndexCondition still names that place.
        if (i != 0) {
            view_.setCurrentRow(kListeConditions, i - 1);
            ListeConditions_Click();
        } else if (!rows.empty()) {
            view_.setCurrentRow(kListeConditions, 0);
            ListeConditions_Click();
        }
    });
}

void ProgrammeEditor::SortirProgrammation_Click() {
    bool sauve = false;
    guarded([&] {
        SauveConditions(config_, conditions_);
        sauve = true;
    });
    if (sauve)
        host_.fermer();
}

} // namespace qv
