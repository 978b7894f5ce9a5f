#pragma once

#include <QByteArray>
#include <QString>

namespace qv {

// Frames of the command set in words, for the exchange trace: "read EEPROM
// 40 (counter 1)", "identity", "set clock Mon 23/11/26 19:03:08", with the
// reply in words beside it ("7", "Quorvel (12) 2.70 BL V 103, battery 9.0 V").

// What the decoder remembers between the frames of one device: the
// programme block frames name no line, the condition frame before them does.
struct DecodeContext {
    int programmeLine = 0; // 1-based; 0 before any condition frame
};

// The request in words; a 16-byte frame whose check value is wrong says so.
// `context` (optional) is updated by condition frames.
QString describeRequest(const QByteArray& request, DecodeContext* context = nullptr);

// The reply's content in words, given its request; empty when the tool does
// not look at that reply (restart, clock setting, programme, manual action).
QString describeReply(const QByteArray& request, const QByteArray& reply);

// The name of an EEPROM address in the memory map ("serial number, byte 0");
// empty where the map names nothing.
QString eepromName(int address);

// The name of a live value address ("ILS input"); empty when unnamed.
QString liveValueName(int address);

// True when the frame's last two bytes are its check value, low byte first:
// the check over the whole frame gives 0.
bool checkValueGood(const QByteArray& frame);

// Whether the request is a checked 16-byte frame (every command but the
// legacy probe).
inline bool isCheckedFrame(const QByteArray& request) {
    return request.size() == 16;
}

} // namespace qv
