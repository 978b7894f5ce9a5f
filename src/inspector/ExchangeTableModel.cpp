#include "ExchangeTableModel.h"

namespace qv {

namespace {
const char* const kHeaderKeys[] = {"Time",    "Device",        "Request", "Reply",
                                   "Attempt", "Duration (ms)", "Status"};
// In the order of ExchangeStatus.
const char* const kStatusKeys[] = {"answered", "silence", "bad check value", "write refused"};
} // namespace

ExchangeTableModel::ExchangeTableModel(int capacity, QObject* parent)
    : QAbstractTableModel(parent), capacity_(std::max(1, capacity)) {
    retranslate();
}

int ExchangeTableModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int ExchangeTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

const Exchange& ExchangeTableModel::at(int row) const {
    return rows_[static_cast<size_t>(row)];
}

QString ExchangeTableModel::statusCaption(ExchangeStatus status) const {
    return statusWords_.value(static_cast<int>(status));
}

QString ExchangeTableModel::cellText(const Exchange& e, int column) const {
    switch (column) {
    case Time:
        return QString::number(static_cast<double>(e.atUs) / 1e6, 'f', 3);
    case Device:
        return e.deviceKnown ? QString::number(e.device) : QString();
    case Request:
        return e.requestText;
    case Reply:
        return e.status == ExchangeStatus::Answered ? e.replyText : QString();
    case Attempt:
        return QString::number(e.attempt);
    case Duration:
        return QString::number(static_cast<double>(e.durationUs) / 1000.0, 'f', 1);
    case Status:
        return statusCaption(e.status);
    default:
        return QString();
    }
}

QVariant ExchangeTableModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Exchange& e = at(index.row());
    if (role == Qt::DisplayRole)
        return cellText(e, index.column());
    if (role == StatusRole)
        return static_cast<int>(e.status);
    if (role == Qt::ToolTipRole && (index.column() == Request || index.column() == Reply))
        return QString::fromLatin1(
            (index.column() == Request ? e.request : e.reply).toHex(' ').toUpper());
    if (role == Qt::TextAlignmentRole && index.column() != Request && index.column() != Reply)
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    return {};
}

QVariant ExchangeTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role == Qt::DisplayRole && orientation == Qt::Horizontal)
        return headers_.value(section);
    return QAbstractTableModel::headerData(section, orientation, role);
}

void ExchangeTableModel::append(std::vector<Exchange> rows) {
    if (rows.empty())
        return;
    const size_t capacity = static_cast<size_t>(capacity_);
    if (rows.size() > capacity)
        rows.erase(rows.begin(), rows.end() - static_cast<std::ptrdiff_t>(capacity));
    const size_t total = rows_.size() + rows.size();
    if (total > capacity) {
        const size_t overflow = total - capacity;
        beginRemoveRows({}, 0, static_cast<int>(overflow) - 1);
        rows_.erase(rows_.begin(), rows_.begin() + static_cast<std::ptrdiff_t>(overflow));
        endRemoveRows();
    }
    const int first = static_cast<int>(rows_.size());
    beginInsertRows({}, first, first + static_cast<int>(rows.size()) - 1);
    for (Exchange& e : rows)
        rows_.push_back(std::move(e));
    endInsertRows();
}

void ExchangeTableModel::clear() {
    beginResetModel();
    rows_.clear();
    endResetModel();
}

void ExchangeTableModel::setTranslator(std::function<QString(const QString&)> translate) {
    translate_ = std::move(translate);
    retranslate();
}

void ExchangeTableModel::retranslate() {
    const auto tr = [this](const char* key) {
        const QString k = QString::fromLatin1(key);
        return translate_ ? translate_(k) : k;
    };
    headers_.clear();
    for (const char* key : kHeaderKeys)
        headers_ << tr(key);
    statusWords_.clear();
    for (const char* key : kStatusKeys)
        statusWords_ << tr(key);
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
    if (!rows_.empty())
        Q_EMIT dataChanged(index(0, Status), index(rowCount() - 1, Status), {Qt::DisplayRole});
}

bool ExchangeTableModel::rowMatches(int row, const QString& text) const {
    if (text.isEmpty())
        return true;
    const Exchange& e = at(row);
    for (int column = 0; column < ColumnCount; ++column)
        if (cellText(e, column).contains(text, Qt::CaseInsensitive))
            return true;
    return false;
}

std::vector<TransferRecord> ExchangeTableModel::records() const {
    std::vector<TransferRecord> all;
    all.reserve(rows_.size() * 2);
    for (int row = 0; row < rowCount(); ++row)
        for (TransferRecord& r : transfersOf(at(row)))
            all.push_back(std::move(r));
    return all;
}

void ExchangeFilter::setText(const QString& text) {
    if (text == text_)
        return;
    text_ = text;
    invalidateRowsFilter();
}

bool ExchangeFilter::filterAcceptsRow(int sourceRow, const QModelIndex&) const {
    const auto* model = qobject_cast<const ExchangeTableModel*>(sourceModel());
    return !model || model->rowMatches(sourceRow, text_);
}

} // namespace qv
