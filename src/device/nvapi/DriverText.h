#pragma once

#include "device/nvapi/NvApi.h"

#include <array>
#include <string>

/// \file
/// The driver's short texts.

/// A buffer for one text. Hand out `data()` of a zeroed one.
using DriverTextBuffer = std::array<char, kNvApiShortTextSize>;

/// The text up to its terminating zero; the whole buffer when the driver left none.
[[nodiscard]] std::string driverText(const DriverTextBuffer &buffer);

/// Asks the driver for the text of a failure and drops it: failures are told by results alone, but the
/// question belongs to the sequence of calls that the driver sees.
void dropErrorText(NvAPI_Status status);
