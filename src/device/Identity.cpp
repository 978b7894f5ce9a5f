#include "Identity.h"

#include "MemoryMap.h"

#include <QLocale>

namespace qv {

QString NomMateriel(int code, bool variante) {
    switch (code) {
    case 1:
        return variante ? QStringLiteral("Z905RT") : QStringLiteral("Ombrel");
    case 2:
        return QStringLiteral("Varlin K1");
    case 3:
        return QStringLiteral("Varlin K2");
    case 4:
        return QStringLiteral("Hestor");
    case 5:
        return QStringLiteral("Pelvan");
    case 6:
        return QStringLiteral("Quorvel");
    case 7:
        return QStringLiteral("Quorvel MB");
    case 8:
        return QStringLiteral("DRM");
    case 9:
        return QStringLiteral("DRM MB");
    case 10:
        return QStringLiteral("Tamsen");
    case 11:
        return QStringLiteral("Zintor");
    case 12:
        return QStringLiteral("Quorvel");
    case 13:
        return QStringLiteral("Yardel");
    case 14:
        return QString();
    case 15:
        return QStringLiteral("Varlin3-9");
    case 16:
        return QStringLiteral("Varlin9-18");
    case 18:
        return QStringLiteral("Kobrit");
    case 19:
    case 20:
        return variante ? QStringLiteral("Z905FRT") : QStringLiteral("Ombrel 41");
    case 23:
        return QStringLiteral("LTR-LTS");
    default:
        return QStringLiteral("Generic Sorvane");
    }
}

namespace {
long long at(const Bytes& reply, size_t index) {
    return index < reply.size() ? reply[index] : 0;
}

QString nameAndVersion(const Bytes& reply) {
    const long long code = at(reply, 2);
    return NomMateriel(static_cast<int>(code), false) + QStringLiteral(" : (") +
           QString::number(code) + QStringLiteral(") ") + firmwareVersionText(reply);
}
} // namespace

QString firmwareVersionText(const Bytes& reply) {
    const long long minor = at(reply, 3);
    if (minor < 10)
        return QString::number(at(reply, 1)) + QLatin1Char('.') + QString::number(at(reply, 4)) +
               QString::number(minor);
    return QString::number(at(reply, 1)) + QLatin1Char('.') + QString::number(minor);
}

QString bootloaderVersionText(const Bytes& reply) {
    return QString::number(at(reply, 7) * 10) + QString::number(at(reply, 8));
}

QString LitVersionAvantV270(FrameLink& link, std::int32_t usbId, bool& modeleReconnu) {
    Bytes request(12, 0);
    request[0] = Command::Identity;
    link.OuvreUsb(usbId);
    link.EcritBrutUsb(request, 12);
    link.pause();
    const Bytes reply = link.LitBrutUsb(7, QString(), false, 0, QString());
    link.FermeUsb();
    modeleReconnu = at(reply, 2) == kServedHardwareCode;
    return modeleReconnu ? nameAndVersion(reply) : QString();
}

QString LitVersion(FrameLink& link, std::int32_t usbId, bool& modeleReconnu,
                   const QString& absentMessage) {
    Bytes request(kFrameLength, 0);
    request[0] = Command::Identity;
    Bytes reply;
    std::int16_t length = ReplyLength::Identity;
    link.EchangeUsb(usbId, request, kFrameLength, reply, length, absentMessage, true, QString());
    const QString separator =
        at(reply, 3) < 10 ? QStringLiteral("    BL V ") : QStringLiteral("     BL V ");
    modeleReconnu = at(reply, 2) == kServedHardwareCode;
    return nameAndVersion(reply) + separator + bootloaderVersionText(reply);
}

QString batteryVoltsText(int raw) {
    return QLocale::system().toString(raw / kBatteryStepsPerVolt, 'f', 1);
}

MainIdentity LitVersionPrincipale(Device& device) {
    Bytes request(kFrameLength, 0);
    request[0] = Command::Identity;
    const Bytes reply = device.transact(request, ReplyLength::Identity);
    MainIdentity identity;
    identity.hardwareCode = static_cast<int>(at(reply, 2));
    identity.firmwareText = firmwareVersionText(reply);
    identity.bootloaderText = bootloaderVersionText(reply);
    identity.versionCaption = QStringLiteral("(") + QString::number(identity.hardwareCode) +
                              QStringLiteral(") ") + identity.firmwareText;
    identity.maintenanceCaption =
        QStringLiteral("Maintenance (Bootloader V") + identity.bootloaderText + QLatin1Char(')');
    identity.batteryRaw = static_cast<int>(at(reply, 5) * 256 + at(reply, 6));
    identity.batteryText = batteryVoltsText(identity.batteryRaw);
    identity.featureMinor14 = at(reply, 3) >= 14;
    identity.featureMinor20 = at(reply, 3) >= 20;
    return identity;
}

} // namespace qv
