#pragma once

#include "device/nvapi/NvApiRecords.h"

/// \file
/// The one list of everything that the program asks of the driver library: interface identifier,
/// published name, signature. `NvApi.h` makes a function of each row; stand-ins make their dispatch
/// table and their journal's names from the same rows.
///
/// OVRYN_NVAPI_OPERATIONS(X) expands X(identifier, name, parameterList, argumentList) once a row.
/// The library exports only `nvapi_QueryInterface`, which turns an identifier into a function pointer
/// (null when the library does not know it).

// clang-format off
#define OVRYN_NVAPI_OPERATIONS(X) \
    X(0x0150E828u, NvAPI_Initialize,                        (), ()) \
    X(0xD22BDD7Eu, NvAPI_Unload,                            (), ()) \
    X(0x6C2D048Cu, NvAPI_GetErrorMessage,                   (NvAPI_Status status, char *text), (status, text)) \
    X(0x9ABDD40Du, NvAPI_EnumNvidiaDisplayHandle,           (quint32 index, NvDisplayHandle *display), (index, display)) \
    X(0xD995937Eu, NvAPI_GetAssociatedDisplayOutputId,      (NvDisplayHandle display, quint32 *outputId), (display, outputId)) \
    X(0xE5AC921Fu, NvAPI_EnumPhysicalGPUs,                  (NvPhysicalGpuHandle *gpus, quint32 *count), (gpus, count)) \
    X(0xD9930B07u, NvAPI_EnumTCCPhysicalGPUs,               (NvPhysicalGpuHandle *gpus, quint32 *count), (gpus, count)) \
    X(0x2926AAADu, NvAPI_SYS_GetDriverAndBranchVersion,     (quint32 *version, char *branch), (version, branch)) \
    X(0x53DABBCAu, NvAPI_SYS_GetChipSetInfo,                (NvApiChipsetInfo *record), (record)) \
    X(0xCEEE8E9Fu, NvAPI_GPU_GetFullName,                   (NvPhysicalGpuHandle gpu, char *name), (gpu, name)) \
    X(0x2DDFB66Eu, NvAPI_GPU_GetPCIIdentifiers,             (NvPhysicalGpuHandle gpu, quint32 *deviceId, quint32 *subSystemId, quint32 *revisionId, quint32 *extDeviceId), (gpu, deviceId, subSystemId, revisionId, extDeviceId)) \
    X(0xA561FD7Du, NvAPI_GPU_GetVbiosVersionString,         (NvPhysicalGpuHandle gpu, char *version), (gpu, version)) \
    X(0x57F7CAACu, NvAPI_GPU_GetRamType,                    (NvPhysicalGpuHandle gpu, quint32 *type), (gpu, type)) \
    X(0x11104158u, NvAPI_GPU_GetFBWidthAndLocation,         (NvPhysicalGpuHandle gpu, quint32 *widthBits, quint32 *location), (gpu, widthBits, location)) \
    X(0x07F9B368u, NvAPI_GPU_GetMemoryInfo,                 (NvPhysicalGpuHandle gpu, NvApiMemoryInfo *record), (gpu, record)) \
    X(0xDCB616C3u, NvAPI_GPU_GetAllClockFrequencies,        (NvPhysicalGpuHandle gpu, NvApiClockFrequencies *record), (gpu, record)) \
    X(0x60DED2EDu, NvAPI_GPU_GetDynamicPstatesInfoEx,       (NvPhysicalGpuHandle gpu, NvApiDynamicPstates *record), (gpu, record)) \
    X(0xE3640A56u, NvAPI_GPU_GetThermalSettings,            (NvPhysicalGpuHandle gpu, quint32 sensorIndex, NvApiThermalSettings *record), (gpu, sensorIndex, record)) \
    X(0xDA141340u, NvAPI_GPU_GetCoolerSettings,             (NvPhysicalGpuHandle gpu, quint32 coolerIndex, NvApiCoolerSettings *record), (gpu, coolerIndex, record)) \
    X(0x891FA0AEu, NvAPI_GPU_SetCoolerLevels,               (NvPhysicalGpuHandle gpu, quint32 coolerIndex, NvApiCoolerLevels *record), (gpu, coolerIndex, record)) \
    X(0x5F608315u, NvAPI_GPU_GetTachReading,                (NvPhysicalGpuHandle gpu, quint32 *rpm), (gpu, rpm)) \
    X(0x6FF81213u, NvAPI_GPU_GetPstates20,                  (NvPhysicalGpuHandle gpu, NV_GPU_PERF_PSTATES20_INFO *record), (gpu, record)) \
    X(0x0F4DAE6Bu, NvAPI_GPU_SetPstates20,                  (NvPhysicalGpuHandle gpu, NV_GPU_PERF_PSTATES20_INFO *record), (gpu, record)) \
    X(0xB23B70EEu, NvAPI_DriverEntry_B23B70EE,              (NvPhysicalGpuHandle gpu, quint32 value), (gpu, value)) \
    X(0xA4DFD3F2u, NvAPI_GPU_ClientPowerTopologyGetInfo,    (NvPhysicalGpuHandle gpu, NvApiPowerTopologyInfo *record), (gpu, record)) \
    X(0xEDCF624Eu, NvAPI_GPU_ClientPowerTopologyGetStatus,  (NvPhysicalGpuHandle gpu, NvApiPowerTopologyStatus *record), (gpu, record)) \
    X(0x34206D86u, NvAPI_GPU_ClientPowerPoliciesGetInfo,    (NvPhysicalGpuHandle gpu, NvApiPowerPoliciesInfo *record), (gpu, record)) \
    X(0x70916171u, NvAPI_GPU_ClientPowerPoliciesGetStatus,  (NvPhysicalGpuHandle gpu, NvApiPowerPoliciesStatus *record), (gpu, record)) \
    X(0xAD95F5EDu, NvAPI_GPU_ClientPowerPoliciesSetStatus,  (NvPhysicalGpuHandle gpu, NvApiPowerPoliciesStatus *record), (gpu, record)) \
    X(0x0D258BB5u, NvAPI_GPU_ClientThermalPoliciesGetInfo,  (NvPhysicalGpuHandle gpu, NvApiThermalPoliciesInfo *record), (gpu, record)) \
    X(0xE9C425A1u, NvAPI_GPU_ClientThermalPoliciesGetStatus, (NvPhysicalGpuHandle gpu, NvApiThermalPoliciesStatus *record), (gpu, record)) \
    X(0x34C0B13Du, NvAPI_GPU_ClientThermalPoliciesSetStatus, (NvPhysicalGpuHandle gpu, NvApiThermalPoliciesStatus *record), (gpu, record)) \
    X(0x2FDE12C5u, NvAPI_I2CRead,                           (NvPhysicalGpuHandle gpu, NV_I2C_INFO *record), (gpu, record)) \
    X(0x4D7B0709u, NvAPI_I2CReadEx,                         (NvPhysicalGpuHandle gpu, NV_I2C_INFO *record, quint32 *twoZeroWords), (gpu, record, twoZeroWords)) \
    X(0xE812EB07u, NvAPI_I2CWrite,                          (NvPhysicalGpuHandle gpu, NV_I2C_INFO *record), (gpu, record)) \
    X(0x283AC65Au, NvAPI_I2CWriteEx,                        (NvPhysicalGpuHandle gpu, NV_I2C_INFO *record, quint32 *twoZeroWords), (gpu, record, twoZeroWords))
// clang-format on
