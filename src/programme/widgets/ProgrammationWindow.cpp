#include "ProgrammationWindow.h"

#include "ProgrammePrinting.h"
#include "config/ConfigDocument.h"
#include "device/Device.h"
#include "device/MemoryMap.h"
#include "link/Dialogs.h"
#include "programme/Conditions.h"
#include "ui_Programmation.h"
#include "view/widgets/Brand.h"

#include <QDateTimeEdit>
#include <QFileDialog>
#include <QFileInfo>
#include <QPainter>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QSignalBlocker>
#include <stdexcept>

namespace qv {

// ------------------------------------------------------------ the view

void ProgrammationView::setBackground(const QString& control, std::uint32_t rgb) {
    auto* widget = qobject_cast<QWidget*>(find(control));
    if (!widget)
        return;
    // The two colours of the check are light: the text stays dark on them
    // whatever the desktop's theme.
    QPalette palette = widget->palette();
    palette.setColor(QPalette::Base, QColor::fromRgb(rgb & 0xFFFFFFu));
    palette.setColor(QPalette::Text, Qt::black);
    widget->setPalette(palette);
}

std::uint32_t ProgrammationView::background(const QString& control) const {
    const auto* widget = qobject_cast<const QWidget*>(find(control));
    if (!widget)
        return kFondValide;
    return widget->palette().color(QPalette::Base).rgb() & 0xFFFFFFu;
}

void ProgrammationView::setDateTime(const QString& control, const QDateTime& value) {
    auto* edit = qobject_cast<QDateTimeEdit*>(find(control));
    if (!edit || !value.isValid())
        return;
    const QSignalBlocker quiet(edit);
    edit->setDateTime(value);
}

QDateTime ProgrammationView::dateTime(const QString& control) const {
    const auto* edit = qobject_cast<const QDateTimeEdit*>(find(control));
    return edit ? edit->dateTime() : QDateTime();
}

void ProgrammationView::setDisplayFormat(const QString& control, const QString& format) {
    auto* edit = qobject_cast<QDateTimeEdit*>(find(control));
    if (!edit)
        return;
    const QSignalBlocker quiet(edit);
    // A value keeps its date and time through a change of format. A format
    // of time alone pins the picker to one day; the next date format has to
    // be free of it.
    const QDateTime value = edit->dateTime();
    edit->setDisplayFormat(format);
    edit->clearMinimumDateTime();
    edit->clearMaximumDateTime();
    // A date is picked from a calendar, a time with the arrows.
    edit->setCalendarPopup(edit->displayedSections() & QDateTimeEdit::DateSections_Mask);
    edit->setDateTime(value);
}

QString ProgrammationView::displayFormat(const QString& control) const {
    const auto* edit = qobject_cast<const QDateTimeEdit*>(find(control));
    return edit ? edit->displayFormat() : QString();
}

// ---------------------------------------------------------- the window

ProgrammationWindow::ProgrammationWindow(MainScreenAccess& main, ConfigDocument& config,
                                         Conditions& conditions, Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::Programmation>()), view_(this), dialogs_(dialogs),
      appDir_(QFileInfo(config.configPath()).absolutePath()) {
    ui_->setupUi(this);
    setWindowIcon(applicationIcon());
    ui_->Image1->setPixmap(brandStrip(32, devicePixelRatioF()));
    editor_ =
        std::make_unique<ProgrammeEditor>(view_, view_, *this, main, config, conditions, dialogs);
    wire();
}

ProgrammationWindow::~ProgrammationWindow() = default;

void ProgrammationWindow::wire() {
    using E = ProgrammeEditor;
    const auto click = [this](QAbstractButton* button, void (E::*handler)()) {
        // `clicked` is the operator's alone: a state set from code stays quiet.
        connect(button, &QAbstractButton::clicked, this,
                [this, handler] { ((*editor_).*handler)(); });
    };
    click(ui_->Ajouter, &E::Ajouter_Click);
    click(ui_->ModifierCondition, &E::ModifierCondition_Click);
    click(ui_->DetruireCondition, &E::DetruireCondition_Click);
    click(ui_->SortirProgrammation, &E::SortirProgrammation_Click);
    click(ui_->LireProg, &E::LireProg_Click);
    click(ui_->EnregistrerProg, &E::EnregistrerProg_Click);
    click(ui_->DetruireProg, &E::DetruireProg_Click);
    click(ui_->ImprimerProg, &E::ImprimerProg_Click);
    connect(ui_->ApercuProg, &QAbstractButton::clicked, this, [this] { ApercuProg_Click(); });
    connect(ui_->ImprimerPdf, &QAbstractButton::clicked, this, [this] { ImprimerPdf_Click(); });
    connect(ui_->Sorties_0, &QAbstractButton::clicked, this, [this] { editor_->Sorties_Click(0); });

    // Rows chosen with the mouse or the arrows; the view's own selections
    // are silent.
    connect(ui_->ListeConditions, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0)
            editor_->ListeConditions_Click();
    });
    connect(ui_->ListeJours, &QComboBox::activated, this, [this] { editor_->ListeJours_Click(); });
    connect(ui_->ValeurLogiqueDefaut_0, &QComboBox::activated, this,
            [this] { editor_->ValeurLogiqueDefaut_Click(0); });
    connect(ui_->ValeurPeriode, &QLineEdit::textEdited, this,
            [this] { editor_->ValeurPeriode_Change(); });
    connect(ui_->ValeurTemporisation, &QLineEdit::textEdited, this,
            [this] { editor_->ValeurTemporisation_Change(); });
}

