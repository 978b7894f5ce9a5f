#include "Brand.h"

#include <QFont>
#include <QFontMetrics>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace qv {

namespace {

const QColor kDeep(0x0d, 0x4a, 0x5c);
const QColor kLight(0x1f, 0x8a, 0x9e);
const QColor kAccent(0xf2, 0xa9, 0x00);

QPixmap blank(int width, int height, qreal ratio) {
    QPixmap pixmap(qRound(width * ratio), qRound(height * ratio));
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

// A valve seen from the side: two triangles meeting at their tips, a stem
// and a hand wheel; drawn in a square of side `side` at `origin`.
void drawValve(QPainter& painter, QPointF origin, qreal side, const QColor& color) {
    const qreal s = side;
    QPainterPath body;
    body.moveTo(origin + QPointF(0.08 * s, 0.45 * s));
    body.lineTo(origin + QPointF(0.50 * s, 0.70 * s));
    body.lineTo(origin + QPointF(0.08 * s, 0.95 * s));
    body.closeSubpath();
    body.moveTo(origin + QPointF(0.92 * s, 0.45 * s));
    body.lineTo(origin + QPointF(0.50 * s, 0.70 * s));
    body.lineTo(origin + QPointF(0.92 * s, 0.95 * s));
    body.closeSubpath();
    painter.fillPath(body, color);
    painter.fillRect(QRectF(origin + QPointF(0.46 * s, 0.22 * s), QSizeF(0.08 * s, 0.48 * s)),
                     color);
    painter.fillRect(QRectF(origin + QPointF(0.22 * s, 0.10 * s), QSizeF(0.56 * s, 0.12 * s)),
                     kAccent);
}

} // namespace

QPixmap brandStrip(int height, qreal ratio) {
    QFont mark;
    mark.setBold(true);
    mark.setPixelSize(qRound(height * 0.46));
    mark.setLetterSpacing(QFont::PercentageSpacing, 112);
    QFont product;
    product.setPixelSize(qRound(height * 0.40));
    const QString makerText = QStringLiteral("TESSALUK");
    const QString productText = QStringLiteral("Quorvel");
    const int gap = height / 3;
    const int width = height + gap + QFontMetrics(mark).horizontalAdvance(makerText) + gap +
                      QFontMetrics(product).horizontalAdvance(productText) + gap;

    QPixmap pixmap = blank(width, height, ratio);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient fill(0, 0, 0, height);
    fill.setColorAt(0, kLight);
    fill.setColorAt(1, kDeep);
    painter.setBrush(fill);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRectF(0, 0, width, height), height * 0.18, height * 0.18);
    drawValve(painter, QPointF(height * 0.12, height * 0.08), height * 0.80, Qt::white);

    qreal x = height + gap;
    painter.setPen(Qt::white);
    painter.setFont(mark);
    painter.drawText(QRectF(x, 0, width - x, height), Qt::AlignLeft | Qt::AlignVCenter, makerText);
    x += QFontMetrics(mark).horizontalAdvance(makerText) + gap;
    painter.setPen(kAccent);
    painter.setFont(product);
    painter.drawText(QRectF(x, 0, width - x, height), Qt::AlignLeft | Qt::AlignVCenter,
                     productText);
    return pixmap;
}

QPixmap splashPicture(qreal ratio) {
    const int width = 480;
    const int height = 260;
    QPixmap pixmap = blank(width, height, ratio);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient fill(0, 0, width, height);
    fill.setColorAt(0, kLight);
    fill.setColorAt(1, kDeep);
    painter.fillRect(QRect(0, 0, width, height), fill);
    drawValve(painter, QPointF(32, 40), 120, Qt::white);

    QFont title;
    title.setBold(true);
    title.setPixelSize(44);
    painter.setFont(title);
    painter.setPen(Qt::white);
    painter.drawText(QRect(176, 48, width - 192, 56), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("Quorvel"));
    QFont maker;
    maker.setPixelSize(20);
    maker.setLetterSpacing(QFont::PercentageSpacing, 120);
    painter.setFont(maker);
    painter.setPen(kAccent);
    painter.drawText(QRect(176, 108, width - 192, 32), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("TESSALUK"));
    QFont small;
    small.setPixelSize(14);
    painter.setFont(small);
    painter.setPen(QColor(255, 255, 255, 200));
    painter.drawText(QRect(32, height - 48, width - 64, 24), Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("Version %1").arg(QStringLiteral(QUORVEL_VERSION)));
    return pixmap;
}

QIcon applicationIcon() {
    QIcon icon;
    for (const int side : {16, 32, 48, 64, 128}) {
        QPixmap pixmap = blank(side, side, 1.0);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(kDeep);
        painter.drawRoundedRect(QRectF(0, 0, side, side), side * 0.2, side * 0.2);
        drawValve(painter, QPointF(side * 0.1, side * 0.05), side * 0.8, Qt::white);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace qv
