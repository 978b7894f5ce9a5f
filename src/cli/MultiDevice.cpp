#include "MultiDevice.h"

#include "ProgressBoard.h"
#include "production/ProductionRun.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <exception>
#include <mutex>
#include <set>

namespace qv {

bool namesSeveralDevices(const std::optional<QString>& option) {
    return option && (option->trimmed() == QLatin1String("all") || option->contains(u','));
}

std::vector<std::int32_t> devicesNamed(const std::optional<QString>& option, Bus& bus,
                                       bool allByDefault) {
    std::vector<std::int32_t> ids;
    if ((!option && allByDefault) || (option && option->trimmed() == QLatin1String("all"))) {
        const int count = bus.deviceCount();
        for (int i = 0; i < count; ++i)
            ids.push_back(bus.uniqueId(i));
        return ids;
    }
    if (!option) {
        if (bus.deviceCount() > 0)
            ids.push_back(bus.uniqueId(0));
        return ids;
    }
    std::set<std::int32_t> seen;
    for (const QString& word : option->split(u',', Qt::SkipEmptyParts)) {
        const auto id = static_cast<std::int32_t>(
            parseNumber(word, QStringLiteral("ID"), INT32_MIN, INT32_MAX));
        if (!seen.insert(id).second)
            throw UsageError{QStringLiteral("device %1 is named twice in --device").arg(id)};
        ids.push_back(id);
    }
    if (ids.empty())
        throw UsageError{QStringLiteral("--device names no device")};
    return ids;
}

namespace {

struct DeviceRun {
    CapturedOutput output;
    int status = kExitDeviceFailed;
    std::exception_ptr error;
};

QJsonValue labelled(std::int32_t id, const QJsonValue& value) {
    if (value.isObject()) {
        QJsonObject object = value.toObject();
        object.insert(QStringLiteral("device"), static_cast<qint64>(id));
        return object;
    }
    return QJsonObject{{QStringLiteral("device"), static_cast<qint64>(id)},
                       {QStringLiteral("result"), value}};
}

} // namespace

int runOnDevices(Session& base, const CliCommand& command, const QStringList& words,
                 const std::vector<std::int32_t>& ids) {
    if (ids.empty()) {
        std::fprintf(stderr, "quorvelctl: no controller attached\n");
        return kExitDeviceFailed;
    }
    QStringList labels;
    for (std::int32_t id : ids)
        labels << QString::number(id);
    ProgressBoard board(labels);
    std::vector<DeviceRun> runs(ids.size());

    runOnEachController(ids, [&](size_t index, std::int32_t id) {
        DeviceRun& run = runs[index];
        captureOutputOnThisThread(&run.output);
        const int line = static_cast<int>(index);
        board.update(line, QStringLiteral("running"));
        try {
            // config.xml is not shared between threads: each controller
            // works on a copy, and only reports are written for real.
            QTemporaryDir scratch;
            const QString copy = scratch.filePath(QStringLiteral("config.xml"));
            if (!scratch.isValid() || !QFile::copy(base.config->configPath(), copy))
                throw ConfigError(QStringLiteral("%1 cannot be copied.")
                                      .arg(QDir::toNativeSeparators(base.config->configPath())));
            QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
            Session s;
            s.config = std::make_unique<ConfigDocument>(copy);
            s.language = base.language;
            s.json = base.json;
            s.yes = base.yes;
            s.applicationDirectory = base.applicationDirectory;
            s.deviceOption = QString::number(id);
            s.state.UsbID = id;
            s.dialogs = std::make_unique<StderrDialogs>(base.yes);
            s.dialogs->setPrinter([&board, id](const QString& text) {
                board.message(QStringLiteral("%1: %2").arg(id).arg(text));
            });
            s.link = std::make_unique<FrameLink>(*base.bus, *s.dialogs, s.state);
            s.device = std::make_unique<Device>(
                *s.link, [&s] { return s.message(QStringLiteral("Quorvel Absent")); });
            Arguments args(words);
            run.status = command.run(s, args);
        } catch (...) {
            run.error = std::current_exception();
        }
        captureOutputOnThisThread(nullptr);
        board.update(line, run.status == kExitOk ? QStringLiteral("ok") : QStringLiteral("failed"));
    });
    board.finish();

    // A usage or configuration error is the same for every controller:
    // reported once, as a single run reports it.
    for (const DeviceRun& run : runs)
        if (run.error)
            std::rethrow_exception(run.error);

    QStringList failed;
    for (size_t i = 0; i < ids.size(); ++i) {
        const DeviceRun& run = runs[i];
        for (const QString& text : run.output.lines)
            printLine(QStringLiteral("%1: %2").arg(ids[i]).arg(text));
        for (const QJsonValue& value : run.output.json)
            printJson(labelled(ids[i], value));
        if (run.status != kExitOk)
            failed << QString::number(ids[i]);
    }
    if (failed.isEmpty())
        return kExitOk;
    std::fprintf(stderr, "quorvelctl: failed on %lld of %lld controllers: %s\n",
                 static_cast<long long>(failed.size()), static_cast<long long>(ids.size()),
                 qUtf8Printable(failed.join(QStringLiteral(", "))));
    return kExitDeviceFailed;
}

} // namespace qv
