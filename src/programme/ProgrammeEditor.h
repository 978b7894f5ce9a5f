#pragma once

#include "programme/EntryValidation.h"
#include "programme/ProgrammePrintout.h"

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <array>
#include <functional>

namespace qv {

class ConsoleView;
class ConfigDocument;
class Conditions;
class Condition;
class Dialogs;

// What the programme editor needs of its window beyond ConsoleView: the
// colour of an entry box, and the two date and time pickers HeureDebut and
// HeureFin, whole (ConsoleView gives a picker's date alone) and with their
// display format (Qt's letters: "HH:mm:ss", "dd/MM/yyyy").
class ProgrammationControls : public ValidationView {
public:
    virtual void setDateTime(const QString& control, const QDateTime& value) = 0;
    virtual QDateTime dateTime(const QString& control) const = 0;
    virtual void setDisplayFormat(const QString& control, const QString& format) = 0;
    virtual QString displayFormat(const QString& control) const = 0;
};

// The programme file dialog as the form prepares it. `filter` is in the
// old form "Description|pattern", `defaultExt` as the form gives it ("*.prg").
struct FileDialogRequest {
    QString fileName;
    QString defaultExt = QStringLiteral("*.prg");
    QString filter = QStringLiteral("Prg (*.prg)|*.prg");
    QString initDir;
};

// "Prg (*.prg)|*.prg" as a Qt file dialog filter: "Prg (*.prg)".
QString qtFileFilter(const QString& filter);
// "*.prg" -> "prg": the suffix a saved name gets when it has none.
QString defaultSuffix(const QString& defaultExt);

// The window's side of the editor: its file dialogs, the printer, closing.
class ProgrammationHost {
public:
    virtual ~ProgrammationHost() = default;
    // The full path chosen, empty after a cancel.
    virtual QString ouvrirFichier(const FileDialogRequest& request) = 0;
    virtual QString enregistrerFichier(const FileDialogRequest& request) = 0;
    // The printer dialog; false when the operator cancels it.
    virtual bool choisirImprimante() = 0;
    // Prints on the printer chosen last.
    virtual void imprimer(const ProgrammePrintout& printout) = 0;
    // Closes the form.
    virtual void fermer() = 0;
};

// What the editor takes from the main form.
class MainScreenAccess {
public:
    virtual ~MainScreenAccess() = default;
    // The text of ListeLangues: the language in use.
    virtual QString langue() const = 0;
    // Its first row: the language under which the default states are kept.
    virtual QString premiereLangue() const = 0;
    // TimeOut of the last exchange.
    virtual bool timeOut() const = 0;
    // One byte of the device's EEPROM (0 with TimeOut set when it fails).
    virtual int LitEEprom(int adresse) = 0;
    // The rows of ValeurSortieLogique: the words of the output states.
    virtual QStringList valeursSortieLogique() const = 0;
};

// The form Programmation without the window: the programme of the run
// (`conditions`, shared with the main form, which downloads it), one line
// at a time in the fields, committed back when the operator leaves it for
// another line, adds one or presses ModifierCondition; each commit rewrites
// config.xml. Programme files are whole copies of config.xml.
//
// Controls are used by name, array members as "Name_N" (Sorties_0,
// ValeurLogiqueDefaut_0, LabelHHMMSS_1); the form itself is "Programmation".
// As with the main form, a selection or text set from code raises no
// handler in the window: where one always ran (a list row selected, an
// option button set, a checked text changed), the editor calls it itself,
// so the window forwards the operator's own clicks, selections and edits.
//
// Faults the old form died of (a period that is not a number when the
// operator commits, a file that cannot be written) end the handler with a
// box titled "Quorvel"; the form stays, and the line keeps its old values.
class ProgrammeEditor {
public:
    ProgrammeEditor(ConsoleView& view, ProgrammationControls& controls, ProgrammationHost& host,
                    MainScreenAccess& mainScreen, ConfigDocument& config, Conditions& conditions,
                    Dialogs& dialogs);

    // The present time of the pickers and of the printout; the number and
    // date formats of the machine. Tests fix both.
    void setClock(std::function<QDateTime()> clock);
    void setLocale(const QLocale& locale);

    // Window events.
    void Form_Load();
    void ListeConditions_Click();
    void ListeJours_Click();
    void Sorties_Click(int index);
    void ValeurPeriode_Change();
    void ValeurTemporisation_Change();
    void ValeurLogiqueDefaut_Click(int index);
    void Ajouter_Click();
    void ModifierCondition_Click();
    void DetruireCondition_Click();
    void SortirProgrammation_Click();
    void LireProg_Click();
    void EnregistrerProg_Click();
    void DetruireProg_Click();
    void ImprimerProg_Click();

    // Translates every caption but the validation line's.
    void ChangeTextes(const QString& langue, bool init);
    // Shows the selected line, committing the shown one first when asked.
    void AfficheCondition(bool flagProgrammation);
    // Commits the fields into the line of 0-based `index` and saves the
    // programme to config.xml. Nothing happens while the form fills itself,
    // when the duration is not a number, or when the list and the
    // collection differ in length. A period that is not a number gets a box,
    // and the line stays as it was.
    //
    // When AfficheCondition commits, on a change of line, faults pass in
    // silence as they always did, and such a period costs the line: it has
    // left the collection when the fault comes, its row stays, and from
    // then on the length test stops every commit until the form is opened
    // again.
    void EnregistreCondition(int index);
    // The check of the editor's entry boxes.
    bool ControleValeur(const QString& control, std::int32_t min, std::int32_t max);
    // The page ImprimerProg prints, from the collection and the screen's
    // words; also for a preview or a PDF.
    ProgrammePrintout contenuImpression();

    int IndexCondition() const { return indexCondition_; }
    bool EnChargement() const { return enChargement_; }
    // The text of a message key in the language in use.
    QString message(const QString& key);

    // The most lines a programme has.
    static constexpr int kLignesMax = 6;
    // The row of ListeJours that makes a line periodic.
    static constexpr int kRangPeriode = 10;

private:
    enum class OnFault { Ignore, Report };

    void commit(int index, OnFault onFault);
    void LitValeursDefaut();
    void AfficheEtatDefaut(const QString& fichier);
    void ChargeConditions(const QString& fichier);
    void chargeListe(const QString& fichier);
    void selectDefaultState(int row);
    void selectJour(int row);
    void setCheckedText(const QString& control, const QString& text);
    void setTimePart(const QString& control, int part, int value);
    void setDatePart(const QString& control, int month, int day);
    QString applicationDirectory() const;
    // Runs a handler's body; what the old form died of becomes a box.
    void guarded(const std::function<void()>& action);

    ConsoleView& view_;
    ProgrammationControls& controls_;
    ProgrammationHost& host_;
    MainScreenAccess& main_;
    ConfigDocument& config_;
    Conditions& conditions_;
    Dialogs& dialogs_;
    std::function<QDateTime()> clock_;
    QLocale locale_;

    int indexCondition_ = 0;
    bool enChargement_ = false;
    // The output code and the Tag of each button of Sorties. Only the first
    // is ever set, to 0, the code of no output: a line takes the valve's
    // code 3 at its first commit.
    std::array<std::int16_t, 6> tableSorties_{};
    std::array<QString, 6> tagsSorties_{};
};

} // namespace qv
