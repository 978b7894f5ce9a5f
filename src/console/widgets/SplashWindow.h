#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>

namespace Ui {
class frmSplash;
}

namespace qv {

// frmSplash: the start-up picture. It goes away by itself after its timer,
// on a click on the picture, or on any key.
class SplashWindow : public QWidget {
    Q_OBJECT
public:
    explicit SplashWindow(QWidget* parent = nullptr);
    ~SplashWindow() override;

    // Shows the picture and starts Timer1 at `milliseconds`.
    void showFor(int milliseconds = kDefaultMs);

    static constexpr int kDefaultMs = 2000;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    std::unique_ptr<Ui::frmSplash> ui_;
    QTimer Timer1;
};

} // namespace qv
