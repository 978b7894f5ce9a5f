// The programme editor's start, its default state and its entry boxes.
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

void ProgrammeEditor::guarded(const std::function<void()>& action) {
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

} // namespace qv
