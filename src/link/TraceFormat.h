#pragma once

#include "TransferRecord.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace qv {

// The trace file: one line per transfer, the simulator's format extended at
// the end so that its traces still read:
//
//   12.345678 > FE 28 00 ... 9C 3E #1 @1509949441
//   12.367012 < FE 07 41 D0 #1 @1509949441 answered
//   12.637950 < #2 @1509949441 silence
//
// seconds since the start of the trace, `>` to or `<` from the device, the
// bytes in hex, then the attempt (#N), the device (@ID), the outcome, and
// "raw" for transfers without check value. Words after the bytes are
// optional and unknown ones are skipped.
QString formatTraceLine(const TransferRecord& record);

// nullopt for a line that is no transfer (blank, a comment, other text).
std::optional<TransferRecord> parseTraceLine(const QString& line);

struct TraceFileContents {
    std::vector<TransferRecord> records;
    int skippedLines = 0; // lines that were not transfers
};

// Reads a trace file; nullopt and a message when it cannot be read.
std::optional<TraceFileContents> readTraceFile(const QString& path, QString* error);
TraceFileContents parseTraceText(const QString& text);

// Writes `records` to `path` in one piece: the file is either replaced
// whole or left as it was.
bool writeTraceFile(const QString& path, const std::vector<TransferRecord>& records,
                    QString* error);

} // namespace qv
