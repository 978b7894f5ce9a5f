#include "ConnectWindow.h"

#include "link/DeviceWorker.h"
#include "ui_frmConnect.h"
#include "view/MarshalledView.h"
#include "view/UiBridge.h"
#include "view/widgets/WidgetConsoleView.h"

#include <QListWidget>
#include <QPointer>
#include <QTimer>
#include <optional>

namespace qv {

// What the jobs of the logic hold on to: the logic and the views it reaches
// the window through, which outlive the window if a job still runs.
struct ConnectWindow::Session {
    explicit Session(QWidget* window) : widgets(window) {}
    WidgetConsoleView widgets;
    std::optional<MarshalledView> marshalled;
    std::optional<ConnectLogic> logic;
};

ConnectWindow::ConnectWindow(Device& device, ConsoleView& mainScreen, Dialogs& dialogs,
                             MessageLookup message, std::function<void(bool)> updateFirmware,
                             QWidget* parent, DeviceWorker* worker, UiBridge* bridge)
    : QDialog(parent), ui_(std::make_unique<Ui::frmConnect>()),
      session_(std::make_shared<Session>(this)), worker_(worker) {
    ui_->setupUi(this);

    ConsoleView* form = &session_->widgets;
    std::function<void(bool)> close;
    QPointer<ConnectWindow> self(this);
    if (bridge) {
        form = &session_->marshalled.emplace(*bridge, session_->widgets);
        close = [bridge, self](bool accepted) {
            bridge->post([self, accepted] {
                if (self)
                    self->done(accepted ? QDialog::Accepted : QDialog::Rejected);
            });
        };
    } else {
        close = [self](bool accepted) {
            if (self)
                self->done(accepted ? QDialog::Accepted : QDialog::Rejected);
        };
    }
    session_->logic.emplace(*form, mainScreen, device, dialogs, message, std::move(updateFirmware),
                            std::move(close));

    // Operator-only signals: a line selected from code must not connect. A
    // line reached with the arrow keys is taken as a click takes it.
    connect(ui_->ListeSorvane, &QListWidget::itemClicked, this, [this] { ListeSorvane_Click(); });
    connect(ui_->ListeSorvane, &QListWidget::itemActivated, this, [this] { ListeSorvane_Click(); });
    connect(ui_->ListeSorvane, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0 && ui_->ListeSorvane->hasFocus())
            ListeSorvane_Click();
    });
    connect(ui_->ViewAll, &QCheckBox::clicked, this, [this] { ViewAll_Click(); });
    connect(ui_->ExitEtalonnage, &QPushButton::clicked, this, [this] { ExitEtalonnage_Click(); });

    // The window's captions in the language of the main window.
    WidgetConsoleView& own = session_->widgets;
    for (const QString& name : {QStringLiteral("ViewAll"), QStringLiteral("ExitEtalonnage")}) {
        const QString caption = message ? message(name) : QString();
        if (!caption.isEmpty())
            own.setText(name, caption);
    }
    QString title = bridge ? QString() : mainScreen.text(QStringLiteral("MnuConnect"));
    if (bridge)
        bridge->call([&] { title = mainScreen.text(QStringLiteral("MnuConnect")); });
    title.remove(QLatin1Char('&'));
    if (!title.isEmpty())
        setWindowTitle(title);
}

ConnectWindow::~ConnectWindow() = default;

ConsoleView& ConnectWindow::view() {
    return session_->widgets;
}

const ConnectLogic& ConnectWindow::logic() const {
    return *session_->logic;
}

void ConnectWindow::setProbeWait(std::function<void(int)> wait) {
    session_->logic->setProbeWait(std::move(wait));
}

void ConnectWindow::run(void (ConnectLogic::*handler)()) {
    if (!worker_) {
        ((*session_->logic).*handler)();
        return;
    }
    worker_->post([session = session_, handler] { ((*session->logic).*handler)(); });
}

void ConnectWindow::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!loaded_)
        QTimer::singleShot(0, this, [this] {
            if (!loaded_)
                Form_Load();
        });
}

void ConnectWindow::Form_Load() {
    loaded_ = true;
    run(&ConnectLogic::Form_Load);
}

void ConnectWindow::ViewAll_Click() {
    run(&ConnectLogic::ViewAll_Click);
}

void ConnectWindow::ListeSorvane_Click() {
    run(&ConnectLogic::ListeSorvane_Click);
}

void ConnectWindow::ExitEtalonnage_Click() {
    run(&ConnectLogic::ExitEtalonnage_Click);
}

} // namespace qv
