#pragma once

#include <QDebug>
#include <QFont>
#include <QList>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QSize>
#include <QString>

/// A text as it was painted, in the font that was asked for.
struct PaintedText
{
    QString text;
    QString family;
    int pixels = 0;
    int weight = 0;
    bool fullHinting = false;
};

inline bool operator==(const PaintedText &a, const PaintedText &b)
{
    return a.text == b.text && a.family == b.family && a.pixels == b.pixels && a.weight == b.weight &&
           a.fullHinting == b.fullHinting;
}

/// A device that paints nothing and records the texts: two fonts that look the same on a screen differ here.
class PaintedTexts : public QPaintDevice
{
public:
    explicit PaintedTexts(QSize deviceSize) : size(deviceSize), engine(texts) {}

    QList<PaintedText> texts;

    [[nodiscard]] QPaintEngine *paintEngine() const override { return &engine; }

protected:
    [[nodiscard]] int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
            return size.width();
        case PdmHeight:
            return size.height();
        case PdmDepth:
            return 32;
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return 96;
        default:
            return QPaintDevice::metric(metric);
        }
    }

private:
    class Engine : public QPaintEngine
    {
    public:
        explicit Engine(QList<PaintedText> &list) : QPaintEngine(AllFeatures), noted(list) {}
        bool begin(QPaintDevice *) override { return true; }
        bool end() override { return true; }
        void updateState(const QPaintEngineState &) override {}
        void drawPixmap(const QRectF &, const QPixmap &, const QRectF &) override {}
        void drawPath(const QPainterPath &) override {}
        void drawPolygon(const QPointF *, int, PolygonDrawMode) override {}
        void drawTextItem(const QPointF &, const QTextItem &item) override
        {
            const QFont font = item.font();
            noted.append({item.text(), font.family(), font.pixelSize(), font.weight(),
                          font.hintingPreference() == QFont::PreferFullHinting});
        }
        [[nodiscard]] Type type() const override { return User; }

    private:
        QList<PaintedText> &noted;
    };

    QSize size;
    mutable Engine engine;
};

/// The text of a failed comparison.
inline QDebug operator<<(QDebug debug, const PaintedText &text)
{
    return debug << text.text << text.family << text.pixels << text.weight << text.fullHinting;
}

inline QString described(const QList<PaintedText> &texts)
{
    QString all;
    QDebug(&all) << texts;
    return all;
}
