#pragma once

#include "programme/Conditions.h"

#include <QString>
#include <cstdint>
#include <functional>
#include <optional>

namespace qv {

// The text of a language key in the language in use.
using MessageLookup = std::function<QString(const QString& key)>;

// The download numbers the lines in one byte.
inline constexpr int kMaxLignesEnvoi = 256;

// The first thing in a programme that its frames cannot carry.
struct ProgrammeFault {
    enum class Kind {
        Field,        // `field` of line `line` holds `value`
        LineCount,    // `line` is the number of lines
        DefaultState, // the default state of output 0 is `value`
    };
    Kind kind = Kind::Field;
    int line = 0;  // 1-based position in the collection
    QString field; // the attribute name that programme files give the field
    QString value;
};

// Checks the whole programme against the frames of the download before any
// of them goes: every byte and word they carry, the day codes (0 to 12),
// the number of lines. A programme that passes cannot fail to be framed.
std::optional<ProgrammeFault> VerifieProgramme(const Conditions& conditions,
                                               std::int16_t etatDefaut);

// What the operator reads about `fault`, from the keys
// "The programme cannot be sent: line %1, field %2: %3 is out of range.",
// "The programme cannot be sent: it has %1 lines, the controller takes at
// most %2." and "The programme cannot be sent: the default state of the
// output, %1, is out of range.". Without `message` the keys stand for their
// texts.
QString texteRefus(const ProgrammeFault& fault, const MessageLookup& message = {});

} // namespace qv
