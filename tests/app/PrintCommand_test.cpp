// quorvelctl programme print: the editor's page of a programme file as a PDF,
// made without a display.
#include "AppTestSupport.h"
#include "programme/DefaultStates.h"
#include "programme/ProgrammeStore.h"

#include <QProcess>
#include <QProcessEnvironment>

namespace qv::test {
namespace {

class PrintCommandTest : public ::testing::Test {
protected:
    QTemporaryDir dir;

    QString path(const char* name) const { return dir.filePath(QString::fromLatin1(name)); }

    // Without a display, as on a build server: the exit status and what was
    // said on the error output.
    std::pair<int, QString> print(const QStringList& args) {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            env.remove(QString::fromLatin1(name));
        process.setProcessEnvironment(env);
        process.start(QStringLiteral(QUORVELCTL_PATH),
                      QStringList{QStringLiteral("--app-dir"), dir.path(),
                                  QStringLiteral("programme"), QStringLiteral("print")} +
                          args);
        EXPECT_TRUE(process.waitForFinished(60000));
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardError())};
    }
};

TEST_F(PrintCommandTest, AFileIsPrintedInTheLanguageAskedForAndABadLineRefused) {
    ConfigDocument config(scratchConfig(dir));
    // One line, the output open by default.
    QDomDocument prg = config.load();
    Conditions one;
    Condition c;
    c.sortie = 3, c.Valeur = 1, c.Jour = 8, c.Heure = 22, c.Minute = 15;
    c.Commentaire = QStringLiteral("Arrosage de nuit");
    one.Add(c);
    SauveConditions(prg, one);
    ASSERT_TRUE(Sauve_EtatDefautSortie(prg, QStringLiteral("English"), 0, 1));
    config.save(prg, path("night.prg"));

    const auto [status, err] =
        print({QStringLiteral("--pdf=") + path("night.pdf"), path("night.prg"),
               QStringLiteral("--language"), QStringLiteral("Français")});
    ASSERT_EQ(status, 0) << err.toStdString();
    QFile pdf(path("night.pdf"));
    ASSERT_TRUE(pdf.open(QIODevice::ReadOnly));
    EXPECT_TRUE(pdf.read(5) == "%PDF-"); // its text is checked where the page is drawn

    const std::tuple<QStringList, int, QString> refused[] = {
        {{}, 2, QStringLiteral("--pdf")},
        {{QStringLiteral("--pdf"), path("x.pdf"), QStringLiteral("--language"),
          QStringLiteral("Deutsch")},
         2,
         QStringLiteral("English, Français")},
        {{QStringLiteral("--pdf"), path("x.pdf"), path("missing.prg")},
         2,
         QStringLiteral("missing.prg")},
        {{QStringLiteral("--pdf"), path("no/such/folder/x.pdf")},
         1,
         QStringLiteral("no/such/folder")},
    };
    for (const auto& [args, expectedStatus, says] : refused) {
        const auto [got, message] = print(args);
        EXPECT_EQ(got, expectedStatus) << message.toStdString();
        EXPECT_TRUE(message.contains(says)) << message.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(path("x.pdf")));
}

} // namespace
} // namespace qv::test
