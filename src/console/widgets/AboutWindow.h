#pragma once

#include <QDialog>
#include <QStringList>
#include <functional>
#include <memory>

namespace Ui {
class frmAbout;
}

namespace qv {

// frmAbout: the program's name and version, and a way to the system's own
// information program.
class AboutWindow : public QDialog {
    Q_OBJECT
public:
    // `message` gives a key's text in the language in use (may be empty).
    explicit AboutWindow(const std::function<QString(const QString& key)>& message = {},
                         QWidget* parent = nullptr);
    ~AboutWindow() override;

    // Starts the first system information program found on the PATH, or says
    // that there is none.
    void cmdSysInfo_Click();

    // The programs looked for, best first.
    static QStringList systemInfoPrograms();
    // The full path of the first of `programs` on the PATH, empty if none.
    static QString findSystemInfo(const QStringList& programs = systemInfoPrograms());

    static constexpr const char* kUnavailable = "System Information Is Unavailable At This Time";

private:
    std::unique_ptr<Ui::frmAbout> ui_;
};

} // namespace qv
