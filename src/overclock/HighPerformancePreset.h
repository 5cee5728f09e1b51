#pragma once

#include "overclock/OverClockingParam.h"

#include <QMap>

#include <string>

/// \file
/// The factory overclock of certain boards: which cards may have it, and what it asks of the card.

/// Graphics clock in MHz by the device half of the subsystem identifier.
[[nodiscard]] QMap<quint32, qint32> highPerformanceClockTable();

/// Device half of a subsystem identifier, the key of the table.
[[nodiscard]] quint32 subSystemDevice(const NvPciIds &ids);

/// The model and the maker are right. The table must hold the board too before the mode can start.
[[nodiscard]] bool isHighPerformanceModel(const std::string &gpuName, const NvPciIds &ids);

/// The snapshot with every edited value but the fan level at the card's own default.
[[nodiscard]] OverClockingParam withCardDefaults(OverClockingParam param);

/// The snapshot with the preset's values.
[[nodiscard]] OverClockingParam withHighPerformance(OverClockingParam param, qint32 gpuClockMHz);
