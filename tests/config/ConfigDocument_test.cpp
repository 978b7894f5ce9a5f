#include "TestFiles.h"
#include "config/ConfigDocument.h"
#include "config/XmlWriter.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <array>
#include <csignal>
#include <sys/resource.h>

namespace qv {
namespace {

using test::readFile;
using test::writeFile;

// Written without indentation on purpose: a rewrite of the file shows in its
// bytes even when the content is the same.
const QByteArray sampleConfig =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Configuration><Splash>False</Splash>"
    "<Maintenance>-1</Maintenance><Langue>English</Langue><NomProgramme>essai.prg</NomProgramme>"
    "<Conf DAYLIGHT_SAVING=\"1\" OF_MOIS_ETE=\" 3\" TEXTE=\"abc\"/><Port>COM1</Port><messages>"
    "<Langue Nom=\"English\">"
    "<Message Id=\"m\"><Cle>Quorvel Absent</Cle><Texte>Quorvel not found</Texte></Message>"
    "<Message Id=\"m\"><Cle>Lire</Cle><Texte>Read</Texte></Message>"
    "<Message Id=\"m\"><Cle> et </Cle><Texte> and </Texte></Message></Langue>"
    "<Langue NOM=\"Français\">"
    "<Message><Cle>Quorvel Absent</Cle><Texte>Quorvel absent</Texte></Message></Langue>"
    "<Langue Nom=\"english\"><Message><Cle>Lire</Cle><Texte>second english</Texte></Message>"
    "</Langue><Langue Nom=\"Vide\"/></messages>"
    "<Listes><Langue Nom=\"English\"><ListeMois>"
    "<Ligne><T>January</T><Index>0</Index><V>1</V></Ligne>"
    "<Ligne><T>February</T><Index>1</Index><V>2</V></Ligne>"
    "<Ligne><T>March</T><Index>2</Index><V>3</V></Ligne></ListeMois><ListeSorties>"
    "<Ligne><T>Output 1</T><Index>0</Index><V>12abc</V><Etat>1</Etat></Ligne>"
    "<Ligne><T>Output 2</T><Index>1</Index><V>abc</V><Etat>0</Etat></Ligne></ListeSorties>"
    "<ListeDesordre><Ligne><T>A</T><Index>0</Index><V>10</V></Ligne>"
    "<Ligne><T>B</T><Index>0</Index><V>20</V></Ligne>"
    "<Ligne><T>C</T><Index>5</Index><V>30</V></Ligne></ListeDesordre></Langue></Listes>"
    "<CONDITIONS><Condition NOM=\"MASTER\" SORTIE=\"1\"/></CONDITIONS></Configuration>\n";

// A modification time far in the past: a later write shows in it, and the
// document's kept copy is trusted on its stamps.
const QDateTime kOld(QDate(2001, 1, 1), QTime(12, 0));

void age(const QString& path) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadWrite));
    ASSERT_TRUE(f.setFileTime(kOld, QFileDevice::FileModificationTime));
}

int messageCount(const QDomDocument& doc, const QString& nom) {
    const QDomElement messages = doc.documentElement().firstChildElement("messages");
    for (QDomElement l = messages.firstChildElement(); !l.isNull(); l = l.nextSiblingElement()) {
        if (l.attribute("Nom") == nom || l.attribute("NOM") == nom)
            return l.childNodes().count();
    }
    return -1;
}

// The text of the ConfigError that `action` throws; empty when none.
template <typename Action> std::string errorOf(Action action) {
    try {
        action();
    } catch (const ConfigError& e) {
        return e.what();
    }
    return {};
}

class ConfigDocumentTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        writeFile(path, sampleConfig);
    }
    // Neither the bytes nor the time of an aged file changed.
    bool untouched() const {
        return readFile(path) == sampleConfig && QFileInfo(path).lastModified() == kOld;
    }
    QDomElement conf(const QString& file) const {
        return ConfigDocument(file).load().documentElement().firstChildElement("Conf");
    }

    QTemporaryDir dir;
    QString path = dir.filePath("config.xml");
};

// --- Translations -----------------------------------------------------------

TEST_F(ConfigDocumentTest, AKnownKeyIsFoundWhateverItsCaseAndBlanksAndNothingIsWritten) {
    age(path);
    ConfigDocument doc(path);
    for (const auto& [langue, key, text] : std::vector<std::array<const char*, 3>>{
             {"English", "  quorvel ABSENT  ", "Quorvel not found"},
             {"ENGLISH", "lire", "Read"},
             {"english", "Lire", "Read"}, // the first language of that name in any case wins
             {"FRANÇAIS", "quorvel absent", "Quorvel absent"},
             {"English", " et ", " and "},
             {"English", "ET", " and "},
             {"Vide", "Lire", "Lire"}}) // a language without messages gives the key
        EXPECT_EQ(doc.LitMessage(QString::fromUtf8(langue), QString::fromUtf8(key), "default"),
                  QString::fromUtf8(text))
            << langue << "/" << key;
    EXPECT_EQ(doc.ListeLanguesDisponibles(),
              (QStringList{"English", "Français", "english", "Vide"}));
    EXPECT_TRUE(untouched());
}

