#pragma once

#include <QRect>
#include <QSize>

/// The rectangles of a slider row's parts, in row pixels. Integer divisions truncate, and so do the floating results.
struct SliderRowLayout
{
    double margin = 0;      ///< whole pixels
    double usableWidth = 0; ///< whole pixels
    QRect captionRect;
    QRect spinRect;
    QRect sliderRect;
};

/// `backgroundWidth` is the width of the image under the slider's left end.
SliderRowLayout sliderRowLayoutFor(QSize row, int backgroundWidth);
