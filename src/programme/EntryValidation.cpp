#include "EntryValidation.h"

#include "config/LocaleNumber.h"
#include "config/VbFormat.h"
#include "view/ConsoleView.h"

#include <cmath>
#include <exception>

namespace qv {

namespace {

enum class TextFailure { Ignored, Raised };

bool check(const EntryCheck& c, const QString& control, double min, double max,
           const QString& minText, const QString& maxText, TextFailure failure) {
    const auto value = parseLocaleNumber(c.view.text(control), c.locale);
    if (value && *value >= min && *value <= max) {
        c.colours.setBackground(control, kFondValide);
        c.view.setText(c.messageLabel, QString());
        c.view.setToolTip(control, QString());
        return true;
    }

    c.colours.setBackground(control, kFondErreur);
    const auto explain = [&] {
        const QString text =
            value ? c.message(QStringLiteral("La saisie doit être comprise entre ")) +
                        QLatin1Char(' ') + minText + QLatin1Char(' ') +
                        c.message(QStringLiteral(" et ")) + QLatin1Char(' ') + maxText
                  : c.message(QStringLiteral("La saisie n'est pas numérique"));
        c.view.setText(c.messageLabel, text);
        c.view.setToolTip(control, text);
    };
    if (failure == TextFailure::Raised) {
        explain();
    } else {
        try {
            explain();
        } catch (const std::exception&) {
            // The box is red all the same; the label keeps what it said.
        }
    }
    if (c.view.isVisible(control))
        c.view.setFocus(control);
    return false;
}

} // namespace

bool ControleValeur(const EntryCheck& c, const QString& control, std::int32_t min,
                    std::int32_t max) {
    return check(c, control, min, max, QString::number(min), QString::number(max),
                 TextFailure::Ignored);
}

bool ControleValeur(const EntryCheck& c, const QString& control, double min, double max) {
    return check(c, control, min, max, vbNumberText(min, c.locale), vbNumberText(max, c.locale),
                 TextFailure::Raised);
}

std::optional<double> Vers420(double min, double max, double valeur) {
    if (min == max)
        return std::nullopt;
    const double a = 16.0 / (max - min);
    const double b = 4.0 - a * min;
    const double result = std::nearbyint(a * valeur + b);
    if (!std::isfinite(result))
        return std::nullopt;
    return result;
}

} // namespace qv
