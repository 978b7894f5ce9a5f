#pragma once

#include "console/ConsoleView.h"

#include <QMap>
#include <QSet>
#include <functional>

namespace qv::test {

// A window made of named values, for driving the console logic without
// widgets. Unknown controls read as empty, enabled and visible.
class FakeConsoleView : public ConsoleView {
public:
    struct State {
        QString text;
        bool enabled = true;
        bool visible = true;
        bool checked = false;
        std::vector<Row> rows;
        int currentRow = -1;
        int minimum = 0, maximum = 100, value = 0;
        QString toolTip;
        Kind kind = Kind::Other;
    };

    // Declares a control so that controls() lists it.
    void add(const QString& name, Kind kind) { controls_[name].kind = kind; }
    State& operator[](const QString& name) { return controls_[name]; }

    void setText(const QString& c, const QString& t) override;
    QString text(const QString& c) const override;
    void setEnabled(const QString& c, bool e) override { controls_[c].enabled = e; }
    bool isEnabled(const QString& c) const override { return controls_.value(c).enabled; }
    void setVisible(const QString& c, bool v) override { controls_[c].visible = v; }
    bool isVisible(const QString& c) const override { return controls_.value(c).visible; }
    void setChecked(const QString& c, bool v) override { controls_[c].checked = v; }
    bool isChecked(const QString& c) const override { return controls_.value(c).checked; }
    void setRows(const QString& c, const std::vector<Row>& rows) override;
    std::vector<Row> rows(const QString& c) const override { return controls_.value(c).rows; }
    void setRowText(const QString& c, int row, const QString& text) override;
    void setCurrentRow(const QString& c, int row) override;
    int currentRow(const QString& c) const override { return controls_.value(c).currentRow; }
    void setProgress(const QString& c, int min, int max, int value) override;
    int progressValue(const QString& c) const override { return controls_.value(c).value; }
    void setToolTip(const QString& c, const QString& t) override { controls_[c].toolTip = t; }
    void setFocus(const QString& c) override { focus = c; }
    void selectAll(const QString& c) override { selected = c; }
    void setBusyCursor(bool b) override { busy = b; }
    void yieldToEvents() override;
    std::vector<Control> controls() const override;

    QString focus;
    QString selected;
    bool busy = false;
    int yields = 0;
    // Runs at each yield, standing in for timers that tick meanwhile.
    std::function<void()> onYield;

private:
    QMap<QString, State> controls_;
};

} // namespace qv::test
