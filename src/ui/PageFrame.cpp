#include "ui/PageFrame.h"

#include "ui/Reds.h"

#include <QPainter>

#include <algorithm>

namespace
{

constexpr int kTitleWeight = 63;
constexpr double kRuleWidth = 2;
const QColor kRuleColor(255, 0, 0, 200);

} // namespace

QColor PageFrame::bandColor()
{
    return Reds::glass(60);
}

QString PageFrame::fontFamily(LanguageType language)
{
    return language == kLanguageChinese ? QStringLiteral("微软雅黑") : QStringLiteral("Arial");
}

QPainterPath PageFrame::cutCornerPath(QSize size)
{
    const double width = size.width();
    const double height = size.height();
    QPainterPath path;
    path.moveTo(0, 0);
    path.lineTo(width, 0);
    path.lineTo(width, kCutStart * height);
    path.lineTo(kCutStart * width, height);
    path.lineTo(0, height);
    path.closeSubpath();
    return path;
}

int PageFrame::titlePixelSize(QSize size, int bandHeight)
{
    const double highest = bandHeight / 1.5;
    const int wished = size.width() / 3 / 4;
    return wished < highest ? wished : static_cast<int>(highest);
}

QPixmap PageFrame::background(QSize size, int bandHeight, const QRect &titleRect, const QString &title,
                              int titlePixels, LanguageType language, BandRule rule)
{
    QPixmap pixmap(size);
    pixmap.fill(QColor(0, 0, 0, 0));
    if (pixmap.isNull())
        return pixmap;

    QPainter painter(&pixmap);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(bandColor());
    painter.drawPath(cutCornerPath(size));
    painter.drawRect(0, 0, size.width(), bandHeight);

    if (rule == BandRule::Drawn) {
        painter.setPen(QPen(kRuleColor, kRuleWidth));
        painter.drawLine(0, bandHeight, size.width(), bandHeight);
    }

    QFont font;
    font.setPixelSize(std::max(1, titlePixels));
    font.setWeight(kTitleWeight);
    font.setFamily(fontFamily(language));
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(titleRect, Qt::AlignLeft | Qt::AlignVCenter, title);
    return pixmap;
}

void PageFrame::paintBandVersion(QPainter &painter, QFont font, int bandHeight, const QRect &rect,
                                 const QString &text)
{
    painter.setRenderHint(QPainter::TextAntialiasing);
    font.setPixelSize(std::max(1, bandHeight / 2)); // a font of 0 pixels is invalid
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(rect, Qt::AlignLeft | Qt::AlignVCenter, text);
}
