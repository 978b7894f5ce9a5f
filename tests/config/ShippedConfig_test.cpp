// Checks on the config.xml that ships with the tool. The program reads this
// file by position and compares keys and names in upper case, so a slip in it
// (a duplicated key, a gap in the row numbers, a comment between two rows)
// only shows up at run time, on a technician's PC. These tests catch it first.

#include <QDomDocument>
#include <QFile>
#include <QSet>
#include <QStringList>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace {

const QDomDocument& shipped() {
    static const QDomDocument document = [] {
        QDomDocument d;
        QFile file(QStringLiteral(QUORVEL_SHIPPED_CONFIG));
        if (file.open(QIODevice::ReadOnly)) {
            d.setContent(file.readAll());
        }
        return d;
    }();
    return document;
}

QDomElement root() {
    return shipped().documentElement();
}

// How LitMessage compares keys.
QString normalKey(const QString& key) {
    return key.trimmed().toUpper();
}

std::vector<QDomElement> elementChildren(const QDomNode& parent) {
    std::vector<QDomElement> out;
    for (QDomElement e = parent.firstChildElement(); !e.isNull(); e = e.nextSiblingElement()) {
        out.push_back(e);
    }
    return out;
}

// Children are read by position: anything but elements (a comment, stray
// text) would shift them.
bool onlyElements(const QDomNode& parent) {
    return static_cast<std::size_t>(parent.childNodes().count()) == elementChildren(parent).size();
}

// A direct child of the root found by walking, its name compared in upper case.
QDomElement section(const QString& name) {
    for (const QDomElement& e : elementChildren(root())) {
        if (e.tagName().toUpper() == name.toUpper()) {
            return e;
        }
    }
    return {};
}

QString languageName(const QDomElement& e) {
    const QDomNamedNodeMap attributes = e.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        const QDomAttr a = attributes.item(i).toAttr();
        if (a.name().toUpper() == QLatin1String("NOM")) {
            return a.value();
        }
    }
    return {};
}

QDomElement language(const QString& sectionName, const QString& name) {
    for (const QDomElement& e : elementChildren(section(sectionName))) {
        if (languageName(e).toUpper() == name.toUpper()) {
            return e;
        }
    }
    return {};
}

struct Message {
    QString key;
    QString text;
};

std::vector<Message> messages(const QString& lang) {
    std::vector<Message> out;
    for (const QDomElement& m : elementChildren(language(QStringLiteral("Messages"), lang))) {
        const auto parts = elementChildren(m);
        out.push_back({parts.size() > 0 ? parts[0].text() : QString(),
                       parts.size() > 1 ? parts[1].text() : QString()});
    }
    return out;
}

const QStringList kLanguages = {QStringLiteral("English"), QString::fromUtf8("Français")};

QString textOf(const QString& lang, const QString& key) {
    for (const Message& m : messages(lang)) {
        if (normalKey(m.key) == normalKey(key)) {
            return m.text;
        }
    }
    return {};
}

// The runtime's text-to-boolean conversion: the words, or a number.
std::optional<bool> legacyBool(const QString& text) {
    const QString t = text.trimmed();
    if (t.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0) {
        return true;
    }
    if (t.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0) {
        return false;
    }
    bool ok = false;
    const double v = t.toDouble(&ok);
    if (ok) {
        return v != 0;
    }
    return std::nullopt;
}

std::vector<double> itemData(const QString& lang, const QString& list) {
    std::vector<double> out;
    const QDomElement l =
        language(QStringLiteral("Listes"), lang).firstChildElement(list); // exact name, as shipped
    for (const QDomElement& row : elementChildren(l)) {
        const auto cells = elementChildren(row);
        out.push_back(cells.size() > 2 ? cells[2].text().trimmed().toDouble() : -1);
    }
    return out;
}

TEST(ShippedConfig, ParsesAsUtf8WithTheConfigurationRoot) {
    QFile file(QStringLiteral(QUORVEL_SHIPPED_CONFIG));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << QUORVEL_SHIPPED_CONFIG;
    const QByteArray bytes = file.readAll();
    EXPECT_TRUE(bytes.startsWith(R"(<?xml version="1.0" encoding="UTF-8"?>)"));
    QDomDocument d;
    QString error;
    int line = 0;
    int column = 0;
    ASSERT_TRUE(d.setContent(bytes, &error, &line, &column))
        << error.toStdString() << " at " << line << ":" << column;
    // The selecting operations use paths that begin with //Configuration/.
    EXPECT_EQ(d.documentElement().tagName(), QStringLiteral("Configuration"));
}

