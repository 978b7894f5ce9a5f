#pragma once

#include "link/Bus.h"

#include <QString>
#include <memory>

namespace qv {

// The bus named by a --link option: "usb", or "sim[:key=value,...]" for
// simulated controllers. nullptr and a message for the operator when the
// option is wrong or the backend cannot start.
std::unique_ptr<Bus> makeBus(const QString& linkSpec, QString* error);

// The text of --help about --link.
QString linkOptionHelp();

} // namespace qv
