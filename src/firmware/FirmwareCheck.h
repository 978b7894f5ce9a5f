#pragma once

#include <QLocale>
#include <QString>
#include <cstdint>
#include <functional>

// The firmware file: only its name is looked at, never its contents. What
// the checks accept and refuse, and the loader's command line, are those the
// loader and the operators' habits were built around, slips included.

namespace qv {

inline const QString kFirmwareDialogFilter = QStringLiteral("INHEX32 Files (*.HEX)|*.HEX");
inline const QString kLoaderProgram = QStringLiteral("LOADSTAGE_K_V318.exe");
// Version 2.70 with its point removed: the oldest firmware the loader takes.
inline constexpr double kFirmwareVersionFloor = 270;

// The message keys of the update.
namespace FirmwareKey {
inline const QString Confirm =
    QStringLiteral("Etes vous sur de vouloir changer la version actuelle ? ");
inline const QString DialogTitle = QStringLiteral("Ouvrir Fichier HEX");
inline const QString InvalidName = QStringLiteral("Invalid File Name (QUORVEL_VX.XX.hex)");
inline const QString InvalidVersion = QStringLiteral("Invalid Version Number");
inline const QString BelowFloor = QStringLiteral(
    "This version number is lower than version Number 2.70, you need QUORVEL_V2.70.hex");
} // namespace FirmwareKey

// The version text of a firmware path: from just after the first "_V"
// (exact case, anywhere in the path, folders included) up to the last four
// characters, which are taken for the extension whatever they are, with
// every "." removed. Without "_V" the text starts at the second character
// of the path. Empty when nothing stands between the two.
QString firmwareFileVersionText(const QString& path);

// What the update shows about a chosen file, and whether it goes on.
struct FirmwareVerdict {
    bool accepted = false;
    QString versionText; // points removed: "270"; on the loader's line
    double version = 0;  // its value when numeric
    // The refusal box; empty text when accepted.
    QString text;
    QString title;
    int style = 0;
};

// `message(key, init)` gives the text of a key in the language in use; it is
// asked only for the key of the refusal that is shown, so a key missing from
// config.xml is added only when its box comes up. Numbers are read as the
// old runtime read them, the decimal separator of `locale` included.
using FirmwareMessages = std::function<QString(const QString& key, const QString& init)>;
FirmwareVerdict checkFirmwareFile(const QString& path, const FirmwareMessages& message,
                                  const QLocale& locale = QLocale::system());

// The loader's command line, in one piece, nothing quoted:
//   <app dir>\LOADSTAGE_K_V318.exe LANGUE=<langue> ;device=quorvel;try_both;
//   USBID=<id>;prg=<path>;firmware=<version>
// (one line). The application directory loses a trailing separator; the
// backslash before the program name is the loader's own convention and
// stays on every platform.
QString loaderCommandLine(const QString& applicationDirectory, const QString& langue,
                          std::int32_t usbId, const QString& firmwarePath,
                          const QString& versionText);

} // namespace qv
