#pragma once

#include "view/ConsoleView.h"

#include <QHash>
#include <QPointer>

class QObject;
class QWidget;

namespace qv {

// ConsoleView over a tree of real widgets, reached by objectName: any form
// of the tool (main window, connection list, programme editor) can hand
// itself to its logic this way. Control arrays are named "Name_N" in the
// forms themselves.
//
// A widget or action with the dynamic property `consoleKind` set to "Other"
// is listed as Kind::Other: translation walks leave it alone (a picture held
// by a label, say). The root itself is reachable by its name, its text being
// the window title, but is not listed by controls().
//
// Setting a state from code never runs a handler: the forms connect their
// handlers to the operator-only signals (clicked, activated, textEdited),
// and the setters below block the others as well.
class WidgetConsoleView : public ConsoleView {
public:
    explicit WidgetConsoleView(QWidget* root);
    ~WidgetConsoleView() override;

    void setText(const QString& control, const QString& text) override;
    QString text(const QString& control) const override;
    void setEnabled(const QString& control, bool enabled) override;
    bool isEnabled(const QString& control) const override;
    void setVisible(const QString& control, bool visible) override;
    bool isVisible(const QString& control) const override;
    void setChecked(const QString& control, bool checked) override;
    bool isChecked(const QString& control) const override;
    void setCheckState(const QString& control, int state) override;
    int checkState(const QString& control) const override;
    void setRows(const QString& control, const std::vector<Row>& rows) override;
    std::vector<Row> rows(const QString& control) const override;
    void setRowText(const QString& control, int row, const QString& text) override;
    void setCurrentRow(const QString& control, int row) override;
    int currentRow(const QString& control) const override;
    void setProgress(const QString& control, int minimum, int maximum, int value) override;
    int progressValue(const QString& control) const override;
    void setToolTip(const QString& control, const QString& text) override;
    void setFocus(const QString& control) override;
    void selectAll(const QString& control) override;
    void setBusyCursor(bool busy) override;
    std::vector<Control> controls() const override;

    // The object of that name under the root (or the root), nullptr if none.
    QObject* find(const QString& control) const;
    // The kind that controls() reports for an object.
    static Kind kindOf(const QObject* object);

private:
    QPointer<QWidget> root_;
    mutable QHash<QString, QPointer<QObject>> cache_;
    int busyDepth_ = 0;
};

} // namespace qv
