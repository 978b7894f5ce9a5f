#include "FirmwareTestSupport.h"

#include "link/Dialogs.h"

namespace qv::test {
namespace {

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
        // The texts of every refusal are the check's own, tested with it.
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
