#include "config/ConfigDocument.h"
#include "config/XmlWriter.h"

#include <gtest/gtest.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <chrono>
#include <csignal>
#include <sys/resource.h>
#include <thread>

namespace qv {
namespace {

// Written without indentation on purpose: a rewrite of the file shows in its
// bytes even when the content is the same.
const char* const sampleConfig =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<Configuration>"
    "<Splash>False</Splash>"
    "<Maintenance>-1</Maintenance>"
    "<Langue>English</Langue>"
    "<NomProgramme>essai.prg</NomProgramme>"
    "<Conf DAYLIGHT_SAVING=\"1\" OF_MOIS_ETE=\" 3\" TEXTE=\"abc\"/>"
    "<Port>COM1</Port>"
    "<messages>"
    "<Langue Nom=\"English\">"
    "<Message Id=\"m\"><Cle>Quorvel Absent</Cle><Texte>Quorvel not found</Texte></Message>"
    "<Message Id=\"m\"><Cle>Lire</Cle><Texte>Read</Texte></Message>"
    "<Message Id=\"m\"><Cle> et </Cle><Texte> and </Texte></Message>"
    "</Langue>"
    "<Langue NOM=\"Français\">"
    "<Message><Cle>Quorvel Absent</Cle><Texte>Quorvel absent</Texte></Message>"
    "</Langue>"
    "<Langue Nom=\"english\">"
    "<Message><Cle>Lire</Cle><Texte>second english</Texte></Message>"
    "</Langue>"
    "<Langue Nom=\"Vide\"/>"
    "</messages>"
    "<Listes>"
    "<Langue Nom=\"English\">"
    "<ListeMois>"
    "<Ligne><T>January</T><Index>0</Index><V>1</V></Ligne>"
    "<Ligne><T>February</T><Index>1</Index><V>2</V></Ligne>"
    "<Ligne><T>March</T><Index>2</Index><V>3</V></Ligne>"
    "</ListeMois>"
    "<ListeSorties>"
    "<Ligne><T>Output 1</T><Index>0</Index><V>12abc</V><Etat>1</Etat></Ligne>"
    "<Ligne><T>Output 2</T><Index>1</Index><V>abc</V><Etat>0</Etat></Ligne>"
    "</ListeSorties>"
    "<ListeDesordre>"
    "<Ligne><T>A</T><Index>0</Index><V>10</V></Ligne>"
    "<Ligne><T>B</T><Index>0</Index><V>20</V></Ligne>"
    "<Ligne><T>C</T><Index>5</Index><V>30</V></Ligne>"
    "</ListeDesordre>"
    "</Langue>"
    "</Listes>"
    "<CONDITIONS><Condition NOM=\"MASTER\" SORTIE=\"1\"/></CONDITIONS>"
    "</Configuration>\n";

QByteArray readAll(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(f.write(bytes), bytes.size());
}

// Sets the file's modification time far in the past, so that a later write
// shows in it, and so that the document's kept copy is trusted on its stamps.
void ageFile(const QString& path) {
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadWrite));
    ASSERT_TRUE(f.setFileTime(QDateTime(QDate(2001, 1, 1), QTime(12, 0)),
                              QFileDevice::FileModificationTime));
}

QDateTime modified(const QString& path) {
    return QFileInfo(path).lastModified();
}

int messageCount(const QDomDocument& doc, const QString& nom) {
    const QDomElement messages = doc.documentElement().firstChildElement("messages");
    for (QDomElement l = messages.firstChildElement(); !l.isNull(); l = l.nextSiblingElement()) {
        if (l.attribute("Nom") == nom || l.attribute("NOM") == nom)
            return l.childNodes().count();
    }
    return -1;
}

QStringList rootChildren(const QDomDocument& doc) {
    QStringList names;
    for (QDomElement e = doc.documentElement().firstChildElement(); !e.isNull();
         e = e.nextSiblingElement())
        names << e.tagName();
    return names;
}

class ConfigDocumentTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        path = dir.filePath("config.xml");
        writeAll(path, sampleConfig);
    }

    QTemporaryDir dir;
    QString path;
};

// --- Translations -----------------------------------------------------------

struct LookupCase {
    const char* langue;
    const char* key;
    const char* text;
};

