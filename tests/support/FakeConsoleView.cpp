#include "FakeConsoleView.h"

namespace qv::test {

void FakeConsoleView::setText(const QString& c, const QString& t) {
    State& s = controls_[c];
    s.text = t;
    // A combo box shows the row whose text matches, as an editable one would.
    if (!s.rows.empty()) {
        s.currentRow = -1;
        for (size_t i = 0; i < s.rows.size(); ++i)
            if (s.rows[i].text == t)
                s.currentRow = static_cast<int>(i);
    }
}

QString FakeConsoleView::text(const QString& c) const {
    const State s = controls_.value(c);
    if (!s.rows.empty() && s.currentRow >= 0 && s.currentRow < static_cast<int>(s.rows.size()))
        return s.rows[static_cast<size_t>(s.currentRow)].text;
    return s.text;
}

void FakeConsoleView::setRows(const QString& c, const std::vector<Row>& rows) {
    State& s = controls_[c];
    s.rows = rows;
    s.currentRow = -1;
}

void FakeConsoleView::setRowText(const QString& c, int row, const QString& text) {
    State& s = controls_[c];
    if (row >= 0 && row < static_cast<int>(s.rows.size()))
        s.rows[static_cast<size_t>(row)].text = text;
}

void FakeConsoleView::setCurrentRow(const QString& c, int row) {
    State& s = controls_[c];
    s.currentRow = (row >= 0 && row < static_cast<int>(s.rows.size())) ? row : -1;
}

void FakeConsoleView::setProgress(const QString& c, int min, int max, int value) {
    State& s = controls_[c];
    s.minimum = min;
    s.maximum = max;
    s.value = value;
}

void FakeConsoleView::yieldToEvents() {
    ++yields;
    if (onYield)
        onYield();
}

std::vector<ConsoleView::Control> FakeConsoleView::controls() const {
    std::vector<Control> list;
    for (auto it = controls_.begin(); it != controls_.end(); ++it)
        list.push_back({it.key(), it.value().kind});
    return list;
}

} // namespace qv::test
