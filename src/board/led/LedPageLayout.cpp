#include "board/led/LedPageLayout.h"

#include "ui/PageFrame.h"

LedPageLayout ledPageLayoutFor(QSize page)
{
    LedPageLayout layout;
    const int width = page.width();
    const int height = page.height();
    const int titleHeight = height / 10;
    const int rowHeight = (height - 2 * titleHeight) / 6;
    const int margin = width / 20;
    const int contentWidth = width - 2 * margin;
    const int columnWidth = int(contentWidth * 0.5);
    const int swatch = int(contentWidth / 9 * 3 * 0.25);
    const int swatchGap = swatch / 3;
    const int swatchLeft = swatch + margin + swatchGap;
    const int swatchTop = int(rowHeight * 2.5 + titleHeight);
    const int secondColumn = margin + columnWidth;

    layout.titleHeight = titleHeight;
    layout.title = QRect(margin, 0, contentWidth / 3, titleHeight);
    layout.titlePixels = PageFrame::titlePixelSize(QSize(contentWidth, height), titleHeight);
    layout.breath = QRect(margin, titleHeight + rowHeight / 4, columnWidth, rowHeight);
    layout.bright = QRect(secondColumn, titleHeight + rowHeight / 4, columnWidth, rowHeight);
    layout.intervalCaption = QRect(margin, titleHeight + rowHeight + rowHeight / 4, columnWidth, rowHeight);
    layout.interval =
        QRect(secondColumn, titleHeight + rowHeight + rowHeight / 2, int(columnWidth * 0.5), rowHeight / 2);

    const int swatchStep = swatch + swatchGap;
    const int customTop = swatchTop + swatchStep;
    for (int i = 0; i < LedPageLayout::colorCount; ++i) {
        const auto index = static_cast<std::size_t>(i);
        layout.presets[index] = QRect(swatchLeft + i * swatchStep, swatchTop, swatch, swatch);
        layout.customs[index] = QRect(swatchLeft + i * swatchStep, customTop, swatch, swatch);
    }
    layout.reset = QRect(swatchLeft + LedPageLayout::colorCount * swatchStep, customTop, swatch, swatch);
    layout.state = QRect(margin, titleHeight + 4 * rowHeight, columnWidth, rowHeight);
    layout.sleep = QRect(secondColumn, titleHeight + 4 * rowHeight, columnWidth, rowHeight);
    layout.gradient = QRect(margin, titleHeight + 5 * rowHeight, columnWidth, rowHeight);
    return layout;
}