class LitMessageFound : public ConfigDocumentTest,
                        public ::testing::WithParamInterface<LookupCase> {};

TEST_P(LitMessageFound, ReturnsTheStoredTextWithoutWriting) {
    ageFile(path);
    const QDateTime before = modified(path);
    ConfigDocument doc(path);
    const auto& c = GetParam();
    EXPECT_EQ(doc.LitMessage(QString::fromUtf8(c.langue), QString::fromUtf8(c.key), "default"),
              QString::fromUtf8(c.text));
    EXPECT_EQ(readAll(path), QByteArray(sampleConfig));
    EXPECT_EQ(modified(path), before);
}

INSTANTIATE_TEST_SUITE_P(
    Keys, LitMessageFound,
    ::testing::Values(LookupCase{"English", "Quorvel Absent", "Quorvel not found"},
                      LookupCase{"English", "  quorvel ABSENT  ", "Quorvel not found"},
                      LookupCase{"ENGLISH", "lire", "Read"},
                      // The first language of that name in any case wins.
                      LookupCase{"english", "Lire", "Read"},
                      LookupCase{"français", "Quorvel Absent", "Quorvel absent"},
                      LookupCase{"FRANÇAIS", "quorvel absent", "Quorvel absent"}));

TEST_F(ConfigDocumentTest, ANewKeyIsAddedSavedAndReturnedFromTheNextLookupOn) {
    ConfigDocument doc(path);
    EXPECT_EQ(doc.LitMessage("English", "Programme", "Program"), "Programme");
    EXPECT_EQ(doc.LitMessage("English", "Programme", "other default"), "Program");
    EXPECT_EQ(doc.LitMessage("English", "Sans défaut", ""), "Sans défaut");
    EXPECT_EQ(doc.LitMessage("English", "Sans défaut", ""), "Sans défaut");

    // Another reader of the file sees the two messages, cloned from the
    // language's first one (its element names and attributes kept).
    ConfigDocument other(path);
    const QDomDocument saved = other.load();
    EXPECT_EQ(messageCount(saved, "English"), 5);
    EXPECT_EQ(messageCount(saved, "Français"), 1);
    const QDomElement added = saved.documentElement()
                                  .firstChildElement("messages")
                                  .firstChildElement("Langue")
                                  .lastChildElement();
    EXPECT_EQ(added.tagName(), "Message");
    EXPECT_EQ(added.attribute("Id"), "m");
    EXPECT_EQ(added.firstChildElement("Cle").text(), "Sans défaut");
    EXPECT_EQ(added.firstChildElement("Texte").text(), "Sans défaut");
}

TEST_F(ConfigDocumentTest, APaddedKeyIsStoredAsGivenAndFoundAgain) {
    ConfigDocument doc(path);
    EXPECT_EQ(doc.LitMessage("English", " Padded ", "x"), " Padded ");
    // Stored keys are compared without their blanks: the second lookup finds
    // the first one's message instead of adding another.
    EXPECT_EQ(doc.LitMessage("English", " Padded ", "y"), "x");
    EXPECT_EQ(doc.LitMessage("English", "padded", "z"), "x");
    EXPECT_EQ(messageCount(doc.load(), "English"), 4);
    EXPECT_EQ(doc.load()
                  .documentElement()
                  .firstChildElement("messages")
                  .firstChildElement()
                  .lastChildElement()
                  .firstChildElement()
                  .text(),
              " Padded ");
}

TEST_F(ConfigDocumentTest, AStoredKeyWithBlanksIsFoundWithOrWithoutThem) {
    ConfigDocument doc(path);
    const int before = messageCount(doc.load(), "English");
    EXPECT_EQ(doc.LitMessage("English", " et ", ""), " and ");
    EXPECT_EQ(doc.LitMessage("English", " et ", ""), doc.LitMessage("English", "ET", ""));
    EXPECT_EQ(messageCount(doc.load(), "English"), before);
}

TEST_F(ConfigDocumentTest, AnUnknownLanguageRewritesTheFileUnchangedAndReturnsTheKey) {
    ConfigDocument doc(path);
    const QDomDocument before = doc.load();
    EXPECT_EQ(doc.LitMessage("Deutsch", "Lire", "Lesen"), "Lire");
    EXPECT_NE(readAll(path), QByteArray(sampleConfig)); // written again, indented now
    const QDomDocument after = ConfigDocument(path).load();
    EXPECT_EQ(writeXmlDocument(after, nullptr), writeXmlDocument(before, nullptr));
}

