#include "BusFactory.h"

#include "SimOptions.h"
#include "SimulatedBus.h"
#include "link/backends/TtyBus.h"
#include "link/backends/UsbBus.h"

#include <QCoreApplication>
#include <QStringList>
#include <cstdio>

namespace qv {

namespace {

BusReport toStandardError() {
    return [](const QString& text) {
        const QString program = QCoreApplication::instance() ? QCoreApplication::applicationName()
                                                             : QStringLiteral("quorvel");
        std::fprintf(stderr, "%s: %s\n", qUtf8Printable(program), qUtf8Printable(text));
        std::fflush(stderr);
    };
}

bool fail(QString* error, const QString& text) {
    if (error)
        *error = text;
    return false;
}

bool parseWait(const QString& option, const QString& value, int* out, QString* error) {
    bool ok = false;
    const int ms = value.toInt(&ok);
    if (!ok || ms < 1 || ms > 60000)
        return fail(error, QStringLiteral("--link %1: readWaitMs '%2' is not a number of "
                                          "milliseconds from 1 to 60000")
                               .arg(option, value));
    *out = ms;
    return true;
}

std::unique_ptr<Bus> makeUsbBus(const QString& option, QString* error, BusReport report,
                                BusTexts texts) {
    QString idsPath;
    UsbBus::Settings settings;
    const QString options =
        option.mid(3).startsWith(QLatin1Char(':')) ? option.mid(4) : option.mid(3);
    for (const QString& item : options.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        const QString key = item.section(QLatin1Char('='), 0, 0).trimmed();
        const QString value = item.section(QLatin1Char('='), 1).trimmed();
        if (key == QLatin1String("ids") && !value.isEmpty()) {
            idsPath = value;
        } else if (key == QLatin1String("readWaitMs")) {
            if (!parseWait(option, value, &settings.readWaitMs, error))
                return nullptr;
        } else {
            fail(error, QStringLiteral("--link %1: unknown usb option '%2'; known: ids=FILE, "
                                       "readWaitMs=MS")
                            .arg(option, item));
            return nullptr;
        }
    }
    QString problem;
    auto ids = loadUsbIds(idsPath, nullptr, &problem);
    if (!ids) {
        fail(error, problem);
        return nullptr;
    }
    settings.ids = std::move(*ids);
    settings.report = report ? std::move(report) : toStandardError();
    settings.translate = std::move(texts);
    return std::make_unique<UsbBus>(std::move(settings));
}

std::unique_ptr<Bus> makeTtyBus(const QString& option, QString* error) {
    TtyBus::Settings settings;
    QStringList parts = option.mid(4).split(QLatin1Char(','));
    // Options trail the pattern; anything else with a comma belongs to it.
    while (parts.size() > 1 && parts.last().startsWith(QLatin1String("readWaitMs="))) {
        if (!parseWait(option, parts.last().section(QLatin1Char('='), 1), &settings.readWaitMs,
                       error))
            return nullptr;
        parts.removeLast();
    }
    settings.pattern = parts.join(QLatin1Char(','));
    if (settings.pattern.trimmed().isEmpty()) {
        fail(error, QStringLiteral("--link tty: needs a pattern of device paths, such as "
                                   "tty:/dev/ttyACM*"));
        return nullptr;
    }
    return std::make_unique<TtyBus>(std::move(settings));
}

} // namespace

std::unique_ptr<Bus> makeBus(const QString& linkSpec, QString* error, BusReport report,
                             BusTexts texts) {
    const QString option = linkSpec.trimmed();
    if (option == QStringLiteral("sim") || option.startsWith(QStringLiteral("sim:"))) {
        QString problem;
        const auto options = parseSimOptions(option.mid(3), &problem);
        if (!options) {
            fail(error, QStringLiteral("--link %1: %2").arg(option, problem));
            return nullptr;
        }
        auto bus = SimulatedBus::fromOptions(*options, &problem);
        if (!bus)
            fail(error, QStringLiteral("--link %1: %2").arg(option, problem));
        return bus;
    }
    if (option == QStringLiteral("usb") || option.startsWith(QStringLiteral("usb:")))
        return makeUsbBus(option, error, std::move(report), std::move(texts));
    if (option.startsWith(QStringLiteral("tty:")))
        return makeTtyBus(option, error);
    fail(error, QStringLiteral("unknown link \"%1\": use usb, tty:PATTERN or sim[:key=value,...]")
                    .arg(option));
    return nullptr;
}

QString linkOptionHelp() {
    return QStringLiteral(
               "--link usb[:ids=FILE,readWaitMs=MS]\n"
               "    controllers on USB (the default), those listed in usb-ids.conf, or in FILE,\n"
               "    or in the file named by QUORVEL_USB_IDS\n"
               "--link tty:PATTERN[,readWaitMs=MS]\n"
               "    controllers seen as serial ports: tty:/dev/ttyACM*, or quorvel-sim's\n"
               "    tty:FOLDER/*\n"
               "--link sim[:key=value,...]\n"
               "    simulated controllers in the process; keys:\n    ") +
           simOptionsHelp();
}

} // namespace qv
