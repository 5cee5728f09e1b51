#include "simulated/front/CardPainter.h"

#include "simulated/front/LcdPainter.h"
#include "simulated/front/LedEffect.h"

#include <QPainter>
#include <QPainterPath>
#include <QtMath>

namespace cardfront
{
namespace
{

constexpr int kBlades = 9;
constexpr int kGradientStops = 12; // along the strip

int mixed(int from, int to, double part)
{
    return qRound(from + (to - from) * part);
}

QColor withAlpha(QColor colour, double alpha)
{
    colour.setAlphaF(qBound(0.0, alpha, 1.0));
    return colour;
}

/// A box with its corners cut off, as the shroud is.
QPainterPath cutBox(const QRectF &box, qreal cut)
{
    QPainterPath path;
    path.moveTo(box.left() + cut, box.top());
    path.lineTo(box.right() - cut, box.top());
    path.lineTo(box.right(), box.top() + cut);
    path.lineTo(box.right(), box.bottom() - cut);
    path.lineTo(box.right() - cut, box.bottom());
    path.lineTo(box.left() + cut, box.bottom());
    path.lineTo(box.left(), box.bottom() - cut);
    path.lineTo(box.left(), box.top() + cut);
    path.closeSubpath();
    return path;
}

void paintBracket(QPainter &painter)
{
    const QRectF bracket(1, 0, 11, 184);
    QLinearGradient steel(bracket.topLeft(), bracket.topRight());
    steel.setColorAt(0.0, QColor(0x6A, 0x6D, 0x74));
    steel.setColorAt(0.4, QColor(0xB9, 0xBC, 0xC3));
    steel.setColorAt(1.0, QColor(0x55, 0x58, 0x5F));
    painter.setPen(Qt::NoPen);
    painter.setBrush(steel);
    painter.drawRoundedRect(bracket, 2, 2);
    painter.setBrush(QColor(0x20, 0x22, 0x26));
    for (const int top : {22, 58, 94, 130}) // the outputs
        painter.drawRoundedRect(QRectF(4, top, 5, 26), 1.5, 1.5);
}

void paintBoard(QPainter &painter)
{
    painter.setPen(QPen(QColor(0x2B, 0x33, 0x30), 1));
    painter.setBrush(QColor(0x0D, 0x14, 0x12));
    painter.drawRect(QRectF(12.5, 8.5, 408, 158));
    painter.drawRect(QRectF(76.5, 164.5, 150, 18)); // the edge connector
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xC8, 0x9B, 0x3C));
    for (int x = 80; x < 222; x += 6) {
        if (x < 104 || x > 110) // the key of the slot
            painter.drawRect(QRectF(x, 173, 4, 10));
    }
}

void paintShroud(QPainter &painter, const CardLayout &layout)
{
    const QRectF box = QRectF(layout.shroud).adjusted(0.5, 0.5, -0.5, -0.5);
    QLinearGradient metal(box.topLeft(), box.bottomLeft());
    metal.setColorAt(0.0, QColor(0x3B, 0x3D, 0x45));
    metal.setColorAt(0.12, QColor(0x26, 0x28, 0x2E));
    metal.setColorAt(0.6, QColor(0x1A, 0x1B, 0x20));
    metal.setColorAt(1.0, QColor(0x10, 0x11, 0x14));
    painter.setPen(QPen(QColor(0x4A, 0x4D, 0x56), 1));
    painter.setBrush(metal);
    painter.drawPath(cutBox(box, 12));

    // facets between the fans and towards the corners
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 9));
    const QPolygonF facets[] = {
        QPolygonF({{28.0, 24.0}, {408.0, 24.0}, {392.0, 34.0}, {44.0, 34.0}}),
        QPolygonF({{17.0, 60.0}, {40.0, 34.0}, {70.0, 34.0}, {17.0, 96.0}}),
        QPolygonF({{417.0, 60.0}, {394.0, 34.0}, {364.0, 34.0}, {417.0, 96.0}}),
    };
    for (const QPolygonF &facet : facets)
        painter.drawPolygon(facet);
    painter.setPen(QPen(QColor(0, 0, 0, 120), 1));
    painter.drawLine(QPointF(28, 34.5), QPointF(408, 34.5));

    for (const QPointF &screw : {QPointF(30, 30), QPointF(404, 30), QPointF(30, 158), QPointF(404, 158)}) {
        painter.setPen(QPen(QColor(0x07, 0x07, 0x09), 1));
        painter.setBrush(QColor(0x50, 0x53, 0x5B));
        painter.drawEllipse(screw, 3.5, 3.5);
        painter.drawLine(screw - QPointF(2, 2), screw + QPointF(2, 2));
    }
}

