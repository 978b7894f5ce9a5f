#pragma once

#include "device/Device.h"
#include "link/Bytes.h"
#include "programme/Conditions.h"
#include "programme/ProgrammeCheck.h"

#include <QDate>
#include <QDateTime>
#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

namespace qv {

// The controller does not take a memory image from us: it takes one frame
// per piece of a line and lays the image out itself from address 48 on. The
// frames below carry only the time part of a line; logic sub-conditions,
// regulation, comment and name stay on the PC.
//
// Every builder gives a 16-element request whose unnamed bytes are 0, and
// throws OverflowError when a field does not fit its byte (a negative one
// included): nothing is sent for that frame.

// Command 0x02: a new, empty image, with the default state of output 0.
Bytes beginProgrammeFrame(std::int16_t etatDefaut);

// Command 0x03: the head of line `n` (1-based position in the collection).
// Valeur goes as its low byte, and only when Format is 0. Temporisation
// travels high byte first here, although the image keeps it low byte first.
Bytes conditionFrame(const Condition& c, int n);

// Command 0x1F, sub-command 9: the day and time of a line (sent for every
// Jour but 0 and 12), the start of a range when Jour is 11.
Bytes dayTimeFrame(const Condition& c);

// Command 0x1F, sub-command 10: the end of a range (Jour 11).
Bytes rangeEndFrame(const Condition& c);

// Command 0x1F, sub-command 11: a periodic line (Jour 12). Day of the month
// before month, then time of day and the period in days.
Bytes periodFrame(const Condition& c);

struct EnvoiResultat {
    bool resultat = false;  // every frame has gone
    bool cancelled = false; // the operator said Cancel: nothing was sent
    // The programme cannot be framed: nothing was asked or sent, and the
    // operator has been told which line and field.
    std::optional<ProgrammeFault> refus;
    // The lines all of whose frames were answered, from the first on.
    int lignesEnvoyees = 0;
    // Frames whose reply failed its check value three times. The download
    // goes on past them, so the device may hold something else than sent.
    bool horlogeEnErreur = false; // the clock frame
    bool debutEnErreur = false;   // the frame that begins the image
    std::vector<int> lignesEnErreur;

    bool erreurCRC() const { return horlogeEnErreur || debutEnErreur || !lignesEnErreur.empty(); }
};

// Sends `conditions` to the device in use, after the operator's consent.
//
// The programme is checked whole first (VerifieProgramme): one that its
// frames cannot carry is refused with a box in the operator's language
// (through `message`), before the question and before any frame.
//
// The question `questionText` (the text of "Les anciennes valeurs seront
// écrasées") is asked for every programme that passes the check, an empty
// one too, since the old image is lost either way. Any answer but OK counts as Cancel. Then the
// device's clock is set (option 255: a programme follows), the image is
// begun with `etatDefaut`, and each line goes as one to three frames. The
// first frame that times out ends the download: the device keeps the lines
// sent so far, and the link has shown its box. A failure by check value
// alone does not stop it; the link has already tried three times.
//
// `etatDefaut` is the state that Donne_EtatDefautSortie gives for output 0
// in the first language of the list (not necessarily the one in use).
// `madate` gives the day of the week of the clock frame.
EnvoiResultat Envoi_Conditions(Device& device, const Conditions& conditions,
                               std::int16_t etatDefaut, const QString& questionText,
                               const QDate& madate,
                               const QDateTime& now = QDateTime::currentDateTime(),
                               const MessageLookup& message = {});

} // namespace qv