TEST_F(ConfigDocumentTest, ALanguageWithoutMessagesReturnsTheKeyAndWritesNothing) {
    ageFile(path);
    const QDateTime before = modified(path);
    ConfigDocument doc(path);
    EXPECT_EQ(doc.LitMessage("Vide", "Lire", "Lesen"), "Lire");
    EXPECT_EQ(readAll(path), QByteArray(sampleConfig));
    EXPECT_EQ(modified(path), before);
}

TEST_F(ConfigDocumentTest, OfTwoMessagesWithOneKeyTheFirstWinsUntilTheFileChanges) {
    writeAll(path, "<Configuration><Messages><L nom=\"en\">"
                   "<M><K>x</K><T>-</T></M>"
                   "<M><K>Lire</K><T>first</T></M>"
                   "<M><K>LIRE</K><T>second</T></M>"
                   "</L></Messages></Configuration>");
    ConfigDocument doc(path);
    EXPECT_EQ(doc.LitMessage("EN", "lire", ""), "first");
    EXPECT_EQ(doc.LitMessage("de", "lire", ""), "lire");

    ConfigDocument other(path);
    QDomDocument changed = other.load();
    QDomElement messages = changed.documentElement().firstChildElement();
    messages.firstChildElement().removeChild(messages.firstChildElement().childNodes().item(1));
    QDomElement german = changed.createElement("L");
    german.setAttribute("NOM", "DE");
    german.appendChild(messages.firstChildElement().firstChild().cloneNode(true));
    messages.appendChild(german);
    other.save(changed);

    EXPECT_EQ(doc.LitMessage("EN", "lire", ""), "second");
    EXPECT_EQ(doc.LitMessage("de", "x", ""), "-");
}

TEST_F(ConfigDocumentTest, LanguagesComeInDocumentOrderAndSelectionIsExact) {
    ConfigDocument doc(path);
    const QStringList languages = doc.ListeLanguesDisponibles();
    EXPECT_EQ(languages, (QStringList{"English", "Français", "english", "Vide"}));
    EXPECT_EQ(languages.indexOf("English"), 0);
    EXPECT_EQ(languages.indexOf("ENGLISH"), -1);
}

// --- Lists ------------------------------------------------------------------

TEST_F(ConfigDocumentTest, ListsThatAreNotThereLeaveTheControlAlone) {
    ConfigDocument doc(path);
    EXPECT_FALSE(doc.RemplitListe("English", "ListeInconnue").has_value());
    EXPECT_FALSE(doc.RemplitListe("Français", "ListeMois").has_value()); // language not in Listes
    EXPECT_FALSE(doc.RemplitListe("English", "Ligne").has_value());

    writeAll(path, "<Configuration><messages/></Configuration>");
    EXPECT_FALSE(doc.RemplitListe("English", "ListeMois").has_value());
}

TEST_F(ConfigDocumentTest, ListRowsCarryTextIndexValueAndDefaultState) {
    ConfigDocument doc(path);
    const auto months = doc.RemplitListe("english", "  listemois ");
    ASSERT_TRUE(months.has_value());
    ASSERT_EQ(months->size(), 3u);
    EXPECT_EQ((*months)[1].text, "February");
    EXPECT_EQ((*months)[1].position, 1);
    EXPECT_EQ((*months)[2].itemData, 3);
    EXPECT_TRUE((*months)[2].extra.isEmpty());

    const auto outputs = doc.RemplitListe("English", "ListeSorties");
    ASSERT_TRUE(outputs.has_value());
    ASSERT_EQ(outputs->size(), 2u);
    EXPECT_EQ((*outputs)[0].itemData, 12); // leading number of "12abc"
    EXPECT_EQ((*outputs)[1].itemData, 0);  // no number at all
    EXPECT_EQ((*outputs)[0].extra, "1");
    EXPECT_EQ((*outputs)[1].extra, "0");
}

