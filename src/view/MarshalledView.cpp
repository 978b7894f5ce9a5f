#include "MarshalledView.h"

namespace qv {

void MarshalledView::setText(const QString& control, const QString& text) {
    bridge_.call([&] { inner_.setText(control, text); });
}
QString MarshalledView::text(const QString& control) const {
    return get([&] { return inner_.text(control); }, QString());
}
std::vector<QString> MarshalledView::texts(const std::vector<QString>& controls) const {
    return get([&] { return inner_.texts(controls); }, std::vector<QString>());
}
void MarshalledView::setTexts(const std::vector<std::pair<QString, QString>>& textsByControl) {
    bridge_.call([&] { inner_.setTexts(textsByControl); });
}
void MarshalledView::setEnabled(const QString& control, bool enabled) {
    bridge_.call([&] { inner_.setEnabled(control, enabled); });
}
bool MarshalledView::isEnabled(const QString& control) const {
    return get([&] { return inner_.isEnabled(control); }, false);
}
void MarshalledView::setVisible(const QString& control, bool visible) {
    bridge_.call([&] { inner_.setVisible(control, visible); });
}
bool MarshalledView::isVisible(const QString& control) const {
    return get([&] { return inner_.isVisible(control); }, false);
}
void MarshalledView::setChecked(const QString& control, bool checked) {
    bridge_.call([&] { inner_.setChecked(control, checked); });
}
bool MarshalledView::isChecked(const QString& control) const {
    return get([&] { return inner_.isChecked(control); }, false);
}
void MarshalledView::setCheckState(const QString& control, int state) {
    bridge_.call([&] { inner_.setCheckState(control, state); });
}
int MarshalledView::checkState(const QString& control) const {
    return get([&] { return inner_.checkState(control); }, 0);
}
void MarshalledView::setRows(const QString& control, const std::vector<Row>& rows) {
    bridge_.call([&] { inner_.setRows(control, rows); });
}
std::vector<ConsoleView::Row> MarshalledView::rows(const QString& control) const {
    return get([&] { return inner_.rows(control); }, std::vector<Row>());
}
void MarshalledView::setRowText(const QString& control, int row, const QString& text) {
    bridge_.call([&] { inner_.setRowText(control, row, text); });
}
void MarshalledView::setCurrentRow(const QString& control, int row) {
    bridge_.call([&] { inner_.setCurrentRow(control, row); });
}
int MarshalledView::currentRow(const QString& control) const {
    return get([&] { return inner_.currentRow(control); }, -1);
}
void MarshalledView::setProgress(const QString& control, int minimum, int maximum, int value) {
    bridge_.call([&] { inner_.setProgress(control, minimum, maximum, value); });
}
int MarshalledView::progressValue(const QString& control) const {
    return get([&] { return inner_.progressValue(control); }, 0);
}
void MarshalledView::setToolTip(const QString& control, const QString& text) {
    bridge_.call([&] { inner_.setToolTip(control, text); });
}
void MarshalledView::setFocus(const QString& control) {
    bridge_.call([&] { inner_.setFocus(control); });
}
void MarshalledView::selectAll(const QString& control) {
    bridge_.call([&] { inner_.selectAll(control); });
}
void MarshalledView::setBusyCursor(bool busy) {
    bridge_.call([&] { inner_.setBusyCursor(busy); });
}
std::vector<ConsoleView::Control> MarshalledView::controls() const {
    return get([&] { return inner_.controls(); }, std::vector<Control>());
}

} // namespace qv
