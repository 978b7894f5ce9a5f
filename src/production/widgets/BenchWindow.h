#pragma once

#include "production/Commission.h"
#include "production/ControllerIdentity.h"

#include <QString>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

namespace Ui {
class frmBench;
}

namespace qv {

class Bus;
class ConfigDocument;
class Dialogs;
class FrameLink;
class ProductionRun;

// The bench window: the attached controllers, one row each (id, model,
// firmware, serial number, state, a progress bar), the programme file, the
// order number and the first serial number; Start commissions every row at
// once, Stop stops each line before its next step. The controllers'
// threads report through queued signals; nothing here waits for a device.
class BenchWindow : public QWidget {
    Q_OBJECT

public:
    BenchWindow(Bus& bus, ConfigDocument& config, Dialogs& dialogs, QString language,
                QWidget* parent = nullptr);
    ~BenchWindow() override;

    // Lists the attached controllers again and reads their identity.
    void refresh();
    // Starts a run with the fields as they stand; false (and a box) when
    // they do not allow one.
    bool start();
    void stop();
    bool running() const;

    // Test seams: each controller's link before its first exchange, and the
    // wait after the restart.
    void setLinkSetup(std::function<void(FrameLink&)> setup);
    void setRestartWait(int milliseconds);
    void setOnClosed(std::function<void()> onClosed);

Q_SIGNALS:
    void identified(int row, bool answered, const QString& model, const QString& firmware,
                    const QString& serial);
    void stepReached(int row, int step);
    void controllerEnded(int row, bool ok, int step, const QString& serial, const QString& failure,
                         double seconds);
    void runEnded();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    class Listener;

    QString text(const QString& key);
    void translate();
    void browse();
    void showIdentity(int row, bool answered, const QString& model, const QString& firmware,
                      const QString& serial);
    void showStep(int row, int step);
    void showEnd(int row, bool ok, int step, const QString& serial, const QString& failure,
                 double seconds);
    void finishRun();
    void setCell(int row, int column, const QString& value, const QString& toolTip = QString());
    void updateButtons();
    void joinIdentityReader();

    std::unique_ptr<Ui::frmBench> ui_;
    Bus& bus_;
    ConfigDocument& config_;
    Dialogs& dialogs_;
    QString language_;
    std::vector<std::int32_t> ids_;
    std::unique_ptr<Listener> listener_;
    std::unique_ptr<ProductionRun> run_;
    std::thread identityReader_;
    std::function<void(FrameLink&)> linkSetup_;
    std::function<void()> onClosed_;
    int restartWaitMs_ = CommissionJob{}.restartWaitMs;
    int succeeded_ = 0;
    int failed_ = 0;
    bool closeWhenDone_ = false;
};

} // namespace qv