void paintWell(QPainter &painter, const QRectF &fan)
{
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x34, 0x36, 0x3D));
    painter.drawEllipse(fan.adjusted(-3, -3, 3, 3));
    QRadialGradient depth(fan.center(), fan.width() / 2);
    depth.setColorAt(0.0, QColor(0x16, 0x17, 0x1A));
    depth.setColorAt(0.85, QColor(0x0A, 0x0A, 0x0C));
    depth.setColorAt(1.0, QColor(0x03, 0x03, 0x04));
    painter.setBrush(depth);
    painter.drawEllipse(fan);
}

void paintLcdFrame(QPainter &painter, const QRect &lcd)
{
    const QRectF box = QRectF(lcd).adjusted(-5.5, -5.5, 5.5, 5.5);
    QLinearGradient rim(box.topLeft(), box.bottomLeft());
    rim.setColorAt(0.0, QColor(0x55, 0x58, 0x61));
    rim.setColorAt(0.5, QColor(0x1C, 0x1D, 0x22));
    rim.setColorAt(1.0, QColor(0x38, 0x3A, 0x42));
    painter.setPen(QPen(QColor(0x05, 0x05, 0x07), 1));
    painter.setBrush(rim);
    painter.drawPath(cutBox(box, 7));
}

/// The emblem: a V in a ring.
void paintEmblem(QPainter &painter, const CardLayout &layout, const QColor &colour)
{
    const QPointF centre = QRectF(layout.logo).center();
    const qreal radius = layout.logo.width() / 2.0 - 2;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, 2.4));
    painter.drawEllipse(centre, radius, radius);
    QPen stroke(colour, 4);
    stroke.setJoinStyle(Qt::MiterJoin);
    painter.setPen(stroke);
    const QPointF letter[] = {centre + QPointF(-5.5, -5), centre + QPointF(0, 4), centre + QPointF(5.5, -5)};
    painter.drawPolyline(letter, 3);
    painter.fillRect(layout.logoCore, colour);
}

/// What the LEDs pour over the card: one colour, or the run of colours along the strip.
QBrush ledBrush(const CardLayout &layout, const LedState &led, qint64 sinceMs)
{
    if (led.effect != kEffectGradient)
        return ledColourAt(led, sinceMs, 0.5);
    QLinearGradient run(layout.strip.left(), 0, layout.strip.left() + layout.strip.width(), 0);
    for (int i = 0; i <= kGradientStops; ++i) {
        const double place = double(i) / kGradientStops;
        run.setColorAt(place, ledColourAt(led, sinceMs, place));
    }
    return run;
}

double placeOf(const CardLayout &layout, const QRect &rect)
{
    return qBound(0.0, double(rect.center().x() - layout.strip.left()) / layout.strip.width(), 1.0);
}

void paintFanLight(QPainter &painter, const CardLayout &layout, const QRect &fan, const LedState &led, qint64 sinceMs)
{
    const LedLight light = ledLightAt(led, sinceMs, placeOf(layout, fan));
    const QRectF ring = QRectF(fan).adjusted(-1.5, -1.5, 1.5, 1.5);
    painter.setBrush(Qt::NoBrush);
    for (const int width : {9, 6}) {
        painter.setPen(QPen(withAlpha(light.colour, 0.12 * light.brightness), width));
        painter.drawEllipse(ring);
    }
    painter.setPen(QPen(ledColourAt(led, sinceMs, placeOf(layout, fan)), 2));
    painter.drawEllipse(ring);
    // and on the blades
    QRadialGradient spill(ring.center(), ring.width() / 2);
    spill.setColorAt(0.45, withAlpha(light.colour, 0));
    spill.setColorAt(1.0, withAlpha(light.colour, 0.42 * light.brightness));
    painter.setPen(Qt::NoPen);
    painter.setBrush(spill);
    painter.drawEllipse(ring);
}

