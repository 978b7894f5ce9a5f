#include "Commission.h"

#include "ControllerChannel.h"
#include "ProgrammeComparison.h"
#include "config/ConfigDocument.h"
#include "console/MainScreenLogic.h"
#include "device/Identity.h"
#include "device/MemoryMap.h"
#include "device/Packing.h"
#include "firmware/FileDialog.h"
#include "programme/DefaultStates.h"
#include "programme/ProgrammeDownload.h"
#include "programme/ProgrammeStore.h"
#include "reports/HeadlessMainScreen.h"
#include "reports/ProductionReport.h"
#include "view/MapConsoleView.h"

#include <QDate>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <chrono>
#include <exception>
#include <thread>

namespace qv {

namespace {

// The report's save dialog, answered at once with the log of the run.
class AnsweredFileDialog : public FileDialog {
public:
    explicit AnsweredFileDialog(QString answer) : answer_(std::move(answer)) {}
    QString openFile(const Request&) override { return answer_; }
    QString saveFile(const Request&) override { return answer_; }

private:
    QString answer_;
};

// A step that went wrong: the outcome's text.
struct StepFailed {
    QString text;
};

class Sequence {
public:
    Sequence(ControllerChannel& channel, const CommissionJob& job, CommissionOutcome& outcome)
        : c_(channel), job_(job), outcome_(outcome),
          screen_(channel.device(), channel.config(), channel.dialogs()) {}

    void fullRead() {
        // The window's start: language, lists and the full read.
        if (!screen_.start())
            throw StepFailed{linkFailure()};
        // The window always starts in English; the bench's language is
        // taken as the operator would pick it from the list.
        MapConsoleView& view = screen_.view();
        const auto rows = view.rows(QStringLiteral("ListeLangues"));
        for (size_t i = 0; i < rows.size(); ++i) {
            if (rows[i].text == c_.language() &&
                view.currentRow(QStringLiteral("ListeLangues")) != static_cast<int>(i)) {
                view.setCurrentRow(QStringLiteral("ListeLangues"), static_cast<int>(i));
                screen_.logic().ListeLangues_Click();
            }
        }
        noteIdentity();
    }

    void download() {
        ConfigDocument& config = c_.config();
        // As the editor opens a file: its sections replace those of the
        // copy of config.xml, and the default state shown from it is kept.
        config.ImporteConfiguration(job_.programmeFile);
        const QString first = firstLanguage();
        const std::int16_t fileState = Donne_EtatDefautSortie(config, first, 0, job_.programmeFile);
        Sauve_EtatDefautSortie(config, first, 0, fileState);
        config.EcritValeurXML(QStringLiteral("NomProgramme"),
                              QFileInfo(job_.programmeFile).fileName());
        LitConditions(config, sent_);
        c_.state().TimeOut = false;
        const EnvoiResultat sent =
            Envoi_Conditions(c_.device(), sent_, Donne_EtatDefautSortie(config, first, 0),
                             c_.message(QStringLiteral("Les anciennes valeurs seront écrasées")),
                             QDate::currentDate());
        if (!sent.resultat)
            throw StepFailed{linkFailure()};
    }

    void serialNumber(std::int32_t serial) {
        // Written byte by byte as the service panel writes it.
        const auto bytes = DecoupeLong(serial);
        c_.state().TimeOut = false;
        for (int i = 0; i < 4; ++i) {
            c_.device().EcritEEprom(Address::SerialNumber + i,
                                    static_cast<int>(bytes[static_cast<size_t>(i)]));
            if (c_.state().TimeOut)
                throw StepFailed{linkFailure()};
        }
        outcome_.serial = serial;
    }

    void restart(const std::atomic<bool>& stop) {
        c_.state().TimeOut = false;
        c_.device().ResetDevice();
        // Waited in short slices so that Stop is not held up.
        QElapsedTimer waited;
        waited.start();
        while (waited.elapsed() < job_.restartWaitMs && !stop.load())
            std::this_thread::sleep_for(std::chrono::milliseconds(
                std::min<qint64>(50, job_.restartWaitMs - waited.elapsed())));
    }

    void readBack() {
        // Whatever the copy holds is no proof of a read: only a complete
        // read of the image puts lines back.
        SauveConditions(c_.config(), Conditions{});
        c_.state().TimeOut = false;
        screen_.logic().LitParametres();
        if (c_.failed())
            throw StepFailed{linkFailure()};
        noteIdentity();
    }