TEST_F(ConfigDocumentTest, RowsGoWhereTheirIndexSaysAndNoneIsLost) {
    ConfigDocument doc(path);
    const auto rows = doc.RemplitListe("English", "ListeDesordre");
    ASSERT_TRUE(rows.has_value());
    ASSERT_EQ(rows->size(), 3u);
    // B is inserted before A; C's index is past the end and it goes last.
    EXPECT_EQ((*rows)[0].text, "B");
    EXPECT_EQ((*rows)[0].itemData, 20);
    EXPECT_EQ((*rows)[1].text, "A");
    EXPECT_EQ((*rows)[2].text, "C");
    EXPECT_EQ((*rows)[2].position, 5);
}

// --- Switches and values ----------------------------------------------------

struct SwitchCase {
    const char* element; // nullptr: no Splash nor Maintenance element
    bool splash;
    bool maintenance;
};

class Switches : public ConfigDocumentTest, public ::testing::WithParamInterface<SwitchCase> {};

TEST_P(Switches, ConvertLikeTheRuntime) {
    const auto& c = GetParam();
    QString body;
    if (c.element) {
        body = QStringLiteral("<Splash>%1</Splash><Maintenance>%1</Maintenance>")
                   .arg(QString::fromUtf8(c.element));
    }
    writeAll(path, QStringLiteral("<Configuration>%1<Conf/></Configuration>").arg(body).toUtf8());
    ConfigDocument doc(path);
    EXPECT_EQ(doc.LitSplash(), c.splash);
    EXPECT_EQ(doc.LitMaintenance(), c.maintenance);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Switches,
    ::testing::Values(SwitchCase{nullptr, true, false}, SwitchCase{"True", true, true},
                      SwitchCase{"FALSE", false, false}, SwitchCase{"false", false, false},
                      SwitchCase{"0", false, false}, SwitchCase{"-1", true, true},
                      SwitchCase{" 1 ", true, true}, SwitchCase{"", true, false},
                      SwitchCase{"oui", true, false}));

TEST_F(ConfigDocumentTest, SwitchesUnderARootOfAnotherNameAreAbsent) {
    writeAll(path, "<Config><Splash>False</Splash><Maintenance>True</Maintenance></Config>");
    ConfigDocument doc(path);
    EXPECT_TRUE(doc.LitSplash());
    EXPECT_FALSE(doc.LitMaintenance());
}

TEST_F(ConfigDocumentTest, ValuesAreFoundByExactName) {
    ConfigDocument doc(path);
    EXPECT_EQ(doc.LitValeurXML("NomProgramme"), std::optional<QString>("essai.prg"));
    EXPECT_EQ(doc.LitValeurXML("Langue"), std::optional<QString>("English"));
    EXPECT_EQ(doc.LitValeurXML("langue"), std::nullopt);
    EXPECT_EQ(doc.LitValeurXML("Absent"), std::nullopt);
    EXPECT_EQ(doc.LitValeurXML(""), std::nullopt);
    EXPECT_EQ(doc.LitValeurXML("Conf"), std::optional<QString>(""));
}

TEST_F(ConfigDocumentTest, EcritValeurXMLWritesAnExistingElement) {
    ConfigDocument doc(path);
    doc.EcritValeurXML("NomProgramme", QString("pompe <1> & co.prg"));
    EXPECT_EQ(ConfigDocument(path).LitValeurXML("NomProgramme"),
              std::optional<QString>("pompe <1> & co.prg"));
    doc.EcritValeurXML("Splash", true);
    EXPECT_EQ(doc.LitValeurXML("Splash"), std::optional<QString>("True"));
}

TEST_F(ConfigDocumentTest, EcritValeurXMLNeverCreatesAnElementNorWrites) {
    ageFile(path);
    const QDateTime before = modified(path);
    ConfigDocument doc(path);
    doc.EcritValeurXML("Inconnu", QString("x"));
    doc.EcritValeurXML("langue", QString("x"));
    EXPECT_EQ(readAll(path), QByteArray(sampleConfig));
    EXPECT_EQ(modified(path), before);
}

TEST_F(ConfigDocumentTest, EcritValeurXMLWritesToTheFileItIsGiven) {
    const QString programme = dir.filePath("essai.prg");
    writeAll(programme, sampleConfig);
    ConfigDocument doc(path);
    doc.EcritValeurXML("NomProgramme", QString("autre.prg"), programme);
    EXPECT_EQ(doc.LitValeurXML("NomProgramme", programme), std::optional<QString>("autre.prg"));
    EXPECT_EQ(readAll(path), QByteArray(sampleConfig));
}

