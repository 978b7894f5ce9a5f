#pragma once

#include "ConsoleView.h"

#include <QMap>

namespace qv {

// A window without widgets: controls as named values. It carries the logic
// of a form where there is no screen (quorvelctl) and in tests, so that a
// command sees what the window would show. Unknown controls read as empty,
// enabled and visible; a combo box's text is the text of its selected row.
// controls() lists the declared controls only, as a form lists its own.
class MapConsoleView : public ConsoleView {
public:
    struct State {
        QString text;
        bool enabled = true;
        bool visible = true;
        bool checked = false;
        bool grey = false;
        std::vector<Row> rows;
        int currentRow = -1;
        int minimum = 0, maximum = 100, value = 0;
        QString toolTip;
        Kind kind = Kind::Other;
        bool declared = false;
    };

    // Declares a control with its design-time caption, so that controls()
    // lists it and translation walks reach it.
    void add(const QString& name, Kind kind, const QString& caption = QString());
    // The state of a control, created undeclared when new.
    State& operator[](const QString& name) { return controls_[name]; }

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
    void setFocus(const QString& control) override { focus = control; }
    void selectAll(const QString& control) override { selected = control; }
    void setBusyCursor(bool on) override { busy = on; }
    std::vector<Control> controls() const override;

    // The last control given the focus, the last whose text was selected,
    // and whether the hourglass stands.
    QString focus;
    QString selected;
    bool busy = false;

private:
    QMap<QString, State> controls_;
};

} // namespace qv