TEST(ShippedConfig, LanguagesAreEnglishFirstThenFrench) {
    for (const QString& name : {QStringLiteral("Messages"), QStringLiteral("Listes")}) {
        const QDomElement s = section(name);
        ASSERT_FALSE(s.isNull()) << name.toStdString();
        EXPECT_TRUE(onlyElements(s)) << name.toStdString();
        QStringList found;
        for (const QDomElement& e : elementChildren(s)) {
            found << languageName(e);
        }
        // The program starts in "English"; the default output state is kept
        // in the first language of the list.
        EXPECT_EQ(found, kLanguages) << name.toStdString();
    }
}

TEST(ShippedConfig, EveryMessageIsAKeyAndANonEmptyText) {
    for (const QString& lang : kLanguages) {
        const QDomElement l = language(QStringLiteral("Messages"), lang);
        ASSERT_FALSE(l.isNull()) << lang.toStdString();
        EXPECT_TRUE(onlyElements(l)) << lang.toStdString();
        const auto all = elementChildren(l);
        ASSERT_FALSE(all.empty()) << lang.toStdString();
        for (const QDomElement& m : all) {
            const auto parts = elementChildren(m);
            ASSERT_EQ(parts.size(), 2u) << lang.toStdString() << " line " << m.lineNumber();
            EXPECT_TRUE(onlyElements(m)) << "line " << m.lineNumber();
            for (const QDomElement& p : parts) {
                EXPECT_TRUE(p.firstChildElement().isNull()) << "line " << m.lineNumber();
                EXPECT_FALSE(p.text().trimmed().isEmpty()) << "line " << m.lineNumber();
            }
        }
    }
}

TEST(ShippedConfig, FirstMessageIsAPlainTemplateShapedLikeTheOthers) {
    // New keys are made by cloning the first message of the language.
    for (const QString& lang : kLanguages) {
        const auto all = elementChildren(language(QStringLiteral("Messages"), lang));
        ASSERT_FALSE(all.empty());
        const QDomElement first = all.front();
        EXPECT_FALSE(first.hasAttributes()) << lang.toStdString();
        const auto firstParts = elementChildren(first);
        ASSERT_EQ(firstParts.size(), 2u);
        for (const QDomElement& m : all) {
            const auto parts = elementChildren(m);
            ASSERT_EQ(parts.size(), 2u);
            EXPECT_EQ(m.tagName(), first.tagName()) << "line " << m.lineNumber();
            EXPECT_EQ(parts[0].tagName(), firstParts[0].tagName()) << "line " << m.lineNumber();
            EXPECT_EQ(parts[1].tagName(), firstParts[1].tagName()) << "line " << m.lineNumber();
        }
    }
}

TEST(ShippedConfig, NoKeyIsDuplicatedWithinALanguage) {
    for (const QString& lang : kLanguages) {
        QSet<QString> seen;
        for (const Message& m : messages(lang)) {
            EXPECT_FALSE(seen.contains(normalKey(m.key)))
                << lang.toStdString() << ": " << m.key.toStdString();
            seen.insert(normalKey(m.key));
        }
    }
}

TEST(ShippedConfig, BothLanguagesHoldTheSameKeys) {
    QSet<QString> english;
    QSet<QString> french;
    for (const Message& m : messages(kLanguages[0])) {
        english.insert(normalKey(m.key));
    }
    for (const Message& m : messages(kLanguages[1])) {
        french.insert(normalKey(m.key));
    }
    EXPECT_EQ(messages(kLanguages[0]).size(), messages(kLanguages[1]).size());
    EXPECT_TRUE(QSet<QString>(english).subtract(french).isEmpty())
        << "only in English: "
        << QStringList(QSet<QString>(english).subtract(french).values()).join(" | ").toStdString();
    EXPECT_TRUE(QSet<QString>(french).subtract(english).isEmpty())
        << "only in French: "
        << QStringList(QSet<QString>(french).subtract(english).values()).join(" | ").toStdString();
}

