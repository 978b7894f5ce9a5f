#include "ControllerIdentity.h"

#include "ControllerChannel.h"
#include "device/DeviceSelection.h"
#include "device/Identity.h"

namespace qv {

ControllerIdentity readControllerIdentity(ControllerChannel& channel) {
    ControllerIdentity identity;
    channel.state().TimeOut = false;
    const MainIdentity main = LitVersionPrincipale(channel.device());
    if (channel.failed())
        return identity;
    identity.answered = true;
    identity.model = NomMateriel(main.hardwareCode, false);
    identity.firmware = main.firmwareText;
    DeviceSelection selection(channel.device(),
                              [&channel](const QString& key) { return channel.message(key); });
    identity.serial = selection.LitSerieAppareil();
    return identity;
}

} // namespace qv
