#include "FirmwareTestSupport.h"

#include "link/Dialogs.h"

namespace qv::test {
namespace {

const QString kConfirmText =
    QStringLiteral("Are you sure you want to change the current firmware version?");

class FirmwareUpdateTest : public FirmwareFixture {
protected:
    MapConsoleView view;
    PublicState state;
    RecordingDialogs dialogs;
    RecordingFileDialog fileDialog;
    RecordingLoader loader;
    std::unique_ptr<FirmwareUpdate> update;

    void SetUp() override {
        FirmwareFixture::SetUp();
        view.setRows(QStringLiteral("ListeLangues"),
                     {{QStringLiteral("English"), 0}, {QStringLiteral("Français"), 1}});
        view.setCurrentRow(QStringLiteral("ListeLangues"), 0);
        view.setEnabled(QStringLiteral("Lire"), true);
        state.bUsbConnected = true;
        state.UsbID = 1509949441;
        update = std::make_unique<FirmwareUpdate>(view, state, *config, dialogs, fileDialog, loader,
                                                  QStringLiteral("/opt/quorvel"));
        update->setLocale(QLocale::c());
    }

    void expectReleased() {
        EXPECT_FALSE(state.bUsbConnected);
        EXPECT_FALSE(view.isEnabled(QStringLiteral("Lire")));
    }
};

TEST_F(FirmwareUpdateTest, FirmwareAcceptedFileStartsTheLoader) {
    dialogs.answerNext(MsgBox::AnswerYes);
    fileDialog.answer = QStringLiteral("/fw/QUORVEL_V2.70.hex");
    update->UpdateFirmware(true);

    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(dialogs.boxes()[0].text, kConfirmText);
    EXPECT_EQ(dialogs.boxes()[0].title, QStringLiteral("Quorvel"));
    EXPECT_EQ(dialogs.boxes()[0].style, 36);
    ASSERT_EQ(fileDialog.opened.size(), 1u);
    EXPECT_EQ(fileDialog.opened[0].title, QStringLiteral("Open HEX file"));
    EXPECT_EQ(fileDialog.opened[0].filter, QStringLiteral("INHEX32 Files (*.HEX)|*.HEX"));
    EXPECT_EQ(loader.started,
              QStringList{QStringLiteral(
                  "/opt/quorvel\\LOADSTAGE_K_V318.exe LANGUE=English "
                  ";device=quorvel;try_both;USBID=1509949441;prg=/fw/QUORVEL_V2.70.hex;"
                  "firmware=270")});
    expectReleased();
}

TEST_F(FirmwareUpdateTest, FirmwareFromTheConnectionWindowAsksNothing) {
    fileDialog.answer = QStringLiteral("/fw/QUORVEL_V10.05.hex");
    update->UpdateFirmware(false);
    EXPECT_TRUE(dialogs.boxes().empty());
    ASSERT_EQ(loader.started.size(), 1);
    EXPECT_TRUE(loader.started[0].endsWith(QStringLiteral(";firmware=1005")));
}

TEST_F(FirmwareUpdateTest, FirmwareLanguageInUseGoesToMessagesAndLoader) {
    view.setCurrentRow(QStringLiteral("ListeLangues"), 1);
    dialogs.answerNext(MsgBox::AnswerYes);
    fileDialog.answer = QStringLiteral("/fw/QUORVEL_V2.70.hex");
    update->UpdateFirmware(true);
    EXPECT_EQ(dialogs.boxes().at(0).text,
              QStringLiteral("Êtes-vous sûr de vouloir changer la version actuelle du firmware ?"));
    EXPECT_EQ(fileDialog.opened.at(0).title, QStringLiteral("Ouvrir un fichier HEX"));
    ASSERT_EQ(loader.started.size(), 1);
    EXPECT_TRUE(loader.started[0].contains(QStringLiteral(" LANGUE=Français ;device=")));
}

TEST_F(FirmwareUpdateTest, FirmwareEndsEarlyButTheDeviceStaysReleased) {
    struct Case {
        const char* name;
        int answer;
        QString chosen;
        size_t dialogsOpened;
    };
    const Case cases[] = {
        {"answered No", MsgBox::AnswerNo, QStringLiteral("/fw/QUORVEL_V2.70.hex"), 0},
        {"box closed otherwise", MsgBox::AnswerCancel, QStringLiteral("/fw/QUORVEL_V2.70.hex"), 0},
        {"cancel at the dialog", MsgBox::AnswerYes, QString(), 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        state.bUsbConnected = true;
        view.setEnabled(QStringLiteral("Lire"), true);
        dialogs.clear();
        fileDialog.opened.clear();
        dialogs.answerNext(c.answer);
        fileDialog.answer = c.chosen;
        update->UpdateFirmware(true);
        EXPECT_EQ(dialogs.boxes().size(), 1u); // the question, nothing after it
        EXPECT_EQ(fileDialog.opened.size(), c.dialogsOpened);
        EXPECT_TRUE(loader.started.isEmpty());
        expectReleased();
    }
}

TEST_F(FirmwareUpdateTest, FirmwareRefusalsShowOneBoxAndStartNothing) {
    struct Case {
        QString chosen;
        QString text;
        QString title;
        int style;
    };
    const Case cases[] = {
        {QStringLiteral("/fw/QUORVEL_V2.69.hex"),
         QStringLiteral("/fw/QUORVEL_V2.69.hex : \r\n") + kBelowFloorText, QStringLiteral("48"), 0},
        {QStringLiteral("/a_V1/QUORVEL_V2.70.hex"),
         QStringLiteral("1/QUORVEL_V270 : ") + kInvalidVersionText, QString(), 48},
        {QStringLiteral("/fw/update.hex"),
         QStringLiteral("/fw/update.hex : \r\n") + kInvalidNameText, QString(), 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.chosen.toStdString());
        dialogs.clear();
        state.bUsbConnected = true;
        fileDialog.answer = c.chosen;
        update->UpdateFirmware(false);
        ASSERT_EQ(dialogs.boxes().size(), 1u);
        EXPECT_EQ(dialogs.boxes()[0].text, c.text);
        EXPECT_EQ(dialogs.boxes()[0].title, c.title);
        EXPECT_EQ(dialogs.boxes()[0].style, c.style);
        EXPECT_TRUE(loader.started.isEmpty());
        expectReleased();
    }
}

TEST_F(FirmwareUpdateTest, FirmwareWithAnUnusableConfigTellsWhyAndStaysUp) {
    QFile::remove(config->configPath());
    fileDialog.answer = QStringLiteral("/fw/QUORVEL_V2.70.hex");
    update->UpdateFirmware(true);
    ASSERT_EQ(dialogs.boxes().size(), 1u);
    EXPECT_EQ(dialogs.boxes()[0].title, QStringLiteral("Quorvel"));
    EXPECT_EQ(dialogs.boxes()[0].style, MsgBox::Critical);
    EXPECT_TRUE(loader.started.isEmpty());
    expectReleased();
}

} // namespace
} // namespace qv::test