// Literal keys of the code, exactly as the code passes them.
const char* const kLiteralKeys[] = {
    "Quorvel Absent",
    "Are You Sure ? ",
    "Etes vous sur de vouloir changer la version actuelle ? ",
    "Ouvrir Fichier HEX",
    "Invalid File Name (QUORVEL_VX.XX.hex)",
    "Invalid Version Number",
    "This version number is lower than version Number 2.70, you need QUORVEL_V2.70.hex",
    "Warning : you must Upgrade to Firmware V2.70 or higher ",
    " The connected device firmware must be updated to v2.70 or higher. Would you like to "
    "proceed with firmware update?",
    " Unsupported hardware. Please contact Tessaluk",
    "erreur de saisie",
    "La saisie doit être comprise entre ",
    " et ",
    "La saisie n'est pas numérique",
    "Programmation terminée",
    "Les anciennes valeurs seront écrasées",
    "Date and Time Set",
    "Voulez Détruire le fichier ",
    "Programmation des sorties",
    "Electro Vanne Bist.",
    "Close",
    "Open",
    "Activer",
    "FrameSortie",
    "FrameCondition",
    "Page",
    "Programme",
    "Power on reset",
    "CRC errors",
    "Brown out errors",
    "Watch dog errors",
    "Soft Resets",
    "Vous devez saisir un N° de commande",
};

// Controls whose caption is translated under their name.
const char* const kCaptionControls[] = {
    // main window
    "Lire", "Ecrire", "Sortir", "Label16", "Label17", "FrameInformations", "Version",
    "LabelVersion", "NumeroSerie", "Label1", "DateProgrammation", "Label2", "txtCurrentTime",
    "lblCurrentTime", "Batterie", "LabelBatterie", "VMIN", "VMAX", "FrameManualActionDelay",
    "LabelManualActionDelayTime", "DaylightFrame", "EnableDaylightSaving", "FrameSummer",
    "FrameWinter", "LabelsemaineEte", "LabelMoisEte", "LabelJour", "Labelheure", "Labeldelta",
    "SetTime", "FrameMaintenance", "Seuilbatterie", "LabelVBatMin", "RazCtn", "Labelctn",
    "LabelILS", "CheckClockSpeed", "LabelCalibrationHorloge", "CommandCalibrationCLK", "ForceBoot",
    "Programmer", "Label15", "FrameMonitoringSorties", "NomSortie", "Activer", "Continu",
    "ArretProgramme", "FrameMessage", "MnuMode", "mnurapport", "nmuBootLoad", "mnuPLC",
    "MnuConnect", "mnuAide", "mnuApropos",
    // connection and output type dialogs
    "ViewAll", "ExitEtalonnage", "TypeeVarlin", "Selection",
    // programme editor
    "LireProg", "ImprimerProg", "DetruireProg", "EnregistrerProg", "SortirProgrammation", "Ajouter",
    "DetruireCondition", "ModifierCondition", "LabelHHMMSS", "LabelPeriode", "UniteSeconde",
    "LabelTemporisarion", "Label3", "LabelConditions", "FramevaleursDefaut", "Sorties",
    "FrameSortie", "FrameCondition",
    // production report, about box
    "LabelNumeroCommande", "PrintReport", "cmdSysInfo"};

// Controls that carry a help text under "AIDE_" and their name.
const char* const kHelpControls[] = {
    // main window
    "Lire", "Ecrire", "Sortir", "ListeLangues", "Madate", "Liste", "ValeurManualAction",
    "EnableDaylightSaving", "Semaine", "Mois", "Jour", "Heure", "DaylightAdjustment", "SetTime",
    "Seuilbatterie", "MinBat", "RazCtn", "ctn_text", "Ils", "CheckClockSpeed", "ValeurHorloge",
    "CommandCalibrationCLK", "ForceBoot", "Programmer", "ValeurNumeroSerie", "ListeSorties",
    "ValeurSortieLogique", "Activer", "Continu", "ArretProgramme",
    // connection and output type dialogs
    "ViewAll", "ExitEtalonnage", "TypeeVarlin", "Selection",
    // programme editor
    "LireProg", "ImprimerProg", "DetruireProg", "EnregistrerProg", "SortirProgrammation", "Ajouter",
    "DetruireCondition", "ModifierCondition", "NomFichier", "ValeurPeriode", "ValeurTemporisation",
    "HeureDebut", "HeureFin", "ListeJours", "ListeValeurLogique", "ValeurLogiqueDefaut", "Sorties",
    // production report, about box
    "Commande", "Commentaires", "PrintReport", "cmdSysInfo"};

