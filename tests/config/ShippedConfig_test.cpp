// Checks on the config.xml that ships with the tool. The program reads this
// file by position and compares keys and names in upper case, so a slip in it
// (a duplicated key, a gap in the row numbers, a comment between two rows)
// only shows up at run time, on a technician's PC. These tests catch it first.

#include "config/LegacyNumber.h"

#include <QDomDocument>
#include <QFile>
#include <QSet>
#include <QStringList>
#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace {

QByteArray shippedBytes() {
    QFile file(QStringLiteral(QUORVEL_SHIPPED_CONFIG));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QDomElement root() {
    static const QDomDocument document = [] {
        QDomDocument d;
        d.setContent(shippedBytes());
        return d;
    }();
    return document.documentElement();
}

// How LitMessage compares keys.
QString normalKey(const QString& key) {
    return key.trimmed().toUpper();
}

std::vector<QDomElement> elementChildren(const QDomNode& parent) {
    std::vector<QDomElement> out;
    for (QDomElement e = parent.firstChildElement(); !e.isNull(); e = e.nextSiblingElement())
        out.push_back(e);
    return out;
}

// Children are read by position: anything but elements (a comment, stray
// text) would shift them.
bool onlyElements(const QDomNode& parent) {
    return static_cast<std::size_t>(parent.childNodes().count()) == elementChildren(parent).size();
}

// A child found by walking, its name compared in upper case.
QDomElement child(const QDomElement& parent, const QString& name) {
    for (const QDomElement& e : elementChildren(parent))
        if (e.tagName().toUpper() == name.toUpper())
            return e;
    return {};
}

QString languageName(const QDomElement& e) {
    const QDomNamedNodeMap attributes = e.attributes();
    for (int i = 0; i < attributes.count(); ++i)
        if (attributes.item(i).toAttr().name().toUpper() == QLatin1String("NOM"))
            return attributes.item(i).toAttr().value();
    return {};
}

QDomElement language(const QString& sectionName, const QString& name) {
    for (const QDomElement& e : elementChildren(child(root(), sectionName)))
        if (languageName(e).toUpper() == name.toUpper())
            return e;
    return {};
}

// Key and text of each message.
std::vector<std::pair<QString, QString>> messages(const QString& lang) {
    std::vector<std::pair<QString, QString>> out;
    for (const QDomElement& m : elementChildren(language(QStringLiteral("Messages"), lang))) {
        const auto parts = elementChildren(m);
        out.emplace_back(parts.size() > 0 ? parts[0].text() : QString(),
                         parts.size() > 1 ? parts[1].text() : QString());
    }
    return out;
}

const QStringList kLanguages = {QStringLiteral("English"), QString::fromUtf8("Français")};

std::vector<double> itemData(const QString& lang, const QString& list) {
    std::vector<double> out;
    // By its exact name, as shipped.
    for (const QDomElement& row :
         elementChildren(language("Listes", lang).firstChildElement(list))) {
        const auto cells = elementChildren(row);
        out.push_back(cells.size() > 2 ? cells[2].text().trimmed().toDouble() : -1);
    }
    return out;
}

TEST(ShippedConfig, ParsesAsUtf8WithTheConfigurationRootAndItsSections) {
    const QByteArray bytes = shippedBytes();
    EXPECT_TRUE(bytes.startsWith(R"(<?xml version="1.0" encoding="UTF-8"?>)"));
    QDomDocument d;
    QString error;
    int line = 0;
    ASSERT_TRUE(d.setContent(bytes, &error, &line)) << error.toStdString() << " line " << line;
    // The selecting operations use paths that begin with //Configuration/.
    const QDomElement r = d.documentElement();
    EXPECT_EQ(r.tagName(), QStringLiteral("Configuration"));
    EXPECT_TRUE(onlyElements(r));
    // Switches read as the runtime reads them: the words, or a number.
    EXPECT_EQ(qv::parseLegacyBoolean(r.firstChildElement("Splash").text()), true);
    EXPECT_TRUE(qv::parseLegacyBoolean(r.firstChildElement("Maintenance").text()).has_value());
    EXPECT_EQ(r.firstChildElement(QStringLiteral("Langue")).text(), kLanguages.front());
    EXPECT_FALSE(r.firstChildElement(QStringLiteral("NomProgramme")).isNull());
    // A section that config.xml lacks is never imported from a programme file.
    const QDomElement conditions = child(r, QStringLiteral("CONDITIONS"));
    ASSERT_FALSE(conditions.isNull());
    EXPECT_FALSE(conditions.hasChildNodes());

    // The program starts in "English"; the default output state is kept in
    // the first language of the list.
    for (const QString name : {"Messages", "Listes"}) {
        const QDomElement s = child(r, name);
        EXPECT_TRUE(onlyElements(s)) << name.toStdString();
        QStringList found;
        for (const QDomElement& e : elementChildren(s))
            found << languageName(e);
        EXPECT_EQ(found, kLanguages) << name.toStdString();
    }
}

TEST(ShippedConfig, MessagesAreAKeyAndAWordyTextShapedLikeTheFirst) {
    for (const QString& lang : kLanguages) {
        SCOPED_TRACE(lang.toStdString());
        const QDomElement l = language(QStringLiteral("Messages"), lang);
        EXPECT_TRUE(onlyElements(l));
        const auto all = elementChildren(l);
        ASSERT_FALSE(all.empty());
        // New keys are made by cloning the first message of the language.
        const QDomElement first = all.front();
        EXPECT_FALSE(first.hasAttributes());
        const auto firstParts = elementChildren(first);
        ASSERT_EQ(firstParts.size(), 2u);
        for (const QDomElement& m : all) {
            SCOPED_TRACE("line " + std::to_string(m.lineNumber()));
            const auto parts = elementChildren(m);
            ASSERT_EQ(parts.size(), 2u);
            EXPECT_TRUE(onlyElements(m));
            EXPECT_EQ(m.tagName(), first.tagName());
            for (int i = 0; i < 2; ++i) {
                EXPECT_EQ(parts[i].tagName(), firstParts[i].tagName());
                EXPECT_TRUE(parts[i].firstChildElement().isNull());
                EXPECT_FALSE(parts[i].text().trimmed().isEmpty());
            }
            // A key looked up with a number as its default (the firmware file
            // name check passes "48") must have a real text here.
            bool numeric = false;
            parts[1].text().trimmed().toDouble(&numeric);
            EXPECT_FALSE(numeric) << parts[1].text().toStdString();
        }
    }
}

TEST(ShippedConfig, BothLanguagesHoldTheSameKeysEachOnce) {
    QSet<QString> keys[2];
    for (int i = 0; i < 2; ++i) {
        for (const auto& [key, text] : messages(kLanguages[i])) {
            EXPECT_FALSE(keys[i].contains(normalKey(key)))
                << kLanguages[i].toStdString() << ": " << key.toStdString();
            keys[i].insert(normalKey(key));
        }
    }
    EXPECT_EQ(messages(kLanguages[0]).size(), messages(kLanguages[1]).size());
    EXPECT_EQ(QStringList(QSet<QString>(keys[0]).subtract(keys[1]).values()), QStringList())
        << "only in English";
    EXPECT_EQ(QStringList(QSet<QString>(keys[1]).subtract(keys[0]).values()), QStringList())
        << "only in French";
}

// Literal keys of the code, exactly as the code passes them.
const char* const kLiteralKeys[] = {
    "Quorvel Absent", "Are You Sure ? ", "Etes vous sur de vouloir changer la version actuelle ? ",
    "Ouvrir Fichier HEX", "Invalid File Name (QUORVEL_VX.XX.hex)", "Invalid Version Number",
    "This version number is lower than version Number 2.70, you need QUORVEL_V2.70.hex",
    "Warning : you must Upgrade to Firmware V2.70 or higher ",
    " The connected device firmware must be updated to v2.70 or higher. Would you like to "
    "proceed with firmware update?",
    " Unsupported hardware. Please contact Tessaluk", "erreur de saisie",
    "La saisie doit être comprise entre ", " et ", "La saisie n'est pas numérique",
    "Programmation terminée", "Les anciennes valeurs seront écrasées", "Date and Time Set",
    "Voulez Détruire le fichier ", "Programmation des sorties", "Electro Vanne Bist.", "Close",
    "Open", "Activer", "FrameSortie", "FrameCondition", "Page", "Programme", "Power on reset",
    "CRC errors", "Brown out errors", "Watch dog errors", "Soft Resets",
    "Vous devez saisir un N° de commande",
    // Failures the old program ended on, told in a box.
    "Overflow", "The version \"%1\" does not name a hardware code.",
    "The report file %1 cannot be opened: %2", "The report could not be written to %1: %2",
    "The file %1 cannot be read: %2", "The file %1 cannot be written: %2",
    "The file %1 cannot be deleted: %2", "The file %1 cannot be written.",
    "The printer could not be started.", "Cannot open the configuration file \"%1\": no such file",
    "Cannot open the configuration file \"%1\": %2",
    "Cannot read the configuration file \"%1\": %2",
    "The configuration file \"%1\" is not well-formed XML: %2 (line %3, column %4)",
    "The configuration file \"%1\" has no root element",
    "Cannot save the configuration file \"%1\": %2", "%1 is not part of this version of the tool.",
    "The programme editor", "The production report", "The firmware update",
    "No controller can be reached: %1", "the USB devices cannot be listed: %1",
    "USB cannot be used on this system (%1); no controller on USB will be listed"};

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
    for (const char* k : kLiteralKeys)
        wanted << QString::fromUtf8(k);
    for (const char* k : kCaptionControls)
        wanted << QString::fromUtf8(k);
    for (const char* k : kHelpControls)
        wanted << QStringLiteral("AIDE_") + QString::fromUtf8(k);
    for (const QString& lang : kLanguages) {
        QHash<QString, QString> present;
        for (const auto& [key, text] : messages(lang))
            present.insert(normalKey(key), text);
        QStringList missing;
        for (const QString& k : wanted)
            if (!present.contains(normalKey(k)))
                missing << k;
        EXPECT_EQ(missing, QStringList()) << lang.toStdString();
        // The production report tells an unread device by the caption "--" of
        // Version; the other value labels show the same until a read.
        for (const char* name :
             {"Version", "NumeroSerie", "DateProgrammation", "txtCurrentTime", "Batterie"})
            EXPECT_EQ(present.value(normalKey(name)), QStringLiteral("--"))
                << lang.toStdString() << ": " << name;
    }
}

