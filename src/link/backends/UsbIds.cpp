#include "UsbIds.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

namespace qv {

namespace {

void setError(QString* error, const QString& text) {
    if (error)
        *error = text;
}

std::optional<unsigned> parseHex(const QString& text, unsigned max) {
    QString digits = text;
    if (digits.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        digits = digits.mid(2);
    if (digits.isEmpty() || digits.size() > 4)
        return std::nullopt;
    bool ok = false;
    const unsigned value = digits.toUInt(&ok, 16);
    if (!ok || value > max)
        return std::nullopt;
    return value;
}

// The table of data/usb-ids.conf; a test holds the two together.
constexpr const char* kBuiltInTable = "1209:0001 interface=0 out=0x02 in=0x81\n";

} // namespace

std::optional<std::vector<UsbIdEntry>> parseUsbIds(const QString& text, QString* error) {
    std::vector<UsbIdEntry> table;
    const QStringList lines = text.split(QLatin1Char('\n'));
    for (int n = 0; n < lines.size(); ++n) {
        QString line = lines[n];
        const int hash = line.indexOf(QLatin1Char('#'));
        if (hash >= 0)
            line.truncate(hash);
        const QStringList words =
            line.split(QRegularExpression(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
        if (words.isEmpty())
            continue;
        const auto fail = [&](const QString& what) {
            setError(error, QStringLiteral("line %1: %2").arg(n + 1).arg(what));
            return std::nullopt;
        };
        const QStringList ids = words.first().split(QLatin1Char(':'));
        const auto vendor = ids.size() == 2 ? parseHex(ids[0], 0xFFFF) : std::nullopt;
        const auto product = ids.size() == 2 ? parseHex(ids[1], 0xFFFF) : std::nullopt;
        if (!vendor || !product)
            return fail(QStringLiteral("\"%1\" is not VENDOR:PRODUCT in hexadecimal, "
                                       "such as 1209:0001")
                            .arg(words.first()));
        UsbIdEntry entry;
        entry.vendor = static_cast<std::uint16_t>(*vendor);
        entry.product = static_cast<std::uint16_t>(*product);
        for (int w = 1; w < words.size(); ++w) {
            const QString key = words[w].section(QLatin1Char('='), 0, 0);
            const QString value = words[w].section(QLatin1Char('='), 1);
            if (key == QLatin1String("interface")) {
                bool ok = false;
                const int number = value.toInt(&ok);
                if (!ok || number < 0 || number > 255)
                    return fail(QStringLiteral("interface \"%1\" is not 0 to 255").arg(value));
                entry.interfaceNumber = number;
            } else if (key == QLatin1String("out") || key == QLatin1String("in")) {
                const auto address = parseHex(value, 0xFF);
                const bool in = key == QLatin1String("in");
                // Bit 7 of an endpoint address is its direction.
                if (!address || ((*address & 0x80) != 0) != in || (*address & 0x70) != 0 ||
                    (*address & 0x0F) == 0)
                    return fail(
                        QStringLiteral("%1=%2 is not a %3 endpoint address (%4)")
                            .arg(key, value,
                                 in ? QStringLiteral("bulk IN") : QStringLiteral("bulk OUT"),
                                 in ? QStringLiteral("0x81 to 0x8F")
                                    : QStringLiteral("0x01 to 0x0F")));
                (in ? entry.inEndpoint : entry.outEndpoint) = static_cast<std::uint8_t>(*address);
            } else {
                return fail(QStringLiteral("unknown setting \"%1\"; known: interface=N, "
                                           "out=0xNN, in=0xNN")
                                .arg(words[w]));
            }
        }
        if (findUsbId(table, entry.vendor, entry.product))
            return fail(QStringLiteral("%1 is listed twice").arg(words.first()));
        table.push_back(entry);
    }
    if (table.empty()) {
        setError(error, QStringLiteral("no controller is listed"));
        return std::nullopt;
    }
    return table;
}

const std::vector<UsbIdEntry>& defaultUsbIds() {
    static const std::vector<UsbIdEntry> table = *parseUsbIds(QString::fromLatin1(kBuiltInTable));
    return table;
}

std::optional<std::vector<UsbIdEntry>> loadUsbIds(const QString& optionPath, QString* source,
                                                  QString* error) {
    QString path = optionPath;
    if (path.isEmpty())
        path = qEnvironmentVariable("QUORVEL_USB_IDS");
    if (path.isEmpty()) {
        QStringList candidates;
        // Beside the program (the build tree, a portable copy), then the
        // installed copy relative to it, so that an unpacked package finds
        // its own table wherever it was unpacked.
        if (QCoreApplication::instance()) {
            const QDir programDir(QCoreApplication::applicationDirPath());
            candidates << programDir.filePath(QStringLiteral("usb-ids.conf"))
                       << QDir::cleanPath(
                              programDir.filePath(QStringLiteral("../share/quorvel/usb-ids.conf")));
        }
#ifdef QUORVEL_INSTALLED_USB_IDS
        candidates << QStringLiteral(QUORVEL_INSTALLED_USB_IDS);
#endif
        for (const QString& candidate : candidates) {
            if (QFileInfo::exists(candidate)) {
                path = candidate;
                break;
            }
        }
    }
    if (path.isEmpty()) {
        if (source)
            *source = QStringLiteral("built-in");
        return defaultUsbIds();
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        setError(
            error,
            QStringLiteral("cannot read the USB id table %1: %2").arg(path, file.errorString()));
        return std::nullopt;
    }
    QString problem;
    // A table is a few lines; anything far larger is not one.
    auto table = parseUsbIds(QString::fromUtf8(file.read(1024 * 1024)), &problem);
    if (!table) {
        setError(error, QStringLiteral("USB id table %1, %2").arg(path, problem));
        return std::nullopt;
    }
    if (source)
        *source = path;
    return table;
}

const UsbIdEntry* findUsbId(const std::vector<UsbIdEntry>& table, std::uint16_t vendor,
                            std::uint16_t product) {
    for (const UsbIdEntry& entry : table)
        if (entry.vendor == vendor && entry.product == product)
            return &entry;
    return nullptr;
}

} // namespace qv
