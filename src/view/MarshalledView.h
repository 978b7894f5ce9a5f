#pragma once

#include "ConsoleView.h"
#include "UiBridge.h"

namespace qv {

// A form's view as seen from a device thread: every call runs on the
// user-interface thread, through the bridge, and returns its result. Once
// the bridge is closed (the window is going), setters do nothing and
// getters answer as an empty form would.
class MarshalledView : public ConsoleView {
public:
    MarshalledView(UiBridge& bridge, ConsoleView& inner) : bridge_(bridge), inner_(inner) {}

    ConsoleView& inner() { return inner_; }

    void setText(const QString& control, const QString& text) override;
    QString text(const QString& control) const override;
    std::vector<QString> texts(const std::vector<QString>& controls) const override;
    void setTexts(const std::vector<std::pair<QString, QString>>& textsByControl) override;
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

private:
    template <typename R, typename F> R get(F&& read, R fallback) const {
        R result = std::move(fallback);
        bridge_.call([&] { result = read(); });
        return result;
    }

    UiBridge& bridge_;
    ConsoleView& inner_;
};

} // namespace qv
