#include "AboutWindow.h"

#include "ui_frmAbout.h"
#include "view/widgets/Brand.h"

#include <QMessageBox>
#include <QProcess>
#include <QStandardPaths>

namespace qv {

AboutWindow::AboutWindow(const std::function<QString(const QString&)>& message, QWidget* parent)
    : QDialog(parent), ui_(std::make_unique<Ui::frmAbout>()) {
    ui_->setupUi(this);
    const QString title = QStringLiteral("Quorvel");
    setWindowTitle(QStringLiteral("About ") + title);
    ui_->lblTitle->setText(title);
    QFont big = ui_->lblTitle->font();
    big.setBold(true);
    big.setPointSizeF(big.pointSizeF() * 1.4);
    ui_->lblTitle->setFont(big);
    ui_->lblVersion->setText(QStringLiteral("Version ") + QStringLiteral(QUORVEL_VERSION));
    ui_->lblDescription->setText(
        QStringLiteral("TESSALUK — commissioning and maintenance of Sorvane controllers"));
    ui_->picIcon->setPixmap(applicationIcon().pixmap(64, 64));
    if (message) {
        const QString caption = message(QStringLiteral("cmdSysInfo"));
        if (!caption.isEmpty())
            ui_->cmdSysInfo->setText(caption);
    }
    connect(ui_->cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(ui_->cmdSysInfo, &QPushButton::clicked, this, [this] { cmdSysInfo_Click(); });
}

AboutWindow::~AboutWindow() = default;

QStringList AboutWindow::systemInfoPrograms() {
    return {QStringLiteral("hardinfo"),          QStringLiteral("hardinfo2"),
            QStringLiteral("kinfocenter"),       QStringLiteral("gnome-system-monitor"),
            QStringLiteral("xfce4-taskmanager"), QStringLiteral("lxtask")};
}

QString AboutWindow::findSystemInfo(const QStringList& programs) {
    for (const QString& program : programs) {
        const QString path = QStandardPaths::findExecutable(program);
        if (!path.isEmpty())
            return path;
    }
    return QString();
}

void AboutWindow::cmdSysInfo_Click() {
    const QString program = findSystemInfo();
    if (program.isEmpty() || !QProcess::startDetached(program, {})) {
        QMessageBox::information(this, QStringLiteral("Quorvel"),
                                 QString::fromLatin1(kUnavailable));
    }
}

} // namespace qv