struct ConfCase {
    QVariant value;
    const char* stored;
    QVariant readBack;
};

class EcritConfForms : public ConfigDocumentTest, public ::testing::WithParamInterface<ConfCase> {};

TEST_P(EcritConfForms, StoresTheLegacyNumberText) {
    const auto& c = GetParam();
    ConfigDocument doc(path);
    doc.EcritConf("OF_HEURE_ETE", c.value);
    const QDomElement conf =
        ConfigDocument(path).load().documentElement().firstChildElement("Conf");
    EXPECT_EQ(conf.attribute("OF_HEURE_ETE"), QString::fromUtf8(c.stored));
    const QVariant back = doc.LitConf("OF_HEURE_ETE");
    EXPECT_EQ(back.typeId(), c.readBack.typeId());
    EXPECT_EQ(back, c.readBack);
}

INSTANTIATE_TEST_SUITE_P(
    Values, EcritConfForms,
    ::testing::Values(ConfCase{QVariant(5), " 5", QVariant(5.0)},
                      ConfCase{QVariant(-2), "-2", QVariant(-2.0)},
                      ConfCase{QVariant(2.5), " 2.5", QVariant(2.5)},
                      ConfCase{QVariant(0), " 0", QVariant(0.0)},
                      ConfCase{QVariant(QString("0.5")), " .5", QVariant(0.5)},
                      ConfCase{QVariant(QString(" -0.5 ")), "-.5", QVariant(-0.5)},
                      ConfCase{QVariant(QString("abc")), "abc", QVariant(QString("abc"))},
                      ConfCase{QVariant(QString("")), "", QVariant(QString(""))}));

TEST_F(ConfigDocumentTest, LitConfOfAMissingAttributeIsZeroAndLeavesNoTrace) {
    ageFile(path);
    const QDateTime before = modified(path);
    ConfigDocument doc(path);
    const QVariant missing = doc.LitConf("OF_JOUR_HIVER");
    EXPECT_EQ(missing.typeId(), QMetaType::Int);
    EXPECT_EQ(missing.toInt(), 0);
    EXPECT_EQ(readAll(path), QByteArray(sampleConfig));
    EXPECT_EQ(modified(path), before);

    // Not even a later save of the same document brings the 0 in.
    doc.EcritValeurXML("Langue", QString("Français"));
    EXPECT_FALSE(
        ConfigDocument(path).load().documentElement().firstChildElement("Conf").hasAttribute(
            "OF_JOUR_HIVER"));
}

TEST_F(ConfigDocumentTest, LitConfReadsNumbersAndTexts) {
    ConfigDocument doc(path);
    EXPECT_EQ(doc.LitConf("OF_MOIS_ETE"), QVariant(3.0));
    EXPECT_EQ(doc.LitConf("TEXTE"), QVariant(QString("abc")));
    EXPECT_EQ(doc.LitConf("of_mois_ete"), QVariant(0)); // attribute names are exact
}

TEST_F(ConfigDocumentTest, WithoutConfReadingGivesZeroAndWritingIsAnError) {
    writeAll(path, "<Configuration><Langue>English</Langue></Configuration>");
    const QByteArray before = readAll(path);
    ConfigDocument doc(path);
    EXPECT_EQ(doc.LitConf("DAYLIGHT_SAVING"), QVariant(0));
    try {
        doc.EcritConf("DAYLIGHT_SAVING", 1);
        FAIL() << "no error";
    } catch (const ConfigError& e) {
        EXPECT_TRUE(e.text().contains(path)) << e.what();
        EXPECT_TRUE(e.text().contains("Conf")) << e.what();
    }
    EXPECT_EQ(readAll(path), before);
}

TEST_F(ConfigDocumentTest, EcritConfRefusesANameThatWouldBreakTheFile) {
    ConfigDocument doc(path);
    for (const char* name : {"", "1ABC", "A B", "A<B"})
        EXPECT_THROW(doc.EcritConf(name, 1), ConfigError) << name;
    EXPECT_EQ(readAll(path), QByteArray(sampleConfig));
}

