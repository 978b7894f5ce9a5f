#pragma once

#include "programme/ProgrammeEditor.h"
#include "view/widgets/WidgetConsoleView.h"

#include <QDialog>
#include <functional>
#include <memory>

class QPrinter;

namespace Ui {
class Programmation;
}

namespace qv {

class ConfigDocument;
class Conditions;
class Dialogs;

// The editor's controls by name, with the pickers whole and the colour of
// an entry box.
class ProgrammationView : public WidgetConsoleView, public ProgrammationControls {
public:
    explicit ProgrammationView(QWidget* root) : WidgetConsoleView(root) {}

    void setBackground(const QString& control, std::uint32_t rgb) override;
    std::uint32_t background(const QString& control) const override;
    void setDateTime(const QString& control, const QDateTime& value) override;
    QDateTime dateTime(const QString& control) const override;
    void setDisplayFormat(const QString& control, const QString& format) override;
    QString displayFormat(const QString& control) const override;
};

// The main window as the editor reads it: its language list, its device,
// the words of its output states. A tick of the continuous read that falls
// inside the editor's one device read is dropped, as it would be inside any
// other sequence.
// The form Programmation: a modal dialog from Programmation.ui whose
// controls carry the names the editor uses, and which forwards the
// operator's own clicks, selections and edits to it. Closing it other than
// through SortirProgrammation leaves config.xml as the last commit made it.
//
// Beside the printer (ImprimerProg, through the printer dialog) it offers a
// print preview (ApercuProg) and a PDF of the same page (ImprimerPdf).
class ProgrammationWindow : public QDialog, public ProgrammationHost {
    Q_OBJECT
public:
    ProgrammationWindow(MainScreenAccess& main, ConfigDocument& config, Conditions& conditions,
                        Dialogs& dialogs, QWidget* parent = nullptr);
    ~ProgrammationWindow() override;

    // The form's start-up (Form_Load); then exec() shows it modally.
    void load();

    ProgrammeEditor& editor() { return *editor_; }
    ProgrammationView& view() { return view_; }

    // Replaces the file dialogs (tests): `save` tells which one is asked.
    using FileChooser = std::function<QString(const FileDialogRequest&, bool save)>;
    void setFileChooser(FileChooser chooser) { fileChooser_ = std::move(chooser); }
    // Replaces the choice of a PDF file name (tests).
    void setPdfChooser(std::function<QString()> chooser) { pdfChooser_ = std::move(chooser); }

    // ProgrammationHost.
    QString ouvrirFichier(const FileDialogRequest& request) override;
    QString enregistrerFichier(const FileDialogRequest& request) override;
    bool choisirImprimante() override;
    void imprimer(const ProgrammePrintout& printout) override;
    void fermer() override;

    // The preview and the PDF of the page as ImprimerProg would print it.
    void ApercuProg_Click();
    void ImprimerPdf_Click();

private:
    void wire();
    QString fileDialog(const FileDialogRequest& request, bool save);
    QPrinter& printer();

    std::unique_ptr<Ui::Programmation> ui_;
    ProgrammationView view_;
    Dialogs& dialogs_;
    std::unique_ptr<ProgrammeEditor> editor_;
    std::unique_ptr<QPrinter> printer_;
    FileChooser fileChooser_;
    std::function<QString()> pdfChooser_;
    QString appDir_;
};

} // namespace qv
