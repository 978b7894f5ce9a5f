#include "LocaleNumber.h"

#include <cmath>

namespace qv {

std::optional<double> parseLocaleNumber(const QString& text, const QLocale& locale) {
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return std::nullopt;
    bool ok = false;
    const double value = locale.toDouble(trimmed, &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

} // namespace qv
