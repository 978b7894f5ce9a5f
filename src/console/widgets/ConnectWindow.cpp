#include "ConnectWindow.h"

#include "link/DeviceWorker.h"
#include "ui_frmConnect.h"
#include "view/MarshalledView.h"
#include "view/UiBridge.h"
#include "view/widgets/WidgetConsoleView.h"

#include <QEvent>
#include <QListWidget>
#include <QPointer>
#include <QTimer>
#include <atomic>
#include <optional>

namespace qv {

// What the jobs of the logic hold on to: the logic and the views it reaches
// the window through, which outlive the window if a job still runs.
struct ConnectWindow::Session {
    explicit Session(QWidget* window) : widgets(window) {}
    WidgetConsoleView widgets;
    std::optional<MarshalledView> marshalled;
    std::optional<ConnectLogic> logic;
    std::function<void()> afterClose;
    std::atomic<bool> continued{false};

    // Once, whichever way the window closes.
    void continueAfterClose() {
        if (!continued.exchange(true) && afterClose)
            afterClose();
    }
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
    Session* session = session_.get();
    if (bridge) {
        form = &session_->marshalled.emplace(*bridge, session_->widgets);
        close = [bridge, self, session](bool accepted) {
            session->continueAfterClose();
            bridge->post([self, accepted] {
                if (self)
                    self->done(accepted ? QDialog::Accepted : QDialog::Rejected);
            });
        };
    } else {
        close = [self, session](bool accepted) {
            session->continueAfterClose();
            if (self)
                self->done(accepted ? QDialog::Accepted : QDialog::Rejected);
        };
    }
    // Closed by the window's own means (the close box, Escape): what
    // follows still comes, in a job of its own.
    connect(this, &QDialog::finished, this, [this] {
        if (session_->continued || !session_->afterClose)
            return;
        if (worker_)
            worker_->post([session = session_] { session->continueAfterClose(); });
        else
            session_->continueAfterClose();
    });
    session_->logic.emplace(*form, mainScreen, device, dialogs, message, std::move(updateFirmware),
                            std::move(close));

    // Operator-only signals: a line selected from code must not connect. A
    // line reached with the keys is taken as a click takes it; the line that
    // the list makes current when it gets the focus is not.
    connect(ui_->ListeSorvane, &QListWidget::itemClicked, this, [this] { ListeSorvane_Click(); });
    connect(ui_->ListeSorvane, &QListWidget::itemActivated, this, [this] { ListeSorvane_Click(); });
    connect(ui_->ListeSorvane, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0 && movedByKey_)
            ListeSorvane_Click();
    });
    ui_->ListeSorvane->installEventFilter(this);
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

bool ConnectWindow::eventFilter(QObject* watched, QEvent* event) {
    // The key is handled by the list right after this, and a move it makes
    // comes within that handling.
    if (watched == ui_->ListeSorvane)
        movedByKey_ = event->type() == QEvent::KeyPress;
    return QDialog::eventFilter(watched, event);
}

ConsoleView& ConnectWindow::view() {
    return session_->widgets;
}

const ConnectLogic& ConnectWindow::logic() const {
    return *session_->logic;
}

void ConnectWindow::setProbeWait(std::function<void(int)> wait) {
    session_->logic->setProbeWait(std::move(wait));
}

void ConnectWindow::setAfterClose(std::function<void()> continuation) {
    session_->afterClose = std::move(continuation);
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
    // The line taken is the one the operator sees now: a refresh still
    // under way may select another before the job runs.
    const int row = ui_->ListeSorvane->currentRow();
    if (!worker_) {
        session_->logic->ListeSorvane_Click(row);
        return;
    }
    worker_->post([session = session_, row] { session->logic->ListeSorvane_Click(row); });
}

void ConnectWindow::ExitEtalonnage_Click() {
    run(&ConnectLogic::ExitEtalonnage_Click);
}

} // namespace qv
