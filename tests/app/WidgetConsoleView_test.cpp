// The view over real widgets must behave as the console logic expects of
// any ConsoleView: rows with their item data, states set from code without
// running the operator's handlers, the grey state, the nested busy pointer.
#include "AppTestSupport.h"
#include "view/widgets/WidgetConsoleView.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QVBoxLayout>

namespace qv::test {
namespace {

// A small form with the controls whose states the logic sets, named as
// forms name them.
class Form : public QMainWindow {
public:
    Form() {
        auto* central = new QWidget(this);
        setCentralWidget(central);
        auto* layout = new QVBoxLayout(central);
        const auto add = [&](QWidget* w, const char* name) {
            w->setObjectName(QString::fromLatin1(name));
            layout->addWidget(w);
        };
        add(check = new QCheckBox(QStringLiteral("check")), "Coche");
        add(edit = new QLineEdit, "Saisie");
        add(combo = new QComboBox, "Liste");
        add(list = new QListWidget, "ListeB");
    }

    QCheckBox* check;
    QLineEdit* edit;
    QComboBox* combo;
    QListWidget* list;
};

class WidgetConsoleViewTest : public ::testing::Test {
protected:
    Form form;
    WidgetConsoleView view{&form};
};

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

} // namespace
} // namespace qv::test
