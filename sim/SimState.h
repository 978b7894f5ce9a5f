#pragma once

#include "SimDevice.h"

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <optional>
#include <vector>

namespace qv {

// The saved form of simulated controllers: a JSON document
//   {"format": "quorvel-sim-state", "version": 1, "devices": [ {...}, ... ]}
// with one object per device. "id" and "eeprom" (1024 hex digits) are
// required; every other field falls back to a fresh controller's value when
// absent, and is an error when present with a wrong type or range.
QJsonObject deviceToJson(const SimDevice& device);
std::optional<SimDevice> deviceFromJson(const QJsonObject& object, QString* error = nullptr);

QByteArray devicesToState(const std::vector<const SimDevice*>& devices);
// Checks the whole document, ids unique and never 0, 254 or 255.
std::optional<std::vector<SimDevice>> devicesFromState(const QByteArray& document,
                                                       QString* error = nullptr);

} // namespace qv
