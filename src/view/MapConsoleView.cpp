#include "MapConsoleView.h"

namespace qv {

void MapConsoleView::add(const QString& name, Kind kind, const QString& caption) {
    State& s = controls_[name];
    s.kind = kind;
    s.text = caption;
    s.declared = true;
}

void MapConsoleView::setText(const QString& control, const QString& text) {
    State& s = controls_[control];
    s.text = text;
    // A combo box given a text shows the row of that text, if it has one.
    if (!s.rows.empty()) {
        s.currentRow = -1;
        for (size_t i = 0; i < s.rows.size(); ++i)
            if (s.rows[i].text == text) {
                s.currentRow = static_cast<int>(i);
                break;
            }
    }
}

QString MapConsoleView::text(const QString& control) const {
    const auto it = controls_.constFind(control);
    if (it == controls_.cend())
        return QString();
    const State& s = *it;
    if (s.currentRow >= 0 && s.currentRow < static_cast<int>(s.rows.size()))
        return s.rows[static_cast<size_t>(s.currentRow)].text;
    return s.text;
}

void MapConsoleView::setEnabled(const QString& control, bool enabled) {
    controls_[control].enabled = enabled;
}
bool MapConsoleView::isEnabled(const QString& control) const {
    return controls_.value(control).enabled;
}
void MapConsoleView::setVisible(const QString& control, bool visible) {
    controls_[control].visible = visible;
}
bool MapConsoleView::isVisible(const QString& control) const {
    return controls_.value(control).visible;
}
void MapConsoleView::setChecked(const QString& control, bool checked) {
    controls_[control].checked = checked;
    controls_[control].grey = false;
}
void MapConsoleView::setCheckState(const QString& control, int state) {
    State& s = controls_[control];
    s.checked = state == 1;
    s.grey = state == 2;
}
int MapConsoleView::checkState(const QString& control) const {
    const State s = controls_.value(control);
    return s.grey ? 2 : (s.checked ? 1 : 0);
}
bool MapConsoleView::isChecked(const QString& control) const {
    return controls_.value(control).checked;
}

void MapConsoleView::setRows(const QString& control, const std::vector<Row>& rows) {
    State& s = controls_[control];
    s.rows = rows;
    s.currentRow = -1;
}
std::vector<ConsoleView::Row> MapConsoleView::rows(const QString& control) const {
    return controls_.value(control).rows;
}
void MapConsoleView::setRowText(const QString& control, int row, const QString& text) {
    State& s = controls_[control];
    if (row >= 0 && row < static_cast<int>(s.rows.size()))
        s.rows[static_cast<size_t>(row)].text = text;
}
void MapConsoleView::setCurrentRow(const QString& control, int row) {
    State& s = controls_[control];
    s.currentRow = (row >= 0 && row < static_cast<int>(s.rows.size())) ? row : -1;
}
int MapConsoleView::currentRow(const QString& control) const {
    return controls_.value(control).currentRow;
}

void MapConsoleView::setProgress(const QString& control, int minimum, int maximum, int value) {
    State& s = controls_[control];
    s.minimum = minimum;
    s.maximum = maximum;
    s.value = value;
}
int MapConsoleView::progressValue(const QString& control) const {
    return controls_.value(control).value;
}

void MapConsoleView::setToolTip(const QString& control, const QString& text) {
    controls_[control].toolTip = text;
}

std::vector<ConsoleView::Control> MapConsoleView::controls() const {
    std::vector<Control> list;
    for (auto it = controls_.cbegin(); it != controls_.cend(); ++it)
        if (it->declared)
            list.push_back({it.key(), it->kind});
    return list;
}

} // namespace qv
