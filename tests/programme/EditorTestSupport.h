#pragma once

#include "ProgrammeTestSupport.h"
#include "RecordingDialogs.h"
#include "config/ConfigDocument.h"
#include "programme/Conditions.h"
#include "programme/ProgrammeEditor.h"
#include "programme/ProgrammeStore.h"
#include "view/MapConsoleView.h"

#include <QFile>
#include <QMap>
#include <QTemporaryDir>
#include <deque>
#include <gtest/gtest.h>
#include <memory>

namespace qv::test {

// The editor's form as named values, with the pickers and colours that
// ConsoleView has no words for.
class FakeEditorView : public MapConsoleView, public ProgrammationControls {
public:
    void setBackground(const QString& c, std::uint32_t rgb) override { backgrounds[c] = rgb; }
    std::uint32_t background(const QString& c) const override {
        return backgrounds.value(c, kFondValide);
    }
    void setDateTime(const QString& c, const QDateTime& value) override { moments[c] = value; }
    QDateTime dateTime(const QString& c) const override { return moments.value(c); }
    void setDisplayFormat(const QString& c, const QString& format) override { formats[c] = format; }
    QString displayFormat(const QString& c) const override { return formats.value(c); }

    QMap<QString, std::uint32_t> backgrounds;
    QMap<QString, QDateTime> moments;
    QMap<QString, QString> formats;
};

// The window's dialogs, answered from queues; an empty queue is a cancel.
class FakeEditorHost : public ProgrammationHost {
public:
    QString ouvrirFichier(const FileDialogRequest& request) override {
        requests.push_back(request);
        return next(openAnswers);
    }
    QString enregistrerFichier(const FileDialogRequest& request) override {
        requests.push_back(request);
        return next(saveAnswers);
    }
    bool choisirImprimante() override { return printerChosen; }
    void imprimer(const ProgrammePrintout& printout) override { printed.push_back(printout); }
    void fermer() override { ++closed; }

    std::deque<QString> openAnswers;
    std::deque<QString> saveAnswers;
    std::vector<FileDialogRequest> requests;
    bool printerChosen = true;
    std::vector<ProgrammePrintout> printed;
    int closed = 0;

private:
    static QString next(std::deque<QString>& answers) {
        if (answers.empty())
            return QString();
        QString answer = answers.front();
        answers.pop_front();
        return answer;
    }
};

// The main form as the editor sees it: its language list, its device.
class FakeMainScreen : public MainScreenAccess {
public:
    QString langue() const override { return language; }
    QString premiereLangue() const override { return firstLanguage; }
    bool timeOut() const override { return timedOut; }
    int LitEEprom(int adresse) override {
        reads.push_back(adresse);
        return eeprom.value(adresse, 0);
    }
    QStringList valeursSortieLogique() const override { return states; }

    QString language = QStringLiteral("English");
    QString firstLanguage = QStringLiteral("English");
    bool timedOut = false;
    QMap<int, int> eeprom;
    std::vector<int> reads;
    QStringList states = {QStringLiteral("Closed"), QStringLiteral("Open")};
};

// The editor over a scratch copy of the shipped config.xml, on a machine
// with a decimal comma, at a fixed moment.
class EditorFixture : public ::testing::Test {
protected:
    QTemporaryDir dir;
    QString configPath;
    std::unique_ptr<ConfigDocument> config;
    Conditions conditions;
    FakeEditorView view;
    FakeEditorHost host;
    FakeMainScreen main;
    RecordingDialogs dialogs;
    std::unique_ptr<ProgrammeEditor> editor;
    QDateTime now{QDate(2026, 3, 10), QTime(14, 30, 0)};
    QLocale locale{QLocale::French, QLocale::France};

    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        configPath = dir.filePath(QStringLiteral("config.xml"));
        ASSERT_TRUE(QFile::copy(QStringLiteral(QUORVEL_SHIPPED_CONFIG), configPath));
        QFile::setPermissions(configPath, QFile::ReadOwner | QFile::WriteOwner);
        config = std::make_unique<ConfigDocument>(configPath);
        makeEditor();
    }

