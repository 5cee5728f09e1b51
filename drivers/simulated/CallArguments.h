#pragma once

#include "simulated/OperationList.h"

#include <nlohmann/json.hpp>

namespace simulated
{

/// What the journal says of an operation's arguments: everything that a write set, and which thing a read
/// asked for. Called after the operation, with a record of a version word that the operation really has.
template <Operation operation>
struct CallArguments
{
    template <class... Arguments>
    static nlohmann::ordered_json of(const Arguments &...)
    {
        return {}; // nothing but the card: the journal names that anyway
    }
};

// clang-format off
#define OVRYN_SIMULATED_ARGUMENTS(name, parameters) \
    template <> struct CallArguments<Operation::name> { static nlohmann::ordered_json of parameters; };

OVRYN_SIMULATED_ARGUMENTS(NvAPI_GetErrorMessage,                   (NvAPI_Status status, const char *text))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_EnumNvidiaDisplayHandle,           (quint32 index, const NvDisplayHandle *display))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_GetAssociatedDisplayOutputId,      (NvDisplayHandle display, const quint32 *outputId))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_GPU_GetAllClockFrequencies,        (NvPhysicalGpuHandle gpu, const NvApiClockFrequencies *record))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_GPU_GetThermalSettings,            (NvPhysicalGpuHandle gpu, quint32 sensorIndex, const NvApiThermalSettings *record))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_GPU_GetCoolerSettings,             (NvPhysicalGpuHandle gpu, quint32 coolerIndex, const NvApiCoolerSettings *record))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_GPU_SetCoolerLevels,               (NvPhysicalGpuHandle gpu, quint32 coolerIndex, const NvApiCoolerLevels *record))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_GPU_SetPstates20,                  (NvPhysicalGpuHandle gpu, const NV_GPU_PERF_PSTATES20_INFO *record))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_DriverEntry_B23B70EE,              (NvPhysicalGpuHandle gpu, quint32 value))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_GPU_ClientPowerPoliciesSetStatus,  (NvPhysicalGpuHandle gpu, const NvApiPowerPoliciesStatus *record))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_GPU_ClientThermalPoliciesSetStatus, (NvPhysicalGpuHandle gpu, const NvApiThermalPoliciesStatus *record))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_I2CRead,                           (NvPhysicalGpuHandle gpu, const NV_I2C_INFO *record))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_I2CReadEx,                         (NvPhysicalGpuHandle gpu, const NV_I2C_INFO *record, const quint32 *twoZeroWords))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_I2CWrite,                          (NvPhysicalGpuHandle gpu, const NV_I2C_INFO *record))
OVRYN_SIMULATED_ARGUMENTS(NvAPI_I2CWriteEx,                        (NvPhysicalGpuHandle gpu, const NV_I2C_INFO *record, const quint32 *twoZeroWords))

#undef OVRYN_SIMULATED_ARGUMENTS
// clang-format on

} // namespace simulated
