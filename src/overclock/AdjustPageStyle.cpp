#include "overclock/AdjustPageStyle.h"

#include "ui/Reds.h"
#include "ui/UiStyle.h"

#include <QPainter>
#include <QPixmap>
#include <QPolygonF>

namespace
{

// Two nodes between the corners, in parts of the icon's side from the top left.
const QPolygonF kCurve({{0.0, 1.0}, {0.35, 0.7}, {0.65, 0.25}, {1.0, 0.0}});
constexpr double kLineWidth = 1.5;
constexpr double kNodeRadius = 1.6;

QPixmap curvePixmap(int size, const QColor &line, const QColor &node)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    if (pixmap.isNull())
        return pixmap;
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    QPolygonF curve;
    for (const QPointF &point : kCurve)
        curve << QPointF(kNodeRadius, kNodeRadius) + point * (size - 2 * kNodeRadius);
    painter.setPen(QPen(line, kLineWidth));
    painter.drawPolyline(curve);
    painter.setPen(Qt::NoPen);
    painter.setBrush(node);
    for (int index = 1; index + 1 < curve.size(); ++index)
        painter.drawEllipse(curve.at(index), kNodeRadius, kNodeRadius);
    return pixmap;
}

} // namespace

QString AdjustPageStyle::fanButton()
{
    return Reds::inSheet(
        QStringLiteral("QPushButton{border:1px solid rgba(@glass,130);background-color:rgba(0,0,0,110);"
                       "color:rgb(190,190,190);padding:0px;outline:none;}"
                       "QPushButton:hover{border:1px solid rgba(@glass,220);"
                       "background-color:rgba(@glass,70);color:white;}"
                       "QPushButton:pressed{background-color:rgba(@glass,110);}"
                       "QPushButton:checked{border:1px solid rgba(@glass,255);"
                       "background-color:rgba(@glass,170);color:white;}"
                       "QPushButton:disabled{border:1px solid rgba(140,140,140,90);"
                       "background-color:rgba(0,0,0,60);color:rgb(120,120,120);}"
                       "QPushButton:checked:disabled{background-color:rgba(140,140,140,60);}"));
}

QString AdjustPageStyle::linkBox()
{
    return QStringLiteral("QCheckBox{spacing:0px;padding-left:6px;outline:none;}") +
           UiStyle::smallCheckBoxIndicator();
}

QIcon AdjustPageStyle::curveIcon(int size)
{
    QIcon icon;
    icon.addPixmap(curvePixmap(size, Reds::glass(), Qt::white), QIcon::Normal);
    icon.addPixmap(curvePixmap(size, QColor(120, 120, 120), QColor(150, 150, 150)), QIcon::Disabled);
    return icon;
}
