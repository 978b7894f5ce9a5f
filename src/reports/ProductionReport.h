#pragma once

#include "ReportBlock.h"

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <functional>
#include <vector>

namespace qv {

class ConsoleView;
class ConfigDocument;
class Dialogs;
class FileDialog;

// What the report takes from the programme editor.
struct ProgrammationTexts {
    QString framevaleursDefaut;       // caption of FramevaleursDefaut
    QString sortie;                   // caption of Sorties(0)
    std::vector<QString> etatsDefaut; // rows of ValeurLogiqueDefaut(0)
};

// The editor's texts as its start-up leaves them in `langue`, without
// opening it.
ProgrammationTexts programmationTexts(ConfigDocument& config, const QString& langue);
// The texts of an editor that is open: controls FramevaleursDefaut,
// Sorties_0 and ValeurLogiqueDefaut_0.
ProgrammationTexts programmationTexts(const ConsoleView& programmation);

// The values of a block, taken from the main window and the report form as
// they stand, the default state of output 0 from config.xml (first language
// of ListeLangues), the Maintenance switch from config.xml. Nothing is read
// from the device: a full read must have filled the window.
ProductionReportValues collectReportValues(const ConsoleView& mainScreen, const ConsoleView& form,
                                           ConfigDocument& config,
                                           const ProgrammationTexts& programmation,
                                           const QDateTime& now, const QLocale& locale);

inline const QString kReportDialogFilter = QStringLiteral("Log Files (*.LOG)|*.LOG");

// frmProduction: an order number and a comment in, one block appended to
// the production log out. Its controls, by name: LabelNumeroCommande,
// Commande, Commentaires, PrintReport.
//
// After a report the form is hidden, not cleared: the next one starts from
// the same order number and comment. A cancelled dialog writes nothing and
// leaves the form up.
//
// What the old program died of (a file that cannot be written, a version
// caption without a hardware code, an unusable config.xml) shows a box
// titled "Quorvel" instead and writes nothing; the form stays.
class ProductionReport {
public:
    // `hideForm` hides the form; `mainScreen` is the main window's view.
    ProductionReport(ConsoleView& form, const ConsoleView& mainScreen, ConfigDocument& config,
                     Dialogs& dialogs, FileDialog& fileDialog, QString applicationDirectory,
                     std::function<void()> hideForm);

    // The editor's texts; by default as its start-up would leave them. A
    // window that has the editor open passes programmationTexts(its view).
    void setProgrammation(std::function<ProgrammationTexts()> texts);
    // Tests fix the time of the block and the date format.
    void setClock(std::function<QDateTime()> clock);
    void setLocale(const QLocale& locale);

    // At each load of the form: its captions in the language in use.
    void Form_Load();
    // Captions of labels, buttons and frames from config.xml, the present
    // caption as default; text boxes keep their text.
    void ChangeTextes(const QString& langue);
    void PrintReport_Click();

private:
    QString langue() const;

    ConsoleView& form_;
    const ConsoleView& main_;
    ConfigDocument& config_;
    Dialogs& dialogs_;
    FileDialog& fileDialog_;
    QString applicationDirectory_;
    std::function<void()> hideForm_;
    std::function<ProgrammationTexts()> programmation_;
    std::function<QDateTime()> clock_;
    QLocale locale_ = QLocale::system();
};

} // namespace qv
