#include "ProgrammeEditor.h"

#include "config/ConfigDocument.h"
#include "config/DateHelpers.h"
#include "config/LocaleNumber.h"
#include "config/OperatorText.h"
#include "view/ConsoleView.h"
#include "link/Dialogs.h"
#include "programme/Conditions.h"
#include "programme/DefaultStates.h"
#include "programme/ProgrammeStore.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSaveFile>
#include <cmath>
#include <exception>
#include <stdexcept>

namespace qv {

namespace {

const QString kForm = QStringLiteral("Programmation");
const QString kListeConditions = QStringLiteral("ListeConditions");
const QString kListeSorties = QStringLiteral("ListeSorties");
const QString kListeJours = QStringLiteral("ListeJours");
const QString kListeValeurLogique = QStringLiteral("ListeValeurLogique");
const QString kValeurLogiqueDefaut0 = QStringLiteral("ValeurLogiqueDefaut_0");
const QString kValeurPeriode = QStringLiteral("ValeurPeriode");
const QString kValeurTemporisation = QStringLiteral("ValeurTemporisation");
const QString kHeureDebut = QStringLiteral("HeureDebut");
const QString kHeureFin = QStringLiteral("HeureFin");
const QString kLabelPeriode = QStringLiteral("LabelPeriode");
const QString kLabelHHMMSS0 = QStringLiteral("LabelHHMMSS_0");
const QString kLabelHHMMSS1 = QStringLiteral("LabelHHMMSS_1");
const QString kFrameSortie = QStringLiteral("FrameSortie");
const QString kFrameCondition = QStringLiteral("FrameCondition");
const QString kNomFichier = QStringLiteral("NomFichier");
const QString kMessage = QStringLiteral("Message");
const QString kSorties = QStringLiteral("Sorties");

const QString kFormatHeure = QStringLiteral("HH:mm:ss");
const QString kFormatHeureMinute = QStringLiteral("HH:mm");

// The form holds one output button; a list with more outputs than buttons
// gives the extra ones no button.
constexpr int kBoutonsSorties = 1;
// The code of the valve output, the one output a committed line drives.
constexpr std::int16_t kSortieVanne = 3;
constexpr int kTemporisationMax = 32000;
constexpr int kPeriodeMax = 255;
constexpr int kTemporisationSaisieMax = 65535;
// The device's byte of the default output state.
constexpr int kAdresseEtatDefaut = 24;

// A field that cannot take what the form holds: the old form's conversion
// error, which ended the program wherever nothing ignored it.
class ConversionFault : public std::runtime_error {
public:
    ConversionFault() : std::runtime_error("conversion") {}
};

enum class Part { Hour, Minute, Second };

// A text box read as a 16-bit integer, rounded half to even.
std::int16_t entier(const QString& text, const QLocale& locale) {
    const auto value = parseLocaleNumber(text, locale);
    if (!value)
        throw ConversionFault();
    const double rounded = std::nearbyint(*value);
    if (rounded < -32768 || rounded > 32767)
        throw ConversionFault();
    return static_cast<std::int16_t>(rounded);
}

// The bare name of a chosen path: its last piece.
QString dernierMorceau(const QString& chemin) {
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

} // namespace

QString qtFileFilter(const QString& filter) {
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList filters;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        const QString description = parts.at(i).trimmed();
        const QString patterns = parts.at(i + 1).trimmed().replace(QLatin1Char(';'), ' ');
        if (description.contains(QLatin1Char('(') + patterns + QLatin1Char(')')))
            filters << description;
        else
            filters << description + QStringLiteral(" (") + patterns + QLatin1Char(')');
    }
    if (parts.size() % 2 == 1 && !parts.last().trimmed().isEmpty())
        filters << parts.last().trimmed();
    return filters.join(QStringLiteral(";;"));
}

QString defaultSuffix(const QString& defaultExt) {
    QString suffix = defaultExt.trimmed();
    while (suffix.startsWith(QLatin1Char('*')) || suffix.startsWith(QLatin1Char('.')))
        suffix.remove(0, 1);
    return suffix;
}

ProgrammeEditor::ProgrammeEditor(ConsoleView& view, ProgrammationControls& controls,
                                 ProgrammationHost& host, MainScreenAccess& mainScreen,
                                 ConfigDocument& config, Conditions& conditions, Dialogs& dialogs)
    : view_(view), controls_(controls), host_(host), main_(mainScreen), config_(config),
      conditions_(conditions), dialogs_(dialogs),
      clock_([] { return QDateTime::currentDateTime(); }), locale_(QLocale::system()) {}

void ProgrammeEditor::setClock(std::function<QDateTime()> clock) {
    clock_ = std::move(clock);
}

void ProgrammeEditor::setLocale(const QLocale& locale) {
    locale_ = locale;
}

QString ProgrammeEditor::message(const QString& key) {
    return config_.LitMessage(main_.langue(), key, QString());
}

template <typename F> void ProgrammeEditor::guarded(F&& action) {
    // What the old form died of: the operator gets the reason, the form stays.
    const auto box = [&](const QString& text) {
        dialogs_.message(text, QStringLiteral("Quorvel"), MsgBox::Critical);
    };
    try {
        action();
    } catch (const ConversionFault&) {
        QString text = QStringLiteral("La saisie n'est pas numérique");
        skip([&] { text = message(text); });
        box(text);
    } catch (const std::exception& e) {
        box(operatorText(e, config_, main_.langue()));
    }
}

QString ProgrammeEditor::applicationDirectory() const {
    return QFileInfo(config_.configPath()).absolutePath();
}

// ------------------------------------------------------------- start-up

void ProgrammeEditor::Form_Load() {
    guarded([&] {
        Chargement chargement(enChargement_);
        const QString langue = main_.langue();
        skip([&] {
            view_.setText(
                kForm,
                config_.LitMessage(langue, QStringLiteral("Programmation des sorties"), QString()));
        });
        ChangeTextes(langue, false);

        const QDateTime maintenant = clock_();
        controls_.setDateTime(kHeureDebut, maintenant);
        controls_.setDateTime(kHeureFin, maintenant);
        indexCondition_ = 0;

        if (const auto rows = config_.RemplitListe(langue, kListeSorties))
            view_.setRows(kListeSorties, toRows(*rows));
        const auto sorties = view_.rows(kListeSorties);
        int i = 0;
        for (; i < static_cast<int>(sorties.size()) && i < kBoutonsSorties; ++i) {
            const auto& row = sorties[static_cast<size_t>(i)];
            view_.setText(arrayMember(kSorties, i), row.text);
            tagsSorties_[static_cast<size_t>(i)] = QString::number(row.itemData);
        }

        // The output asked for is the loop's counter as the loop leaves it,
        // one past the last row: with the valve alone there is no such row,
        // and the state shown, and stored by the selection, is Close until
        // the device says otherwise.
        if (view_.rows(kValeurLogiqueDefaut0).size() < 2)
            view_.setRows(kValeurLogiqueDefaut0,
                          {{QStringLiteral("0"), 0}, {QStringLiteral("1"), 1}});
        std::int16_t etat = 0;
        skip([&] {
            etat = Donne_EtatDefautSortie(config_, main_.premiereLangue(),
                                          static_cast<std::int16_t>(i));
        });
        selectDefaultState(0);
        selectDefaultState(etat);

        if (const auto rows = config_.RemplitListe(langue, kListeJours))
            view_.setRows(kListeJours, toRows(*rows));
        selectJour(0);

        view_.setRows(kListeValeurLogique, {{QStringLiteral("0"), 0}, {QStringLiteral("1"), 1}});
        view_.setCurrentRow(kListeValeurLogique, 0);
        view_.setVisible(kListeValeurLogique, true);

        const QString sortie0 = arrayMember(kSorties, 0);
        view_.setVisible(sortie0, true);
        view_.setChecked(sortie0, true);
        Sorties_Click(0);
        view_.setText(sortie0, message(QStringLiteral("Electro Vanne Bist.")));
        view_.setVisible(kValeurLogiqueDefaut0, true);
        tableSorties_[0] = 0;

        const QString ferme = message(QStringLiteral("Close"));
        const QString ouvert = message(QStringLiteral("Open"));
        for (const QString& liste : {kListeValeurLogique, kValeurLogiqueDefaut0}) {
            view_.setRowText(liste, 0, ferme);
            view_.setRowText(liste, 1, ouvert);
        }

        conditions_ = Conditions();
        // A fresh form has an empty list; this one may be shown again.
        view_.setRows(kListeConditions, {});
        if (!main_.timeOut()) {
            LitValeursDefaut();
            chargeListe(QString());
            view_.setText(kNomFichier, config_.LitValeurXML(QStringLiteral("NomProgramme"))
                                           .value_or(QStringLiteral("False")));
        }
    });
}

void ProgrammeEditor::ChangeTextes(const QString& langue, bool init) {
    Q_UNUSED(init)
    translateCaptions(view_, config_, langue, CaptionWalk::EveryCaption);
    skip([&] { view_.setText(kFrameSortie, config_.LitMessage(langue, kFrameSortie, QString())); });
    skip([&] {
        view_.setText(kFrameCondition, config_.LitMessage(langue, kFrameCondition, QString()));
    });
}

// ------------------------------------------------------ default state

void ProgrammeEditor::selectDefaultState(int row) {
    if (row < 0 || row >= static_cast<int>(view_.rows(kValeurLogiqueDefaut0).size()))
        return;
    // Every selection is a click, and every click stores the state.
    view_.setCurrentRow(kValeurLogiqueDefaut0, row);
    ValeurLogiqueDefaut_Click(0);
}

void ProgrammeEditor::ValeurLogiqueDefaut_Click(int index) {
    // The state is kept for output 0 whichever element was clicked.
    Q_UNUSED(index)
    guarded([&] {
        Sauve_EtatDefautSortie(config_, main_.premiereLangue(), 0,
                               static_cast<std::int16_t>(view_.currentRow(kValeurLogiqueDefaut0)));
    });
}

void ProgrammeEditor::LitValeursDefaut() {
    const int octet = main_.LitEEprom(kAdresseEtatDefaut);
    selectDefaultState(octet != 0 ? 1 : 0);
}

void ProgrammeEditor::AfficheEtatDefaut(const QString& fichier) {
    const std::int16_t etat = Donne_EtatDefautSortie(config_, main_.premiereLangue(), 0, fichier);
    selectDefaultState(0);
    selectDefaultState(etat);
}

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

// ---------------------------------------------------------- entry boxes

bool ProgrammeEditor::ControleValeur(const QString& control, std::int32_t min, std::int32_t max) {
    const EntryCheck check{view_, controls_, [this](const QString& key) { return message(key); },
                           locale_, kMessage};
    return qv::ControleValeur(check, control, min, max);
}

void ProgrammeEditor::ValeurPeriode_Change() {
    ControleValeur(kValeurPeriode, 0, kPeriodeMax);
}

void ProgrammeEditor::ValeurTemporisation_Change() {
    ControleValeur(kValeurTemporisation, 0, kTemporisationSaisieMax);
}

// ---------------------------------------------------------------- files

void ProgrammeEditor::LireProg_Click() {
    guarded([&] {
        FileDialogRequest request;
        request.initDir = applicationDirectory();
        const QString chemin = host_.ouvrirFichier(request);
        if (chemin.isEmpty())
            return;
        view_.setText(kNomFichier, dernierMorceau(chemin));
        config_.ImporteConfiguration(chemin);
        AfficheEtatDefaut(chemin);
        config_.EcritValeurXML(QStringLiteral("NomProgramme"), view_.text(kNomFichier));
        Chargement chargement(enChargement_);
        ChargeConditions(QString());
    });
}

void ProgrammeEditor::EnregistrerProg_Click() {
    guarded([&] {
        FileDialogRequest request;
        request.initDir = applicationDirectory();
        const QString chemin = host_.enregistrerFichier(request);
        if (chemin.isEmpty())
            return;
        view_.setText(kNomFichier, dernierMorceau(chemin));
        config_.EcritValeurXML(QStringLiteral("NomProgramme"), view_.text(kNomFichier));

        // The copy holds what config.xml holds: the last commit, not the
        // fields on the screen. Written beside the target and renamed over
        // it, so that a failed copy leaves the old file whole.
        QFile source(config_.configPath());
        if (!source.open(QIODevice::ReadOnly))
            throw Translated<ConfigError>(QStringLiteral("The file %1 cannot be read: %2"),
                                          {config_.configPath(), source.errorString()});
        const QByteArray contenu = source.readAll();
        QSaveFile cible(chemin);
        if (!cible.open(QIODevice::WriteOnly) || cible.write(contenu) != contenu.size() ||
            !cible.commit())
            throw Translated<ConfigError>(QStringLiteral("The file %1 cannot be written: %2"),
                                          {chemin, cible.errorString()});
    });
}

void ProgrammeEditor::DetruireProg_Click() {
    guarded([&] {
        FileDialogRequest request;
        request.fileName = view_.text(kNomFichier);
        request.initDir = applicationDirectory();
        const QString chemin = host_.ouvrirFichier(request);
        if (chemin.isEmpty())
            return;
        const QString question = message(QStringLiteral("Voulez Détruire le fichier ")) +
                                 QLatin1Char(' ') + chemin + QStringLiteral(" ?");
        if (dialogs_.message(question, QString(), MsgBox::YesNo | MsgBox::Question) !=
            MsgBox::AnswerYes)
            return;
        // Forced: a read-only file goes too.
        QFile fichier(chemin);
        fichier.setPermissions(fichier.permissions() | QFile::WriteOwner);
        if (!fichier.remove())
            throw Translated<ConfigError>(QStringLiteral("The file %1 cannot be deleted: %2"),
                                          {chemin, fichier.errorString()});
        view_.setText(kNomFichier, QString());
    });
}

// ------------------------------------------------------------- printout

void ProgrammeEditor::ImprimerProg_Click() {
    guarded([&] {
        if (!host_.choisirImprimante())
            return;
        host_.imprimer(contenuImpression());
    });
}

ProgrammePrintout ProgrammeEditor::contenuImpression() {
    PrintoutTexts texts;
    texts.date = clock_().date();
    texts.nomFichier = view_.text(kNomFichier);
    skip([&] { texts.page = message(QStringLiteral("Page")); });
    texts.valeursDefaut = view_.text(QStringLiteral("FramevaleursDefaut"));
    texts.condition = view_.text(kFrameCondition);
    texts.programmationJournaliere = view_.text(QStringLiteral("Label3"));
    for (const ConsoleView::Row& row : view_.rows(kListeSorties))
        texts.sorties << row.text;
    // A state that can't be read keeps the one of the row before.
    const QString premiere = main_.premiereLangue();
    std::int16_t etat = 0;
    for (int i = 0; i < texts.sorties.size(); ++i) {
        skip([&] {
            etat = Donne_EtatDefautSortie(config_, premiere, static_cast<std::int16_t>(i));
        });
        texts.etatsDefaut.push_back(etat);
    }
    texts.valeursLogiques = main_.valeursSortieLogique();
    for (const ConsoleView::Row& row : view_.rows(kListeJours))
        texts.jours.push_back({row.text, row.itemData});
    return ImprimeProgrammation(conditions_, texts);
}

} // namespace qv
