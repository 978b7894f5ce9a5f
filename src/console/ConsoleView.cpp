#include "ConsoleView.h"

#include <QRegularExpression>
#include <algorithm>

namespace qv {

QString controlKey(const QString& controlName) {
    static const QRegularExpression arrayIndex(QStringLiteral("_\\d+$"));
    QString key = controlName;
    key.remove(arrayIndex);
    return key;
}

std::vector<ConsoleView::Row> toRows(const std::vector<ListRow>& listRows) {
    std::vector<ConsoleView::Row> rows;
    for (const ListRow& r : listRows) {
        const auto at = static_cast<size_t>(std::max(0, r.position));
        if (rows.size() <= at)
            rows.resize(at + 1);
        rows[at] = {r.text, r.itemData};
    }
    return rows;
}

QString arrayMember(const QString& arrayName, int index) {
    return arrayName + QLatin1Char('_') + QString::number(index);
}

} // namespace qv
