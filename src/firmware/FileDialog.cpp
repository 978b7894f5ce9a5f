#include "FileDialog.h"

#include <QStringList>

namespace qv {

QString qtDialogFilter(const QString& legacyFilter) {
    const QStringList parts = legacyFilter.split(QLatin1Char('|'));
    QStringList entries;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts[i].trimmed();
        QStringList patterns;
        for (const QString& pattern : parts[i + 1].split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
            const QString p = pattern.trimmed();
            for (const QString& form : {p, p.toLower(), p.toUpper()})
                if (!form.isEmpty() && !patterns.contains(form))
                    patterns << form;
        }
        // "Log Files (*.LOG)" already shows its pattern: the parenthesis is
        // replaced rather than doubled.
        const qsizetype open = description.lastIndexOf(QLatin1Char('('));
        if (open > 0 && description.endsWith(QLatin1Char(')')))
            description = description.left(open).trimmed();
        entries << QStringLiteral("%1 (%2)").arg(description, patterns.join(QLatin1Char(' ')));
    }
    return entries.join(QStringLiteral(";;"));
}

} // namespace qv
