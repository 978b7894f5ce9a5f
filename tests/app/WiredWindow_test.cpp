// The window as `quorvel --demo` builds it: the programme editor, the
// production report and the firmware update behind their menus, and the
// language of the main window reaching the other windows.
#include "AppTestSupport.h"
#include "firmware/widgets/QtFileDialog.h"
#include "programme/widgets/ProgrammationWindow.h"
#include "reports/widgets/ProductionWindow.h"

#include <QAction>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <functional>

namespace qv::test {
namespace {

const QString kEnglish = QStringLiteral("English");
const QString kFrench = QStringLiteral("Français");
const QString kDashes = QStringLiteral("------------------------------------------");

// Answers the file dialogs at once and keeps what they were asked.
class ScriptedFileDialog : public FileDialog {
public:
    QString openAnswer;
    bool cancelSave = false;
    std::vector<Request> opened;
    std::vector<Request> saved;

    QString openFile(const Request& request) override {
        opened.push_back(request);
        return openAnswer;
    }
    // The operator takes the proposed name.
    QString saveFile(const Request& request) override {
        saved.push_back(request);
        return cancelSave ? QString() : request.fileName;
    }
};

// Acts on the first modal window of type T that comes up while the code
// under test waits in it: `act` returns true once it has done its part.
template <typename T> class WhenModal {
public:
    explicit WhenModal(std::function<bool(T&)> act) : act_(std::move(act)) {
        timer_.setInterval(10);
        QObject::connect(&timer_, &QTimer::timeout, [this] {
            auto* window = qobject_cast<T*>(QApplication::activeModalWidget());
            if (window && act_(*window)) {
                timer_.stop();
                done_ = true;
            }
        });
        timer_.start();
    }
    bool done() const { return done_; }

private:
    std::function<bool(T&)> act_;
    QTimer timer_;
    bool done_ = false;
};

// A loader standing in for the real one: the arguments it got, one a line,
// next to itself (written aside and renamed, so a reader never sees half).
const QByteArray kRecordingLoader =
    "#!/bin/sh\n"
    "out=\"$(dirname \"$0\")/argv.txt\"\n"
    "for a in \"$@\"; do printf '%s\\n' \"$a\"; done > \"$out.part\"\n"
    "mv \"$out.part\" \"$out\"\n";

QStringList waitForLines(const QString& path, int timeoutMs = 10000) {
    QElapsedTimer timer;
    timer.start();
    while (!QFileInfo::exists(path) && timer.elapsed() < timeoutMs)
        QThread::msleep(20);
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {QStringLiteral("<nothing>")};
    return QString::fromUtf8(f.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

class WiredWindowTest : public ::testing::Test {
protected:
    QTemporaryDir files;
    RecordingDialogs dialogs;
    ScriptedFileDialog fileDialog;
    std::unique_ptr<Launch> launch;
    MainScreenWindow* window = nullptr;

    // The demonstration controllers; `takeFirst` stands for the operator
    // who takes the first line of the connection list, otherwise the real
    // list comes up.
    void open(LaunchOptions::Demo demo, bool takeFirst) {
        LaunchOptions options;
        options.demo = demo;
        window = nullptr;
        launch.reset();
        launch = std::make_unique<Launch>(options);
        QString error, warning;
        ASSERT_TRUE(launch->prepareConfiguration(&error)) << error.toStdString();
        ASSERT_TRUE(launch->prepareBus(&error, &warning)) << error.toStdString();
        launch->config().EcritValeurXML(QStringLiteral("Splash"), QStringLiteral("False"));
        launch->setDialogs(dialogs);
        launch->setFileDialog(fileDialog);
        window = &launch->makeWindow();
        if (takeFirst)
            window->setConnectionScript([this](ConnectWindow& list) { takeFirstLine(list); });
    }

    void takeFirstLine(ConnectWindow& connection) {
        connection.setProbeWait([](int) {});
        connection.Form_Load();
        window->afterJobs([list = QPointer<ConnectWindow>(&connection)] {
            list->view().setCurrentRow(QStringLiteral("ListeSorvane"), 0);
            list->ListeSorvane_Click();
        });
    }

    // Lets the window's events and jobs run until `done` holds.
    static bool waitFor(const std::function<bool()>& done, int timeoutMs = 20000) {
        QElapsedTimer clock;
        clock.start();
        while (!done() && clock.elapsed() < timeoutMs)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        return done();
    }

    void startWithTheQuorvel() {
        open(LaunchOptions::Demo::Current, true);
        window->start();
        ASSERT_TRUE(settle(*window));
        ASSERT_TRUE(launch->device().state().bUsbConnected);
        ASSERT_EQ(window->view().text(QStringLiteral("NumeroSerie")), QStringLiteral("90601234"));
    }

    // As the operator picks a language: the list's own signal.
    void chooseLanguage(const QString& langue) {
        auto* list = window->findChild<QComboBox*>(QStringLiteral("ListeLangues"));
        ASSERT_NE(list, nullptr);
        const int row = list->findText(langue);
        ASSERT_GE(row, 0) << langue.toStdString();
        list->setCurrentIndex(row);
        Q_EMIT list->activated(row);
        ASSERT_TRUE(settle(*window));
    }

    void trigger(const char* menu) {
        auto* action = window->findChild<QAction*>(QString::fromLatin1(menu));
        ASSERT_NE(action, nullptr) << menu;
        ASSERT_TRUE(action->isEnabled()) << menu;
        action->trigger();
    }

    void installLoader() {
        const QString path =
            QDir(launch->appDirectory()).filePath(QStringLiteral("LOADSTAGE_K_V318"));
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(kRecordingLoader);
        f.close();
        ASSERT_TRUE(
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
    QString loaderOutput() const {
        return QDir(launch->appDirectory()).filePath(QStringLiteral("argv.txt"));
    }

    // A firmware file the check accepts, in a folder without "_V".
    QString firmwareFile(const char* version) {
        const QString path =
            files.filePath(QStringLiteral("QUORVEL_V%1.hex").arg(QLatin1String(version)));
        QFile f(path);
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(":00000001FF\n");
        return path;
    }
};

// ------------------------------------------------------- the editor

TEST_F(WiredWindowTest, MnuPLCOpensTheEditorInTheLanguageOfTheMainWindow) {
    startWithTheQuorvel();
    struct Case {
        QString langue;
        QString ajouter;
    };
    const std::vector<Case> cases = {
        {kFrench, QStringLiteral("Ajouter une condition")},
        {kEnglish, QStringLiteral("Add a condition")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.langue.toStdString());
        chooseLanguage(c.langue);
        QString ajouter;
        int lines = -1;
        WhenModal<ProgrammationWindow> editor([&](ProgrammationWindow& w) {
            ajouter = w.findChild<QPushButton*>(QStringLiteral("Ajouter"))->text();
            lines = w.findChild<QListWidget*>(QStringLiteral("ListeConditions"))->count();
            w.findChild<QPushButton*>(QStringLiteral("SortirProgrammation"))->click();
            return true;
        });
        trigger("mnuPLC");
        EXPECT_TRUE(waitFor([&] { return editor.done(); })) << "the editor came up modal";
        EXPECT_EQ(ajouter, c.ajouter);
        EXPECT_EQ(lines, 2) << "the programme the first read brought from the controller";
    }
    EXPECT_TRUE(dialogs.boxes().empty());
}

// ------------------------------------------------------- the report

TEST_F(WiredWindowTest, MnurapportAppendsTwoBlocksToOneLogAndKeepsTheForm) {
    startWithTheQuorvel();
    const QString log = QDir(launch->appDirectory()).filePath(QStringLiteral("1234.log"));
    struct Case {
        QString langue;
        QString typed; // added to Commande; the form keeps what it had
        QString label;
        QString title;
    };
    const std::vector<Case> cases = {
        {kEnglish, QStringLiteral("1234"), QStringLiteral("Order number"),
         QStringLiteral("Report")},
        // The form is hidden, not unloaded: it keeps the language of its
        // first showing, while the main window's captions follow the switch.
        {kFrench, QString(), QStringLiteral("Order number"), QStringLiteral("Report")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.langue.toStdString());
        chooseLanguage(c.langue);
        // The switch gives the value captions their translation, "--": the
        // operator reads the controller again before the report.
        QTest::mouseClick(window->findChild<QPushButton*>(QStringLiteral("Lire")), Qt::LeftButton);
        ASSERT_TRUE(settle(*window));
        QString label, title;
        WhenModal<ProductionWindow> form([&](ProductionWindow& w) {
            label = w.findChild<QLabel*>(QStringLiteral("LabelNumeroCommande"))->text();
            title = w.windowTitle();
            auto* commande = w.findChild<QLineEdit*>(QStringLiteral("Commande"));
            QTest::keyClicks(commande, c.typed);
            if (!c.typed.isEmpty())
                QTest::keyClicks(w.findChild<QLineEdit*>(QStringLiteral("Commentaires")),
                                 QStringLiteral("checked on the bench"));
            QTest::mouseClick(w.findChild<QPushButton*>(QStringLiteral("PrintReport")),
                              Qt::LeftButton);
            return true;
        });
        trigger("mnurapport");
        ASSERT_TRUE(waitFor([&] { return form.done(); }));
        EXPECT_EQ(label, c.label);
        EXPECT_EQ(title, c.title);
    }

    ASSERT_EQ(fileDialog.saved.size(), 2u);
    for (const FileDialog::Request& r : fileDialog.saved) {
        EXPECT_EQ(QFileInfo(r.fileName), QFileInfo(log)) << "the order number names the log";
        EXPECT_EQ(r.filter, QStringLiteral("Log Files (*.LOG)|*.LOG"));
        EXPECT_EQ(QFileInfo(r.folder), QFileInfo(launch->appDirectory()));
    }
    QFile f(log);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QString text = QString::fromLatin1(f.readAll());
    const QStringList lines = text.split(QStringLiteral("\r\n"));
    EXPECT_EQ(lines.count(kDashes), 2);
    EXPECT_EQ(lines.first(), QStringLiteral(" ")) << "the block begins with its blank line";
    EXPECT_EQ(lines.count(QStringLiteral("Order number 1234")), 2)
        << "the second block with the form's first language and the order number it kept";
    EXPECT_FALSE(text.contains(QStringLiteral("N° de commande")));
    EXPECT_EQ(lines.count(QStringLiteral("checked on the bench")), 2) << "the comment was kept";
    EXPECT_EQ(lines.filter(QStringLiteral("90601234")).size(), 2) << text.toStdString();
    EXPECT_TRUE(dialogs.boxes().empty());
}

TEST_F(WiredWindowTest, ACancelledReportWritesNothingAndLeavesTheFormUp) {
    startWithTheQuorvel();
    fileDialog.cancelSave = true;
    bool stillUp = false;
    WhenModal<ProductionWindow> form([&](ProductionWindow& w) {
        w.findChild<QPushButton*>(QStringLiteral("PrintReport"))->click();
        stillUp = w.isVisible();
        w.reject();
        return true;
    });
    trigger("mnurapport");
    ASSERT_TRUE(waitFor([&] { return form.done(); }));
    EXPECT_TRUE(stillUp);
    ASSERT_EQ(fileDialog.saved.size(), 1u);
    EXPECT_EQ(QFileInfo(fileDialog.saved[0].fileName).fileName(), QStringLiteral("report.log"));
    EXPECT_FALSE(QFileInfo::exists(fileDialog.saved[0].fileName));
}

// Pictures of the report form for the documentation when
// QUORVEL_SCREENSHOTS names a folder, and checked for cut texts in any case.
TEST_F(WiredWindowTest, ReportFormScreenshotsInEnglishAndFrench) {
    QTemporaryDir scratch;
    const QString target = qEnvironmentVariable("QUORVEL_SCREENSHOTS", scratch.path());
    struct Case {
        QString langue;
        QString file;
        QString button;
    };
    const std::vector<Case> cases = {
        {kEnglish, QStringLiteral("report-en.png"), QStringLiteral("Write report")},
        {kFrench, QStringLiteral("report-fr.png"), QStringLiteral("Écrire le rapport")},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.langue.toStdString());
        // The form takes the language at its first showing only: one window
        // for each.
        startWithTheQuorvel();
        chooseLanguage(c.langue);
        WhenModal<ProductionWindow> form([&](ProductionWindow& w) {
            auto* commande = w.findChild<QLineEdit*>(QStringLiteral("Commande"));
            auto* commentaires = w.findChild<QLineEdit*>(QStringLiteral("Commentaires"));
            commande->setText(QStringLiteral("OC-2026-0412"));
            commentaires->setText(c.langue == kEnglish
                                      ? QStringLiteral("Valve and battery checked on the bench")
                                      : QStringLiteral("Vanne et batterie contrôlées au banc"));
            EXPECT_EQ(w.findChild<QPushButton*>(QStringLiteral("PrintReport"))->text(), c.button);
            w.resize(w.minimumSizeHint());
            QApplication::processEvents();
            for (QWidget* child : w.findChildren<QWidget*>()) {
                if (!child->isVisible())
                    continue;
                const std::string name = child->objectName().toStdString();
                // A caption that reads as its own name has no text in config.xml.
                if (auto* l = qobject_cast<QLabel*>(child); l && l->pixmap().isNull()) {
                    EXPECT_GE(l->width(), l->fontMetrics().horizontalAdvance(l->text())) << name;
                    EXPECT_NE(l->text(), l->objectName());
                }
                if (auto* b = qobject_cast<QPushButton*>(child)) {
                    EXPECT_GE(b->width(), b->minimumSizeHint().width()) << name;
                    EXPECT_NE(b->text(), b->objectName());
                }
                if (auto* e = qobject_cast<QLineEdit*>(child)) {
                    EXPECT_GE(e->width(), e->fontMetrics().horizontalAdvance(e->text())) << name;
                }
            }
            EXPECT_TRUE(w.grab().save(QDir(target).filePath(c.file)));
            w.reject();
            return true;
        });
        trigger("mnurapport");
        ASSERT_TRUE(waitFor([&] { return form.done(); }));
    }
}

// ------------------------------------------------------- firmware

TEST_F(WiredWindowTest, NmuBootLoadHandsTheFileToTheLoaderInTheLanguageInUse) {
    startWithTheQuorvel();
    installLoader();
    const QString hex = firmwareFile("2.71");
    fileDialog.openAnswer = hex;
    const std::int32_t id = launch->device().state().UsbID;
    struct Case {
        QString langue;
        int answer;
        bool started;
    };
    const std::vector<Case> cases = {
        {kEnglish, MsgBox::AnswerNo, false},
        {kFrench, MsgBox::AnswerYes, true},
        {kEnglish, MsgBox::AnswerYes, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.langue.toStdString() + (c.started ? " yes" : " no"));
        chooseLanguage(c.langue);
        window->view().setEnabled(QStringLiteral("Lire"), true);
        launch->device().state().bUsbConnected = true;
        QFile::remove(loaderOutput());
        dialogs.clear();
        fileDialog.opened.clear();
        dialogs.answerNext(c.answer);

        trigger("nmuBootLoad");
        ASSERT_TRUE(settle(*window));

        ASSERT_EQ(dialogs.boxes().size(), 1u) << "one question, asked first";
        EXPECT_EQ(dialogs.boxes()[0].style, MsgBox::YesNo | MsgBox::Question);
        EXPECT_EQ(dialogs.boxes()[0].text,
                  launch->config().LitMessage(
                      c.langue,
                      QStringLiteral("Etes vous sur de vouloir changer la version actuelle ? "),
                      QString()));
        // The device is let go whatever the answer.
        EXPECT_FALSE(launch->device().state().bUsbConnected);
        EXPECT_FALSE(window->view().isEnabled(QStringLiteral("Lire")));
        ASSERT_EQ(fileDialog.opened.size(), c.started ? 1u : 0u);
        if (!c.started)
            continue;
        EXPECT_EQ(fileDialog.opened[0].filter, QStringLiteral("INHEX32 Files (*.HEX)|*.HEX"));
        EXPECT_EQ(
            fileDialog.opened[0].title,
            launch->config().LitMessage(c.langue, QStringLiteral("Ouvrir Fichier HEX"), QString()));
        EXPECT_EQ(
            waitForLines(loaderOutput()),
            (QStringList{QStringLiteral("LANGUE=") + c.langue,
                         QStringLiteral(";device=quorvel;try_both;USBID=%1;prg=%2;firmware=271")
                             .arg(id)
                             .arg(hex)}));
    }
}

TEST_F(WiredWindowTest, TheConnectionListsUpgradeLineStartsTheLoaderWithoutAsking) {
    open(LaunchOptions::Demo::OldFirmware, false);
    installLoader();
    const QString hex = firmwareFile("2.70");
    fileDialog.openAnswer = hex;
    // The real list: the operator clicks the upgrade warning of the Quorvel
    // at 2.60, and agrees (the recorder answers OK).
    QString warning;
    WhenModal<ConnectWindow> list([&](ConnectWindow& w) {
        auto* lines = w.findChild<QListWidget*>(QStringLiteral("ListeSorvane"));
        if (!lines || lines->count() == 0)
            return false;
        warning = lines->item(0)->text();
        lines->setCurrentRow(0);
        Q_EMIT lines->itemClicked(lines->item(0));
        return true;
    });
    window->start();
    ASSERT_TRUE(waitFor([&] { return list.done(); }));
    ASSERT_TRUE(settle(*window));
    EXPECT_TRUE(warning.contains(QStringLiteral("2.70"))) << warning.toStdString();

    ASSERT_EQ(dialogs.boxes().size(), 1u) << "the list's question alone: no second one";
    EXPECT_EQ(dialogs.boxes()[0].style, MsgBox::OkCancel | MsgBox::Critical);
    ASSERT_EQ(fileDialog.opened.size(), 1u);
    const QStringList got = waitForLines(loaderOutput());
    ASSERT_EQ(got.size(), 2) << got.join(QLatin1Char('|')).toStdString();
    EXPECT_EQ(got[0], QStringLiteral("LANGUE=English"));
    EXPECT_TRUE(got[1].endsWith(QStringLiteral(";prg=%1;firmware=270").arg(hex)))
        << got[1].toStdString();
    EXPECT_TRUE(got[1].startsWith(QStringLiteral(";device=quorvel;try_both;USBID=")));
    EXPECT_FALSE(launch->device().state().bUsbConnected);
    EXPECT_EQ(window->view().text(QStringLiteral("NumeroSerie")), QStringLiteral("--"))
        << "the list took no device, so nothing was read";
}

// ------------------------------------------------------- language

TEST_F(WiredWindowTest, TheMainWindowSwitchesLanguageAtOnceWithTheShippedTexts) {
    startWithTheQuorvel();
    // The two languages in turn, each from the operator's selection to the
    // last caption and list of the window.
    std::vector<double> times;
    for (int i = 0; i < 10; ++i) {
        const QString langue = i % 2 == 0 ? kFrench : kEnglish;
        QElapsedTimer clock;
        clock.start();
        chooseLanguage(langue);
        times.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
        ASSERT_EQ(window->findChild<QPushButton*>(QStringLiteral("Lire"))->text(),
                  launch->config().LitMessage(langue, QStringLiteral("Lire"), QString()));
        ASSERT_EQ(window->findChild<QComboBox*>(QStringLiteral("ListeLangues"))->currentText(),
                  langue);
    }
    const double first = times.front();
    std::sort(times.begin(), times.end());
    const double median = times[times.size() / 2];
    const double worst = times.back();
    std::printf("[ timing   ] language switch of the main window: first %.1f ms, median %.1f ms, "
                "worst %.1f ms\n",
                first, median, worst);
    RecordProperty("language_switch_median_ms", QString::number(median, 'f', 1).toStdString());
    RecordProperty("language_switch_worst_ms", QString::number(worst, 'f', 1).toStdString());
    // Each switch saves config.xml with an fsync, whose time is the disk's:
    // the typical switch must feel immediate, a single one may wait on it.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr double scale = 4; // instrumented builds run several times slower
#else
    constexpr double scale = 1;
#endif
    EXPECT_LT(median, 100 * scale);
    EXPECT_LT(worst, 250 * scale);
}

// ------------------------------------------------------- file dialog

TEST(QtFileDialogTest, RequestsReachTheDialogAsAsked) {
    QTemporaryDir dir;
    struct Case {
        bool save;
        QString filter;
        QString fileName;
        QFileDialog::AcceptMode mode;
        QStringList filters;
        QString selected;
    };
    const std::vector<Case> cases = {
        {false,
         QStringLiteral("INHEX32 Files (*.HEX)|*.HEX"),
         QString(),
         QFileDialog::AcceptOpen,
         {QStringLiteral("INHEX32 Files (*.HEX *.hex)")},
         QString()},
        {true,
         QStringLiteral("Log Files (*.LOG)|*.LOG"),
         dir.filePath(QStringLiteral("9.log")),
         QFileDialog::AcceptSave,
         {QStringLiteral("Log Files (*.LOG *.log)")},
         QStringLiteral("9.log")},
    };
    for (const Case& c : cases) {
        QFileDialog dialog;
        FileDialog::Request request;
        request.title = QStringLiteral("Pick");
        request.filter = c.filter;
        request.folder = dir.path();
        request.fileName = c.fileName;
        QtFileDialog::prepare(dialog, request, c.save);
        EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Pick"));
        EXPECT_EQ(dialog.acceptMode(), c.mode);
        EXPECT_EQ(dialog.nameFilters(), c.filters);
        EXPECT_EQ(QFileInfo(dialog.directory().path()), QFileInfo(dir.path()));
        EXPECT_EQ(dialog.fileMode(), c.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
        // The log is appended to: no question about replacing it.
        EXPECT_EQ(dialog.testOption(QFileDialog::DontConfirmOverwrite), c.save);
    }
}

TEST(QtFileDialogTest, AcceptingTheProposedNameReturnsItsFullPath) {
    QTemporaryDir dir;
    QtFileDialog files;
    FileDialog::Request request;
    request.filter = QStringLiteral("Log Files (*.LOG)|*.LOG");
    request.folder = QDir::homePath();
    request.fileName = dir.filePath(QStringLiteral("1234.log"));
    QFile(request.fileName).open(QIODevice::WriteOnly); // an existing log: no question
    WhenModal<QFileDialog> operatorPressesSave([](QFileDialog& d) {
        static_cast<QDialog&>(d).accept(); // as the Save button does
        return true;
    });
    EXPECT_EQ(QFileInfo(files.saveFile(request)), QFileInfo(request.fileName));
    ASSERT_TRUE(operatorPressesSave.done());

    WhenModal<QFileDialog> operatorCancels([](QFileDialog& d) {
        d.reject();
        return true;
    });
    EXPECT_EQ(files.openFile(request), QString());
}

} // namespace
} // namespace qv::test
