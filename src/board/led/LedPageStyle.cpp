#include "board/led/LedPageStyle.h"

#include "ui/Reds.h"
#include "ui/UiStyle.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

#include <algorithm>

namespace
{

constexpr double kLineWidth = 2;
constexpr double kStartDegrees = 50; // the open part of the round lies at the top right
constexpr double kSweepDegrees = 290;

QPixmap resetPixmap(int size, const QColor &color)
{
    QPixmap pixmap(std::max(1, size), std::max(1, size));
    pixmap.fill(Qt::transparent);
    const double inset = size / 6.0;
    const QRectF round(inset, inset, size - 2 * inset, size - 2 * inset);

    QPainterPath way;
    way.arcMoveTo(round, kStartDegrees);
    const QPointF tip = way.currentPosition();
    way.arcTo(round, kStartDegrees, kSweepDegrees);

    const double arrow = size / 3.2;
    QPainterPath head;
    head.moveTo(tip + QPointF(arrow * 0.35, arrow * 0.35));
    head.lineTo(tip + QPointF(arrow * 0.35, -arrow * 0.65));
    head.lineTo(tip + QPointF(-arrow * 0.65, arrow * 0.35));
    head.closeSubpath();

    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(way, QPen(color, kLineWidth, Qt::SolidLine, Qt::RoundCap));
    painter.fillPath(head, color);
    return pixmap;
}

} // namespace

QString LedPageStyle::page()
{
    return UiStyle::numberBoxes() + UiStyle::numberBoxButtons() + UiStyle::radioButtons() +
           Reds::inSheet(
               QStringLiteral("ModifySpinBox::up-button,ModifySpinBox::down-button{width:18px;}"
                              "QLabel#lblInterval{color:rgb(225,225,225);}"
                              "QLabel#lblInterval:disabled{color:rgb(120,120,120);}"
                              "QPushButton#ResetDynamicColors{border:1px solid rgba(@glass,130);"
                              "background-color:rgba(0,0,0,110);padding:0px;outline:none;}"
                              "QPushButton#ResetDynamicColors:hover{border:1px solid rgba(@glass,220);"
                              "background-color:rgba(@glass,90);}"
                              "QPushButton#ResetDynamicColors:pressed{background-color:rgba(@glass,150);}"
                              "QPushButton#ResetDynamicColors:disabled{border:1px solid rgba(140,140,140,90);"
                              "background-color:rgba(0,0,0,60);}"));
}

QIcon LedPageStyle::resetIcon(int size)
{
    QIcon icon;
    icon.addPixmap(resetPixmap(size, QColor(235, 235, 235)), QIcon::Normal);
    icon.addPixmap(resetPixmap(size, QColor(120, 120, 120)), QIcon::Disabled);
    return icon;
}
