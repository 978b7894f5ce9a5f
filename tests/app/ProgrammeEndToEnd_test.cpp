// A programme from the operator's first click to the controller's memory:
// six lines edited in the editor opened from mnuPLC, saved to a .prg, read
// back, one deleted, then written by Ecrire; the simulated controller's
// programme image is read byte by byte.
#include "AppTestSupport.h"
#include "ProgrammationOpener.h"
#include "programme/widgets/ProgrammationWindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <iterator>
#include <vector>

namespace qv::test {
namespace {

// One line as the operator enters it. `row` is the row of ListeJours
// (0 none, 1 every day, 2 Monday to Friday, 5 Wednesday, 9 Sunday, 10
// periodic), `code` the day code it stands for. A periodic line starts on
// `start` (day and month) at `time` (hours, minutes) every `period` days.
struct Line {
    int row;
    int code;
    QTime time;
    int value; // row of ListeValeurLogique: 0 Close, 1 Open
    const char* typed;
    int duration; // what the line keeps: above 32000 is cut to 32000
    QDate start;  // periodic lines only
    int period;
};
const Line kLines[] = {
    {0, 0, QTime(0, 0, 0), 1, "300", 300, QDate(), 0},
    {1, 8, QTime(6, 30, 15), 0, "1800", 1800, QDate(), 0},
    {10, 12, QTime(5, 45), 1, "40000", 32000, QDate(2026, 4, 20), 7},
    {2, 9, QTime(7, 0, 0), 1, "600", 600, QDate(), 0},
    {5, 3, QTime(18, 59, 59), 0, "0", 0, QDate(), 0},
    {9, 7, QTime(23, 1, 2), 1, "65", 65, QDate(), 0},
};
constexpr int kDeleted = 2;
constexpr int kImageStart = 48;

// A line as the programme keeps it: day, time fields, value, duration.
QString kept(const Condition& c) {
    return QString::asprintf("sortie %d jour %d %d:%d:%d fin %d/%d valeur %g duree %d", c.sortie,
                             c.Jour, c.Heure, c.Minute, c.Seconde, c.PlageFinHeure,
                             c.PlageFinMinute, c.Valeur, c.Temporisation);
}
QString expected(const Line& l) {
    Condition c;
    c.sortie = 3;
    c.Jour = static_cast<std::int16_t>(l.code);
    c.Heure = static_cast<std::int16_t>(l.time.hour());
    c.Minute = static_cast<std::int16_t>(l.time.minute());
    c.Seconde = static_cast<std::int16_t>(l.code == JourPeriode ? l.period : l.time.second());
    c.PlageFinHeure = static_cast<std::int16_t>(l.start.isValid() ? l.start.month() : 0);
    c.PlageFinMinute = static_cast<std::int16_t>(l.start.isValid() ? l.start.day() : 0);
    c.Valeur = l.value;
    c.Temporisation = static_cast<std::int16_t>(l.duration);
    return kept(c);
}

// The image of one line: its 13-byte record, then its term if it has one.
std::vector<int> image(const Line& l) {
    const int low = l.duration & 0xFF, high = l.duration >> 8;
    std::vector<int> bytes{3, l.code == 0 ? 0 : 1, 0, l.value, 0, 0, 0, 0, 0, 0, 0, low, high};
    const QTime t = l.time;
    if (l.code == JourPeriode)
        bytes.insert(bytes.end(), {11, 0, l.start.day(), l.start.month(), t.hour(), t.minute(),
                                   l.period, 0, 0, 0});
    else if (l.code != 0)
        bytes.insert(bytes.end(), {9, 0, l.code, t.hour(), t.minute(), t.second(), 0, 0, 0, 0});
    return bytes;
}

class ProgrammeEndToEnd : public WindowFixture {
protected:
    QTimer watcher;
    ProgrammationWindow* editor = nullptr;
    QString prg;
    std::vector<bool> asked; // the file dialogs: true to save

    void SetUp() override {
        WindowFixture::SetUp();
        installProgrammationEditor(*window, *config, conditions);
        startWindow();
        ASSERT_EQ(text("NumeroSerie"), QStringLiteral("90601234"));
        prg = dir.filePath(QStringLiteral("e2e.prg"));
        // The wait after the restart of Ecrire: ticks of 10 ms instead of a second.
        QObject::connect(&watcher, &QTimer::timeout, [this] {
            if (window->testTimer().isActive() && window->testTimer().interval() > 10)
                window->testTimer().setInterval(10);
        });
        watcher.start(2);
    }

    template <typename T> T* child(const char* name) {
        T* w = editor->findChild<T*>(QString::fromLatin1(name));
        EXPECT_NE(w, nullptr) << name;
        return w;
    }
    void click(const char* button) {
        QTest::mouseClick(child<QPushButton>(button), Qt::LeftButton);
    }
    void type(const char* edit, const QString& text) {
        auto* e = child<QLineEdit>(edit);
        e->selectAll();
        QTest::keyClick(e, Qt::Key_Backspace);
        QTest::keyClicks(e, text);
    }
    void chooseDay(int row) {
        auto* c = child<QComboBox>("ListeJours");
        c->setCurrentIndex(row);
        Q_EMIT c->activated(row);
    }
    QStringList rows() {
        QStringList names;
        auto* list = child<QListWidget>("ListeConditions");
        for (int i = 0; i < list->count(); ++i)
            names << list->item(i)->text();
        return names;
    }
    QStringList lines() const {
        QStringList all;
        for (const Condition& c : conditions)
            all << kept(c);
        return all;
    }

