// The window as `quorvel --demo` builds it: the firmware update behind its
// menu hands the file to a stand-in loader in the language of the window.
#include "AppTestSupport.h"
#include "RecordingFileDialog.h"
#include "RecordingLoader.h"

#include <QAction>
#include <QComboBox>
#include <QElapsedTimer>
#include <QPointer>
#include <QTest>
#include <QThread>

namespace qv::test {
namespace {

const QString kEnglish = QStringLiteral("English");
const QString kFrench = QStringLiteral("Français");

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

class FirmwareMenuTest : public ::testing::Test {
protected:
    QTemporaryDir files;
    RecordingDialogs dialogs;
    RecordingFileDialog fileDialog;
    std::unique_ptr<Launch> launch;
    MainScreenWindow* window = nullptr;

    // The demonstration controllers; the operator takes the first line of
    // the connection list, and the first read is waited for.
    void SetUp() override {
        LaunchOptions options;
        options.demo = LaunchOptions::Demo::Current;
        launch = std::make_unique<Launch>(options);
        QString error, warning;
        ASSERT_TRUE(launch->prepareConfiguration(&error)) << error.toStdString();
        ASSERT_TRUE(launch->prepareBus(&error, &warning)) << error.toStdString();
        launch->config().EcritValeurXML(QStringLiteral("Splash"), QStringLiteral("False"));
        launch->setDialogs(dialogs);
        launch->setFileDialog(fileDialog);
        window = &launch->makeWindow();
        window->setConnectionScript([this](ConnectWindow& connection) {
            connection.setProbeWait([](int) {});
            connection.Form_Load();
            window->afterJobs([list = QPointer<ConnectWindow>(&connection)] {
                list->view().setCurrentRow(QStringLiteral("ListeSorvane"), 0);
                list->ListeSorvane_Click();
            });
        });
        window->start();
        ASSERT_TRUE(settle(*window));
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
        writeProgram(path, kRecordingLoader);
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

TEST_F(FirmwareMenuTest, NmuBootLoadHandsTheFileToTheLoaderInTheLanguageInUse) {
    installLoader();
    const QString hex = firmwareFile("2.71");
    fileDialog.answer = hex;
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

} // namespace
} // namespace qv::test
