#pragma once

#include <QByteArray>
#include <QString>

namespace qv {

// Code page 1252, the ANSI code page of the PCs the existing files, logs and
// device comments were written on. Unlike Latin-1 it has printable
// characters from 0x80 to 0x9F ("€" at 0x80, "’" at 0x92); the five bytes
// it leaves undefined stand for the control characters of the same number,
// as on those PCs.
QString decodeWindows1252(const QByteArray& bytes);
// "?" for a character the code page cannot hold.
QByteArray encodeWindows1252(const QString& text);

// `text` with every character that an XML 1.0 document cannot carry (the
// control characters other than tab, line feed and carriage return, and
// unpaired surrogates) replaced by "?", so that it can be stored.
QString xmlStorable(const QString& text);

} // namespace qv
