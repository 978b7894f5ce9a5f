#pragma once

#include <QLocale>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>

namespace qv {

class ConsoleView;

// Backgrounds of a checked entry box, as 0xRRGGBB.
inline constexpr std::uint32_t kFondValide = 0xFFFFFF;
inline constexpr std::uint32_t kFondErreur = 0xFA6464; // red 250, green 100, blue 100

// What an entry check needs of a window beyond ConsoleView: the colour of a
// box.
class ValidationView {
public:
    virtual ~ValidationView() = default;
    virtual void setBackground(const QString& control, std::uint32_t rgb) = 0;
    virtual std::uint32_t background(const QString& control) const = 0;
};

// Everything a check touches: the window, the colours, the texts of the
// language in use, and the number format of the machine.
struct EntryCheck {
    ConsoleView& view;
    ValidationView& colours;
    // The text of a message key in the language in use (LitMessage with an
    // empty default). May throw, as the configuration file may.
    std::function<QString(const QString&)> message;
    QLocale locale = QLocale::system();
    // The label that explains the fault.
    QString messageLabel = QStringLiteral("Message");
};

// Checks the number typed into the text box `control` as the operator types:
// white, and the explanation cleared, when it reads in the locale as a
// number from `min` to `max` (both included); otherwise the box goes red,
// the reason goes to the label and to the box's tool tip, and the box takes
// the focus back if it is visible. The typed text is never changed, and the
// separator is the locale's alone: "2.5" is no number on a decimal-comma
// machine.
//
// The range message joins its parts with blanks of its own, so the keys'
// own trailing and leading blanks double them when a language has no
// translation: "La saisie doit être comprise entre  0  et  255". Operators
// know that look; it stays.
//
// The programme editor's form: integer limits, shown as integers; a failure
// of the texts (a damaged config.xml) leaves the label and tip as they were.
bool ControleValeur(const EntryCheck& check, const QString& control, std::int32_t min,
                    std::int32_t max);
// The main form's: limits shown in their plain decimal text, in the locale;
// a failure of the texts reaches the caller.
bool ControleValeur(const EntryCheck& check, const QString& control, double min, double max);

// Maps `valeur` of the range `min`..`max` onto the current loop's 4..20 mA,
// rounded to a whole number, a tie going to the even neighbour. nullopt when
// `min` equals `max`, a division by zero that the caller has to handle.
std::optional<double> Vers420(double min, double max, double valeur);

} // namespace qv