    // A form as the designer left it, and its logic.
    void makeEditor() {
        view = FakeEditorView();
        declareControls();
        editor =
            std::make_unique<ProgrammeEditor>(view, view, host, main, *config, conditions, dialogs);
        editor->setClock([this] { return now; });
        editor->setLocale(locale);
    }

    // The form opened again, as mnuPLC opens it.
    void reopen() {
        makeEditor();
        editor->Form_Load();
    }

    QString text(const char* control) const { return view.text(QString::fromLatin1(control)); }
    int row(const char* control) const { return view.currentRow(QString::fromLatin1(control)); }
    QStringList rowTexts(const char* control) const {
        QStringList texts;
        for (const auto& r : view.rows(QString::fromLatin1(control)))
            texts << r.text;
        return texts;
    }

    // The operator's edits, each with the event the window would raise.
    void chooseDay(int dayRow) {
        view.setCurrentRow(QStringLiteral("ListeJours"), dayRow);
        editor->ListeJours_Click();
    }
    void chooseValue(int valueRow) {
        view.setCurrentRow(QStringLiteral("ListeValeurLogique"), valueRow);
    }
    void typeDuration(const QString& text) {
        view.setText(QStringLiteral("ValeurTemporisation"), text);
        editor->ValeurTemporisation_Change();
    }
    void typePeriod(const QString& text) {
        view.setText(QStringLiteral("ValeurPeriode"), text);
        editor->ValeurPeriode_Change();
    }
    void selectLine(int line) {
        view.setCurrentRow(QStringLiteral("ListeConditions"), line);
        editor->ListeConditions_Click();
    }

    // The programme as config.xml holds it now.
    Conditions stored() const {
        Conditions lines;
        LitConditions(*config, lines);
        return lines;
    }

    QString configText() const {
        QFile f(configPath);
        if (!f.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(f.readAll());
    }

    // The default state of the valve as config.xml keeps it.
    QString storedDefaultState() const {
        const auto rows =
            config->RemplitListe(QStringLiteral("English"), QStringLiteral("ListeSorties"));
        return rows && !rows->empty() ? rows->front().extra : QString();
    }

private:
    // The designer's controls, each "Name" or "Name=Caption".
    void declare(ConsoleView::Kind kind, std::initializer_list<const char*> controls) {
        for (const char* control : controls) {
            const QStringList parts = QString::fromUtf8(control).split(QLatin1Char('='));
            view.add(parts[0], kind);
            view[parts[0]].text = parts.value(1);
        }
    }
    void declareControls() {
        using K = ConsoleView::Kind;
        declare(K::Other, {"Programmation=Programmation", "Image1"});
        declare(K::Button,
                {"LireProg=Lire Programmation", "ImprimerProg=Imprimer Programmation",
                 "DetruireProg=Détruire Programmation", "EnregistrerProg=Enregistrer Programmation",
                 "SortirProgrammation=Quitter", "Ajouter=Ajouter une condition",
                 "DetruireCondition=Détruire la condition",
                 "ModifierCondition=Enregistrer la condition"});
        declare(K::Frame,
                {"FrameMessage=Message", "FrameCondition=Condition", "FrameSortie=Nom de la Sortie",
                 "FramevaleursDefaut=Valeurs par défaut"});
        declare(K::Label, {"Message=Message", "LabelHHMMSS_0=hh:mm:ss", "LabelHHMMSS_1=hh:mm:ss",
                           "LabelPeriode=Période (Jours)", "UniteSeconde=Sec.",
                           "LabelTemporisarion=Temporisation", "Label3=Programmation Journalière",
                           "LabelConditions=Conditions"});
        declare(K::TextBox, {"NomFichier", "ValeurPeriode=0", "ValeurTemporisation=3600"});
        declare(K::ListBox, {"ListeConditions"});
        declare(K::ComboBox, {"ListeSorties=ListesSorties", "ListeJours", "ListeValeurLogique",
                              "ValeurLogiqueDefaut_0"});
        declare(K::DatePicker, {"HeureDebut", "HeureFin"});
        declare(K::OptionButton, {"Sorties_0=Sortie 1"});
    }
};

} // namespace qv::test
