#pragma once

#include "link/Bus.h"

#include <QString>
#include <functional>
#include <memory>

namespace qv {

// Receives what a bus has to tell the operator while it works: a controller
// that cannot be opened for lack of permission, USB missing altogether. Each
// text comes once.
using BusReport = std::function<void(const QString& text)>;

// The bus named by a --link option:
//   usb[:ids=FILE,readWaitMs=MS]        controllers on USB (the default)
//   tty:PATTERN[,readWaitMs=MS]         controllers seen as serial ports
//   sim[:key=value,...]                 simulated controllers in the process
// nullptr and a message for the operator when the option is wrong or the
// backend cannot start. Without `report`, reports go to standard error.
std::unique_ptr<Bus> makeBus(const QString& linkSpec, QString* error, BusReport report = {});

// The text of --help about --link.
QString linkOptionHelp();

} // namespace qv
