#pragma once

#include "ui/PageFrame.h"

#include <QPainterPath>
#include <QRect>
#include <QSize>

#include <array>

/// The rectangles of the adjust page's parts, in page pixels. Integer divisions and floating results truncate.
struct AdjustPageLayout
{
    static constexpr qint32 rowCount = 6;
    static constexpr double frameFraction =
        PageFrame::kCutStart;                 ///< part of the width and the height left of and above the cut corner
    static constexpr double frameWidth = 3.0; ///< pixels of the outline, which the rows and the editor leave free

    qint32 rowHeight = 0;
    std::array<QRect, rowCount> rows;
    QRect editor; ///< of the fan curve; as high as the page is wide
    QRect applyButton;
    QRect cancelButton;
    QRect defaultButton;
    QRect autoButton;
    QRect manualButton;
    QRect userDefinedButton;
    QRect configButton; ///< opens the fan curve
    QRect linkBox;
};

[[nodiscard]] AdjustPageLayout adjustPageLayoutFor(QSize page);

/// The page's glass: a rectangle with the bottom right corner cut off.
[[nodiscard]] QPainterPath adjustFramePath(QSize page);
