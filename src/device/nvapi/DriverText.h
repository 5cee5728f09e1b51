#pragma once

#include "device/nvapi/NvApi.h"

#include <array>
#include <string>

/// \file
/// The driver's short texts.

/// A buffer for one text. Pass `data()` of a zeroed one to the driver.
using DriverTextBuffer = std::array<char, kNvApiShortTextSize>;

/// The text up to its terminating zero; the whole buffer when the driver left none.
[[nodiscard]] std::string driverText(const DriverTextBuffer &buffer);

/// Asks the driver for the text of a failure and ignores it: only results report failures, but the call belongs to
/// the sequence that the driver expects.
void dropErrorText(NvAPI_Status status);