// --- Import of a programme file --------------------------------------------

TEST_F(ConfigDocumentTest, ImportTakesTheProgrammeSectionsAndKeepsTheProtectedOnes) {
    const QString programme = dir.filePath("pompe.prg");
    writeAll(programme,
             "<Configuration>"
             "<messages><Langue Nom=\"English\"><M><K>Lire</K><T>FROM PRG</T></M></Langue>"
             "</messages>"
             "<LISTES><Langue Nom=\"English\"/></LISTES>"
             "<Port>COM9</Port><Splash>True</Splash><maintenance>0</maintenance>"
             "<Langue>Deutsch</Langue>"
             "<CONDITIONS><Condition NOM=\"MASTER\" SORTIE=\"7\"/>"
             "<Condition NOM=\"a\" SORTIE=\"7\"/></CONDITIONS>"
             "<NomProgramme>pompe.prg</NomProgramme>"
             "<Seulement>dans le programme</Seulement>"
             "</Configuration>");
    ConfigDocument doc(path);
    doc.ImporteConfiguration(programme);

    const QDomDocument after = ConfigDocument(path).load();
    EXPECT_EQ(doc.LitMessage("English", "Lire", ""), "Read");
    EXPECT_EQ(doc.LitValeurXML("Port"), std::optional<QString>("COM1"));
    EXPECT_EQ(doc.LitValeurXML("Splash"), std::optional<QString>("False"));
    EXPECT_EQ(doc.LitValeurXML("Langue"), std::optional<QString>("English"));
    EXPECT_EQ(doc.LitValeurXML("Seulement"), std::nullopt);
    EXPECT_TRUE(doc.RemplitListe("English", "ListeMois").has_value());
    // The replaced sections move to the end, in the programme file's order.
    EXPECT_EQ(rootChildren(after),
              (QStringList{"Splash", "Maintenance", "Langue", "Conf", "Port", "messages", "Listes",
                           "CONDITIONS", "NomProgramme"}));
    EXPECT_EQ(doc.LitValeurXML("NomProgramme"), std::optional<QString>("pompe.prg"));
    const QDomElement conditions = after.documentElement().firstChildElement("CONDITIONS");
    EXPECT_EQ(conditions.childNodes().count(), 2);
    EXPECT_EQ(conditions.firstChildElement().attribute("SORTIE"), "7");
}

TEST_F(ConfigDocumentTest, ImportOfAMissingFileChangesNothing) {
    ConfigDocument doc(path);
    EXPECT_THROW(doc.ImporteConfiguration(dir.filePath("absent.prg")), ConfigError);
    EXPECT_EQ(readAll(path), QByteArray(sampleConfig));
}

// --- Broken files -------------------------------------------------------------

TEST_F(ConfigDocumentTest, AMissingFileIsAnErrorNamingItAndNothingIsWritten) {
    const QString absent = dir.filePath("nowhere/config.xml");
    ConfigDocument doc(absent);
    try {
        doc.LitMessage("English", "Lire", "");
        FAIL() << "no error";
    } catch (const ConfigError& e) {
        EXPECT_TRUE(e.text().contains(absent)) << e.what();
    }
    EXPECT_THROW(doc.LitSplash(), ConfigError);
    EXPECT_THROW(doc.EcritValeurXML("Langue", QString("x")), ConfigError);
    EXPECT_FALSE(QFileInfo::exists(absent));

    ConfigDocument folder(dir.path());
    EXPECT_THROW(folder.LitSplash(), ConfigError);
    EXPECT_TRUE(QFileInfo(dir.path()).isDir());
}

struct MalformedCase {
    const char* content;
    int line;
};

class Malformed : public ConfigDocumentTest, public ::testing::WithParamInterface<MalformedCase> {};

TEST_P(Malformed, IsAnErrorNamingFileLineAndColumn) {
    writeAll(path, GetParam().content);
    const QByteArray before = readAll(path);
    ConfigDocument doc(path);
    try {
        doc.LitMessage("English", "Lire", "");
        FAIL() << "no error";
    } catch (const ConfigError& e) {
        EXPECT_TRUE(e.text().contains(path)) << e.what();
        EXPECT_TRUE(e.text().contains(QStringLiteral("line %1,").arg(GetParam().line))) << e.what();
        EXPECT_TRUE(e.text().contains("column")) << e.what();
    }
    EXPECT_EQ(readAll(path), before);
}