TEST(ShippedConfig, KeysThatTheProgramLooksUpArePresent) {
    QStringList wanted;
    for (const char* k : kLiteralKeys) {
        wanted << QString::fromUtf8(k);
    }
    for (const char* k : kCaptionControls) {
        wanted << QString::fromUtf8(k);
    }
    for (const char* k : kHelpControls) {
        wanted << QStringLiteral("AIDE_") + QString::fromUtf8(k);
    }
    for (const QString& lang : kLanguages) {
        QSet<QString> present;
        for (const Message& m : messages(lang)) {
            present.insert(normalKey(m.key));
        }
        QStringList missing;
        for (const QString& k : wanted) {
            if (!present.contains(normalKey(k))) {
                missing << k;
            }
        }
        EXPECT_TRUE(missing.isEmpty())
            << lang.toStdString() << " lacks: " << missing.join(" | ").toStdString();
    }
}

TEST(ShippedConfig, NoTextIsABareNumber) {
    // A key looked up with a number as its default (the firmware file name
    // check passes "48") must have a real text here.
    for (const QString& lang : kLanguages) {
        for (const Message& m : messages(lang)) {
            bool numeric = false;
            m.text.trimmed().toDouble(&numeric);
            EXPECT_FALSE(numeric) << lang.toStdString() << ": " << m.key.toStdString() << " = "
                                  << m.text.toStdString();
        }
    }
}

TEST(ShippedConfig, ValueLabelsKeepTheDashesOfAnUnreadDevice) {
    // The production report tells an unread device by the caption "--" of
    // Version; the other value labels show the same until a read.
    for (const QString& lang : kLanguages) {
        for (const char* name :
             {"Version", "NumeroSerie", "DateProgrammation", "txtCurrentTime", "Batterie"}) {
            EXPECT_EQ(textOf(lang, QString::fromUtf8(name)), QStringLiteral("--"))
                << lang.toStdString() << ": " << name;
        }
    }
}

struct ListShape {
    const char* name;
    std::vector<double> values; // item data, row by row
    bool withState;             // fourth child: default state of the output
};

// The valve is output 0 with format 0, so that its value goes to the device;
// the inputs are numbered as the logic terms number them; the day codes are
// those of the firmware (12 = periodic at row 10); months and week ranks are
// what the device stores.
const ListShape kLists[] = {
    {"ListeSorties", {0}, true},
    {"ListeEntrees", {0, 1, 2, 3, 4}, false},
    {"ListeJours", {0, 8, 9, 1, 2, 3, 4, 5, 6, 7, 12}, false},
    {"ListeMois", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, false},
    {"ListeSemaines", {1, 2, 3, 4, 5}, false},
};

TEST(ShippedConfig, ListsHaveConsecutiveRowsAndTheirItemData) {
    for (const QString& lang : kLanguages) {
        const QDomElement l = language(QStringLiteral("Listes"), lang);
        ASSERT_FALSE(l.isNull()) << lang.toStdString();
        EXPECT_TRUE(onlyElements(l)) << lang.toStdString();
        for (const ListShape& shape : kLists) {
            SCOPED_TRACE(lang.toStdString() + " " + shape.name);
            QDomElement list;
            for (const QDomElement& e : elementChildren(l)) {
                if (e.tagName().toUpper() == QString::fromUtf8(shape.name).toUpper()) {
                    list = e;
                    break;
                }
            }
            ASSERT_FALSE(list.isNull());
            EXPECT_TRUE(onlyElements(list));
            const auto rows = elementChildren(list);
            ASSERT_EQ(rows.size(), shape.values.size());
            for (std::size_t i = 0; i < rows.size(); ++i) {
                SCOPED_TRACE("row " + std::to_string(i));
                EXPECT_EQ(rows[i].tagName(), QStringLiteral("Ligne"));
                EXPECT_TRUE(onlyElements(rows[i]));
                const auto cells = elementChildren(rows[i]);
                ASSERT_EQ(cells.size(), shape.withState ? 4u : 3u);
                EXPECT_FALSE(cells[0].text().trimmed().isEmpty());
                EXPECT_EQ(cells[1].tagName(), QStringLiteral("Index"));
                bool ok = false;
                EXPECT_EQ(cells[1].text().trimmed().toInt(&ok), static_cast<int>(i));
                EXPECT_TRUE(ok);
                EXPECT_EQ(cells[2].text().trimmed().toDouble(&ok), shape.values[i]);
                EXPECT_TRUE(ok);
                if (shape.withState) {
                    const QString state = cells[3].text().trimmed();
                    EXPECT_TRUE(state == QLatin1String("0") || state == QLatin1String("1"))
                        << state.toStdString();
                }
            }
        }
    }
}

