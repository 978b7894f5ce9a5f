#pragma once

#include "Commands.h"

#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

namespace qv {

class Bus;

// True when --device names more than one controller: "all" or a list.
bool namesSeveralDevices(const std::optional<QString>& option);

// The controllers that --device names, in its order: every attached one for
// "all" (or for nothing when `allByDefault`), the ids of "ID,ID,...", the
// one id, or the first attached controller. An id named twice is a
// UsageError: it would be worked with by two threads at once.
std::vector<std::int32_t> devicesNamed(const std::optional<QString>& option, Bus& bus,
                                       bool allByDefault = false);

// Runs `command` on every controller of `ids` at once, each in a session of
// its own over the bus of `base`. Standard error carries one status line per
// controller; standard output, once all have ended, each controller's output
// labelled with its id (`--json`: a "device" member in each object). Exit
// status 0 when every controller succeeded, else 1 with the failed ones
// named; a usage or configuration error is thrown as in a single run.
int runOnDevices(Session& base, const CliCommand& command, const QStringList& words,
                 const std::vector<std::int32_t>& ids);

} // namespace qv