TEST_F(ConfigDocumentTest, ANewKeyIsStoredAsGivenClonedFromTheFirstMessage) {
    ConfigDocument doc(path);
    EXPECT_EQ(doc.LitMessage("English", "Programme", "Program"), "Programme");
    EXPECT_EQ(doc.LitMessage("English", "Programme", "other default"), "Program");
    EXPECT_EQ(doc.LitMessage("English", "Sans défaut", ""), "Sans défaut");
    EXPECT_EQ(doc.LitMessage("English", "Sans défaut", ""), "Sans défaut");
    // Stored keys are compared without their blanks: found again, not added twice.
    EXPECT_EQ(doc.LitMessage("English", " Padded ", "x"), " Padded ");
    EXPECT_EQ(doc.LitMessage("English", "padded", "z"), "x");

    const QDomDocument saved = ConfigDocument(path).load();
    EXPECT_EQ(messageCount(saved, "English"), 6);
    EXPECT_EQ(messageCount(saved, "Français"), 1);
    const QDomElement padded = saved.documentElement()
                                   .firstChildElement("messages")
                                   .firstChildElement("Langue")
                                   .lastChildElement();
    EXPECT_EQ(padded.tagName(), "Message");
    EXPECT_EQ(padded.attribute("Id"), "m");
    EXPECT_EQ(padded.firstChildElement("Cle").text(), " Padded ");
    EXPECT_EQ(padded.firstChildElement("Texte").text(), "x");
    EXPECT_EQ(padded.previousSiblingElement().firstChildElement("Texte").text(), "Sans défaut");
}

// --- Values -----------------------------------------------------------------

TEST_F(ConfigDocumentTest, ValuesAreReadAndWrittenByExactNameOnly) {
    age(path);
    ConfigDocument doc(path);
    EXPECT_EQ(doc.LitValeurXML("Langue"), std::optional<QString>("English"));
    EXPECT_EQ(doc.LitValeurXML("Conf"), std::optional<QString>(""));
    for (const char* absent : {"langue", "Absent", ""})
        EXPECT_EQ(doc.LitValeurXML(absent), std::nullopt) << absent;
    doc.EcritValeurXML("Inconnu", QString("x")); // never creates an element
    doc.EcritValeurXML("langue", QString("x"));
    EXPECT_TRUE(untouched());

    // Programme files are written when named and kept apart from config.xml.
    const QString programme = dir.filePath("a.prg");
    writeFile(programme, sampleConfig);
    doc.EcritValeurXML("NomProgramme", QString("a.prg"), programme);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(doc.LitValeurXML("NomProgramme", programme), std::optional<QString>("a.prg"));
        EXPECT_EQ(doc.LitValeurXML("NomProgramme"), std::optional<QString>("essai.prg"));
    }
    EXPECT_TRUE(untouched());

    doc.EcritValeurXML("NomProgramme", QString("pompe <1> & co.prg"));
    EXPECT_EQ(ConfigDocument(path).LitValeurXML("NomProgramme"),
              std::optional<QString>("pompe <1> & co.prg"));
    doc.EcritValeurXML("Splash", true);
    EXPECT_EQ(doc.LitValeurXML("Splash"), std::optional<QString>("True"));
}

TEST_F(ConfigDocumentTest, EcritConfStoresTheLegacyNumberTextAndLitConfReadsItBack) {
    ConfigDocument doc(path);
    for (const char* name : {"", "1ABC", "A B", "A<B"}) // would break the file
        EXPECT_THROW(doc.EcritConf(name, 1), ConfigError) << name;
    EXPECT_EQ(readFile(path), sampleConfig);
    EXPECT_EQ(doc.LitConf("OF_MOIS_ETE"), QVariant(3.0));
    EXPECT_EQ(doc.LitConf("TEXTE"), QVariant(QString("abc")));

    struct Case {
        QVariant value;
        const char* stored;
        QVariant readBack;
    };
    for (const Case& c : std::vector<Case>{{QVariant(5), " 5", QVariant(5.0)},
                                           {QVariant(-2), "-2", QVariant(-2.0)},
                                           {QVariant(2.5), " 2.5", QVariant(2.5)},
                                           {QVariant(QString("0.5")), " .5", QVariant(0.5)},
                                           {QVariant(QString(" -0.5 ")), "-.5", QVariant(-0.5)},
                                           {QVariant(QString("abc")), "abc", QVariant("abc")},
                                           {QVariant(QString("")), "", QVariant(QString(""))}}) {
        SCOPED_TRACE(c.stored);
        doc.EcritConf("OF_HEURE_ETE", c.value);
        EXPECT_EQ(conf(path).attribute("OF_HEURE_ETE"), QString::fromUtf8(c.stored));
        const QVariant back = doc.LitConf("OF_HEURE_ETE");
        EXPECT_EQ(back.typeId(), c.readBack.typeId());
        EXPECT_EQ(back, c.readBack);
    }
}

