#include "monitor/gauge/GaugeReadout.h"

#include <QFont>
#include <QPainter>
#include <QPen>

namespace
{

constexpr int kMainWeight = 75;
constexpr int kSmallWeight = 57;
constexpr int kLabel = Qt::AlignRight | Qt::AlignVCenter;
constexpr int kValue = Qt::AlignLeft | Qt::AlignVCenter;

/// White with `alpha`, and a font of the painter's own with full hinting.
QFont prepareText(QPainter &painter, int alpha)
{
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setPen(QColor(255, 255, 255, qBound(0, alpha, 255)));
    QFont font = painter.font();
    font.setHintingPreference(QFont::PreferFullHinting);
    return font;
}

} // namespace

ReadoutTexts readoutTextsFor(int displayMode, const NvCardBaseInfo &info)
{
    struct Quantity
    {
        NvMonitorValue NvCardBaseInfo::*group;
        const char *unit;
    };
    static constexpr Quantity kQuantities[] = {
        {&NvCardBaseInfo::gpuClock, " MHz"},
        {&NvCardBaseInfo::temperature, " °C"},
        {&NvCardBaseInfo::memoryUsage, " MB"},
    };
    static_assert(std::size(kQuantities) == GaugeDisplayMemory + 1, "one row per display mode");

    if (displayMode < 0 || displayMode > GaugeDisplayMemory)
        return {QStringLiteral("XXXX XXX"), QStringLiteral(" XXXX"), QStringLiteral(" XXXX")};
    const Quantity &quantity = kQuantities[displayMode];
    const NvMonitorValue &value = info.*quantity.group;
    return {QString::number(value.currentValue) + QString::fromUtf8(quantity.unit), QString::number(value.maxValue),
            QString::number(value.minValue)};
}

void paintReadout(QPainter &painter, const ReadoutLayout &layout, const ReadoutTexts &texts, int alpha)
{
    if (layout.smallPixels < 1)
        return; // a font has no such size
    painter.save();
    QFont font = prepareText(painter, alpha);

    font.setFamily(QStringLiteral("DS-Digital"));
    font.setPixelSize(layout.bigPixels);
    font.setWeight(kMainWeight);
    painter.setFont(font);
    painter.drawText(layout.mainValue, Qt::AlignHCenter | Qt::AlignVCenter, texts.mainValue);

    font.setFamily(QStringLiteral("Arial"));
    font.setPixelSize(layout.smallPixels);
    font.setWeight(kSmallWeight);
    painter.setFont(font);
    painter.drawText(layout.maxLabel, kLabel, QStringLiteral("MAX  "));
    painter.drawText(layout.maxValue, kValue, texts.maxValue);
    painter.drawText(layout.minLabel, kLabel, QStringLiteral("MIN   "));
    painter.drawText(layout.minValue, kValue, texts.minValue);
    painter.restore();
}

OverlayTexts overlayTextsFor(const Lang_BreathCircle &words, const QString &presetValue, const QString &presentValue,
                             int changedSize)
{
    const qint64 size = changedSize; // the smallest integer has no positive counterpart of its own width
    OverlayTexts texts;
    texts.rows[0] = {words.preset, presetValue};
    texts.rows[1] = {words.present, presentValue};
    texts.rows[2] = {size >= 0 ? words.inc : words.dec, QString::number(qAbs(size))};
    return texts;
}

void paintOverlay(QPainter &painter, const OverlayLayout &layout, const OverlayTexts &texts, const QString &family,
                  int alpha)
{
    if (layout.fontPixels < 1)
        return;
    painter.save();
    QFont font = prepareText(painter, alpha);
    font.setFamily(family);
    font.setPixelSize(layout.fontPixels);
    painter.setFont(font);
    for (std::size_t row = 0; row < layout.rows.size(); ++row) {
        painter.drawText(layout.rows[row].label, kLabel, texts.rows[row].label);
        painter.drawText(layout.rows[row].value, kValue, texts.rows[row].value);
    }
    painter.restore();
}
