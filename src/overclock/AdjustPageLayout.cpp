#include "overclock/AdjustPageLayout.h"

#include "device/Arithmetic.h"

namespace
{

constexpr int kFanButtonDrop = 10; // below the fan row's top
constexpr int kFanButtonGap = 5;
constexpr int kLinkBoxSize = 26;
constexpr int kFrameInset = 2;

} // namespace

AdjustPageLayout adjustPageLayoutFor(QSize page)
{
    const int width = page.width();
    const int height = page.height();
    constexpr double fraction = AdjustPageLayout::frameFraction;
    constexpr int edge = static_cast<int>(AdjustPageLayout::frameWidth);
    const double footHeight = (1 - fraction) * height;

    AdjustPageLayout rects;
    rects.rowHeight = cutToInt((height - footHeight * 1.5) / AdjustPageLayout::rowCount);
    const int rowHeight = rects.rowHeight;
    for (int row = 0; row < AdjustPageLayout::rowCount; ++row)
        rects.rows[static_cast<std::size_t>(row)] = QRect(edge, row * rowHeight, width, rowHeight);
    rects.editor = QRect(edge, edge, width - 2 * edge, width - 2 * edge);

    const int gap = width / 20;
    const int buttonWidth = (width - 2 * gap) / 5;
    const int buttonHeight = cutToInt(footHeight * 0.5);
    const int buttonTop = cutToInt(fraction * height + footHeight * 0.25);
    rects.applyButton = QRect(buttonWidth, buttonTop, buttonWidth, buttonHeight);
    rects.cancelButton = QRect(buttonWidth * 2 + gap, buttonTop, buttonWidth, buttonHeight);
    rects.defaultButton = QRect(buttonWidth * 3 + gap * 2, buttonTop, buttonWidth, buttonHeight);

    const int fanWidth = width / 8;
    const int small = rowHeight / 3;
    const int fanTop = rowHeight + kFanButtonDrop;
    rects.autoButton = QRect(width - 4 * fanWidth - small, fanTop, fanWidth, small);
    rects.manualButton = QRect(width + kFanButtonGap - 3 * fanWidth - small, fanTop, fanWidth, small);
    rects.userDefinedButton = QRect(width + 2 * kFanButtonGap - 2 * fanWidth - small, fanTop, fanWidth, small);
    rects.configButton = QRect(width + 3 * kFanButtonGap - small - fanWidth, fanTop, small, small);

    rects.linkBox = QRect(width / 7 * 4, 5 * rowHeight, kLinkBoxSize, kLinkBoxSize);
    return rects;
}

QPainterPath adjustFramePath(QSize page)
{
    QPainterPath rectangle;
    rectangle.addRect(kFrameInset, kFrameInset, page.width() - AdjustPageLayout::frameWidth,
                      page.height() - AdjustPageLayout::frameWidth);
    return rectangle.intersected(PageFrame::cutCornerPath(page));
}
