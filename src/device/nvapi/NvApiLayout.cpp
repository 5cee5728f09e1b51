#include "device/nvapi/NvApiRecords.h"

// The place of every field of the driver's records in bytes. The numbers are those of the driver's interface, not
// taken from the records, so that records with two fields exchanged do not build. A test could not find that: the
// program and the stand-ins for the driver use the same records.

namespace
{

using PstatesInfo = NV_GPU_PERF_PSTATES20_INFO;
using PstatesClock = PstatesInfo::Clock;
using PstatesVoltage = PstatesInfo::Voltage;

#define OVRYN_AT(Record, field, offset) static_assert(offsetof(Record, field) == (offset), "place of " #field)
#define OVRYN_SIZE(Record, size) static_assert(sizeof(Record) == (size), "size of " #Record)
#define OVRYN_FIELD_SIZE(Record, field, size) static_assert(sizeof(Record::field) == (size), "size of " #field)

// clang-format off

// ---- memory

OVRYN_SIZE(NvApiMemoryInfo, 32);
OVRYN_AT(NvApiMemoryInfo, version,                           0);
OVRYN_AT(NvApiMemoryInfo, dedicatedVideoMemory,              4);
OVRYN_AT(NvApiMemoryInfo, availableDedicatedVideoMemory,     8);
OVRYN_AT(NvApiMemoryInfo, systemVideoMemory,                 12);
OVRYN_AT(NvApiMemoryInfo, sharedSystemMemory,                16);
OVRYN_AT(NvApiMemoryInfo, curAvailableDedicatedVideoMemory,  20);
OVRYN_AT(NvApiMemoryInfo, dedicatedVideoMemoryEvictionsSize, 24);
OVRYN_AT(NvApiMemoryInfo, dedicatedVideoMemoryEvictionCount, 28);

// ---- clocks

OVRYN_SIZE(NvApiClockFrequencies, 264);
OVRYN_AT(NvApiClockFrequencies, version,   0);
OVRYN_AT(NvApiClockFrequencies, clockType, 4);
OVRYN_AT(NvApiClockFrequencies, domain,    8);
OVRYN_SIZE(NvApiClockFrequencies::Domain, 8);
OVRYN_AT(NvApiClockFrequencies::Domain, present,      0);
OVRYN_AT(NvApiClockFrequencies::Domain, frequencyKHz, 4);

// ---- utilisation

OVRYN_SIZE(NvApiDynamicPstates, 72);
OVRYN_AT(NvApiDynamicPstates, version,     0);
OVRYN_AT(NvApiDynamicPstates, flags,       4);
OVRYN_AT(NvApiDynamicPstates, utilization, 8);
OVRYN_SIZE(NvApiDynamicPstates::Utilization, 8);
OVRYN_AT(NvApiDynamicPstates::Utilization, present,    0);
OVRYN_AT(NvApiDynamicPstates::Utilization, percentage, 4);

// ---- temperature sensors

OVRYN_SIZE(NvApiThermalSettings, 68);
OVRYN_AT(NvApiThermalSettings, version, 0);
OVRYN_AT(NvApiThermalSettings, count,   4);
OVRYN_AT(NvApiThermalSettings, sensor,  8);
OVRYN_SIZE(NvApiThermalSettings::Sensor, 20);
OVRYN_AT(NvApiThermalSettings::Sensor, controller,     0);
OVRYN_AT(NvApiThermalSettings::Sensor, defaultMinTemp, 4);
OVRYN_AT(NvApiThermalSettings::Sensor, defaultMaxTemp, 8);
OVRYN_AT(NvApiThermalSettings::Sensor, currentTemp,    12);
OVRYN_AT(NvApiThermalSettings::Sensor, target,         16);

// ---- chipset

OVRYN_SIZE(NvApiChipsetInfo, 232);
OVRYN_AT(NvApiChipsetInfo, version,                  0);
OVRYN_AT(NvApiChipsetInfo, vendorId,                 4);
OVRYN_AT(NvApiChipsetInfo, deviceId,                 8);
OVRYN_AT(NvApiChipsetInfo, szVendorName,             12);
OVRYN_AT(NvApiChipsetInfo, szChipsetName,            76);
OVRYN_AT(NvApiChipsetInfo, flags,                    140);
OVRYN_AT(NvApiChipsetInfo, subSysVendorId,           144);
OVRYN_AT(NvApiChipsetInfo, subSysDeviceId,           148);
OVRYN_AT(NvApiChipsetInfo, szSubSysVendorName,       152);
OVRYN_AT(NvApiChipsetInfo, hostBridgeVendorId,       216);
OVRYN_AT(NvApiChipsetInfo, hostBridgeDeviceId,       220);
OVRYN_AT(NvApiChipsetInfo, hostBridgeSubSysVendorId, 224);
OVRYN_AT(NvApiChipsetInfo, hostBridgeSubSysDeviceId, 228);

// ---- performance states

OVRYN_SIZE(PstatesInfo, 7416);
OVRYN_AT(PstatesInfo, version,         0);
OVRYN_AT(PstatesInfo, bIsEditable,     4);
OVRYN_AT(PstatesInfo, numPstates,      8);
OVRYN_AT(PstatesInfo, numClocks,       12);
OVRYN_AT(PstatesInfo, numBaseVoltages, 16);
OVRYN_AT(PstatesInfo, pstates,         20);
OVRYN_AT(PstatesInfo, ov,              7316);
OVRYN_AT(PstatesInfo, ov.numVoltages,  7316);
OVRYN_AT(PstatesInfo, ov.voltages,     7320);
OVRYN_SIZE(PstatesInfo::Pstate, 456);
OVRYN_AT(PstatesInfo::Pstate, pstateId,     0);
OVRYN_AT(PstatesInfo::Pstate, bIsEditable,  4);
OVRYN_AT(PstatesInfo::Pstate, clocks,       8);
OVRYN_AT(PstatesInfo::Pstate, baseVoltages, 360);
OVRYN_SIZE(PstatesClock, 44);
OVRYN_AT(PstatesClock, domainId,                     0);
OVRYN_AT(PstatesClock, typeId,                       4);
OVRYN_AT(PstatesClock, bIsEditable,                  8);
OVRYN_AT(PstatesClock, freqDelta_kHz.value,          12);
OVRYN_AT(PstatesClock, freqDelta_kHz.valueRange.min, 16);
OVRYN_AT(PstatesClock, freqDelta_kHz.valueRange.max, 20);
OVRYN_AT(PstatesClock, data,                         24);
OVRYN_AT(PstatesClock, data.single.freq_kHz,         24);
OVRYN_AT(PstatesClock, data.range.minFreq_kHz,       24);
OVRYN_AT(PstatesClock, data.range.maxFreq_kHz,       28);
OVRYN_AT(PstatesClock, data.range.domainId,          32);
OVRYN_AT(PstatesClock, data.range.minVoltage_uV,     36);
OVRYN_AT(PstatesClock, data.range.maxVoltage_uV,     40);
OVRYN_FIELD_SIZE(PstatesClock, data, 20);
OVRYN_SIZE(PstatesVoltage, 24);
OVRYN_AT(PstatesVoltage, domainId,                    0);
OVRYN_AT(PstatesVoltage, bIsEditable,                 4);
OVRYN_AT(PstatesVoltage, volt_uV,                     8);
OVRYN_AT(PstatesVoltage, voltDelta_uV.value,          12);
OVRYN_AT(PstatesVoltage, voltDelta_uV.valueRange.min, 16);
OVRYN_AT(PstatesVoltage, voltDelta_uV.valueRange.max, 20);

// ---- I2C

// An address is a word of 4 bytes in a 32-bit process and of 8, at a multiple of 8, in a 64-bit process.
using I2cInfo32 = NvApiI2cInfo<quint32>;
using I2cInfo64 = NvApiI2cInfo<quint64>;

#define OVRYN_AT_32_64(field, offset32, offset64) \
    OVRYN_AT(I2cInfo32, field, offset32); \
    OVRYN_AT(I2cInfo64, field, offset64); \
    OVRYN_AT(NV_I2C_INFO, field, sizeof(void *) == 4 ? (offset32) : (offset64))

OVRYN_SIZE(I2cInfo32, 44);
OVRYN_SIZE(I2cInfo64, 64);
OVRYN_AT_32_64(version,          0,  0);
OVRYN_AT_32_64(displayMask,      4,  4);
OVRYN_AT_32_64(bIsDDCPort,       8,  8);
OVRYN_AT_32_64(i2cDevAddress,    9,  9);
OVRYN_AT_32_64(pbI2cRegAddress, 12, 16);
OVRYN_AT_32_64(regAddrSize,     16, 24);
OVRYN_AT_32_64(pbData,          20, 32);
OVRYN_AT_32_64(cbSize,          24, 40);
OVRYN_AT_32_64(i2cSpeed,        28, 44);
OVRYN_AT_32_64(i2cSpeedKhz,     32, 48);
OVRYN_AT_32_64(portId,          36, 52);
OVRYN_AT_32_64(bIsPortIdSet,    40, 56);
OVRYN_FIELD_SIZE(NV_I2C_INFO, bIsDDCPort, 1);
OVRYN_FIELD_SIZE(NV_I2C_INFO, i2cDevAddress, 1);
OVRYN_FIELD_SIZE(NV_I2C_INFO, portId, 1);

// The versions end after these fields; in a 64-bit process the end is rounded up to a multiple of the pointer size.
static_assert(offsetof(I2cInfo32, i2cSpeedKhz) + 4 == nvApiRecordSize(kI2cInfoVersion2), "up to i2cSpeedKhz");
static_assert(offsetof(I2cInfo32, i2cSpeed) + 4 == nvApiRecordSize(kI2cInfoVersion1), "up to i2cSpeed");
static_assert(sizeof(void *) == 4 || kI2cInfoSize3 == 64, "size in a 64-bit process");
static_assert(sizeof(void *) == 4 || kI2cInfoSize2 == 56, "size in a 64-bit process");
static_assert(sizeof(void *) == 4 || kI2cInfoSize1 == 48, "size in a 64-bit process");

// ---- coolers

OVRYN_SIZE(NvApiCoolerSettings, 1368);
OVRYN_AT(NvApiCoolerSettings, version, 0);
OVRYN_AT(NvApiCoolerSettings, count,   4);
OVRYN_AT(NvApiCoolerSettings, cooler,  8);
OVRYN_SIZE(NvApiCoolerSettings::Cooler, 68);
OVRYN_AT(NvApiCoolerSettings::Cooler, type,          0);
OVRYN_AT(NvApiCoolerSettings::Cooler, controller,    4);
OVRYN_AT(NvApiCoolerSettings::Cooler, defaultMin,    8);
OVRYN_AT(NvApiCoolerSettings::Cooler, defaultMax,    12);
OVRYN_AT(NvApiCoolerSettings::Cooler, currentMin,    16);
OVRYN_AT(NvApiCoolerSettings::Cooler, currentMax,    20);
OVRYN_AT(NvApiCoolerSettings::Cooler, currentLevel,  24);
OVRYN_AT(NvApiCoolerSettings::Cooler, defaultPolicy, 28);
OVRYN_AT(NvApiCoolerSettings::Cooler, currentPolicy, 32);
OVRYN_AT(NvApiCoolerSettings::Cooler, target,        36);
OVRYN_AT(NvApiCoolerSettings::Cooler, controlType,   40);
OVRYN_AT(NvApiCoolerSettings::Cooler, active,        44);
OVRYN_AT(NvApiCoolerSettings::Cooler, tachSpeedRpm,  48);
OVRYN_AT(NvApiCoolerSettings::Cooler, tachPresent,   52);
OVRYN_AT(NvApiCoolerSettings::Cooler, tachMinRpm,    56);
OVRYN_AT(NvApiCoolerSettings::Cooler, tachMaxRpm,    60);
OVRYN_AT(NvApiCoolerSettings::Cooler, reserved,      64);
OVRYN_FIELD_SIZE(NvApiCoolerSettings::Cooler, tachPresent, 1);
OVRYN_SIZE(NvApiCoolerLevels, 164);
OVRYN_AT(NvApiCoolerLevels, version, 0);
OVRYN_AT(NvApiCoolerLevels, levels,  4);
OVRYN_SIZE(NvApiCoolerLevels::Level, 8);
OVRYN_AT(NvApiCoolerLevels::Level, level,  0);
OVRYN_AT(NvApiCoolerLevels::Level, policy, 4);

// ---- power

OVRYN_SIZE(NvApiPowerTopologyInfo, 24);
OVRYN_AT(NvApiPowerTopologyInfo, version,   0);
OVRYN_AT(NvApiPowerTopologyInfo, valid,     4);
OVRYN_AT(NvApiPowerTopologyInfo, count,     5);
OVRYN_AT(NvApiPowerTopologyInfo, channelId, 8);
OVRYN_SIZE(NvApiPowerTopologyStatus, 72);
OVRYN_AT(NvApiPowerTopologyStatus, version, 0);
OVRYN_AT(NvApiPowerTopologyStatus, count,   4);
OVRYN_AT(NvApiPowerTopologyStatus, entries, 8);
OVRYN_FIELD_SIZE(NvApiPowerTopologyStatus, count, 1);
OVRYN_SIZE(NvApiPowerTopologyStatus::Entry, 16);
OVRYN_AT(NvApiPowerTopologyStatus::Entry, channelId, 0);
OVRYN_AT(NvApiPowerTopologyStatus::Entry, reserved1, 4);
OVRYN_AT(NvApiPowerTopologyStatus::Entry, power,     8);
OVRYN_AT(NvApiPowerTopologyStatus::Entry, reserved2, 12);
OVRYN_SIZE(NvApiPowerPoliciesInfo, 184);
OVRYN_AT(NvApiPowerPoliciesInfo, version, 0);
OVRYN_AT(NvApiPowerPoliciesInfo, valid,   4);
OVRYN_AT(NvApiPowerPoliciesInfo, count,   5);
OVRYN_AT(NvApiPowerPoliciesInfo, entries, 8);
OVRYN_SIZE(NvApiPowerPoliciesInfo::Entry, 44);
OVRYN_AT(NvApiPowerPoliciesInfo::Entry, policyId,     0);
OVRYN_AT(NvApiPowerPoliciesInfo::Entry, domainId,     4);
OVRYN_AT(NvApiPowerPoliciesInfo::Entry, reserved1,    8);
OVRYN_AT(NvApiPowerPoliciesInfo::Entry, minPower,     12);
OVRYN_AT(NvApiPowerPoliciesInfo::Entry, reserved2,    16);
OVRYN_AT(NvApiPowerPoliciesInfo::Entry, defaultPower, 24);
OVRYN_AT(NvApiPowerPoliciesInfo::Entry, reserved3,    28);
OVRYN_AT(NvApiPowerPoliciesInfo::Entry, maxPower,     36);
OVRYN_AT(NvApiPowerPoliciesInfo::Entry, reserved4,    40);
OVRYN_SIZE(NvApiPowerPoliciesStatus, 72);
OVRYN_AT(NvApiPowerPoliciesStatus, version, 0);
OVRYN_AT(NvApiPowerPoliciesStatus, count,   4);
OVRYN_AT(NvApiPowerPoliciesStatus, entries, 8);
OVRYN_FIELD_SIZE(NvApiPowerPoliciesStatus, count, 1);
OVRYN_SIZE(NvApiPowerPoliciesStatus::Entry, 16);
OVRYN_AT(NvApiPowerPoliciesStatus::Entry, policyId, 0);
OVRYN_AT(NvApiPowerPoliciesStatus::Entry, flags,    4);
OVRYN_AT(NvApiPowerPoliciesStatus::Entry, power,    8);
OVRYN_AT(NvApiPowerPoliciesStatus::Entry, reserved, 12);

// ---- thermal policies

OVRYN_SIZE(NvApiThermalPoliciesInfo, 104);
OVRYN_AT(NvApiThermalPoliciesInfo, version, 0);
OVRYN_AT(NvApiThermalPoliciesInfo, flags,   4);
OVRYN_AT(NvApiThermalPoliciesInfo, count,   5);
OVRYN_AT(NvApiThermalPoliciesInfo, entries, 8);
OVRYN_SIZE(NvApiThermalPoliciesInfo::Entry, 24);
OVRYN_AT(NvApiThermalPoliciesInfo::Entry, policyId,    0);
OVRYN_AT(NvApiThermalPoliciesInfo::Entry, reserved1,   4);
OVRYN_AT(NvApiThermalPoliciesInfo::Entry, minTemp,     8);
OVRYN_AT(NvApiThermalPoliciesInfo::Entry, defaultTemp, 12);
OVRYN_AT(NvApiThermalPoliciesInfo::Entry, maxTemp,     16);
OVRYN_AT(NvApiThermalPoliciesInfo::Entry, reserved2,   20);
OVRYN_SIZE(NvApiThermalPoliciesStatus, 56);
OVRYN_AT(NvApiThermalPoliciesStatus, version, 0);
OVRYN_AT(NvApiThermalPoliciesStatus, count,   4);
OVRYN_AT(NvApiThermalPoliciesStatus, entries, 8);
OVRYN_FIELD_SIZE(NvApiThermalPoliciesStatus, count, 1);
OVRYN_SIZE(NvApiThermalPoliciesStatus::Entry, 12);
OVRYN_AT(NvApiThermalPoliciesStatus::Entry, policyId,    0);
OVRYN_AT(NvApiThermalPoliciesStatus::Entry, temperature, 4);
OVRYN_AT(NvApiThermalPoliciesStatus::Entry, flags,       8);

// clang-format on

#undef OVRYN_AT_32_64
#undef OVRYN_FIELD_SIZE
#undef OVRYN_SIZE
#undef OVRYN_AT

} // namespace
