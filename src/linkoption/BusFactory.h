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

// The wording of a report in the language in use, looked up by its English
// wording (config.xml's key), with %1, %2... for the details.
using BusTexts = std::function<QString(const QString& key)>;

// The bus named by a --link option:
//   usb[:ids=FILE,readWaitMs=MS]        controllers on USB (the default)
//   tty:PATTERN[,readWaitMs=MS]         controllers seen as serial ports
//   sim[:key=value,...]                 simulated controllers in the process
// nullptr and a message for the operator when the option is wrong or the
// backend cannot start. Without `report`, reports go to standard error;
// without `texts`, in English.
std::unique_ptr<Bus> makeBus(const QString& linkSpec, QString* error, BusReport report = {},
                             BusTexts texts = {});

// The text of --help about --link.
QString linkOptionHelp();

} // namespace qv
