#pragma once

#include "overclock/OverClockingParam.h"

#include <QMap>

#include <string>

/// \file
/// The factory overclock of certain boards: which cards may use it, and its values.

/// Graphics clock in MHz by the device half of the subsystem identifier.
[[nodiscard]] QMap<quint32, qint32> highPerformanceClockTable();

/// Device half of a subsystem identifier, the key of the table.
[[nodiscard]] quint32 subSystemDevice(const NvPciIds &ids);

/// True for the right model and maker. The mode can start only when the table has the board too.
[[nodiscard]] bool isHighPerformanceModel(const std::string &gpuName, const NvPciIds &ids);

/// The snapshot with every edited value except the fan level at the card's own default.
[[nodiscard]] OverClockingParam withCardDefaults(OverClockingParam param);

/// The snapshot with the preset's values.
[[nodiscard]] OverClockingParam withHighPerformance(OverClockingParam param, qint32 gpuClockMHz);