/// The strip's light on the shroud around it, fading with the distance.
void paintStripGlow(QPainter &painter, const CardLayout &layout, const QBrush &brush, double brightness)
{
    const QRect reach = layout.shroud & layout.strip.adjusted(-60, -20, 60, 64);
    QImage glow(reach.size(), QImage::Format_ARGB32_Premultiplied);
    glow.fill(Qt::transparent);
    QPainter light(&glow);
    light.translate(-reach.topLeft());
    light.fillRect(reach, brush);
    light.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    const double middle = double(layout.strip.center().y() - reach.top()) / reach.height();
    QLinearGradient down(0, reach.top(), 0, reach.top() + reach.height());
    down.setColorAt(0.0, QColor(0, 0, 0, 90));
    down.setColorAt(middle, QColor(0, 0, 0, 170));
    down.setColorAt(middle + (1.0 - middle) * 0.3, QColor(0, 0, 0, 62));
    down.setColorAt(1.0, QColor(0, 0, 0, 0));
    light.fillRect(reach, down);
    QLinearGradient across(reach.left(), 0, reach.left() + reach.width(), 0);
    across.setColorAt(0.0, QColor(0, 0, 0, 40));
    across.setColorAt(0.12, QColor(0, 0, 0, 255));
    across.setColorAt(0.88, QColor(0, 0, 0, 255));
    across.setColorAt(1.0, QColor(0, 0, 0, 40));
    light.fillRect(reach, across);
    light.end();
    painter.save();
    painter.setClipPath(cutBox(QRectF(layout.shroud), 12));
    painter.setOpacity(brightness);
    painter.drawImage(reach.topLeft(), glow);
    painter.restore();
}

void paintStripLight(QPainter &painter, const CardLayout &layout, const LedState &led, qint64 sinceMs)
{
    const QBrush brush = ledBrush(layout, led, sinceMs);
    painter.setPen(QPen(QColor(0x08, 0x08, 0x0A), 4)); // the groove that it lies in
    painter.setBrush(brush);
    painter.drawRoundedRect(QRectF(layout.strip).adjusted(-3, -1, 3, 1), 4, 4);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRectF(layout.strip).adjusted(-2, 0, 2, 0), 3, 3);
    painter.fillRect(layout.strip.adjusted(1, 1, -1, -1), brush);
}

void paintLogoLight(QPainter &painter, const CardLayout &layout, const LedState &led, qint64 sinceMs)
{
    const double place = placeOf(layout, layout.logo);
    const LedLight light = ledLightAt(led, sinceMs, place);
    const QColor colour = ledColourAt(led, sinceMs, place);
    if (light.brightness > 0) {
        QRadialGradient halo(QRectF(layout.logo).center(), layout.logo.width());
        halo.setColorAt(0.0, withAlpha(light.colour, 0.5 * light.brightness));
        halo.setColorAt(1.0, withAlpha(light.colour, 0));
        painter.setPen(Qt::NoPen);
        painter.setBrush(halo);
        painter.drawEllipse(QRectF(layout.logo).center(), layout.logo.width(), layout.logo.width());
    }
    paintEmblem(painter, layout, colour);
}

QPixmap emptyPixmap(QSize size, qreal pixelRatio)
{
    QPixmap pixmap(size * pixelRatio);
    pixmap.setDevicePixelRatio(pixelRatio);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

} // namespace

QColor ledColourAt(const LedState &led, qint64 sinceMs, double place)
{
    const LedLight light = ledLightAt(led, sinceMs, place);
    return {mixed(kUnlitLed.red(), light.colour.red(), light.brightness),
            mixed(kUnlitLed.green(), light.colour.green(), light.brightness),
            mixed(kUnlitLed.blue(), light.colour.blue(), light.brightness)};
}