void ProgrammationWindow::load() {
    editor_->Form_Load();
}

QString ProgrammationWindow::fileDialog(const FileDialogRequest& request, bool save) {
    if (fileChooser_)
        return fileChooser_(request, save);
    QFileDialog dialog(this);
    dialog.setNameFilters(qtFileFilter(request.filter).split(QStringLiteral(";;")));
    dialog.setDirectory(request.initDir);
    dialog.setDefaultSuffix(defaultSuffix(request.defaultExt));
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (!request.fileName.isEmpty())
        dialog.selectFile(request.fileName);
    if (dialog.exec() != QDialog::Accepted)
        return QString();
    return dialog.selectedFiles().value(0);
}

QString ProgrammationWindow::ouvrirFichier(const FileDialogRequest& request) {
    return fileDialog(request, false);
}

QString ProgrammationWindow::enregistrerFichier(const FileDialogRequest& request) {
    return fileDialog(request, true);
}

QPrinter& ProgrammationWindow::printer() {
    // Made at first use: finding the printers may take a moment.
    if (!printer_)
        printer_ = std::make_unique<QPrinter>(QPrinter::HighResolution);
    return *printer_;
}

bool ProgrammationWindow::choisirImprimante() {
    QPrintDialog dialog(&printer(), this);
    return dialog.exec() == QDialog::Accepted;
}

void ProgrammationWindow::imprimer(const ProgrammePrintout& printout) {
    QPainter painter;
    if (!painter.begin(&printer()))
        throw Translated<OperatorError>(QStringLiteral("The printer could not be started."));
    renderPrintout(painter, printout);
    painter.end();
}

void ProgrammationWindow::fermer() {
    accept();
}

void ProgrammationWindow::ApercuProg_Click() {
    QPrintPreviewDialog preview(&printer(), this);
    preview.setWindowTitle(ui_->ApercuProg->text());
    connect(&preview, &QPrintPreviewDialog::paintRequested, this, [this](QPrinter* target) {
        QPainter painter(target);
        renderPrintout(painter, editor_->contenuImpression());
    });
    preview.exec();
}

void ProgrammationWindow::ImprimerPdf_Click() {
    QString path;
    if (pdfChooser_) {
        path = pdfChooser_();
    } else {
        const QString base = QFileInfo(ui_->NomFichier->text()).completeBaseName();
        QFileDialog dialog(this, ui_->ImprimerPdf->text());
        dialog.setNameFilter(QStringLiteral("PDF (*.pdf)"));
        dialog.setAcceptMode(QFileDialog::AcceptSave);
        dialog.setDefaultSuffix(QStringLiteral("pdf"));
        dialog.setDirectory(appDir_);
        if (!base.isEmpty())
            dialog.selectFile(base + QStringLiteral(".pdf"));
        if (dialog.exec() == QDialog::Accepted)
            path = dialog.selectedFiles().value(0);
    }
    if (path.isEmpty())
        return;
    QString error;
    const TextLookup lookup = [this](const QString& key) {
        try {
            return editor_->message(key);
        } catch (const std::exception&) {
            return key;
        }
    };
    if (!printProgrammeToPdf(editor_->contenuImpression(), path, &error, lookup))
        dialogs_.message(error, QStringLiteral("Quorvel"), MsgBox::Critical);
}

} // namespace qv
