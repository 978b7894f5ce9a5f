#include "FirmwareCheck.h"

#include "config/LegacyNumber.h"
#include "link/Dialogs.h"

namespace qv {

QString firmwareFileVersionText(const QString& path) {
    // Positions as the old string functions count them, from 1; a path
    // without "_V" counts as found at 0, so the text starts at position 2.
    const qsizetype found = path.indexOf(QStringLiteral("_V"));
    const qsizetype p = found < 0 ? 0 : found + 1;
    const qsizetype start = p + 2;
    const qsizetype last = path.size() - 4; // last position kept
    // A path too short for its "extension" failed there with a run-time
    // error; an empty text is refused as not numeric instead.
    if (last < start)
        return QString();
    QString text = path.mid(start - 1, last - start + 1);
    text.remove(QLatin1Char('.'));
    return text;
}

FirmwareVerdict checkFirmwareFile(const QString& path, const FirmwareMessages& message,
                                  const QLocale& locale) {
    FirmwareVerdict verdict;
    // Both refusals of the file show the path first, then a line break.
    const auto refusal = [&](const QString& text) {
        return path + QStringLiteral(" : ") + QStringLiteral("\r\n") + text;
    };

    if (!path.toUpper().contains(QStringLiteral("QUORVEL_V"))) {
        // "48" as the default text of this one key, and the default caption:
        // slips of the old program that operators' config.xml files carry.
        verdict.text = refusal(message(FirmwareKey::InvalidName, QStringLiteral("48")));
        verdict.style = MsgBox::OkOnly;
        return verdict;
    }

    verdict.versionText = firmwareFileVersionText(path);
    const auto value = parseLegacyNumber(verdict.versionText, locale);
    if (!value) {
        verdict.text = verdict.versionText + QStringLiteral(" : ") +
                       message(FirmwareKey::InvalidVersion, QString());
        verdict.style = MsgBox::Exclamation;
        return verdict;
    }
    verdict.version = *value;

    if (*value < kFirmwareVersionFloor) {
        verdict.text = refusal(message(FirmwareKey::BelowFloor, QString()));
        // The style value ended up as the caption here; it stays so.
        verdict.title = QStringLiteral("48");
        verdict.style = MsgBox::OkOnly;
        return verdict;
    }
    verdict.accepted = true;
    return verdict;
}

QString loaderCommandLine(const QString& applicationDirectory, const QString& langue,
                          std::int32_t usbId, const QString& firmwarePath,
                          const QString& versionText) {
    QString directory = applicationDirectory;
    while (directory.size() > 1 &&
           (directory.endsWith(QLatin1Char('/')) || directory.endsWith(QLatin1Char('\\'))))
        directory.chop(1);
    return directory + QStringLiteral("\\") + kLoaderProgram + QStringLiteral(" LANGUE=") + langue +
           QStringLiteral(" ;device=quorvel;try_both;USBID=") + QString::number(usbId) +
           QStringLiteral(";prg=") + firmwarePath + QStringLiteral(";firmware=") + versionText;
}

} // namespace qv
