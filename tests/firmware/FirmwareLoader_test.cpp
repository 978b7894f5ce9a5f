#include "FirmwareTestSupport.h"
#include "RecordingLoader.h"

#include <QDir>
#include <QFileInfo>

namespace qv::test {
namespace {

const QString kArgs = QStringLiteral(" LANGUE=English ;device=quorvel;try_both;USBID=7;prg=");

TEST(FirmwareLoader, FirmwareLoaderArgumentsAreTheLineSplitAtBlanks) {
    struct Case {
        QString appDir;
        QString line;
        QStringList expected;
    };
    const Case cases[] = {
        {QStringLiteral("/opt/q"),
         QStringLiteral("/opt/q\\LOADSTAGE_K_V318.exe") + kArgs +
             QStringLiteral("/fw/QUORVEL_V2.70.hex;firmware=270"),
         {QStringLiteral("LANGUE=English"),
          QStringLiteral(
              ";device=quorvel;try_both;USBID=7;prg=/fw/QUORVEL_V2.70.hex;firmware=270")}},
        // A blank in the path splits the field, as the loader always got it.
        {QStringLiteral("/opt/q"),
         QStringLiteral("/opt/q\\LOADSTAGE_K_V318.exe") + kArgs +
             QStringLiteral("/my  fw/QUORVEL_V2.70.hex;firmware=270"),
         {QStringLiteral("LANGUE=English"),
          QStringLiteral(";device=quorvel;try_both;USBID=7;prg=/my"),
          QStringLiteral("fw/QUORVEL_V2.70.hex;firmware=270")}},
        // The application folder itself may hold blanks: it is not split.
        {QStringLiteral("/home/op/My Tools/"),
         QStringLiteral("/home/op/My Tools\\LOADSTAGE_K_V318.exe LANGUE=English ;x"),
         {QStringLiteral("LANGUE=English"), QStringLiteral(";x")}},
        {QStringLiteral("/elsewhere"),
         QStringLiteral("other.exe a  b"),
         {QStringLiteral("a"), QStringLiteral("b")}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(loaderArguments(c.appDir, c.line), c.expected) << c.line.toStdString();
}

TEST(FirmwareLoader, FirmwareLoaderFoundByKind) {
    // A file is "" (absent), "script", "windows"; "+x" makes it executable.
    struct Case {
        const char* name;
        QString native;
        QString exe;
        QString wine;
        QString program; // relative to the folder, or absolute; empty: nothing starts
        bool throughWine;
    };
    const QString wine = QStringLiteral("/usr/bin/wine");
    const Case cases[] = {
        {"native loader first", "script+x", "windows", wine, "LOADSTAGE_K_V318", false},
        {"windows loader through wine", "", "windows", wine, wine, true},
        {"windows loader without wine", "", "windows+x", "", "", false},
        {"script named .exe runs itself", "", "script+x", "", "LOADSTAGE_K_V318.exe", false},
        {"script named .exe, not executable", "", "script", "", "", false},
        {"native file not executable, no exe", "script", "", "", "", false},
        {"no loader at all", "", "", wine, "", false},
    };
    const auto make = [](const QString& path, const QString& kind) {
        if (!kind.isEmpty())
            writeProgram(path,
                         kind.startsWith(QLatin1String("script")) ? kRecordingLoader
                                                                  : QByteArray("MZ\x90\x00", 4),
                         kind.endsWith(QLatin1String("+x")));
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        ASSERT_TRUE(dir.isValid());
        make(dir.filePath(QStringLiteral("LOADSTAGE_K_V318")), c.native);
        make(dir.filePath(QStringLiteral("LOADSTAGE_K_V318.exe")), c.exe);
        const QString line =
            dir.path() + QStringLiteral("\\LOADSTAGE_K_V318.exe LANGUE=English ;prg=x");
        const LoaderPlan plan = planLoaderStart(dir.path(), line, [&](const QString& name) {
            return name == QLatin1String("wine") ? c.wine : QString();
        });
        if (c.program.isEmpty()) {
            EXPECT_FALSE(plan.invocation);
            EXPECT_FALSE(plan.problem.isEmpty());
            continue;
        }
        ASSERT_TRUE(plan.invocation) << plan.problem.toStdString();
        const QString program =
            c.program.startsWith(QLatin1Char('/')) ? c.program : dir.filePath(c.program);
        EXPECT_EQ(plan.invocation->program, program);
        QStringList arguments{QStringLiteral("LANGUE=English"), QStringLiteral(";prg=x")};
        if (c.throughWine)
            arguments.prepend(dir.filePath(QStringLiteral("LOADSTAGE_K_V318.exe")));
        EXPECT_EQ(plan.invocation->arguments, arguments);
    }
}

TEST(FirmwareLoader, FirmwareMissingLoaderOnlyLeavesADiagnostic) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    QStringList diagnostics;
    NativeLoaderStarter starter(dir.path(), [&](const QString& l) { diagnostics << l; });
    starter.start(dir.path() + QStringLiteral("\\LOADSTAGE_K_V318.exe LANGUE=English"));
    ASSERT_EQ(diagnostics.size(), 1);
    EXPECT_TRUE(diagnostics[0].contains(QStringLiteral("LOADSTAGE_K_V318.exe")));
}

} // namespace
} // namespace qv::test
