#pragma once

#include "simulated/Card.h"
#include "simulated/OperationList.h"

#include <string>

namespace simulated
{

/// What the rules know besides a call's arguments.
struct CallContext
{
    const Card *card = nullptr; ///< null without a known handle
    quint32 version = 0;        ///< version word of the record; one that the operation really has
    bool countsAreTrue = true;  ///< false when the driver's own answers lead the caller astray
};

/// What no card is ever asked: a value that the program does not send when all is well, whatever the driver answers
/// to it. `broken` names it; an empty text is a call in order. It looks at the arguments as they came in.
template <Operation operation>
class CallRule
{
public:
    explicit CallRule(const CallContext &) {}

    template <class... Arguments>
    [[nodiscard]] std::string broken(const Arguments &...) const
    {
        return {};
    }
};

// clang-format off
#define OVRYN_SIMULATED_RULE(name, parameters) \
    template <> class CallRule<Operation::name> \
    { \
    public: \
        explicit CallRule(const CallContext &callContext) : context(callContext) {} \
        [[nodiscard]] std::string broken parameters const; \
    private: \
        const CallContext &context; \
    };

OVRYN_SIMULATED_RULE(NvAPI_GPU_GetAllClockFrequencies,         (NvPhysicalGpuHandle gpu, const NvApiClockFrequencies *record))
OVRYN_SIMULATED_RULE(NvAPI_GPU_GetThermalSettings,             (NvPhysicalGpuHandle gpu, quint32 sensorIndex, const NvApiThermalSettings *record))
OVRYN_SIMULATED_RULE(NvAPI_GPU_GetCoolerSettings,              (NvPhysicalGpuHandle gpu, quint32 coolerIndex, const NvApiCoolerSettings *record))
OVRYN_SIMULATED_RULE(NvAPI_GPU_SetCoolerLevels,                (NvPhysicalGpuHandle gpu, quint32 coolerIndex, const NvApiCoolerLevels *record))
OVRYN_SIMULATED_RULE(NvAPI_GPU_SetPstates20,                   (NvPhysicalGpuHandle gpu, const NV_GPU_PERF_PSTATES20_INFO *record))
OVRYN_SIMULATED_RULE(NvAPI_DriverEntry_B23B70EE,               (NvPhysicalGpuHandle gpu, quint32 value))
OVRYN_SIMULATED_RULE(NvAPI_GPU_ClientPowerTopologyGetStatus,   (NvPhysicalGpuHandle gpu, const NvApiPowerTopologyStatus *record))
OVRYN_SIMULATED_RULE(NvAPI_GPU_ClientPowerPoliciesGetStatus,   (NvPhysicalGpuHandle gpu, const NvApiPowerPoliciesStatus *record))
OVRYN_SIMULATED_RULE(NvAPI_GPU_ClientPowerPoliciesSetStatus,   (NvPhysicalGpuHandle gpu, const NvApiPowerPoliciesStatus *record))
OVRYN_SIMULATED_RULE(NvAPI_GPU_ClientThermalPoliciesGetStatus, (NvPhysicalGpuHandle gpu, const NvApiThermalPoliciesStatus *record))
OVRYN_SIMULATED_RULE(NvAPI_GPU_ClientThermalPoliciesSetStatus, (NvPhysicalGpuHandle gpu, const NvApiThermalPoliciesStatus *record))
OVRYN_SIMULATED_RULE(NvAPI_I2CRead,                            (NvPhysicalGpuHandle gpu, const NV_I2C_INFO *record))
OVRYN_SIMULATED_RULE(NvAPI_I2CReadEx,                          (NvPhysicalGpuHandle gpu, const NV_I2C_INFO *record, const quint32 *words))
OVRYN_SIMULATED_RULE(NvAPI_I2CWrite,                           (NvPhysicalGpuHandle gpu, const NV_I2C_INFO *record))
OVRYN_SIMULATED_RULE(NvAPI_I2CWriteEx,                         (NvPhysicalGpuHandle gpu, const NV_I2C_INFO *record, const quint32 *words))

#undef OVRYN_SIMULATED_RULE
// clang-format on

} // namespace simulated
