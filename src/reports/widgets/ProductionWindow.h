#pragma once

#include "reports/ProductionReport.h"
#include "view/widgets/WidgetConsoleView.h"

#include <QDialog>
#include <memory>

namespace Ui {
class frmProduction;
}

namespace qv {

class ConfigDocument;
class FileDialog;
class MainScreenWindow;

// frmProduction: the order number and a comment, and the button that
// appends the report of the controller on the main window to the log. A
// modal dialog from frmProduction.ui whose controls carry the names the
// report uses; the report itself is ProductionReport's.
//
// The form is kept between showings: after a report it is hidden, so the
// next one starts from the same order number and comment.
class ProductionWindow : public QDialog {
    Q_OBJECT
public:
    ProductionWindow(MainScreenWindow& main, ConfigDocument& config, FileDialog& fileDialog,
                     QWidget* parent = nullptr);
    ~ProductionWindow() override;

    // The form's load, before its first showing only: the captions in the
    // language the main window shows at that moment, and its name for the
    // report as the title.
    void load();

    ProductionReport& report() { return *report_; }
    WidgetConsoleView& view() { return view_; }

private:
    std::unique_ptr<Ui::frmProduction> ui_;
    WidgetConsoleView view_;
    MainScreenWindow& main_;
    std::unique_ptr<ProductionReport> report_;
};

// Makes the main window's mnurapport open the report form, modal over it.
// The form is made and translated at the first opening and lives as long as
// the main window; `fileDialog` asks where the report goes.
void installProductionReport(MainScreenWindow& main, ConfigDocument& config,
                             FileDialog& fileDialog);

} // namespace qv
