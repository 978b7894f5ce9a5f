#pragma once

#include "config/OperatorText.h"

#include "programme/ProgrammePrintout.h"

#include <QFont>
#include <QString>

class QFontMetricsF;
class QPainter;

namespace qv {

class Conditions;

// The printed programme on real paint devices: a printer, a print preview,
// a PDF file.

// The font of the page: the system's, at 10 points.
QFont printoutFont();

// Where a font puts the text: its line spacing, its average character for
// the print columns.
PrintMetrics printMetrics(const QFontMetricsF& metrics);

// Draws `printout` from the top left of the painter's page, in
// printoutFont(). The tab of the heading is drawn as the spacing it stands
// for.
void renderPrintout(QPainter& painter, const ProgrammePrintout& printout);

// Writes the page to a PDF file (A4). Needs a QGuiApplication, with any
// platform (QT_QPA_PLATFORM=offscreen runs without a display). false, with
// the reason in `error` when given, when the file can't be written; the
// reason in the language of `lookup` when given, in English otherwise.
bool printProgrammeToPdf(const ProgrammePrintout& printout, const QString& pdfPath,
                         QString* error = nullptr, const TextLookup& lookup = {});
// The same from the programme and its texts (see printoutTextsFromConfig()
// for printing without the window).
bool printProgrammeToPdf(const Conditions& conditions, const PrintoutTexts& texts,
                         const QString& pdfPath, QString* error = nullptr);

} // namespace qv
