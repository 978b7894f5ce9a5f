// Programme files and the printout.
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