// The valve is output 0 with format 0, so that its value goes to the device;
// the inputs are numbered as the logic terms number them; the day codes are
// those of the firmware (row 10, code 12, is the periodic line; the rule
// editor drops three leading rows and the last one and keeps the week);
// months and week ranks are what the device stores.
struct ListShape {
    const char* name;
    std::vector<double> values; // item data, row by row
    bool withState;             // fourth child: default state of the output
};
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
        EXPECT_TRUE(onlyElements(l)) << lang.toStdString();
        for (const ListShape& shape : kLists) {
            SCOPED_TRACE(lang.toStdString() + " " + shape.name);
            const QDomElement list = child(l, QString::fromUtf8(shape.name));
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
                EXPECT_TRUE(!shape.withState ||
                            QStringList({"0", "1"}).contains(cells.back().text().trimmed()));
            }
        }
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
        ASSERT_TRUE(months.size() >= 10u && weeks.size() >= 5u && days.size() >= 10u);
        EXPECT_EQ(attribute("OF_MOIS_ETE"), months[2]);
        EXPECT_EQ(attribute("OF_MOIS_HIVER"), months[9]);
        const double packed = weeks[4] * 16 + days[3 + 6];
        EXPECT_EQ(attribute("OF_JOUR_ETE"), packed);
        EXPECT_EQ(attribute("OF_JOUR_HIVER"), packed);
    }
}

} // namespace
