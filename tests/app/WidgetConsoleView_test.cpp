// The view over real widgets must behave as the console logic expects of
// any ConsoleView: captions and texts by name, rows with their item data,
// states set from code without running the operator's handlers.
#include "AppTestSupport.h"
#include "view/widgets/WidgetConsoleView.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>

namespace qv::test {
namespace {

using Kind = ConsoleView::Kind;

// A small form with one control of each kind, named as forms name them.
class Form : public QMainWindow {
public:
    Form() {
        setObjectName(QStringLiteral("Form"));
        auto* central = new QWidget(this);
        central->setObjectName(QStringLiteral("centralwidget"));
        setCentralWidget(central);
        auto* layout = new QVBoxLayout(central);
        layout->setObjectName(QStringLiteral("layout"));
        frame = new QGroupBox(QStringLiteral("Frame"), central);
        frame->setObjectName(QStringLiteral("FrameA"));
        layout->addWidget(frame);
        auto* inner = new QVBoxLayout(frame);
        const auto add = [&](QWidget* w, const char* name) {
            w->setObjectName(QString::fromLatin1(name));
            inner->addWidget(w);
        };
        add(label = new QLabel(QStringLiteral("label")), "Label_1");
        add(button = new QPushButton(QStringLiteral("button")), "Bouton");
        add(check = new QCheckBox(QStringLiteral("check")), "Coche");
        add(option = new QRadioButton(QStringLiteral("option")), "Option_0");
        add(edit = new QLineEdit, "Saisie");
        add(combo = new QComboBox, "Liste");
        add(list = new QListWidget, "ListeB");
        add(date = new QDateEdit, "Madate");
        add(bar = new QProgressBar, "Barre");
        add(picture = new QLabel, "Image1");
        picture->setProperty("consoleKind", QStringLiteral("Other"));
        menu = menuBar()->addMenu(QStringLiteral("menu"));
        menu->setObjectName(QStringLiteral("mnuMenu_0"));
        action = menu->addAction(QStringLiteral("action"));
        action->setObjectName(QStringLiteral("mnuEntree"));
    }

