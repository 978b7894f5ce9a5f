#pragma once

#include "StderrDialogs.h"
#include "config/ConfigDocument.h"
#include "device/Device.h"
#include "link/Bus.h"
#include "link/FrameLink.h"
#include "link/PublicState.h"
#include "link/TraceHub.h"

#include <QString>
#include <memory>
#include <optional>

namespace qv {

// Everything one quorvelctl run works with: the configuration document, the
// bus chosen by --link, the link and the device primitives over it. When a
// command runs on several controllers, each has a session of its own with
// its own state, link and copy of config.xml, and no bus of its own: its
// link goes over the run's.
struct Session {
    std::unique_ptr<ConfigDocument> config;
    // --trace: every transfer of the run, written as it happens. Declared
    // before the bus that reports to it.
    std::unique_ptr<TraceHub> trace;
    std::unique_ptr<Bus> bus;
    std::unique_ptr<StderrDialogs> dialogs;
    PublicState state;
    std::unique_ptr<FrameLink> link;
    std::unique_ptr<Device> device;
    QString language = QStringLiteral("English");
    bool json = false;
    bool yes = false;
    // The folder of the real config.xml, where reports go: a session that
    // works for one controller of several has a copy of config.xml elsewhere.
    QString applicationDirectory;
    // --device as given: one id, a list "ID,ID,..." or "all".
    std::optional<QString> deviceOption;

    QString message(const QString& key);
    // True when the last exchange failed (its box has been printed).
    bool failed() const { return state.TimeOut || state.CRCError; }
};

} // namespace qv
