#pragma once

#include "config/ConfigDocument.h"

#include <QString>
#include <QStringList>
#include <utility>
#include <vector>

namespace qv {

// What the logic of a form needs of its window, by control name. Control
// arrays are named "Name_N" (ctn_text_3). The logic never touches widgets:
// the window implements this over its real controls, runs without a screen
// and tests over a map (MapConsoleView).
class ConsoleView {
public:
    virtual ~ConsoleView() = default;

    // Caption of a label, button, check box, frame or menu entry; text of a
    // text box; current text of a combo box.
    virtual void setText(const QString& control, const QString& text) = 0;
    virtual QString text(const QString& control) const = 0;
    // The same for many controls at once: a window reached from another
    // thread does them in one go.
    virtual std::vector<QString> texts(const std::vector<QString>& controls) const;
    virtual void setTexts(const std::vector<std::pair<QString, QString>>& textsByControl);

    virtual void setEnabled(const QString& control, bool enabled) = 0;
    virtual bool isEnabled(const QString& control) const = 0;
    virtual void setVisible(const QString& control, bool visible) = 0;
    virtual bool isVisible(const QString& control) const = 0;

    // Check boxes. Setting the state from code does not run the control's
    // click handler (the logic calls it itself where the legacy one did).
    virtual void setChecked(const QString& control, bool checked) = 0;
    virtual bool isChecked(const QString& control) const = 0;
    // The three states of a check box as the legacy forms number them:
    // 0 unticked, 1 ticked, 2 grey. A grey box is not checked.
    virtual void setCheckState(const QString& control, int state);
    virtual int checkState(const QString& control) const;

    // List and combo boxes: rows with their item data.
    struct Row {
        QString text;
        double itemData = 0;
    };
    virtual void setRows(const QString& control, const std::vector<Row>& rows) = 0;
    virtual std::vector<Row> rows(const QString& control) const = 0;
    virtual void setRowText(const QString& control, int row, const QString& text) = 0;
    // -1: no row selected.
    virtual void setCurrentRow(const QString& control, int row) = 0;
    virtual int currentRow(const QString& control) const = 0;

    // Progress bars.
    virtual void setProgress(const QString& control, int minimum, int maximum, int value) = 0;
    virtual int progressValue(const QString& control) const = 0;

    virtual void setToolTip(const QString& control, const QString& text) = 0;
    virtual void setFocus(const QString& control) = 0;
    // Selects the whole text of a text box.
    virtual void selectAll(const QString& control) = 0;

    // The hourglass while a sequence runs.
    virtual void setBusyCursor(bool busy) = 0;

    // Every control name of the window, with its kind, for translation walks.
    enum class Kind {
        Button,
        Label,
        CheckBox,
        Frame,
        MenuEntry,
        ComboBox,
        ListBox,
        TextBox,
        OptionButton,
        DatePicker,
        ProgressBar,
        Other
    };
    struct Control {
        QString name; // "Labelctn_2" for a member of a control array
        Kind kind;
    };
    virtual std::vector<Control> controls() const = 0;
};

// The key of a control: its name without the array index ("Labelctn_2" ->
// "Labelctn").
QString controlKey(const QString& controlName);
// The rows of a document list as a list control holds them: each row at the
// position its Index gives.
std::vector<ConsoleView::Row> toRows(const std::vector<ListRow>& listRows);

// Which controls a translation walk gives their caption: the main window
// translates buttons, labels, check boxes, frames and menu entries; the other
// forms every control that has a caption, option buttons too.
enum class CaptionWalk { MainWindow, EveryCaption };

// Sets each caption from config.xml, keyed by the control's name with its
// present caption as default. A control that cannot be translated leaves the
// others be; "Message" belongs to the running dialogue and is passed over.
void translateCaptions(ConsoleView& view, ConfigDocument& config, const QString& langue,
                       CaptionWalk walk);

// "ctn_text", 3 -> "ctn_text_3".
QString arrayMember(const QString& arrayName, int index);

} // namespace qv
