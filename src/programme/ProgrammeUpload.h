#pragma once

#include "device/Device.h"
#include "programme/Conditions.h"
#include "programme/ProgrammeCheck.h"

#include <QString>
#include <functional>
#include <optional>

namespace qv {

class ConfigDocument;

// Reading the programme back is not the mirror of sending it: the firmware
// writes an image that can hold more than we ever send (comment records, an
// input-copy form, logic sub-conditions), and the reader takes all of it.
//
// Image, from address 48: line records, ended by a 255 where a record would
// begin. A record may start with a comment prefix (253, length L, L bytes of
// text in code page 1252), then a 13-byte header: sortie, term count T, flags (bit 0:
// a range block follows), the action field at 3..8, Temporisation at 11..12
// (low byte first). Then the range block (two entries of 9 bytes when they
// begin with 9, of 5 otherwise), then T terms of 10 bytes each: 9 a day and
// time, 11 a periodic line, anything else a logic sub-condition whose index
// is that first byte.

// The item data of the output list's row at `position`; nullopt when there
// is no such row.
using OutputFormatLookup = std::function<std::optional<double>(int position)>;

struct ProgrammeLu {
    enum class Fin {
        ImageVide,   // the first byte is the end mark
        MarqueDeFin, // every line up to the end mark was read
        TimeOut,     // a read went unanswered
        ErreurCRC,   // a reply failed its check value three times
        FinMemoire,  // the image runs past the end of the device's memory
    };
    Fin fin = Fin::ImageVide;
    // The lines read whole, in image order. None when the image is empty or
    // the very first read went unanswered; after a stop it holds the lines
    // that were complete before it.
    std::optional<Conditions> conditions;
    // The address whose read ended the image early; -1 after a whole read.
    int adresseEchec = -1;

    bool complet() const { return fin == Fin::MarqueDeFin; }
};

// Decodes the programme image of the device in use, one exchange per byte
// and two per word; unread bytes are skipped, not fetched.
//
// Each line is named from `message("Electro Vanne Bist.")`, " ", sortie - 2,
// "-" and its 1-based running number, which is also its rang. Its Format is
// `outputFormat(sortie)`; with no such row, or one that does not fit, it
// stays 0. A term whose index has no place in a line (10, or above 11) is
// skipped and the read goes on at the next term.
//
// The firmware marks the end with a 255, and a dead device answers every
// read with 0, which is no mark; so the read also stops at the first read
// that goes unanswered or fails its check value, and before any read past
// address 511.
//
// A comment is decoded in code page 1252, the characters that config.xml
// cannot carry replaced by "?". A damaged
// image thus costs fewer than two exchanges per byte of memory (the link's
// retries aside), and never loops.
ProgrammeLu LitProgramme(Device& device, const MessageLookup& message,
                         const OutputFormatLookup& outputFormat);

// LitProgramme, and on a complete read the stored programme of config.xml
// replaced with the lines of the device. An empty image, a dead device, a
// failed check value or a damaged image leaves config.xml untouched: a
// partial programme would replace the operator's with one the device does
// not hold. Throws ConfigError when
// config.xml cannot be read or written.
ProgrammeLu LitEtSauveProgramme(Device& device, const ConfigDocument& config,
                                const MessageLookup& message,
                                const OutputFormatLookup& outputFormat);

} // namespace qv
