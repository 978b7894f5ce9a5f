#pragma once

#include "device/ExchangeLog.h"

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>
#include <QStringList>
#include <deque>
#include <functional>
#include <vector>

namespace qv {

// The exchanges of the inspector, newest last, in a ring: past the capacity
// the oldest rows go, so that a day of continuous reading costs the same
// memory and time as an hour.
class ExchangeTableModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { Time, Device, Request, Reply, Attempt, Duration, Status, ColumnCount };
    // The row's ExchangeStatus, as an int, for colouring.
    static constexpr int StatusRole = Qt::UserRole + 1;

    static constexpr int kDefaultCapacity = 100'000;

    explicit ExchangeTableModel(int capacity = kDefaultCapacity, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    // Appends in one step; rows beyond the capacity drop the oldest.
    void append(std::vector<Exchange> rows);
    void clear();
    const Exchange& at(int row) const;
    int capacity() const { return capacity_; }

    // The column captions and status words in the language of the moment,
    // by English key ("Time", "answered", ...).
    void setTranslator(std::function<QString(const QString& key)> translate);
    void retranslate();
    QString statusCaption(ExchangeStatus status) const;

    // Whether the row shows `text` in any column (case ignored).
    bool rowMatches(int row, const QString& text) const;

    // Every transfer behind the rows, oldest first, for saving as a trace.
    std::vector<TransferRecord> records() const;

private:
    QString cellText(const Exchange& e, int column) const;

    int capacity_;
    std::deque<Exchange> rows_; // oldest first, at most capacity_
    std::function<QString(const QString&)> translate_;
    QStringList headers_;
    QStringList statusWords_;
};

// The inspector's text filter: rows that show the text in any column.
class ExchangeFilter : public QSortFilterProxyModel {
    Q_OBJECT
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;
    void setText(const QString& text);
    const QString& text() const { return text_; }

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex& sourceParent) const override;

private:
    QString text_;
};

} // namespace qv