    void compare() {
        Conditions read;
        LitConditions(c_.config(), read);
        const int difference = programmeDifference(sent_, read);
        if (difference < 0)
            throw StepFailed{c_.message(QStringLiteral("The programme read back has %1 line(s), "
                                                       "the file %2"))
                                 .arg(read.Count())
                                 .arg(sent_.Count())};
        if (difference > 0)
            throw StepFailed{
                c_.message(QStringLiteral("Line %1 of the programme read back differs from the "
                                          "file"))
                    .arg(difference)};
    }

    void report() {
        MapConsoleView form;
        form.add(QStringLiteral("LabelNumeroCommande"), ConsoleView::Kind::Label,
                 QStringLiteral("N° de commande"));
        form.add(QStringLiteral("Commande"), ConsoleView::Kind::TextBox, job_.order);
        form.add(QStringLiteral("Commentaires"), ConsoleView::Kind::TextBox, job_.comment);
        const QString path = job_.reportPath.isEmpty()
                                 ? defaultReportPath(job_.applicationDirectory, job_.order)
                                 : job_.reportPath;
        AnsweredFileDialog dialog(path);
        bool written = false;
        ProductionReport report(form, screen_.view(), c_.config(), c_.dialogs(), dialog,
                                job_.applicationDirectory, [&written] { written = true; });
        report.Form_Load();
        report.PrintReport_Click();
        if (!written)
            throw StepFailed{c_.dialogs().lastFailure()};
        outcome_.reportFile = path;
    }

private:
    QString firstLanguage() {
        const QStringList languages = c_.config().ListeLanguesDisponibles();
        return languages.isEmpty() ? QString() : languages.first();
    }

    void noteIdentity() {
        const MapConsoleView& view = screen_.view();
        outcome_.version = view.text(QStringLiteral("Version"));
        outcome_.serialRead = view.text(QStringLiteral("NumeroSerie"));
        try {
            outcome_.model = NomMateriel(splitVersionCaption(outcome_.version).hardwareCode, false);
        } catch (const ReportError&) {
            outcome_.model.clear();
        }
    }

    QString linkFailure() const {
        const QString last = c_.dialogs().lastFailure();
        return last.isEmpty() ? c_.message(QStringLiteral("Quorvel Absent")) : last;
    }

    ControllerChannel& c_;
    const CommissionJob& job_;
    CommissionOutcome& outcome_;
    HeadlessMainScreen screen_;
    Conditions sent_;
};

} // namespace

QString commissionStepName(CommissionStep step) {
    switch (step) {
    case CommissionStep::FullRead:
        return QStringLiteral("Full read");
    case CommissionStep::Download:
        return QStringLiteral("Programme download");
    case CommissionStep::SerialNumber:
        return QStringLiteral("Writing the serial number");
    case CommissionStep::Restart:
        return QStringLiteral("Restart");
    case CommissionStep::ReadBack:
        return QStringLiteral("Read back");
    case CommissionStep::Compare:
        return QStringLiteral("Programme check");
    case CommissionStep::Report:
        return QStringLiteral("Report");
    case CommissionStep::Done:
        return QStringLiteral("Succeeded");
    }
    return QString();
}

CommissionOutcome commissionController(ControllerChannel& channel, const CommissionJob& job,
                                       std::optional<std::int32_t> serial,
                                       const StepListener& onStep, const std::atomic<bool>& stop) {
    CommissionOutcome outcome;
    outcome.id = channel.id();
    QElapsedTimer elapsed;
    elapsed.start();
    const auto begin = [&](CommissionStep step) {
        outcome.reached = step;
        if (stop.load())
            throw StepFailed{channel.message(QStringLiteral("Stopped"))};
        if (onStep)
            onStep(step);
    };
    try {
        Sequence sequence(channel, job, outcome);
        begin(CommissionStep::FullRead);
        sequence.fullRead();
        begin(CommissionStep::Download);
        sequence.download();
        if (serial) {
            begin(CommissionStep::SerialNumber);
            sequence.serialNumber(*serial);
        }
        begin(CommissionStep::Restart);
        sequence.restart(stop);
        begin(CommissionStep::ReadBack);
        sequence.readBack();
        begin(CommissionStep::Compare);
        sequence.compare();
        begin(CommissionStep::Report);
        sequence.report();
        outcome.reached = CommissionStep::Done;
        outcome.ok = true;
        if (onStep)
            onStep(CommissionStep::Done);
    } catch (const StepFailed& e) {
        outcome.failure = e.text;
    } catch (const ConfigError& e) {
        outcome.failure = e.text();
    } catch (const ReportError& e) {
        outcome.failure = e.text();
    } catch (const std::exception& e) {
        outcome.failure = QString::fromStdString(e.what());
    }
    outcome.seconds = static_cast<double>(elapsed.elapsed()) / 1000.0;
    return outcome;
}

} // namespace qv
