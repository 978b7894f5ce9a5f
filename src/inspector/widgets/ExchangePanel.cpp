#include "ExchangePanel.h"

#include "link/TraceFormat.h"

#include <QAction>
#include <QBrush>
#include <QColor>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

namespace qv {

// The status column coloured: a glance down the list finds the silences
// and the bad check values; a retry's attempt number stands out.
class StatusColours : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        if (index.column() == ExchangeTableModel::Status) {
            switch (
                static_cast<ExchangeStatus>(index.data(ExchangeTableModel::StatusRole).toInt())) {
            case ExchangeStatus::Answered:
                option->backgroundBrush = QBrush(QColor(0xd8, 0xf0, 0xd8));
                break;
            case ExchangeStatus::Silence:
                option->backgroundBrush = QBrush(QColor(0xff, 0xdf, 0xa8));
                break;
            case ExchangeStatus::BadCheck:
            case ExchangeStatus::Refused:
                option->backgroundBrush = QBrush(QColor(0xf8, 0xb8, 0xb8));
                break;
            }
        } else if (index.column() == ExchangeTableModel::Attempt &&
                   index.data().toString() != QLatin1String("1")) {
            option->palette.setColor(QPalette::Text, QColor(0xb0, 0x60, 0x00));
        }
    }
};

namespace {
constexpr int kLanguagePollMs = 500;
const char* const kTraceFilter = "Trace (*.trace *.txt *.log);;* (*)";
} // namespace

ExchangePanel::ExchangePanel(TraceHub& hub, ConfigDocument& config,
                             std::function<QString()> language, QWidget* parent)
    : QDockWidget(parent), config_(config), language_(std::move(language)) {
    setObjectName(QStringLiteral("dockExchanges"));
    model_.setTranslator([this](const QString& key) { return caption(key); });

    auto* body = new QWidget(this);
    auto* layout = new QVBoxLayout(body);
    layout->setContentsMargins(4, 4, 4, 4);
    auto* bar = new QHBoxLayout;
    pause_ = new QPushButton(body);
    pause_->setObjectName(QStringLiteral("cmdPause"));
    pause_->setCheckable(true);
    clear_ = new QPushButton(body);
    clear_->setObjectName(QStringLiteral("cmdClear"));
    filterText_ = new QLineEdit(body);
    filterText_->setObjectName(QStringLiteral("txtFilter"));
    filterText_->setClearButtonEnabled(true);
    save_ = new QPushButton(body);
    save_->setObjectName(QStringLiteral("cmdSave"));
    open_ = new QPushButton(body);
    open_->setObjectName(QStringLiteral("cmdOpen"));
    count_ = new QLabel(body);
    count_->setObjectName(QStringLiteral("lblCount"));
    bar->addWidget(pause_);
    bar->addWidget(clear_);
    bar->addWidget(filterText_, 1);
    bar->addWidget(count_);
    bar->addWidget(open_);
    bar->addWidget(save_);
    layout->addLayout(bar);

    filter_ = new ExchangeFilter(this);
    filter_->setSourceModel(&model_);
    table_ = new QTableView(body);
    table_->setObjectName(QStringLiteral("tblExchanges"));
    table_->setItemDelegate(new StatusColours(table_));
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setWordWrap(false);
    table_->verticalHeader()->hide();
    table_->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table_->verticalHeader()->setDefaultSectionSize(table_->fontMetrics().height() + 4);
    table_->setMinimumHeight(table_->verticalHeader()->defaultSectionSize() * 12);
    showModel(&model_);
    layout->addWidget(table_, 1);
    setWidget(body);

    feed_ = new ExchangeFeed(hub, model_, this);
    // The list follows the newest row unless the operator has scrolled up.
    connect(&model_, &QAbstractItemModel::rowsAboutToBeInserted, this, [this] {
        const QScrollBar* bar = table_->verticalScrollBar();
        followNewest_ = bar->value() >= bar->maximum();
    });
    connect(feed_, &ExchangeFeed::rowsAppended, this, [this] {
        updateCount();
        if (followNewest_)
            table_->scrollToBottom();
    });
    connect(pause_, &QPushButton::toggled, feed_, &ExchangeFeed::setPaused);
    connect(clear_, &QPushButton::clicked, this, [this] {
        feed_->clear();
        openedFile_.clear();
        pause_->setChecked(false);
        retranslate();
    });
    connect(filterText_, &QLineEdit::textChanged, this, [this](const QString& text) {
        filter_->setText(text);
        // Unfiltered, the view sits on the model itself: a proxy would remap
        // all its rows each time the ring drops the oldest.
        showModel(text.isEmpty() ? static_cast<QAbstractItemModel*>(&model_) : filter_);
        updateCount();
    });
    connect(save_, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getSaveFileName(
            this, caption(QStringLiteral("cmdSave"), QStringLiteral("Save...")), QString(),
            QString::fromLatin1(kTraceFilter));
        if (!path.isEmpty())
            saveTo(path);
    });
    connect(open_, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getOpenFileName(
            this, caption(QStringLiteral("cmdOpen"), QStringLiteral("Open...")), QString(),
            QString::fromLatin1(kTraceFilter));
        if (!path.isEmpty())
            openFrom(path);
    });
    auto* languagePoll = new QTimer(this);
    connect(languagePoll, &QTimer::timeout, this, [this] {
        if (language_ && language_() != shownLanguage_)
            retranslate();
    });
    languagePoll->start(kLanguagePollMs);
    retranslate();
}

