// quorvelctl programme print: the editor's page as a PDF, made without a
// display, of the stored programme or of a programme file.
#include "AppTestSupport.h"
#include "programme/DefaultStates.h"
#include "programme/ProgrammeStore.h"

#include <QProcess>
#include <QProcessEnvironment>

namespace qv::test {
namespace {

struct Outcome {
    int status = -1;
    QString out;
    QString err;
};

Condition line(const char* nom, double valeur, int jour, int h, int m) {
    Condition c;
    c.Nom = QString::fromLatin1(nom);
    c.sortie = 3;
    c.Valeur = valeur;
    c.Jour = static_cast<std::int16_t>(jour);
    c.Heure = static_cast<std::int16_t>(h);
    c.Minute = static_cast<std::int16_t>(m);
    return c;
}

class PrintCommandTest : public ::testing::Test {
protected:
    QTemporaryDir dir;
    std::unique_ptr<ConfigDocument> config;

    void SetUp() override {
        if (QStringLiteral(QUORVEL_PDFTOTEXT).isEmpty())
            GTEST_SKIP() << "pdftotext is not installed";
        config = std::make_unique<ConfigDocument>(scratchConfig(dir));
        // The stored programme: Monday mornings open, every evening closed;
        // the output closed by default.
        Conditions stored;
        stored.Add(line("Matin", 1, 1, 6, 30));
        stored.Add(line("Soir", 0, 8, 18, 0));
        SauveConditions(*config, stored);
        config->EcritValeurXML(QStringLiteral("NomProgramme"), QStringLiteral("garden.prg"));

        // A programme file: one line, the output open by default.
        QDomDocument prg = config->load();
        Conditions one;
        Condition c = line("Nuit", 1, 8, 22, 15);
        c.Commentaire = QStringLiteral("Night watering");
        one.Add(c);
        SauveConditions(prg, one);
        ASSERT_TRUE(Sauve_EtatDefautSortie(prg, QStringLiteral("English"), 0, 1));
        config->save(prg, path("night.prg"));
    }

    QString path(const char* name) const { return dir.filePath(QString::fromLatin1(name)); }

    // Without a display, as on a build server.
    Outcome run(const QStringList& args) {
        QProcess process;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            env.remove(QString::fromLatin1(name));
        process.setProcessEnvironment(env);
        process.start(QStringLiteral(QUORVELCTL_PATH),
                      QStringList{QStringLiteral("--app-dir"), dir.path()} + args);
        EXPECT_TRUE(process.waitForFinished(60000));
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }

    // The lines of the PDF, blanks folded, empty lines left out.
    static QStringList pdfLines(const QString& pdf) {
        QProcess process;
        process.start(QStringLiteral(QUORVEL_PDFTOTEXT),
                      {QStringLiteral("-layout"), pdf, QStringLiteral("-")});
        if (!process.waitForFinished(30000) || process.exitCode() != 0)
            return {QStringLiteral("<pdftotext failed>")};
        QStringList lines;
        for (const QString& l : QString::fromUtf8(process.readAllStandardOutput()).split('\n'))
            if (!l.trimmed().isEmpty())
                lines << l.simplified();
        return lines;
    }
};

TEST_F(PrintCommandTest, ThePdfHoldsThePageOfTheStoredProgrammeOrOfAFile) {
    const QString today = QDate::currentDate().toString(QStringLiteral("dd/MM/yyyy"));
    struct Case {
        QStringList args;
        QStringList expected;
    };
    const std::vector<Case> cases = {
        {{QStringLiteral("--pdf"), path("stored.pdf")},
         {today + QStringLiteral(" garden.prg - Page : 1"), QStringLiteral("Default values"),
          QStringLiteral("Bistable valve Closed"), QStringLiteral("Condition 1"),
          QStringLiteral("Bistable valve = Open"), QStringLiteral("Daily schedule Monday = 6:30:0"),
          QStringLiteral("Condition 2"), QStringLiteral("Bistable valve = Closed"),
          QStringLiteral("Daily schedule Every day = 18:0:0")}},
        {{QStringLiteral("--pdf=") + path("night.pdf"), path("night.prg")},
         {today + QStringLiteral(" night.prg - Page : 1"), QStringLiteral("Default values"),
          QStringLiteral("Bistable valve Open"), QStringLiteral("Condition 1"),
          QStringLiteral("Night watering"), QStringLiteral("Bistable valve = Open"),
          QStringLiteral("Daily schedule Every day = 22:15:0")}},
        {{QStringLiteral("--pdf"), path("stored-fr.pdf"), QStringLiteral("--language"),
          QStringLiteral("Français")},
         {today + QStringLiteral(" garden.prg - Page : 1"), QStringLiteral("Valeurs par défaut"),
          QStringLiteral("Électrovanne bistable Fermée"), QStringLiteral("Condition 1"),
          QStringLiteral("Électrovanne bistable = Ouverte"),
          QStringLiteral("Programmation journalière Lundi = 6:30:0"), QStringLiteral("Condition 2"),
          QStringLiteral("Électrovanne bistable = Fermée"),
          QStringLiteral("Programmation journalière Tous les jours = 18:0:0")}},
    };
    for (const Case& c : cases) {
        const std::string what = c.args.join(QLatin1Char(' ')).toStdString();
        const Outcome o =
            run(QStringList{QStringLiteral("programme"), QStringLiteral("print")} + c.args);
        ASSERT_EQ(o.status, 0) << what << ": " << o.err.toStdString();
        const QString pdf =
            c.args[0].startsWith(QStringLiteral("--pdf=")) ? c.args[0].mid(6) : c.args[1];
        EXPECT_TRUE(o.out.contains(pdf)) << o.out.toStdString();
        EXPECT_EQ(pdfLines(pdf), c.expected) << what;
    }
    // The file was read, not imported.
    Conditions stored;
    LitConditions(*config, stored);
    EXPECT_EQ(stored.Count(), 2);
}

TEST_F(PrintCommandTest, AWrongCommandLineIsRefusedBeforeAnyFile) {
    struct Case {
        QStringList args;
        int status;
        QString says;
    };
    const std::vector<Case> cases = {
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
         QStringLiteral("no/such/folder/x.pdf")},
    };
    for (const Case& c : cases) {
        const std::string what = c.args.join(QLatin1Char(' ')).toStdString();
        const Outcome o =
            run(QStringList{QStringLiteral("programme"), QStringLiteral("print")} + c.args);
        EXPECT_EQ(o.status, c.status) << what << ": " << o.err.toStdString();
        EXPECT_TRUE(o.err.contains(c.says)) << what << ": " << o.err.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(path("x.pdf")));
}

} // namespace
} // namespace qv::test
