#pragma once

#include <QString>

namespace qv {

class ControllerChannel;

// What the bench lists of a controller before it is commissioned.
struct ControllerIdentity {
    bool answered = false;
    QString model;    // "Quorvel"
    QString firmware; // "2.70"
    QString serial;   // decimal; empty when unreadable
};

// The identity frame and the serial number, as the connection list reads
// them. A controller that does not answer gives `answered` false.
ControllerIdentity readControllerIdentity(ControllerChannel& channel);

} // namespace qv
