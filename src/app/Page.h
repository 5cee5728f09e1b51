#pragma once

/// What the main dialog can show of a card; the numbers are those of its `currentPage`.
enum Page
{
    HomePage = 0, ///< the gauge box alone
    MonitorPage = 1,
    AdjustPage = 2,
    LedPage = 3,
    LcdPage = 4,
    FixedInfoPage = 5,
    BoardTempPage = 6,
};
