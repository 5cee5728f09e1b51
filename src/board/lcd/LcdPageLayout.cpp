#include "board/lcd/LcdPageLayout.h"

#include <algorithm>

namespace
{

constexpr int kRows = 8;
constexpr int kFieldWidth = 50;
constexpr int kFieldHeight = 16;
constexpr int kPlusWidth = 15;
constexpr int kIndicatorWidth = 30; // a radio's circle and the gap behind it
constexpr int kIndent = 30;         // of what belongs to a radio

} // namespace

LcdPageLayout lcdPageLayoutFor(QSize page, const LcdTextWidths &texts)
{
    LcdPageLayout layout;
    const int width = page.width();
    const int height = page.height();
    const int titleHeight = height / 10;
    const int margin = width / 15;
    const int rowHeight = (height - 2 * titleHeight) / kRows;
    const int indent = margin + kIndent;
    const int fieldOffset = (rowHeight - kFieldHeight) / 2;
    const auto rowTop = [&](int row) {
        return titleHeight + row * rowHeight;
    };

    layout.titleHeight = titleHeight;
    layout.title = QRect(margin, 0, width, titleHeight);
    layout.titlePixels = std::min(width / 4, int(titleHeight / 1.5));

    layout.autoSwitch = QRect(margin, rowTop(1), texts.autoSwitch + kIndicatorWidth, rowHeight);
    layout.timeCaption = QRect(indent, rowTop(2), texts.timeCaption, rowHeight);
    layout.switchTime = QRect(indent + texts.timeCaption, rowTop(2) + fieldOffset, kFieldWidth, kFieldHeight);

    const int keysLeft = indent + texts.hotkeyCaption;
    layout.manualSwitch = QRect(margin, rowTop(3), texts.manualSwitch + kIndicatorWidth, rowHeight);
    layout.hotkeyCaption = QRect(indent, rowTop(4), texts.hotkeyCaption, rowHeight);
    layout.modifierKey = QRect(keysLeft, rowTop(4) + fieldOffset, kFieldWidth, kFieldHeight);
    layout.plus = QRect(keysLeft + kFieldWidth, rowTop(4), kPlusWidth, rowHeight);
    layout.normalKey = QRect(keysLeft + kFieldWidth + kPlusWidth, rowTop(4) + fieldOffset, kFieldWidth, kFieldHeight);

    layout.enableLcd = QRect(margin, rowTop(5), width, rowHeight);
    const int buttonHeight = rowHeight / 3 * 2;
    layout.confirm = QRect(width / 4, height - titleHeight, width / 5, buttonHeight);
    layout.cancel = QRect(width / 2, height - titleHeight, width / 5, buttonHeight);
    layout.buttonPixels = rowHeight / 2;
    return layout;
}