    QGroupBox* frame;
    QLabel* label;
    QPushButton* button;
    QCheckBox* check;
    QRadioButton* option;
    QLineEdit* edit;
    QComboBox* combo;
    QListWidget* list;
    QDateEdit* date;
    QProgressBar* bar;
    QLabel* picture;
    QMenu* menu;
    QAction* action;
};

class WidgetConsoleViewTest : public ::testing::Test {
protected:
    Form form;
    WidgetConsoleView view{&form};
};

TEST_F(WidgetConsoleViewTest, CaptionsAndTextsRoundTripByName) {
    struct Case {
        const char* control;
        QString text;
        std::function<QString()> shown; // what the widget itself displays
    };
    const std::vector<Case> cases = {
        {"Label_1", QStringLiteral("Version"), [&] { return form.label->text(); }},
        {"Bouton", QStringLiteral("Lire"), [&] { return form.button->text(); }},
        {"Coche", QStringLiteral("Enable"), [&] { return form.check->text(); }},
        {"Option_0", QStringLiteral("Type"), [&] { return form.option->text(); }},
        {"FrameA", QStringLiteral("Informations"), [&] { return form.frame->title(); }},
        {"Saisie", QStringLiteral("7,2"), [&] { return form.edit->text(); }},
        {"mnuMenu_0", QStringLiteral("?"), [&] { return form.menu->title(); }},
        {"mnuEntree", QStringLiteral("A propos"), [&] { return form.action->text(); }},
        {"Madate", QStringLiteral("2026-11-21"),
         [&] { return form.date->date().toString(Qt::ISODate); }},
        {"Form", QStringLiteral("TESSALUK Quorvel"), [&] { return form.windowTitle(); }},
    };
    for (const Case& c : cases) {
        const QString name = QString::fromLatin1(c.control);
        view.setText(name, c.text);
        EXPECT_EQ(c.shown(), c.text) << c.control;
        EXPECT_EQ(view.text(name), c.text) << c.control;
    }
}

TEST_F(WidgetConsoleViewTest, UnknownControlsAreHarmless) {
    view.setText(QStringLiteral("Absent"), QStringLiteral("x"));
    view.setEnabled(QStringLiteral("Absent"), false);
    EXPECT_EQ(view.text(QStringLiteral("Absent")), QString());
    EXPECT_FALSE(view.isEnabled(QStringLiteral("Absent")));
    EXPECT_TRUE(view.rows(QStringLiteral("Absent")).empty());
    EXPECT_EQ(view.currentRow(QStringLiteral("Absent")), -1);
}

TEST_F(WidgetConsoleViewTest, RowsKeepTheirItemDataInCombosAndLists) {
    const std::vector<ConsoleView::Row> rows = {{QStringLiteral("January"), 1},
                                                {QStringLiteral("March"), 3},
                                                {QStringLiteral("Last"), 5.5}};
    for (const char* control : {"Liste", "ListeB"}) {
        SCOPED_TRACE(control);
        const QString name = QString::fromLatin1(control);
        view.setCurrentRow(name, 0);
        view.setRows(name, rows);
        // A refilled list has nothing chosen: the old control behaved so.
        EXPECT_EQ(view.currentRow(name), -1);
        const auto back = view.rows(name);
        ASSERT_EQ(back.size(), rows.size());
        for (size_t i = 0; i < rows.size(); ++i) {
            EXPECT_EQ(back[i].text, rows[i].text);
            EXPECT_DOUBLE_EQ(back[i].itemData, rows[i].itemData);
        }
        view.setCurrentRow(name, 1);
        EXPECT_EQ(view.currentRow(name), 1);
        EXPECT_EQ(view.text(name), QStringLiteral("March"));
        view.setText(name, QStringLiteral("Last"));
        EXPECT_EQ(view.currentRow(name), 2);
        view.setRowText(name, 2, QStringLiteral("Dernière"));
        EXPECT_EQ(view.text(name), QStringLiteral("Dernière"));
        view.setRowText(name, 7, QStringLiteral("ignored"));
        EXPECT_EQ(view.rows(name).size(), 3u);
        view.setCurrentRow(name, 9);
        EXPECT_EQ(view.currentRow(name), -1);
    }
}

TEST_F(WidgetConsoleViewTest, StatesSetFromCodeRunNoHandler) {
    int handlers = 0;
    const auto count = [&] { ++handlers; };
    QObject::connect(form.check, &QCheckBox::clicked, count);
    QObject::connect(form.check, &QCheckBox::toggled, count);
    QObject::connect(form.combo, &QComboBox::currentIndexChanged, count);
    QObject::connect(form.list, &QListWidget::currentRowChanged, count);
    QObject::connect(form.edit, &QLineEdit::textChanged, count);

    view.setChecked(QStringLiteral("Coche"), true);
    EXPECT_TRUE(form.check->isChecked());
    EXPECT_TRUE(view.isChecked(QStringLiteral("Coche")));
    view.setRows(QStringLiteral("Liste"), {{QStringLiteral("a"), 0}, {QStringLiteral("b"), 1}});
    view.setCurrentRow(QStringLiteral("Liste"), 1);
    view.setRows(QStringLiteral("ListeB"), {{QStringLiteral("a"), 0}});
    view.setCurrentRow(QStringLiteral("ListeB"), 0);
    view.setText(QStringLiteral("Saisie"), QStringLiteral("2"));
    EXPECT_EQ(handlers, 0);

    // The operator's click still gets through.
    form.check->click();
    EXPECT_GT(handlers, 0);
}

TEST_F(WidgetConsoleViewTest, ACheckBoxHasItsGreyStateWhichIsNotChecked) {
    int handlers = 0;
    QObject::connect(form.check, &QCheckBox::stateChanged, [&] { ++handlers; });
    for (const int state : {2, 1, 2, 0}) {
        SCOPED_TRACE(state);
        view.setCheckState(QStringLiteral("Coche"), state);
        EXPECT_EQ(view.checkState(QStringLiteral("Coche")), state);
        EXPECT_EQ(view.isChecked(QStringLiteral("Coche")), state == 1);
        EXPECT_EQ(form.check->checkState() == Qt::PartiallyChecked, state == 2);
    }
    view.setChecked(QStringLiteral("Coche"), true);
    EXPECT_EQ(view.checkState(QStringLiteral("Coche")), 1);
    EXPECT_EQ(handlers, 0) << "states set from code run no handler";
}

TEST_F(WidgetConsoleViewTest, EnabledAndVisibleAreTheControlsOwnSettings) {
    // A control keeps its own setting whatever its frame or window does, as
    // the logic reads back what it set.
    form.frame->setEnabled(false);
    EXPECT_TRUE(view.isEnabled(QStringLiteral("Bouton")));
    view.setEnabled(QStringLiteral("Bouton"), false);
    EXPECT_FALSE(view.isEnabled(QStringLiteral("Bouton")));
    form.frame->setEnabled(true);
    EXPECT_FALSE(form.button->isEnabled());

    EXPECT_FALSE(form.isVisible());
    EXPECT_TRUE(view.isVisible(QStringLiteral("Bouton")));
    view.setVisible(QStringLiteral("Bouton"), false);
    EXPECT_FALSE(view.isVisible(QStringLiteral("Bouton")));

    view.setEnabled(QStringLiteral("mnuEntree"), false);
    EXPECT_FALSE(form.action->isEnabled());
    EXPECT_FALSE(view.isEnabled(QStringLiteral("mnuEntree")));
    view.setVisible(QStringLiteral("mnuEntree"), false);
    EXPECT_FALSE(view.isVisible(QStringLiteral("mnuEntree")));
}

TEST_F(WidgetConsoleViewTest, ProgressKeepsItsValueWhenAskedForOneOutOfRange) {
    view.setProgress(QStringLiteral("Barre"), 0, 5, 3);
    EXPECT_EQ(view.progressValue(QStringLiteral("Barre")), 3);
    EXPECT_EQ(form.bar->maximum(), 5);
    view.setProgress(QStringLiteral("Barre"), 0, 5, 9);
    EXPECT_EQ(view.progressValue(QStringLiteral("Barre")), 3);
}

TEST_F(WidgetConsoleViewTest, ControlsListsNamedWidgetsAndActionsWithTheirKind) {
    const std::map<QString, Kind> expected = {
        {QStringLiteral("FrameA"), Kind::Frame},
        {QStringLiteral("Label_1"), Kind::Label},
        {QStringLiteral("Bouton"), Kind::Button},
        {QStringLiteral("Coche"), Kind::CheckBox},
        {QStringLiteral("Option_0"), Kind::OptionButton},
        {QStringLiteral("Saisie"), Kind::TextBox},
        {QStringLiteral("Liste"), Kind::ComboBox},
        {QStringLiteral("ListeB"), Kind::ListBox},
        {QStringLiteral("Madate"), Kind::DatePicker},
        {QStringLiteral("Barre"), Kind::ProgressBar},
        {QStringLiteral("Image1"), Kind::Other},
        {QStringLiteral("mnuMenu_0"), Kind::MenuEntry},
        {QStringLiteral("mnuEntree"), Kind::MenuEntry},
        {QStringLiteral("centralwidget"), Kind::Other},
    };
    std::map<QString, Kind> listed;
    for (const ConsoleView::Control& c : view.controls()) {
        EXPECT_FALSE(c.name.startsWith(QLatin1String("qt_"))) << c.name.toStdString();
        EXPECT_NE(c.name, QStringLiteral("layout")) << "layouts are no controls";
        EXPECT_NE(c.name, QStringLiteral("Form")) << "the form itself is no control";
        EXPECT_TRUE(listed.emplace(c.name, c.kind).second) << "twice: " << c.name.toStdString();
    }
    for (const auto& [name, kind] : expected) {
        ASSERT_TRUE(listed.count(name)) << name.toStdString();
        EXPECT_EQ(listed[name], kind) << name.toStdString();
    }
}

TEST_F(WidgetConsoleViewTest, FocusSelectionAndToolTips) {
    form.show();
    QApplication::setActiveWindow(&form);
    view.setText(QStringLiteral("Saisie"), QStringLiteral("abc"));
    view.setFocus(QStringLiteral("Saisie"));
    view.selectAll(QStringLiteral("Saisie"));
    EXPECT_TRUE(form.edit->hasFocus());
    EXPECT_EQ(form.edit->selectedText(), QStringLiteral("abc"));
    view.setToolTip(QStringLiteral("Saisie"), QStringLiteral("help"));
    view.setToolTip(QStringLiteral("mnuEntree"), QStringLiteral("menu help"));
    EXPECT_EQ(form.edit->toolTip(), QStringLiteral("help"));
    EXPECT_EQ(form.action->toolTip(), QStringLiteral("menu help"));
}

TEST_F(WidgetConsoleViewTest, BusyCursorNestsAndComesBackAsItWas) {
    ASSERT_EQ(QApplication::overrideCursor(), nullptr);
    view.setBusyCursor(true);
    view.setBusyCursor(true);
    ASSERT_NE(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    view.setBusyCursor(false);
    EXPECT_NE(QApplication::overrideCursor(), nullptr) << "the outer sequence still runs";
    view.setBusyCursor(false);
    view.setBusyCursor(false); // one too many takes nothing of others'
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

} // namespace
} // namespace qv::test
