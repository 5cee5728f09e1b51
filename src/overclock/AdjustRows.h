#pragma once

#include "config/ConfigRecords.h"
#include "overclock/OverClockingParam.h"
#include "ui/Ovryn_LanguageTable.h"

#include <array>

/// The rows of the adjust page from top to bottom.
enum AdjustRowIndex
{
    RowGpuClock,
    RowFan,
    RowVoltage,
    RowMemoryClock,
    RowPower,
    RowTemperature,
    AdjustRowCount,
};

/// The range of a row's slider, in the row's unit. A driver may report a minimum above the maximum.
struct AdjustRange
{
    qint32 minimum = 0;
    qint32 maximum = 0;
};

/// What one row shows and edits of a snapshot.
struct AdjustRow
{
    const char *objectName;
    QString Lang_OverClock::*caption;
    qint32 &(*value)(OverClockingParam &param);
    AdjustRange (*range)(const OverClockingParam &param);
    bool (*editable)(const OverClockingParam &param);
    bool (*wasRead)(const OverClockingParam &param); ///< false: value and range were not read from the card
    qint32 AdjustModuleInfo::*saved;
};

/// In the order of AdjustRowIndex.
extern const std::array<AdjustRow, AdjustRowCount> kAdjustRows;

/// The snapshot with every value as its row's number box shows it: within the row's range.
[[nodiscard]] OverClockingParam limitedToRows(OverClockingParam param);

/// A card with a fan of one fixed level can't be controlled.
[[nodiscard]] bool isFanControllable(const OverClockingParam &param);