INSTANTIATE_TEST_SUITE_P(
    Contents, Malformed,
    ::testing::Values(MalformedCase{"<Configuration>\n<Conf>\n</Configuration>\n", 3},
                      MalformedCase{"<Configuration>\n\n\n<a b=1/></Configuration>", 4},
                      MalformedCase{"<Configuration>\n<Conf/>", 2}, MalformedCase{"", 1}));

TEST_F(ConfigDocumentTest, AFixedFileIsReadAgainAfterAnError) {
    writeAll(path, "<Configuration>");
    ConfigDocument doc(path);
    EXPECT_THROW(doc.LitSplash(), ConfigError);
    writeAll(path, sampleConfig);
    EXPECT_FALSE(doc.LitSplash());
}

// --- Saving -------------------------------------------------------------------

TEST_F(ConfigDocumentTest, ASaveThatCannotReplaceTheTargetIsAnErrorNamingIt) {
    ConfigDocument doc(path);
    const QDomDocument document = doc.load();
    for (const QString& target :
         {dir.filePath("no such folder/config.xml"), dir.path() /* a folder, not a file */}) {
        try {
            doc.save(document, target);
            FAIL() << "no error for " << target.toStdString();
        } catch (const ConfigError& e) {
            EXPECT_TRUE(e.text().contains(QFileInfo(target).absoluteFilePath())) << e.what();
        }
    }
    EXPECT_TRUE(QFileInfo(dir.path()).isDir());
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"config.xml"});
}

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
    EXPECT_EQ(readAll(path), QByteArray(sampleConfig));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"config.xml"});

    // What failed to reach the disk is not remembered either.
    EXPECT_EQ(doc.LitConf("DAYLIGHT_SAVING"), QVariant(1.0));
    EXPECT_EQ(doc.LitMessage("English", "Nouveau", "New"), "Nouveau");
    EXPECT_EQ(doc.LitMessage("English", "Nouveau", "New"), "New");
}

TEST_F(ConfigDocumentTest, TextThatXmlCannotHoldIsRefusedAndNotRemembered) {
    ConfigDocument doc(path);
    EXPECT_THROW(doc.LitMessage("English", QStringLiteral("bell\x07"), ""), ConfigError);
    EXPECT_EQ(readAll(path), QByteArray(sampleConfig));
    // Had the refused message stayed in the kept document, this save would
    // fail as well.
    EXPECT_NO_THROW(doc.EcritValeurXML("Langue", QString("Français")));
    EXPECT_EQ(messageCount(ConfigDocument(path).load(), "English"), 3);
}

TEST_F(ConfigDocumentTest, SavedFilesAreIndentedUtf8AndReadBackTheSame) {
    ConfigDocument doc(path);
    doc.EcritValeurXML("NomProgramme", QString("été\tn°1 \"<&>\" ]]>\r\n"));
    doc.EcritConf("TEXTE", QString("a\"b\nc\td&<"));
    const QByteArray bytes = readAll(path);
    EXPECT_TRUE(bytes.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Configuration>\n  "
                                 "<Splash>False</Splash>\n"))
        << bytes.constData();
    EXPECT_TRUE(bytes.contains("\n    <Langue Nom=\"English\">\n      <Message "
                               "Id=\"m\"><Cle>Quorvel Absent</Cle><Texte>Quorvel not "
                               "found</Texte></Message>\n"));
    EXPECT_TRUE(bytes.contains("\n  <CONDITIONS>\n    <Condition NOM=\"MASTER\" "
                               "SORTIE=\"1\"/>\n  </CONDITIONS>\n"));
    EXPECT_TRUE(bytes.contains("été")); // UTF-8, not a character reference

    ConfigDocument fresh(path);
    EXPECT_EQ(fresh.LitValeurXML("NomProgramme"),
              std::optional<QString>("été\tn°1 \"<&>\" ]]>\r\n"));
    EXPECT_EQ(fresh.LitConf("TEXTE"), QVariant(QString("a\"b\nc\td&<")));
    const QDomElement third = fresh.load()
                                  .documentElement()
                                  .firstChildElement("messages")
                                  .firstChildElement()
                                  .lastChildElement();
    EXPECT_EQ(third.firstChildElement("Cle").text(), " et ");
    EXPECT_EQ(third.firstChildElement("Texte").text(), " and ");

    // A second save of the same content gives the same bytes: attributes are
    // written in a fixed order.
    fresh.save(fresh.load());
    EXPECT_EQ(readAll(path), bytes);
}