void ExchangePanel::showModel(QAbstractItemModel* model) {
    if (table_->model() == model)
        return;
    table_->setModel(model);
    QHeaderView* header = table_->horizontalHeader();
    header->setSectionResizeMode(QHeaderView::Interactive);
    header->setSectionResizeMode(ExchangeTableModel::Request, QHeaderView::Stretch);
    header->resizeSection(ExchangeTableModel::Time, 70);
    header->resizeSection(ExchangeTableModel::Device, 90);
    header->resizeSection(ExchangeTableModel::Reply, 230);
    header->resizeSection(ExchangeTableModel::Attempt, 60);
    header->resizeSection(ExchangeTableModel::Duration, 90);
    header->resizeSection(ExchangeTableModel::Status, 110);
    table_->scrollToBottom();
}

QString ExchangePanel::caption(const QString& key, const QString& text) {
    const QString language = language_ ? language_() : QStringLiteral("English");
    const QString init = text.isEmpty() ? key : text;
    try {
        return config_.LitMessage(language, key, init);
    } catch (const ConfigError&) {
        return init; // a damaged config.xml is reported where it is read for work
    }
}

void ExchangePanel::retranslate() {
    shownLanguage_ = language_ ? language_() : QString();
    QString title = caption(QStringLiteral("mnuExchanges"), QStringLiteral("Exchanges"));
    if (!openedFile_.isEmpty())
        title += QStringLiteral(" - ") + QFileInfo(openedFile_).fileName();
    setWindowTitle(title);
    pause_->setText(caption(QStringLiteral("cmdPause"), QStringLiteral("Pause")));
    clear_->setText(caption(QStringLiteral("cmdClear"), QStringLiteral("Clear")));
    filterText_->setPlaceholderText(caption(QStringLiteral("Filter")));
    save_->setText(caption(QStringLiteral("cmdSave"), QStringLiteral("Save...")));
    open_->setText(caption(QStringLiteral("cmdOpen"), QStringLiteral("Open...")));
    model_.retranslate();
    if (toggleViewAction())
        toggleViewAction()->setText(
            caption(QStringLiteral("mnuExchanges"), QStringLiteral("Exchanges")));
    if (auto* window = qobject_cast<QMainWindow*>(parentWidget()))
        if (auto* view = window->menuBar()->findChild<QMenu*>(QStringLiteral("mnuView")))
            view->setTitle(caption(QStringLiteral("mnuView"), QStringLiteral("View")));
    updateCount();
}

void ExchangePanel::updateCount() {
    const int shown = table_->model()->rowCount();
    count_->setText(QStringLiteral("%1 / %2").arg(shown).arg(model_.rowCount()));
}

void ExchangePanel::showProblem(const QString& text) {
    if (reportProblem_)
        reportProblem_(text);
    else
        QMessageBox::warning(this, windowTitle(), text);
}

bool ExchangePanel::saveTo(const QString& path) {
    QString error;
    if (writeTraceFile(path, model_.records(), &error))
        return true;
    showProblem(caption(QStringLiteral("The trace cannot be saved")) + QStringLiteral("\n") +
                error);
    return false;
}

bool ExchangePanel::openFrom(const QString& path) {
    QString error;
    const auto contents = readTraceFile(path, &error);
    if (!contents) {
        showProblem(caption(QStringLiteral("The trace cannot be read")) + QStringLiteral("\n") +
                    error);
        return false;
    }
    // A saved trace is looked at still: the live list waits behind Pause.
    pause_->setChecked(true);
    feed_->clear();
    model_.append(assembleExchanges(contents->records));
    openedFile_ = path;
    retranslate();
    table_->scrollToTop();
    return true;
}

ExchangePanel* installExchangePanel(QMainWindow& window, TraceHub& hub, ConfigDocument& config,
                                    std::function<QString()> language) {
    auto* panel = new ExchangePanel(hub, config, std::move(language), &window);
    window.addDockWidget(Qt::BottomDockWidgetArea, panel);
    panel->hide();
    QMenu* view = window.menuBar()->findChild<QMenu*>(QStringLiteral("mnuView"));
    if (!view) {
        view = new QMenu(window.menuBar());
        view->setObjectName(QStringLiteral("mnuView"));
        // Before the last menu, the window's "?".
        const QList<QAction*> menus = window.menuBar()->actions();
        if (!menus.isEmpty())
            window.menuBar()->insertMenu(menus.last(), view);
        else
            window.menuBar()->addMenu(view);
    }
    QAction* toggle = panel->toggleViewAction();
    toggle->setObjectName(QStringLiteral("mnuExchanges"));
    view->addAction(toggle);
    panel->retranslate();
    return panel;
}

} // namespace qv
