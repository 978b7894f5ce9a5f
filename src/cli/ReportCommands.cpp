#include "Commands.h"

#include "firmware/FileDialog.h"
#include "reports/HeadlessMainScreen.h"
#include "reports/ProductionReport.h"
#include "view/MapConsoleView.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonObject>

namespace qv {

namespace {

// The save dialog answered at once: the file named on the command line, or
// the name the report proposes.
class AnsweredFileDialog : public FileDialog {
public:
    explicit AnsweredFileDialog(QString answer) : answer_(std::move(answer)) {}
    QString openFile(const Request& request) override { return answer(request); }
    QString saveFile(const Request& request) override { return answer(request); }
    QString chosen;

private:
    QString answer(const Request& request) {
        chosen = answer_.isEmpty() ? request.fileName : answer_;
        return chosen;
    }
    QString answer_;
};

// A fresh full read, then the block of the production report from what the
// main window then shows, appended as the report form appends it.
int runReport(Session& s, Arguments& args) {
    const auto order = args.takeOption(QStringLiteral("order"));
    const QString comment = args.takeOption(QStringLiteral("comment")).value_or(QString());
    const auto file = args.takeOption(QStringLiteral("file"));
    args.expectEnd();
    if (!order) {
        // The window never asks (its dialog always proposes a name); here a
        // forgotten option is more likely a slip than a wish for report.log.
        throw UsageError{s.message(QStringLiteral("Vous devez saisir un N° de commande")) +
                         QStringLiteral(" (--order; --order \"\" writes report.log)")};
    }

    s.state.TimeOut = false;
    HeadlessMainScreen screen(*s.device, *s.config, *s.dialogs);
    if (!screen.start())
        return kExitDeviceFailed;

    MapConsoleView form;
    form.add(QStringLiteral("LabelNumeroCommande"), ConsoleView::Kind::Label,
             QStringLiteral("N° de commande"));
    form.add(QStringLiteral("Commande"), ConsoleView::Kind::TextBox, *order);
    form.add(QStringLiteral("Commentaires"), ConsoleView::Kind::TextBox, comment);

    AnsweredFileDialog dialog(file ? QFileInfo(*file).absoluteFilePath() : QString());
    bool written = false;
    const QString appDir = s.applicationDirectory.isEmpty()
                               ? QFileInfo(s.config->configPath()).absolutePath()
                               : s.applicationDirectory;
    ProductionReport report(form, screen.view(), *s.config, *s.dialogs, dialog, appDir,
                            [&written] { written = true; });
    report.Form_Load();
    report.PrintReport_Click();
    if (!written)
        return kExitConfiguration; // the reason has been printed

    const QString path = QDir::toNativeSeparators(dialog.chosen);
    if (s.json)
        printJson(QJsonObject{{QStringLiteral("file"), path}});
    else
        printLine(QStringLiteral("report appended to %1").arg(path));
    return kExitOk;
}

} // namespace

const std::vector<CliCommand>& reportCommands() {
    static const std::vector<CliCommand> commands = {
        {{QStringLiteral("report")},
         QStringLiteral("read the controller and append a production report block"),
         QStringLiteral(
             "report --order N [--comment TEXT] [--file PATH]\n"
             "  --order N     order number; the block goes to N.log in the application\n"
             "                directory (\"\" gives report.log; \"1234.log\" gives 1234.log.log)\n"
             "  --comment T   the free comment line\n"
             "  --file PATH   append to PATH instead\n"
             "  The read is the window's full read at its start: it also stores the programme\n"
             "  read from the controller in config.xml, as the window does."),
         runReport},
    };
    return commands;
}

} // namespace qv
