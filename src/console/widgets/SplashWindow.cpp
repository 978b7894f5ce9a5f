#include "SplashWindow.h"

#include "ui_frmSplash.h"
#include "view/widgets/Brand.h"

#include <QMouseEvent>

namespace qv {

SplashWindow::SplashWindow(QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint),
      ui_(std::make_unique<Ui::frmSplash>()) {
    ui_->setupUi(this);
    setAttribute(Qt::WA_DeleteOnClose);
    ui_->Image1->setPixmap(splashPicture(devicePixelRatioF()));
    ui_->Image1->installEventFilter(this);
    Timer1.setObjectName(QStringLiteral("Timer1"));
    Timer1.setSingleShot(true);
    connect(&Timer1, &QTimer::timeout, this, &QWidget::close);
}

SplashWindow::~SplashWindow() = default;

void SplashWindow::showFor(int milliseconds) {
    show();
    raise();
    activateWindow();
    setFocus();
    Timer1.start(milliseconds);
}

bool SplashWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == ui_->Image1 && event->type() == QEvent::MouseButtonPress) {
        close();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void SplashWindow::keyPressEvent(QKeyEvent*) {
    close();
}

void SplashWindow::mousePressEvent(QMouseEvent*) {
    close();
}

} // namespace qv
