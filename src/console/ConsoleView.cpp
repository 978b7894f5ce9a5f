#include "ConsoleView.h"

#include <QRegularExpression>

namespace qv {

QString controlKey(const QString& controlName) {
    static const QRegularExpression arrayIndex(QStringLiteral("_\\d+$"));
    QString key = controlName;
    key.remove(arrayIndex);
    return key;
}

QString arrayMember(const QString& arrayName, int index) {
    return arrayName + QLatin1Char('_') + QString::number(index);
}

} // namespace qv
