#pragma once

#include "device/nvapi/NvApiRecords.h"

#include <memory>

namespace simulated
{

class DriverCore;

/// The machine that the entry points lead to. They are plain functions without a place for it, so there
/// is one at a time; without one they answer NVAPI_LIBRARY_NOT_FOUND.
void setActiveCore(std::shared_ptr<DriverCore> core);

/// Ends the reign of `core`, if it is still the active one.
void removeActiveCore(const DriverCore *core);

/// The driver library's own entry point: a function pointer for an interface identifier, null when the
/// scenario's driver does not have it.
void *OVRYN_NVAPI_CALL queryInterface(quint32 identifier);

} // namespace simulated
