#pragma once

#include "console/ConsoleView.h"

#include <QMap>

namespace qv {

// A window without widgets: controls as named values. It carries the console
// logic where there is no screen (quorvelctl), so that a command sees what
// the window would show. Unknown controls read as empty, enabled and
// visible; a combo box's text is the text of its selected row.
class MapConsoleView : public ConsoleView {
public:
    // Declares a control with its design-time caption, so that controls()
    // lists it and translation walks reach it.
    void add(const QString& name, Kind kind, const QString& caption = QString());

    void setText(const QString& control, const QString& text) override;
    QString text(const QString& control) const override;
    void setEnabled(const QString& control, bool enabled) override;
    bool isEnabled(const QString& control) const override;
    void setVisible(const QString& control, bool visible) override;
    bool isVisible(const QString& control) const override;
    void setChecked(const QString& control, bool checked) override;
    bool isChecked(const QString& control) const override;
    void setRows(const QString& control, const std::vector<Row>& rows) override;
    std::vector<Row> rows(const QString& control) const override;
    void setRowText(const QString& control, int row, const QString& text) override;
    void setCurrentRow(const QString& control, int row) override;
    int currentRow(const QString& control) const override;
    void setProgress(const QString& control, int minimum, int maximum, int value) override;
    int progressValue(const QString& control) const override;
    void setToolTip(const QString&, const QString&) override {}
    void setFocus(const QString&) override {}
    void selectAll(const QString&) override {}
    void setBusyCursor(bool) override {}
    void yieldToEvents() override {}
    std::vector<Control> controls() const override;

private:
    struct State {
        QString text;
        bool enabled = true;
        bool visible = true;
        bool checked = false;
        std::vector<Row> rows;
        int currentRow = -1;
        int value = 0;
        Kind kind = Kind::Other;
        bool declared = false;
    };
    QMap<QString, State> controls_;
};

} // namespace qv
