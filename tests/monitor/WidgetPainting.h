#pragma once

#include "ui/Fonts.h"

#include <QApplication>
#include <QEvent>
#include <QFont>
#include <QImage>
#include <QPaintEvent>
#include <QPainter>
#include <QWidget>

/// The fonts that the program has: the widgets' families, and a known one for whatever asks for none.
inline void useProgramFonts()
{
    substituteFontFamilies();
    QApplication::setFont(QFont(QStringLiteral("Arial")));
}

/// What the widget and its children paint, over nothing, without the style's window background.
inline QImage paintingOf(QWidget &widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    widget.render(&painter, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

/// Counts the paintings of a widget: repaint() paints before it comes back, update() when events are handled.
class PaintCounter : public QObject
{
public:
    explicit PaintCounter(QWidget &widget) { widget.installEventFilter(this); }

    int paints = 0;
    QRegion painted; ///< by all of them

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            ++paints;
            painted += static_cast<QPaintEvent *>(event)->region();
        }
        return false;
    }
};

/// How many pixels of the rectangle carry paint of at least the given opacity.
inline int paintedPixels(const QImage &image, const QRect &rect, int leastAlpha = 1)
{
    int count = 0;
    const QRect inside = rect & image.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x)
            count += qAlpha(image.pixel(x, y)) >= leastAlpha ? 1 : 0;
    }
    return count;
}

/// The smallest rectangle around all white, opaque pixels inside `rect`: where text or an outline stands.
inline QRect whiteBounds(const QImage &image, const QRect &rect)
{
    QRect bounds;
    const QRect inside = rect & image.rect();
    for (int y = inside.top(); y <= inside.bottom(); ++y) {
        for (int x = inside.left(); x <= inside.right(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (qAlpha(pixel) > 128 && qRed(pixel) > 128 && qGreen(pixel) > 128 && qBlue(pixel) > 128)
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}