// --- Broken files -------------------------------------------------------------

TEST_F(ConfigDocumentTest, AMissingFileIsAnErrorNamingItAndNothingIsWritten) {
    const QString absent = dir.filePath("nowhere/config.xml");
    ConfigDocument doc(absent);
    EXPECT_TRUE(QString::fromStdString(errorOf([&] {
                    doc.LitMessage("English", "Lire", "");
                })).contains(absent));
    EXPECT_THROW(doc.EcritValeurXML("Langue", QString("x")), ConfigError);
    EXPECT_FALSE(QFileInfo::exists(absent));
    EXPECT_THROW(ConfigDocument(dir.path()).LitSplash(), ConfigError);
    EXPECT_TRUE(QFileInfo(dir.path()).isDir());
}

TEST_F(ConfigDocumentTest, MalformedXmlIsAnErrorNamingFileLineAndColumn) {
    ConfigDocument doc(path);
    for (const auto& [content, line] : std::vector<std::pair<const char*, int>>{
             {"<Configuration>\n<Conf>\n</Configuration>\n", 3},
             {"<Configuration>\n\n\n<a b=1/></Configuration>", 4},
             {"<Configuration>\n<Conf/>", 2}}) {
        SCOPED_TRACE(content);
        writeFile(path, content);
        const QString error =
            QString::fromStdString(errorOf([&] { doc.LitMessage("English", "Lire", ""); }));
        EXPECT_TRUE(error.contains(path) && error.contains(QStringLiteral("line %1,").arg(line)) &&
                    error.contains("column"))
            << error.toStdString();
        EXPECT_EQ(readFile(path), QByteArray(content));
    }
    writeFile(path, sampleConfig); // a fixed file is read again
    EXPECT_FALSE(doc.LitSplash());
}

// --- Saving -------------------------------------------------------------------

// The file size limit makes the kernel refuse the write half-way, as a full
// disk would, and unlike permissions it holds for root too.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        previousHandler_ = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &previous_);
        rlimit limit = previous_;
        limit.rlim_cur = bytes;
        active_ = setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &previous_);
        std::signal(SIGXFSZ, previousHandler_);
    }
    bool active() const { return active_; }

private:
    rlimit previous_{};
    void (*previousHandler_)(int) = nullptr;
    bool active_ = false;
};

TEST_F(ConfigDocumentTest, AWriteFailingHalfWayLeavesThePreviousFileWhole) {
    ConfigDocument doc(path);
    ASSERT_EQ(doc.LitMessage("English", "Lire", ""), "Read"); // kept in memory now
    {
        FileSizeLimit limit(200);
        ASSERT_TRUE(limit.active());
        EXPECT_THROW(doc.LitMessage("English", "Nouveau", "New"), ConfigError);
        EXPECT_THROW(doc.EcritConf("DAYLIGHT_SAVING", 0), ConfigError);
    }
    EXPECT_EQ(readFile(path), sampleConfig);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"config.xml"});

    // What failed to reach the disk is not remembered either.
    EXPECT_EQ(doc.LitConf("DAYLIGHT_SAVING"), QVariant(1.0));
    EXPECT_EQ(doc.LitMessage("English", "Nouveau", "New"), "Nouveau");
    EXPECT_EQ(doc.LitMessage("English", "Nouveau", "New"), "New");
}

TEST_F(ConfigDocumentTest, SavedFilesAreIndentedUtf8AndReadBackTheSame) {
    ConfigDocument doc(path);
    doc.EcritValeurXML("NomProgramme", QString("été\tn°1 \"<&>\" ]]>\r\n"));
    doc.EcritConf("TEXTE", QString("a\"b\nc\td&<"));
    const QByteArray bytes = readFile(path);
    EXPECT_TRUE(bytes.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Configuration>\n  "
                                 "<Splash>False</Splash>\n"))
        << bytes.constData();
    EXPECT_TRUE(bytes.contains("été")); // UTF-8, not a character reference

    ConfigDocument fresh(path);
    EXPECT_EQ(fresh.LitValeurXML("NomProgramme"),
              std::optional<QString>("été\tn°1 \"<&>\" ]]>\r\n"));
    EXPECT_EQ(fresh.LitConf("TEXTE"), QVariant(QString("a\"b\nc\td&<")));
    const QDomElement third =
        fresh.load().documentElement().firstChildElement("messages").firstChildElement();
    EXPECT_EQ(third.lastChildElement().firstChildElement("Cle").text() + "|" +
                  third.lastChildElement().firstChildElement("Texte").text(),
              " et | and ");
    // A second save of the same content gives the same bytes: attributes are
    // written in a fixed order.
    fresh.save(fresh.load());
    EXPECT_EQ(readFile(path), bytes);
}

} // namespace
} // namespace qv
