#include "ProductionReport.h"

#include "config/ConfigDocument.h"
#include "config/OperatorText.h"
#include "firmware/FileDialog.h"
#include "link/Dialogs.h"
#include "programme/DefaultStates.h"
#include "view/ConsoleView.h"

#include <exception>

namespace qv {

namespace {

const QString kListeLangues = QStringLiteral("ListeLangues");

QString member(const char* array, size_t index) {
    return arrayMember(QString::fromLatin1(array), static_cast<int>(index));
}

} // namespace

ProgrammationTexts programmationTexts(ConfigDocument& config, const QString& langue) {
    // The editor ends its start-up with these captions and rows.
    ProgrammationTexts texts;
    texts.framevaleursDefaut = config.LitMessage(langue, QStringLiteral("FramevaleursDefaut"),
                                                 QStringLiteral("Valeurs par défaut"));
    texts.sortie = config.LitMessage(langue, QStringLiteral("Electro Vanne Bist."), QString());
    texts.etatsDefaut = {config.LitMessage(langue, QStringLiteral("Close"), QString()),
                         config.LitMessage(langue, QStringLiteral("Open"), QString())};
    return texts;
}

ProgrammationTexts programmationTexts(const ConsoleView& programmation) {
    ProgrammationTexts texts;
    texts.framevaleursDefaut = programmation.text(QStringLiteral("FramevaleursDefaut"));
    texts.sortie = programmation.text(QStringLiteral("Sorties_0"));
    for (const ConsoleView::Row& row : programmation.rows(QStringLiteral("ValeurLogiqueDefaut_0")))
        texts.etatsDefaut.push_back(row.text);
    return texts;
}

ProductionReportValues collectReportValues(const ConsoleView& m, const ConsoleView& form,
                                           ConfigDocument& config,
                                           const ProgrammationTexts& programmation,
                                           const QDateTime& now, const QLocale& locale) {
    const auto text = [&m](const QString& control) { return m.text(control); };
    ProductionReportValues v;
    v.dateTime = reportDateTime(now, locale);
    v.labelNumeroCommande = form.text(QStringLiteral("LabelNumeroCommande"));
    v.commande = form.text(QStringLiteral("Commande"));
    v.commentaires = form.text(QStringLiteral("Commentaires"));

    v.labelVersion = text(QStringLiteral("LabelVersion"));
    v.versionCaption = text(QStringLiteral("Version"));
    v.label1 = text(QStringLiteral("Label1"));
    v.numeroSerie = text(QStringLiteral("NumeroSerie"));
    v.label2 = text(QStringLiteral("Label2"));
    v.dateProgrammation = text(QStringLiteral("DateProgrammation"));
    v.labelBatterie = text(QStringLiteral("LabelBatterie"));
    v.batterie = text(QStringLiteral("Batterie"));

    v.ruleOn = m.isChecked(QStringLiteral("EnableDaylightSaving"));
    v.labeldelta = text(QStringLiteral("Labeldelta"));
    v.daylightAdjustment = text(QStringLiteral("DaylightAdjustment"));
    v.frameSummer = text(QStringLiteral("FrameSummer"));
    v.frameWinter = text(QStringLiteral("FrameWinter"));
    for (size_t i = 0; i < v.seasons.size(); ++i) {
        auto& s = v.seasons[i];
        s.labelMois = text(member("LabelMoisEte", i));
        s.mois = text(member("Mois", i));
        s.labelSemaine = text(member("LabelsemaineEte", i));
        s.semaine = text(member("Semaine", i));
        s.labelJour = text(member("LabelJour", i));
        s.jour = text(member("Jour", i));
        s.labelHeure = text(member("Labelheure", i));
        s.heure = text(member("Heure", i));
    }

    v.maintenance = config.LitMaintenance();
    for (size_t i = 0; i < v.counters.size(); ++i)
        v.counters[i] = {text(member("Labelctn", i)), text(member("ctn_text", i))};

    v.framevaleursDefaut = programmation.framevaleursDefaut;
    v.sortie = programmation.sortie;
    // The state is looked up under the first language of the list, not the
    // one in use, as the editor and the download do.
    const auto langues = m.rows(kListeLangues);
    const QString premiere = langues.empty() ? QString() : langues.front().text;
    const int etat = Donne_EtatDefautSortie(config, premiere, 0);
    if (etat >= 0 && etat < static_cast<int>(programmation.etatsDefaut.size()))
        v.etatDefaut = programmation.etatsDefaut[static_cast<size_t>(etat)];
    return v;
}

ProductionReport::ProductionReport(ConsoleView& form, const ConsoleView& mainScreen,
                                   ConfigDocument& config, Dialogs& dialogs, FileDialog& fileDialog,
                                   QString applicationDirectory, std::function<void()> hideForm)
    : form_(form), main_(mainScreen), config_(config), dialogs_(dialogs), fileDialog_(fileDialog),
      applicationDirectory_(std::move(applicationDirectory)), hideForm_(std::move(hideForm)),
      clock_([] { return QDateTime::currentDateTime(); }) {
    programmation_ = [this] { return programmationTexts(config_, langue()); };
}

void ProductionReport::setProgrammation(std::function<ProgrammationTexts()> texts) {
    programmation_ = std::move(texts);
}
void ProductionReport::setClock(std::function<QDateTime()> clock) {
    clock_ = std::move(clock);
}
void ProductionReport::setLocale(const QLocale& locale) {
    locale_ = locale;
}

QString ProductionReport::langue() const {
    return main_.text(kListeLangues);
}

void ProductionReport::Form_Load() {
    ChangeTextes(langue());
}

void ProductionReport::ChangeTextes(const QString& langueDemandee) {
    translateCaptions(form_, config_, langueDemandee, CaptionWalk::EveryCaption);
}

void ProductionReport::PrintReport_Click() {
    try {
        FileDialog::Request request;
        request.filter = kReportDialogFilter;
        request.folder = applicationDirectory_;
        request.fileName =
            defaultReportPath(applicationDirectory_, form_.text(QStringLiteral("Commande")));
        // The dialog always proposes a name, so an empty answer can only be
        // a cancel: the order number is never refused, an empty one goes to
        // report.log.
        const QString path = fileDialog_.saveFile(request);
        if (path.isEmpty())
            return;

        const QStringList lines = productionReportLines(
            collectReportValues(main_, form_, config_, programmation_(), clock_(), locale_));
        appendReport(path, lines);
        if (hideForm_)
            hideForm_();
    } catch (const std::exception& e) {
        // The old form died of these; the operator now reads why, in the
        // language in use, and the form stays.
        dialogs_.message(operatorText(e, config_, langue()), QStringLiteral("Quorvel"),
                         MsgBox::Critical);
    }
}

} // namespace qv
