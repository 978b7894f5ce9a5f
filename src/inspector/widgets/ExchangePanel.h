#pragma once

#include "config/ConfigDocument.h"
#include "inspector/ExchangeFeed.h"
#include "inspector/ExchangeTableModel.h"
#include "link/TraceHub.h"

#include <QDockWidget>
#include <QString>
#include <functional>

class QLabel;
class QLineEdit;
class QMainWindow;
class QPushButton;
class QTableView;

namespace qv {

// The live list of exchanges: time, device, request and reply decoded,
// attempt, duration and a coloured status, with pause, clear, a text
// filter, and the trace format to save to and open from (a trace that a
// customer sent). Every caption comes from config.xml in the language of
// the moment.
class ExchangePanel : public QDockWidget {
    Q_OBJECT
public:
    ExchangePanel(TraceHub& hub, ConfigDocument& config, std::function<QString()> language,
                  QWidget* parent = nullptr);

    ExchangeTableModel& model() { return model_; }
    ExchangeFeed& feed() { return *feed_; }
    QTableView& table() { return *table_; }

    // Captions again in the current language; also done by itself when the
    // language changes.
    void retranslate();

    // What Save... and Open... do after their file dialog. False, with the
    // reason shown, on failure; nothing saved is lost.
    bool saveTo(const QString& path);
    bool openFrom(const QString& path);
    // Where those failures are told; a warning box by default.
    void setProblemReporter(std::function<void(const QString& text)> report) {
        reportProblem_ = std::move(report);
    }

private:
    // The text of `key` in the language of the moment; `text` is the
    // default of a key that config.xml lacks (the key itself when empty).
    QString caption(const QString& key, const QString& text = QString());
    void updateCount();
    void showModel(class QAbstractItemModel* model);
    void showProblem(const QString& text);

    ConfigDocument& config_;
    std::function<QString()> language_;
    QString shownLanguage_;
    QString openedFile_;
    ExchangeTableModel model_;
    ExchangeFilter* filter_;
    ExchangeFeed* feed_;
    QTableView* table_;
    QPushButton* pause_;
    QPushButton* clear_;
    QLineEdit* filterText_;
    QPushButton* save_;
    QPushButton* open_;
    QLabel* count_;
    bool followNewest_ = true;
    std::function<void(const QString&)> reportProblem_;
};

// Adds the panel to `window`, off at first, and View > Exchanges to switch
// it on and off (menu "mnuView", action "mnuExchanges"). `language` gives
// the language of the moment, as the window's language list shows it.
ExchangePanel* installExchangePanel(QMainWindow& window, TraceHub& hub, ConfigDocument& config,
                                    std::function<QString()> language);

} // namespace qv