TEST(ShippedConfig, PeriodicDayRowIsRowTenWithCodeTwelve) {
    // The editor takes row 10 of ListeJours as the periodic line; the rule
    // editor drops three leading rows and the last one and keeps the week.
    for (const QString& lang : kLanguages) {
        const std::vector<double> days = itemData(lang, QStringLiteral("ListeJours"));
        ASSERT_EQ(days.size(), 11u) << lang.toStdString();
        EXPECT_EQ(days[10], 12) << lang.toStdString();
        const std::vector<double> week(days.begin() + 3, days.end() - 1);
        EXPECT_EQ(week, (std::vector<double>{1, 2, 3, 4, 5, 6, 7})) << lang.toStdString();
    }
}

TEST(ShippedConfig, DaylightDefaultsAgreeWithTheRowsChosenAtStart) {
    const QDomElement conf = root().firstChildElement(QStringLiteral("Conf"));
    ASSERT_FALSE(conf.isNull());
    auto attribute = [&](const char* name) {
        const QString raw = conf.attribute(QString::fromUtf8(name), QStringLiteral("missing"));
        // Numbers are stored as the legacy conversion writes them: " 3".
        EXPECT_TRUE(raw.startsWith(QLatin1Char(' '))) << name << " = '" << raw.toStdString() << "'";
        bool ok = false;
        const double v = raw.trimmed().toDouble(&ok);
        EXPECT_TRUE(ok) << name << " = '" << raw.toStdString() << "'";
        return v;
    };
    EXPECT_EQ(attribute("DAYLIGHT_SAVING"), 1);
    EXPECT_EQ(attribute("OF_ETE_HIVER"), 60);
    EXPECT_EQ(attribute("OF_HEURE_ETE"), 2);
    EXPECT_EQ(attribute("OF_HEURE_HIVER"), 3);
    // Initialisation selects month rows 2 and 9, week row 4 and day row 6 of
    // the rule lists; the stored rule must name the same rows, or the first
    // start shows something else than the defaults.
    for (const QString& lang : kLanguages) {
        SCOPED_TRACE(lang.toStdString());
        const auto months = itemData(lang, QStringLiteral("ListeMois"));
        const auto weeks = itemData(lang, QStringLiteral("ListeSemaines"));
        const auto days = itemData(lang, QStringLiteral("ListeJours"));
        ASSERT_GE(months.size(), 10u);
        ASSERT_GE(weeks.size(), 5u);
        ASSERT_GE(days.size(), 10u);
        EXPECT_EQ(attribute("OF_MOIS_ETE"), months[2]);
        EXPECT_EQ(attribute("OF_MOIS_HIVER"), months[9]);
        const double packed = weeks[4] * 16 + days[3 + 6];
        EXPECT_EQ(attribute("OF_JOUR_ETE"), packed);
        EXPECT_EQ(attribute("OF_JOUR_HIVER"), packed);
    }
}

TEST(ShippedConfig, SwitchesAndWorkingSectionsArePresent) {
    const QDomElement r = root();
    const QDomElement splash = r.firstChildElement(QStringLiteral("Splash"));
    ASSERT_FALSE(splash.isNull());
    EXPECT_EQ(legacyBool(splash.text()), std::optional<bool>(true));
    const QDomElement maintenance = r.firstChildElement(QStringLiteral("Maintenance"));
    ASSERT_FALSE(maintenance.isNull());
    EXPECT_TRUE(legacyBool(maintenance.text()).has_value()) << maintenance.text().toStdString();
    EXPECT_EQ(r.firstChildElement(QStringLiteral("Langue")).text(), kLanguages.front());
    EXPECT_FALSE(r.firstChildElement(QStringLiteral("NomProgramme")).isNull());
    // A section that config.xml lacks is never imported from a programme file.
    const QDomElement conditions = section(QStringLiteral("CONDITIONS"));
    ASSERT_FALSE(conditions.isNull());
    EXPECT_FALSE(conditions.hasChildNodes());
    EXPECT_TRUE(onlyElements(r));
}

} // namespace
