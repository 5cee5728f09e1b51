#pragma once

#include "ui/Ovryn_LanguageTable.h"

#include <QColor>
#include <QFont>
#include <QPainterPath>
#include <QPixmap>
#include <QRect>
#include <QSize>
#include <QString>

class QPainter;

/// The common parts of the side pages: the glass with the cut corner, the header band, the red rule under it and the
/// fonts. Free functions, GUI thread.
namespace PageFrame
{

/// The glass of every side page.
QColor bandColor();

/// Family that the widgets ask for in a language: "微软雅黑" for Chinese, "Arial" otherwise.
QString fontFamily(LanguageType language);

/// The cut corner begins at this part of the width and of the height.
constexpr double kCutStart = 0.9;

/// The whole rectangle without the triangle (0.9W, H), (W, H), (W, 0.9H).
QPainterPath cutCornerPath(QSize size);

/// Pixel size of a band's title: (W/3)/4, or the band's height / 1.5 when that is smaller.
int titlePixelSize(QSize size, int bandHeight);

/// The LED and LCD pages have no red rule under the band.
enum class BandRule
{
    Drawn,
    LeftOut
};

/// Pixmap of a page: glass, darker band of `bandHeight`, rule under it, title in weight 63 in `titleRect`,
/// left and vertically centred. Null for an empty size.
QPixmap background(QSize size, int bandHeight, const QRect &titleRect, const QString &title, int titlePixels,
                   LanguageType language, BandRule rule = BandRule::Drawn);

/// A version in the right part of a band: white, in `font` at half the band's height, left and vertically centred
/// in `rect`.
void paintBandVersion(QPainter &painter, QFont font, int bandHeight, const QRect &rect, const QString &text);

} // namespace PageFrame