    void enter(const Line& l) {
        click("Ajouter");
        chooseDay(l.row);
        if (l.code == JourPeriode) {
            child<QDateTimeEdit>("HeureDebut")->setDate(l.start);
            child<QDateTimeEdit>("HeureFin")->setTime(l.time);
            type("ValeurPeriode", QString::number(l.period));
        } else {
            child<QDateTimeEdit>("HeureDebut")->setTime(l.time);
        }
        child<QComboBox>("ListeValeurLogique")->setCurrentIndex(l.value);
        type("ValeurTemporisation", QString::fromLatin1(l.typed));
        click("ModifierCondition");
    }

    void deleteAll() {
        for (int guard = 0; guard < 10 && !rows().isEmpty(); ++guard)
            click("DetruireCondition");
        ASSERT_TRUE(rows().isEmpty());
        EXPECT_EQ(conditions.Count(), 0);
    }

    // Everything done inside the modal editor.
    void edit(ProgrammationWindow& w) {
        editor = &w;
        w.setFileChooser([this](const FileDialogRequest&, bool save) {
            asked.push_back(save);
            return prg;
        });
        // What the first read brought goes first.
        deleteAll();

        QStringList all, names;
        const QString caption = child<QAbstractButton>("Sorties_0")->text();
        for (const Line& l : kLines) {
            enter(l);
            all << expected(l);
            names << caption + QLatin1Char('-') + QString::number(names.size() + 1);
        }
        EXPECT_EQ(rows(), names);
        EXPECT_EQ(lines(), all);
        click("Ajouter");
        EXPECT_EQ(rows(), names) << "a seventh line is refused";
        EXPECT_EQ(lines(), all);

        click("EnregistrerProg");
        ASSERT_TRUE(QFileInfo::exists(prg));
        EXPECT_EQ(child<QLineEdit>("NomFichier")->text(), QStringLiteral("e2e.prg"));

        deleteAll();
        click("LireProg");
        EXPECT_EQ(rows(), names) << "the six lines read back from the file";
        EXPECT_EQ(lines(), all);

        // The deleted line's fields are committed into the line that takes
        // its place: the image reads as though its successor had gone.
        child<QListWidget>("ListeConditions")->setCurrentRow(kDeleted);
        click("DetruireCondition");
        names.removeAt(kDeleted);
        all.removeAt(kDeleted + 1);
        EXPECT_EQ(rows(), names);
        EXPECT_EQ(lines(), all);
        EXPECT_TRUE(rig->dialogs.boxes().empty());
        click("SortirProgrammation");
    }
};

TEST_F(ProgrammeEndToEnd, SixLinesEditedSavedReadBackOneDeletedAndWrittenToTheController) {
    bool opened = false;
    QTimer modal;
    QObject::connect(&modal, &QTimer::timeout, [&] {
        auto* w = qobject_cast<ProgrammationWindow*>(QApplication::activeModalWidget());
        if (!w || opened)
            return;
        opened = true;
        edit(*w);
        if (w->isVisible())
            w->reject(); // a failed step leaves the editor: the test goes on
    });
    modal.start(10);
    auto* mnuPLC = window->findChild<QAction*>(QStringLiteral("mnuPLC"));
    ASSERT_NE(mnuPLC, nullptr);
    ASSERT_TRUE(mnuPLC->isEnabled());
    mnuPLC->trigger();
    for (int i = 0; i < 2000 && !opened; ++i)
        QTest::qWait(10);
    modal.stop();
    ASSERT_TRUE(opened) << "the editor came up modal";
    ASSERT_FALSE(HasFatalFailure());
    EXPECT_EQ(asked, (std::vector<bool>{true, false})) << "one save, one open";
    ASSERT_EQ(conditions.Count(), static_cast<int>(std::size(kLines)) - 1);

    rig->dialogs.clear();
    QTest::mouseClick(window->findChild<QPushButton*>(QStringLiteral("Ecrire")), Qt::LeftButton);
    ASSERT_TRUE(settle(*window));
    ASSERT_EQ(rig->dialogs.boxes().size(), 2u) << "the question, then the end";
    EXPECT_EQ(rig->dialogs.boxes()[0].style, MsgBox::OkCancel);

    // Read line by line, as many bytes as each expected line has, in hex.
    const SimDevice device = *bus->device(quorvelId());
    int address = kImageStart;
    const auto hex = [&](const std::vector<int>& bytes) {
        QStringList want, got;
        for (int byte : bytes) {
            want << QString::number(byte, 16);
            got << QString::number(device.eeprom(address++), 16);
        }
        return std::pair(want.join(QLatin1Char(' ')), got.join(QLatin1Char(' ')));
    };
    QStringList want, got;
    for (int i = 0; i < static_cast<int>(std::size(kLines)); ++i)
        if (i != kDeleted + 1) {
            const auto [w, g] = hex(image(kLines[i]));
            want << w;
            got << g;
        }
    const auto [w, g] = hex({255});
    EXPECT_EQ(got << g, want << w) << "from EEPROM " << kImageStart;
}

} // namespace
} // namespace qv::test