const QPixmap &CardPainter::body(const CardLayout &layout, qreal pixelRatio)
{
    QPixmap &pixmap = bodies[layout.fanCount];
    if (!pixmap.isNull() && qFuzzyCompare(pixmap.devicePixelRatio(), pixelRatio))
        return pixmap;
    pixmap = emptyPixmap(kCardSize, pixelRatio);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBoard(painter);
    paintBracket(painter);
    paintShroud(painter, layout);
    for (int i = 0; i < layout.fanCount; ++i)
        paintWell(painter, QRectF(layout.fans[i]));
    if (!layout.lcd.isEmpty())
        paintLcdFrame(painter, layout.lcd);
    return pixmap;
}

const QPixmap &CardPainter::blades(int side, qreal pixelRatio)
{
    if (!fan.isNull() && qFuzzyCompare(fan.devicePixelRatio(), pixelRatio))
        return fan;
    fan = emptyPixmap(QSize(side, side), pixelRatio);
    QPainter painter(&fan);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal radius = side / 2.0 - 3;
    painter.translate(side / 2.0, side / 2.0);
    QPainterPath blade;
    blade.moveTo(0.20 * radius, -0.05 * radius);
    blade.cubicTo(0.45 * radius, -0.30 * radius, 0.75 * radius, -0.30 * radius, 0.97 * radius, -0.16 * radius);
    blade.cubicTo(1.0 * radius, 0.0, 0.99 * radius, 0.12 * radius, 0.95 * radius, 0.26 * radius);
    blade.cubicTo(0.75 * radius, 0.02 * radius, 0.45 * radius, 0.0, 0.22 * radius, 0.12 * radius);
    blade.closeSubpath();
    QLinearGradient sheen(0, -0.3 * radius, 0, 0.26 * radius);
    sheen.setColorAt(0.0, QColor(0x50, 0x53, 0x5C));
    sheen.setColorAt(0.45, QColor(0x2A, 0x2C, 0x32));
    sheen.setColorAt(1.0, QColor(0x14, 0x15, 0x18));
    painter.setPen(Qt::NoPen);
    painter.setBrush(sheen);
    for (int i = 0; i < kBlades; ++i) {
        painter.drawPath(blade);
        painter.rotate(360.0 / kBlades);
    }
    return fan;
}

void CardPainter::paint(QPainter &painter, const CardFront &card, const CardMoment &moment)
{
    const CardLayout layout = cardLayout(card.lcd.has_value());
    const qreal pixelRatio = painter.device()->devicePixelRatioF();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(0, 0, body(layout, pixelRatio));
    if (card.led && ledLightAt(*card.led, moment.ledSinceMs, 0.5).brightness > 0)
        paintStripGlow(painter, layout, ledBrush(layout, *card.led, moment.ledSinceMs),
                       ledLightAt(*card.led, moment.ledSinceMs, 0.5).brightness);

    for (int i = 0; i < layout.fanCount; ++i) {
        const QRectF place(layout.fans[i]);
        painter.save();
        painter.translate(place.center());
        painter.rotate(moment.fanDegrees + 17.0 * i); // not all alike
        painter.drawPixmap(QPointF(-place.width() / 2, -place.height() / 2),
                           blades(layout.fans[i].width(), pixelRatio));
        painter.restore();
        if (card.led)
            paintFanLight(painter, layout, layout.fans[i], *card.led, moment.ledSinceMs);
        QRadialGradient hub(place.center() - QPointF(4, 6), 24);
        hub.setColorAt(0.0, QColor(0x45, 0x48, 0x50));
        hub.setColorAt(1.0, QColor(0x17, 0x18, 0x1C));
        painter.setPen(QPen(QColor(0x08, 0x08, 0x0A), 1));
        painter.setBrush(hub);
        painter.drawEllipse(place.center(), 19, 19);
    }
    if (card.led) {
        paintLogoLight(painter, layout, *card.led, moment.ledSinceMs);
        paintStripLight(painter, layout, *card.led, moment.ledSinceMs); // last, so that no other light falls on it
    } else {
        paintEmblem(painter, layout, QColor(0x3A, 0x3C, 0x43)); // printed
    }
    if (card.lcd)
        paintLcd(painter, layout.lcd, *card.lcd, moment.lcdSinceMs);
    painter.restore();
}

} // namespace cardfront
