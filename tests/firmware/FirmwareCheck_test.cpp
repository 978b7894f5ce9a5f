#include "FirmwareTestSupport.h"

#include "link/Dialogs.h"

namespace qv::test {
namespace {

const QString kFolder = QStringLiteral("/home/op/firmware/");

struct CheckCase {
    const char* name;
    QString path;
    bool accepted;
    QString versionText;
    QString text; // the box; empty when accepted
    QString title;
    int style;
};

class FirmwareCheckTest : public FirmwareFixture {};

TEST_F(FirmwareCheckTest, FirmwareChecksGiveTheirBoxes) {
    const auto refused = [](const QString& path, const QString& text) {
        return path + QStringLiteral(" : \r\n") + text;
    };
    const QString v269 = kFolder + QStringLiteral("QUORVEL_V2.69.hex");
    const QString v31 = kFolder + QStringLiteral("QUORVEL_V3.1.hex");
    const QString lower = kFolder + QStringLiteral("quorvel_v2.70.hex");
    const QString folderV = QStringLiteral("/srv/FW_V3/QUORVEL_V2.70.hex");
    const QString unnamed = kFolder + QStringLiteral("firmware-2.70.hex");
    const CheckCase cases[] = {
        {"2.70 is the floor itself", kFolder + QStringLiteral("QUORVEL_V2.70.hex"), true,
         QStringLiteral("270"), QString(), QString(), 0},
        {"10.05 loses its point", kFolder + QStringLiteral("QUORVEL_V10.05.hex"), true,
         QStringLiteral("1005"), QString(), QString(), 0},
        {"2.69 is below the floor", v269, false, QStringLiteral("269"),
         refused(v269, kBelowFloorText), QStringLiteral("48"), MsgBox::OkOnly},
        {"3.1 reads as 31", v31, false, QStringLiteral("31"), refused(v31, kBelowFloorText),
         QStringLiteral("48"), MsgBox::OkOnly},
        {"lower case passes the name but has no _V", lower, false,
         QStringLiteral("home/op/firmware/quorvel_v270"),
         QStringLiteral("home/op/firmware/quorvel_v270 : ") + kInvalidVersionText, QString(),
         MsgBox::Exclamation},
        {"a folder's _V comes first", folderV, false, QStringLiteral("3/QUORVEL_V270"),
         QStringLiteral("3/QUORVEL_V270 : ") + kInvalidVersionText, QString(), MsgBox::Exclamation},
        {"a folder's _V followed by a number", QStringLiteral("/srv/quorvel_v/fw_V300.hex"), true,
         QStringLiteral("300"), QString(), QString(), 0},
        {"no QUORVEL_V anywhere", unnamed, false, QString(), refused(unnamed, kInvalidNameText),
         QString(), MsgBox::OkOnly},
        {"the extension is cut at four whatever it is",
         kFolder + QStringLiteral("QUORVEL_V2.80.hexa"), true, QStringLiteral("280"), QString(),
         QString(), 0},
        {"nothing between _V and the extension", QStringLiteral("QUORVEL_V"), false, QString(),
         QStringLiteral(" : ") + kInvalidVersionText, QString(), MsgBox::Exclamation},
    };
    for (const CheckCase& c : cases) {
        SCOPED_TRACE(c.name);
        const FirmwareVerdict v = checkFirmwareFile(c.path, english(), QLocale::c());
        EXPECT_EQ(v.accepted, c.accepted);
        EXPECT_EQ(v.versionText, c.versionText);
        EXPECT_EQ(v.text, c.text);
        EXPECT_EQ(v.title, c.title);
        EXPECT_EQ(v.style, c.style);
    }
}

TEST_F(FirmwareCheckTest, FirmwareNameRefusalStoresFortyEightAsItsDefault) {
    // Without the key in config.xml the first refusal shows the key itself
    // and stores "48" as its text; from then on "48" is the message.
    removeFromConfig(QStringLiteral(
        "<Message><Cle>Invalid File Name (QUORVEL_VX.XX.hex)</Cle><Texte>Invalid file name: the "
        "firmware file must be named QUORVEL_VX.XX.hex</Texte></Message>"));
    const QString path = QStringLiteral("/fw/other.hex");
    EXPECT_EQ(checkFirmwareFile(path, english()).text,
              path + QStringLiteral(" : \r\nInvalid File Name (QUORVEL_VX.XX.hex)"));
    EXPECT_EQ(checkFirmwareFile(path, english()).text, path + QStringLiteral(" : \r\n48"));
}

TEST_F(FirmwareCheckTest, FirmwareVersionReadWithTheMachineDecimalSeparator) {
    // The points go, a comma stays: on a machine with a decimal comma 2,70
    // is the number 2.7, far below the floor; elsewhere it is no number.
    const QString path = kFolder + QStringLiteral("QUORVEL_V2,70.hex");
    const FirmwareVerdict french =
        checkFirmwareFile(path, english(), QLocale(QLocale::French, QLocale::France));
    EXPECT_FALSE(french.accepted);
    EXPECT_EQ(french.title, QStringLiteral("48"));
    const FirmwareVerdict c = checkFirmwareFile(path, english(), QLocale::c());
    EXPECT_EQ(c.text, QStringLiteral("2,70 : ") + kInvalidVersionText);
}

TEST(FirmwareFilter, FirmwareDialogFiltersInQtForm) {
    EXPECT_EQ(qtDialogFilter(kFirmwareDialogFilter), QStringLiteral("INHEX32 Files (*.HEX *.hex)"));
    EXPECT_EQ(qtDialogFilter(QStringLiteral("Log Files (*.LOG)|*.LOG")),
              QStringLiteral("Log Files (*.LOG *.log)"));
    EXPECT_EQ(qtDialogFilter(QStringLiteral("Programmes|*.prg|All|*.*")),
              QStringLiteral("Programmes (*.prg *.PRG);;All (*.*)"));
}

} // namespace
} // namespace qv::test