TEST(XmlWriter, ADeclaredLegacyEncodingBecomesUtf8AndMixedContentKeepsItsText) {
    QDomDocument document;
    ASSERT_TRUE(document.setContent(QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>"
                                               "<Configuration><T>\xe9t\xe9</T>"
                                               "<M>un <b>deux</b> trois<!--c--></M>"
                                               "</Configuration>")));
    QString error;
    const auto bytes = writeXmlDocument(document, &error);
    ASSERT_TRUE(bytes.has_value()) << error.toStdString();
    EXPECT_TRUE(bytes->startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"));
    EXPECT_TRUE(bytes->contains("<M>un <b>deux</b> trois<!--c--></M>"));
    QDomDocument back;
    ASSERT_TRUE(back.setContent(*bytes));
    EXPECT_EQ(back.documentElement().firstChildElement("T").text(), QString("été"));
}

// --- What the kept document must notice ------------------------------------

TEST_F(ConfigDocumentTest, AChangeByAnotherWriterIsSeenAtTheNextAccess) {
    ConfigDocument doc(path);
    EXPECT_EQ(doc.LitMessage("English", "Lire", ""), "Read");

    // Another copy of the program saves.
    ConfigDocument other(path);
    other.EcritValeurXML("Langue", QString("Français"));
    EXPECT_EQ(doc.LitValeurXML("Langue"), std::optional<QString>("Français"));

    // An editor changes one letter, keeping the size, at once.
    QByteArray bytes = readAll(path);
    bytes.replace("<Texte>Read</Texte>", "<Texte>Reed</Texte>");
    writeAll(path, bytes);
    EXPECT_EQ(doc.LitMessage("English", "Lire", ""), "Reed");
}

TEST_F(ConfigDocumentTest, AChangeKeepingSizeAndOldTimeIsSeenToo) {
    ageFile(path);
    // Past the time during which a file's stamps prove nothing, the kept
    // document is trusted on them.
    std::this_thread::sleep_for(std::chrono::milliseconds(2100));
    ConfigDocument doc(path);
    EXPECT_EQ(doc.LitMessage("English", "Lire", ""), "Read");
    EXPECT_EQ(doc.LitMessage("English", "Lire", ""), "Read");

    // Same size, modification time set back to what it was.
    QByteArray bytes = readAll(path);
    bytes.replace("<Texte>Read</Texte>", "<Texte>Reed</Texte>");
    writeAll(path, bytes);
    ageFile(path);
    EXPECT_EQ(doc.LitMessage("English", "Lire", ""), "Reed");
}

TEST_F(ConfigDocumentTest, ALoadedCopyIsTheCallersOwn) {
    ConfigDocument doc(path);
    QDomDocument copy = doc.load();
    copy.documentElement().firstChildElement("Langue").firstChild().setNodeValue("Changed");
    EXPECT_EQ(doc.LitValeurXML("Langue"), std::optional<QString>("English"));
    doc.save(copy);
    EXPECT_EQ(doc.LitValeurXML("Langue"), std::optional<QString>("Changed"));
}

TEST_F(ConfigDocumentTest, ProgrammeFilesAndConfigAreKeptApart) {
    const QString programme = dir.filePath("a.prg");
    writeAll(programme, QByteArray(sampleConfig).replace("essai.prg", "a.prg"));
    ConfigDocument doc(path);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(doc.LitValeurXML("NomProgramme", programme), std::optional<QString>("a.prg"));
        EXPECT_EQ(doc.LitValeurXML("NomProgramme"), std::optional<QString>("essai.prg"));
    }
    // Importing a file into itself changes nothing but the order.
    doc.ImporteConfiguration(path);
    EXPECT_EQ(doc.LitMessage("English", "Lire", ""), "Read");
    EXPECT_EQ(doc.LitValeurXML("NomProgramme"), std::optional<QString>("essai.prg"));
}

} // namespace
} // namespace qv
