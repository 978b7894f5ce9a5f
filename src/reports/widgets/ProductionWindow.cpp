#include "ProductionWindow.h"

#include "config/ConfigDocument.h"
#include "console/widgets/MainScreenWindow.h"
#include "ui_frmProduction.h"
#include "view/widgets/Brand.h"

#include <QFileInfo>
#include <QPointer>

namespace qv {

ProductionWindow::ProductionWindow(MainScreenWindow& main, ConfigDocument& config,
                                   FileDialog& fileDialog, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::frmProduction>()), view_(this), main_(main) {
    ui_->setupUi(this);
    setWindowIcon(applicationIcon());
    ui_->Image1->setPixmap(brandStrip(32, devicePixelRatioF()));
    report_ = std::make_unique<ProductionReport>(
        view_, main.view(), config, main.dialogs(), fileDialog,
        QFileInfo(config.configPath()).absolutePath(), [this] { accept(); });
    // `clicked` is the operator's alone, Enter on the default button included.
    connect(ui_->PrintReport, &QAbstractButton::clicked, this,
            [this] { report_->PrintReport_Click(); });
}

ProductionWindow::~ProductionWindow() = default;

void ProductionWindow::load() {
    report_->Form_Load();
    QString title = main_.view().text(QStringLiteral("mnurapport"));
    title.remove(QLatin1Char('&'));
    if (!title.isEmpty())
        setWindowTitle(title);
}

void installProductionReport(MainScreenWindow& main, ConfigDocument& config,
                             FileDialog& fileDialog) {
    auto form = std::make_shared<QPointer<ProductionWindow>>();
    main.setProductionOpener([&main, &config, &fileDialog, form] {
        // Hidden, never unloaded, between showings: the form keeps the
        // language of its first showing, as the other forms keep theirs
        // until they load again.
        if (!*form) {
            *form = new ProductionWindow(main, config, fileDialog, &main);
            (*form)->load();
        }
        (*form)->open();
    });
}

} // namespace qv
