#include "simulated/OperationList.h"

namespace simulated
{
namespace
{

// clang-format off
constexpr const char *kNames[] = {
#define OVRYN_SIMULATED_NAME(identifier, name, parameters, arguments) #name,
    OVRYN_NVAPI_OPERATIONS(OVRYN_SIMULATED_NAME)
#undef OVRYN_SIMULATED_NAME
};

struct VersionRow
{
    Operation operation;
    std::vector<quint32> versions;
};

const VersionRow kVersionRows[] = {
    // operation                                          version words, newest first
    {Operation::NvAPI_SYS_GetChipSetInfo,                 {kChipsetInfoVersion4, kChipsetInfoVersion3, kChipsetInfoVersion2}},
    {Operation::NvAPI_GPU_GetMemoryInfo,                  {kMemoryInfoVersion3, kMemoryInfoVersion2, kMemoryInfoVersion1}},
    {Operation::NvAPI_GPU_GetAllClockFrequencies,         {kClockFrequenciesVersion3, kClockFrequenciesVersion2, kClockFrequenciesVersion1}},
    {Operation::NvAPI_GPU_GetDynamicPstatesInfoEx,        {kDynamicPstatesVersion1}},
    {Operation::NvAPI_GPU_GetThermalSettings,             {kThermalSettingsVersion2, kThermalSettingsVersion1}},
    {Operation::NvAPI_GPU_GetCoolerSettings,              {kCoolerSettingsVersion4, kCoolerSettingsVersion3, kCoolerSettingsVersion2,
                                                           kCoolerSettingsVersion1Large, kCoolerSettingsVersion1Small}},
    {Operation::NvAPI_GPU_SetCoolerLevels,                {kCoolerLevelsVersion1, kCoolerLevelsVersion1Small}},
    {Operation::NvAPI_GPU_GetPstates20,                   {kPstates20Version3, kPstates20Version2, kPstates20Version1}},
    {Operation::NvAPI_GPU_SetPstates20,                   {kPstates20Version3, kPstates20Version2, kPstates20Version1}},
    {Operation::NvAPI_GPU_ClientPowerTopologyGetInfo,     {kPowerTopologyInfoVersion1}},
    {Operation::NvAPI_GPU_ClientPowerTopologyGetStatus,   {kPowerTopologyStatusVersion1}},
    {Operation::NvAPI_GPU_ClientPowerPoliciesGetInfo,     {kPowerPoliciesInfoVersion1}},
    {Operation::NvAPI_GPU_ClientPowerPoliciesGetStatus,   {kPowerPoliciesStatusVersion1}},
    {Operation::NvAPI_GPU_ClientPowerPoliciesSetStatus,   {kPowerPoliciesStatusVersion1}},
    {Operation::NvAPI_GPU_ClientThermalPoliciesGetInfo,   {kThermalPoliciesInfoVersion2, kThermalPoliciesInfoVersion1}},
    {Operation::NvAPI_GPU_ClientThermalPoliciesGetStatus, {kThermalPoliciesStatusVersion2, kThermalPoliciesStatusVersion1}},
    {Operation::NvAPI_GPU_ClientThermalPoliciesSetStatus, {kThermalPoliciesStatusVersion2, kThermalPoliciesStatusVersion1}},
    {Operation::NvAPI_I2CRead,                            {kI2cInfoVersion3, kI2cInfoVersion2, kI2cInfoVersion1}},
    {Operation::NvAPI_I2CReadEx,                          {kI2cInfoVersion3, kI2cInfoVersion2, kI2cInfoVersion1}},
    {Operation::NvAPI_I2CWrite,                           {kI2cInfoVersion3, kI2cInfoVersion2, kI2cInfoVersion1}},
    {Operation::NvAPI_I2CWriteEx,                         {kI2cInfoVersion3, kI2cInfoVersion2, kI2cInfoVersion1}},
};
// clang-format on

} // namespace

const char *operationName(Operation operation)
{
    return kNames[static_cast<std::size_t>(operation)];
}

Operation operationNamed(std::string_view name)
{
    for (std::size_t i = 0; i < kOperationCount; ++i) {
        if (name == kNames[i])
            return static_cast<Operation>(i);
    }
    return Operation::Count;
}

const std::vector<quint32> &recordVersions(Operation operation)
{
    static const std::vector<quint32> none;
    for (const VersionRow &row : kVersionRows) {
        if (row.operation == operation)
            return row.versions;
    }
    return none;
}

} // namespace simulated
