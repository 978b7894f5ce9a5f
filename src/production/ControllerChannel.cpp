#include "ControllerChannel.h"

#include "link/Bus.h"

#include <QDir>
#include <QFile>

namespace qv {

ControllerChannel::ControllerChannel(Bus& bus, std::int32_t id, const QString& configPath,
                                     QString language,
                                     std::function<void(const QString&)> forwardMessages)
    : language_(std::move(language)), dialogs_(std::move(forwardMessages)) {
    if (!scratch_.isValid())
        throw ConfigError(QStringLiteral("No scratch folder for a copy of %1: %2")
                              .arg(QDir::toNativeSeparators(configPath), scratch_.errorString()));
    const QString copy = scratch_.filePath(QStringLiteral("config.xml"));
    if (!QFile::copy(configPath, copy))
        throw ConfigError(
            QStringLiteral("%1 cannot be copied.").arg(QDir::toNativeSeparators(configPath)));
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
    config_ = std::make_unique<ConfigDocument>(copy);
    config_->load();
    if (language_.isEmpty()) {
        const QStringList languages = config_->ListeLanguesDisponibles();
        language_ = languages.isEmpty() ? QStringLiteral("English") : languages.first();
    }
    state_.UsbID = id;
    state_.bUsbConnected = true;
    link_ = std::make_unique<FrameLink>(bus, dialogs_, state_);
    device_ = std::make_unique<Device>(
        *link_, [this] { return message(QStringLiteral("Quorvel Absent")); });
}

ControllerChannel::~ControllerChannel() = default;

QString ControllerChannel::message(const QString& key) {
    return config_->LitMessage(language_, key, QString());
}

} // namespace qv
