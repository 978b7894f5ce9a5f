#include "WidgetConsoleView.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QRadioButton>
#include <QSignalBlocker>
#include <QTextEdit>
#include <QWidget>

namespace qv {

namespace {

constexpr int kItemDataRole = Qt::UserRole;

// A dialog parented to the form (the report form, the editor) is a form of
// its own, with its own controls and its own translation. Menus are windows
// too, but their entries belong to the form.
bool inAnotherForm(const QObject* object, const QWidget* root) {
    for (const QObject* o = object; o && o != root; o = o->parent()) {
        if (qobject_cast<const QDialog*>(o))
            return true;
    }
    return false;
}

bool internalName(const QString& name) {
    return name.isEmpty() || name.startsWith(QLatin1String("qt_"));
}

int findRow(const QComboBox* combo, const QString& text) {
    for (int i = 0; i < combo->count(); ++i)
        if (combo->itemText(i) == text)
            return i;
    return -1;
}

int findRow(const QListWidget* list, const QString& text) {
    for (int i = 0; i < list->count(); ++i)
        if (list->item(i)->text() == text)
            return i;
    return -1;
}

} // namespace

WidgetConsoleView::WidgetConsoleView(QWidget* root) : root_(root) {}

WidgetConsoleView::~WidgetConsoleView() {
    while (busyDepth_ > 0)
        setBusyCursor(false);
}

QObject* WidgetConsoleView::find(const QString& control) const {
    if (!root_ || control.isEmpty())
        return nullptr;
    const auto cached = cache_.constFind(control);
    if (cached != cache_.constEnd() && *cached && (*cached)->objectName() == control)
        return *cached;
    QObject* object = root_->objectName() == control
                          ? static_cast<QObject*>(root_.data())
                          : root_->findChild<QObject*>(control, Qt::FindChildrenRecursively);
    if (object)
        cache_.insert(control, object);
    return object;
}

ConsoleView::Kind WidgetConsoleView::kindOf(const QObject* object) {
    if (!object)
        return Kind::Other;
    const QVariant declared = object->property("consoleKind");
    if (declared.isValid() && declared.toString() == QLatin1String("Other"))
        return Kind::Other;
    if (qobject_cast<const QAction*>(object) || qobject_cast<const QMenu*>(object))
        return Kind::MenuEntry;
    if (qobject_cast<const QRadioButton*>(object))
        return Kind::OptionButton;
    if (qobject_cast<const QCheckBox*>(object))
        return Kind::CheckBox;
    if (qobject_cast<const QAbstractButton*>(object))
        return Kind::Button;
    if (qobject_cast<const QGroupBox*>(object))
        return Kind::Frame;
    if (qobject_cast<const QLabel*>(object))
        return Kind::Label;
    if (qobject_cast<const QComboBox*>(object))
        return Kind::ComboBox;
    if (qobject_cast<const QListWidget*>(object))
        return Kind::ListBox;
    if (qobject_cast<const QDateTimeEdit*>(object))
        return Kind::DatePicker;
    if (qobject_cast<const QLineEdit*>(object) || qobject_cast<const QPlainTextEdit*>(object) ||
        qobject_cast<const QTextEdit*>(object))
        return Kind::TextBox;
    if (qobject_cast<const QProgressBar*>(object))
        return Kind::ProgressBar;
    return Kind::Other;
}

void WidgetConsoleView::setText(const QString& control, const QString& text) {
    QObject* object = find(control);
    if (!object)
        return;
    const QSignalBlocker quiet(object);
    if (object == root_.data())
        root_->setWindowTitle(text);
    else if (auto* label = qobject_cast<QLabel*>(object))
        label->setText(text);
    else if (auto* button = qobject_cast<QAbstractButton*>(object))
        button->setText(text);
    else if (auto* group = qobject_cast<QGroupBox*>(object))
        group->setTitle(text);
    else if (auto* combo = qobject_cast<QComboBox*>(object)) {
        const int row = findRow(combo, text);
        if (row < 0 && combo->isEditable())
            combo->setEditText(text);
        else
            combo->setCurrentIndex(row);
    } else if (auto* list = qobject_cast<QListWidget*>(object))
        list->setCurrentRow(findRow(list, text));
    else if (auto* date = qobject_cast<QDateTimeEdit*>(object))
        date->setDate(QDate::fromString(text, Qt::ISODate));
    else if (auto* edit = qobject_cast<QLineEdit*>(object))
        edit->setText(text);
    else if (auto* plain = qobject_cast<QPlainTextEdit*>(object))
        plain->setPlainText(text);
    else if (auto* rich = qobject_cast<QTextEdit*>(object))
        rich->setPlainText(text);
    else if (auto* action = qobject_cast<QAction*>(object))
        action->setText(text);
    else if (auto* menu = qobject_cast<QMenu*>(object))
        menu->setTitle(text);
}

QString WidgetConsoleView::text(const QString& control) const {
    const QObject* object = find(control);
    if (!object)
        return QString();
    if (object == root_.data())
        return root_->windowTitle();
    if (auto* label = qobject_cast<const QLabel*>(object))
        return label->text();
    if (auto* button = qobject_cast<const QAbstractButton*>(object))
        return button->text();
    if (auto* group = qobject_cast<const QGroupBox*>(object))
        return group->title();
    if (auto* combo = qobject_cast<const QComboBox*>(object))
        return combo->currentText();
    if (auto* list = qobject_cast<const QListWidget*>(object))
        return list->currentItem() ? list->currentItem()->text() : QString();
    if (auto* date = qobject_cast<const QDateTimeEdit*>(object))
        return date->date().toString(Qt::ISODate);
    if (auto* edit = qobject_cast<const QLineEdit*>(object))
        return edit->text();
    if (auto* plain = qobject_cast<const QPlainTextEdit*>(object))
        return plain->toPlainText();
    if (auto* rich = qobject_cast<const QTextEdit*>(object))
        return rich->toPlainText();
    if (auto* action = qobject_cast<const QAction*>(object))
        return action->text();
    if (auto* menu = qobject_cast<const QMenu*>(object))
        return menu->title();
    if (auto* bar = qobject_cast<const QProgressBar*>(object))
        return QString::number(bar->value());
    return QString();
}

void WidgetConsoleView::setEnabled(const QString& control, bool enabled) {
    QObject* object = find(control);
    if (auto* widget = qobject_cast<QWidget*>(object))
        widget->setEnabled(enabled);
    else if (auto* action = qobject_cast<QAction*>(object))
        action->setEnabled(enabled);
}

bool WidgetConsoleView::isEnabled(const QString& control) const {
    // The control's own setting, as the form holds it, whatever its frame's.
    const QObject* object = find(control);
    if (auto* widget = qobject_cast<const QWidget*>(object))
        return !widget->testAttribute(Qt::WA_ForceDisabled);
    if (auto* action = qobject_cast<const QAction*>(object))
        return action->isEnabled();
    return false;
}

void WidgetConsoleView::setVisible(const QString& control, bool visible) {
    QObject* object = find(control);
    if (auto* widget = qobject_cast<QWidget*>(object))
        widget->setVisible(visible);
    else if (auto* action = qobject_cast<QAction*>(object))
        action->setVisible(visible);
}

bool WidgetConsoleView::isVisible(const QString& control) const {
    const QObject* object = find(control);
    if (auto* widget = qobject_cast<const QWidget*>(object))
        return !widget->isHidden();
    if (auto* action = qobject_cast<const QAction*>(object))
        return action->isVisible();
    return false;
}

void WidgetConsoleView::setChecked(const QString& control, bool checked) {
    QObject* object = find(control);
    if (!object)
        return;
    const QSignalBlocker quiet(object);
    if (auto* box = qobject_cast<QCheckBox*>(object))
        box->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
    else if (auto* button = qobject_cast<QAbstractButton*>(object))
        button->setChecked(checked);
    else if (auto* action = qobject_cast<QAction*>(object))
        action->setChecked(checked);
    else if (auto* group = qobject_cast<QGroupBox*>(object))
        group->setChecked(checked);
}

void WidgetConsoleView::setCheckState(const QString& control, int state) {
    auto* box = qobject_cast<QCheckBox*>(find(control));
    if (!box) {
        setChecked(control, state == 1);
        return;
    }
    const QSignalBlocker quiet(box);
    if (state == 2)
        box->setTristate(true);
    box->setCheckState(state == 2 ? Qt::PartiallyChecked
                                  : (state == 1 ? Qt::Checked : Qt::Unchecked));
}

int WidgetConsoleView::checkState(const QString& control) const {
    const auto* box = qobject_cast<const QCheckBox*>(find(control));
    if (!box)
        return isChecked(control) ? 1 : 0;
    switch (box->checkState()) {
    case Qt::PartiallyChecked:
        return 2;
    case Qt::Checked:
        return 1;
    default:
        return 0;
    }
}

bool WidgetConsoleView::isChecked(const QString& control) const {
    const QObject* object = find(control);
    // Qt counts a grey box as checked; the forms never did.
    if (auto* box = qobject_cast<const QCheckBox*>(object))
        return box->checkState() == Qt::Checked;
    if (auto* button = qobject_cast<const QAbstractButton*>(object))
        return button->isChecked();
    if (auto* action = qobject_cast<const QAction*>(object))
        return action->isChecked();
    if (auto* group = qobject_cast<const QGroupBox*>(object))
        return group->isChecked();
    return false;
}

void WidgetConsoleView::setRows(const QString& control, const std::vector<Row>& rows) {
    QObject* object = find(control);
    if (!object)
        return;
    const QSignalBlocker quiet(object);
    if (auto* combo = qobject_cast<QComboBox*>(object)) {
        combo->clear();
        for (const Row& row : rows)
            combo->addItem(row.text, row.itemData);
        // A refilled list has no row chosen until someone chooses one.
        combo->setCurrentIndex(-1);
    } else if (auto* list = qobject_cast<QListWidget*>(object)) {
        list->clear();
        for (const Row& row : rows) {
            auto* item = new QListWidgetItem(row.text, list);
            item->setData(kItemDataRole, row.itemData);
        }
        list->setCurrentRow(-1);
    }
}

std::vector<ConsoleView::Row> WidgetConsoleView::rows(const QString& control) const {
    std::vector<Row> result;
    const QObject* object = find(control);
    if (auto* combo = qobject_cast<const QComboBox*>(object)) {
        for (int i = 0; i < combo->count(); ++i)
            result.push_back({combo->itemText(i), combo->itemData(i, kItemDataRole).toDouble()});
    } else if (auto* list = qobject_cast<const QListWidget*>(object)) {
        for (int i = 0; i < list->count(); ++i)
            result.push_back(
                {list->item(i)->text(), list->item(i)->data(kItemDataRole).toDouble()});
    }
    return result;
}

void WidgetConsoleView::setRowText(const QString& control, int row, const QString& text) {
    QObject* object = find(control);
    if (!object)
        return;
    const QSignalBlocker quiet(object);
    if (auto* combo = qobject_cast<QComboBox*>(object)) {
        if (row >= 0 && row < combo->count())
            combo->setItemText(row, text);
    } else if (auto* list = qobject_cast<QListWidget*>(object)) {
        if (row >= 0 && row < list->count())
            list->item(row)->setText(text);
    }
}

void WidgetConsoleView::setCurrentRow(const QString& control, int row) {
    QObject* object = find(control);
    if (!object)
        return;
    const QSignalBlocker quiet(object);
    if (auto* combo = qobject_cast<QComboBox*>(object)) {
        combo->setCurrentIndex(row >= 0 && row < combo->count() ? row : -1);
    } else if (auto* list = qobject_cast<QListWidget*>(object)) {
        if (row >= 0 && row < list->count()) {
            list->setCurrentRow(row);
        } else {
            list->clearSelection();
            list->setCurrentRow(-1);
        }
    }
}

int WidgetConsoleView::currentRow(const QString& control) const {
    const QObject* object = find(control);
    if (auto* combo = qobject_cast<const QComboBox*>(object))
        return combo->currentIndex();
    if (auto* list = qobject_cast<const QListWidget*>(object))
        return list->currentRow();
    return -1;
}

void WidgetConsoleView::setProgress(const QString& control, int minimum, int maximum, int value) {
    if (auto* bar = qobject_cast<QProgressBar*>(find(control))) {
        bar->setRange(minimum, maximum);
        // Outside the range the bar keeps what it showed, as the old control
        // refused such a value.
        bar->setValue(value);
    }
}

int WidgetConsoleView::progressValue(const QString& control) const {
    if (auto* bar = qobject_cast<const QProgressBar*>(find(control)))
        return bar->value();
    return 0;
}

void WidgetConsoleView::setToolTip(const QString& control, const QString& text) {
    QObject* object = find(control);
    if (auto* widget = qobject_cast<QWidget*>(object))
        widget->setToolTip(text);
    else if (auto* action = qobject_cast<QAction*>(object))
        action->setToolTip(text);
}

void WidgetConsoleView::setFocus(const QString& control) {
    if (auto* widget = qobject_cast<QWidget*>(find(control)))
        widget->setFocus(Qt::OtherFocusReason);
}

void WidgetConsoleView::selectAll(const QString& control) {
    QObject* object = find(control);
    if (auto* edit = qobject_cast<QLineEdit*>(object))
        edit->selectAll();
    else if (auto* plain = qobject_cast<QPlainTextEdit*>(object))
        plain->selectAll();
    else if (auto* combo = qobject_cast<QComboBox*>(object); combo && combo->lineEdit())
        combo->lineEdit()->selectAll();
}

void WidgetConsoleView::setBusyCursor(bool busy) {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return;
    // Each hourglass is taken back by its own call, so a sequence nested in
    // another one leaves the outer hourglass standing.
    if (busy) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        ++busyDepth_;
    } else if (busyDepth_ > 0) {
        QApplication::restoreOverrideCursor();
        --busyDepth_;
    }
}

std::vector<ConsoleView::Control> WidgetConsoleView::controls() const {
    std::vector<Control> list;
    if (!root_)
        return list;
    const auto objects = root_->findChildren<QObject*>(Qt::FindChildrenRecursively);
    QSet<QString> seen;
    for (const QObject* object : objects) {
        const QString name = object->objectName();
        if (internalName(name) || seen.contains(name))
            continue;
        if (!qobject_cast<const QWidget*>(object) && !qobject_cast<const QAction*>(object))
            continue;
        if (inAnotherForm(object, root_))
            continue;
        seen.insert(name);
        list.push_back({name, kindOf(object)});
    }
    return list;
}

} // namespace qv
