#include "ProgrammePrinting.h"

#include <QFileInfo>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPageLayout>
#include <QPageSize>
#include <QPaintDevice>
#include <QPainter>
#include <QPdfWriter>

namespace qv {

QFont printoutFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPointSizeF(10);
    return font;
}

PrintMetrics printMetrics(const QFontMetricsF& metrics) {
    return {metrics.lineSpacing(), metrics.averageCharWidth(),
            [metrics](const QString& text) { return metrics.horizontalAdvance(text); }};
}

void renderPrintout(QPainter& painter, const ProgrammePrintout& printout) {
    QPaintDevice* device = painter.device();
    if (!device)
        return;
    const QFont font(printoutFont(), device);
    painter.setFont(font);
    const QFontMetricsF metrics(font, device);
    const double pageWidth = device->width();
    for (const PlacedText& placed : layoutPrintout(printout, printMetrics(metrics))) {
        const QRectF box(placed.x, placed.y, std::max(1.0, pageWidth - placed.x),
                         metrics.lineSpacing());
        painter.drawText(box,
                         Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine | Qt::TextExpandTabs,
                         placed.text);
    }
}

bool printProgrammeToPdf(const ProgrammePrintout& printout, const QString& pdfPath, QString* error,
                         const TextLookup& lookup) {
    const auto fail = [error](const QString& why) {
        if (error)
            *error = why;
        return false;
    };
    const auto unwritable = [&] {
        return fail(TranslatableText(QStringLiteral("The file %1 cannot be written."), {pdfPath})
                        .in(lookup));
    };
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return fail(QStringLiteral("printing needs a graphical application object "
                                   "(QT_QPA_PLATFORM=offscreen will do without a display)"));
    {
        QPdfWriter writer(pdfPath);
        writer.setPageSize(QPageSize(QPageSize::A4));
        writer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
        writer.setResolution(300);
        writer.setCreator(QStringLiteral("Quorvel"));
        writer.setTitle(printout.heading.section(QLatin1Char('\t'), 1).trimmed());
        QPainter painter;
        if (!painter.begin(&writer))
            return unwritable();
        renderPrintout(painter, printout);
        if (!painter.end())
            return unwritable();
    }
    if (QFileInfo(pdfPath).size() <= 0)
        return unwritable();
    return true;
}

bool printProgrammeToPdf(const Conditions& conditions, const PrintoutTexts& texts,
                         const QString& pdfPath, QString* error) {
    return printProgrammeToPdf(ImprimeProgrammation(conditions, texts), pdfPath, error);
}

} // namespace qv
