// quorvelctl as a user runs it: a separate process per command, simulated
// controllers kept in a state file between runs.
#include "CliTestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace qv::test {
namespace {

class QuorvelctlTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString link;

    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        link = QStringLiteral("sim:devices=2,serial=1234,restartMs=0,state=%1/sim.json")
                   .arg(dir.path());
    }

    Outcome run(const QStringList& args) {
        return quorvelctl(
            QStringList{QStringLiteral("--app-dir"), dir.path(), QStringLiteral("--link"), link} +
                args,
            30000);
    }
};

TEST_F(QuorvelctlTest, DevicesAsTheConnectionListShowsThem) {
    const Outcome r = run({QStringLiteral("devices")});
    EXPECT_EQ(r.status, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, QStringLiteral("Quorvel : (12) 2.70     BL V 103-->1234\n"
                                    "Quorvel : (12) 2.70     BL V 103-->1235\n"));
    const Outcome json = run({QStringLiteral("--json"), QStringLiteral("devices")});
    const QJsonArray lines = QJsonDocument::fromJson(json.out.toUtf8()).array();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[1].toObject()[QStringLiteral("id")].toInteger(), 0x5A000002);
}

TEST_F(QuorvelctlTest, MemoryWrittenInOneRunIsReadInTheNext) {
    ASSERT_EQ(run({QStringLiteral("eeprom"), QStringLiteral("write"), QStringLiteral("9"),
                   QStringLiteral("30")})
                  .status,
              0);
    const Outcome plain = run({QStringLiteral("eeprom"), QStringLiteral("read"),
                               QStringLiteral("9"), QStringLiteral("2")});
    EXPECT_EQ(plain.out, QStringLiteral("9 30\n10 0\n"));
    const Outcome json = run({QStringLiteral("--json"), QStringLiteral("eeprom"),
                              QStringLiteral("read"), QStringLiteral("16"), QStringLiteral("4")});
    EXPECT_EQ(json.out.trimmed(), QStringLiteral("{\"address\":16,\"values\":[210,4,0,0]}"));
}

TEST_F(QuorvelctlTest, TheClockSetInOneRunIsReadInTheNext) {
    const Outcome set = run({QStringLiteral("clock"), QStringLiteral("set")});
    ASSERT_EQ(set.status, 0) << set.err.toStdString();
    EXPECT_EQ(set.out, QStringLiteral("Date and time set\n"));
    const Outcome read = run({QStringLiteral("clock"), QStringLiteral("read")});
    EXPECT_TRUE(read.out.startsWith(QDate::currentDate().toString(QStringLiteral("dd/MM/yy - "))))
        << read.out.toStdString();
}

TEST_F(QuorvelctlTest, TheStoredProgrammePrintsAsAPdfAndAnUnknownLanguageIsRefused) {
    const QString pdf = dir.filePath(QStringLiteral("programme.pdf"));
    const Outcome printed =
        run({QStringLiteral("programme"), QStringLiteral("print"), QStringLiteral("--pdf"), pdf});
    ASSERT_EQ(printed.status, 0) << printed.err.toStdString();
    EXPECT_TRUE(readFile(pdf).startsWith("%PDF-")); // its text is checked where the page is drawn
    const Outcome refused = run({QStringLiteral("programme"), QStringLiteral("print"),
                                 QStringLiteral("--pdf"), dir.filePath(QStringLiteral("x.pdf")),
                                 QStringLiteral("--language"), QStringLiteral("Deutsch")});
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(refused.err.contains(QStringLiteral("English, Français")))
        << refused.err.toStdString();
}

TEST_F(QuorvelctlTest, ExitStatusTellsWhatWentWrong) {
    struct Case {
        QStringList args;
        int status;
        const char* errorContains;
    };
    const Case cases[] = {
        {{QStringLiteral("identity")}, 0, ""},
        {{QStringLiteral("eeprom"), QStringLiteral("write"), QStringLiteral("256"),
          QStringLiteral("1")},
         2,
         "read only"},
        {{QStringLiteral("eeprom"), QStringLiteral("read"), QStringLiteral("600")}, 2, "ADDR"},
        {{QStringLiteral("frobnicate")}, 2, "unknown command"},
        {{QStringLiteral("identity"), QStringLiteral("extra")}, 2, "unexpected argument"},
        {{QStringLiteral("--device"), QStringLiteral("12345"), QStringLiteral("identity")},
         1,
         "(Time Out)"},
    };
    for (const auto& c : cases) {
        const Outcome r = run(c.args);
        EXPECT_EQ(r.status, c.status) << c.args.join(' ').toStdString() << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(QString::fromUtf8(c.errorContains))) << r.err.toStdString();
    }
}

// A failed exchange makes the run fail even when a later one of the same
// command goes through: the corrupted replies are the first read's only.
TEST_F(QuorvelctlTest, AFailedExchangeGivesTheLinkMessageAndStatusOne) {
    const std::tuple<const char*, QStringList, QString> cases[] = {
        {",drop=3",
         {QStringLiteral("value"), QStringLiteral("read"), QStringLiteral("0")},
         QStringLiteral("(Time Out)")},
        {",corrupt=3",
         {QStringLiteral("eeprom"), QStringLiteral("read"), QStringLiteral("40"),
          QStringLiteral("3")},
         QStringLiteral("(CRC error)")},
    };
    const QString clean = link;
    for (const auto& [faults, args, says] : cases) {
        link = clean + QString::fromLatin1(faults);
        const Outcome r = run(args);
        EXPECT_EQ(r.status, 1) << faults << ": " << r.out.toStdString();
        EXPECT_EQ(r.err.count(says), 1) << faults << ": " << r.err.toStdString();
    }
}

} // namespace
} // namespace qv::test
