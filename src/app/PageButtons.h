#pragma once

#include "app/MainDialogLayout.h"
#include "app/Page.h"
#include "ui/Ovryn_LanguageTable.h"

#include <array>

/// The buttons of the main dialog that lead to pages, in the order in which a change of page looks at them.
enum PageButtonIndex
{
    MonitorButton,
    AdjustButton,
    BoardTempButton,
    FixedInfoButton,
    FirstSlotButton,
    SecondSlotButton,
    PageButtonCount,
};

struct PageButton
{
    Page page;
    const char *objectName;
    QString (*styleSheet)();
    QString Lang_MainDialog::*caption; ///< null: a picture, or a caption by the card
    QRect MainDialogLayout::*place;
    const char *slot; ///< of the dialog, as SLOT() gives it; null: none, or by the card
};

/// In the order of PageButtonIndex.
extern const std::array<PageButton, PageButtonCount> kPageButtons;
