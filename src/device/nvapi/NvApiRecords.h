#pragma once

#include "device/CoolerPolicies.h" // the records' policies, which callers of the device use too

#include <QtGlobal>

#include <cstddef>

/// \file
/// The C records that the card driver's interface is called through, byte for byte.
///
/// Layout: packed on 8-byte boundaries, words of 32 bits, little-endian. A record starts with its
/// version word: the record's size in a 32-bit process in the low 16 bits, the version number in the
/// high 16 bits. Bit fields start at the lowest bit of their word. Counts come from outside the
/// process: bound them by the array before walking.
///
/// The place of every field is pinned down in NvApiLayout.cpp. Raw records never leave src/device; stand-ins for the
/// driver share this file.

#if defined(_WIN32) && !defined(_WIN64)
#define OVRYN_NVAPI_CALL __cdecl
#else
#define OVRYN_NVAPI_CALL
#endif

/// 0 is success; then the values that the program distinguishes.
using NvAPI_Status = qint32;

constexpr NvAPI_Status NVAPI_OK = 0;
constexpr NvAPI_Status NVAPI_ERROR = -1;
constexpr NvAPI_Status NVAPI_LIBRARY_NOT_FOUND = -2;
constexpr NvAPI_Status NVAPI_NO_IMPLEMENTATION = -3;
constexpr NvAPI_Status NVAPI_INVALID_ARGUMENT = -5;
constexpr NvAPI_Status NVAPI_NVIDIA_DEVICE_NOT_FOUND = -6;
constexpr NvAPI_Status NVAPI_END_ENUMERATION = -7;
constexpr NvAPI_Status NVAPI_INCOMPATIBLE_STRUCT_VERSION = -9;
constexpr NvAPI_Status NVAPI_INVALID_HANDLE = -10;
constexpr NvAPI_Status NVAPI_EXPECTED_PHYSICAL_GPU_HANDLE = -101;

/// Opaque pointers of the driver; null means "no such card".
using NvPhysicalGpuHandle = void *;
using NvDisplayHandle = void *;

constexpr std::size_t kNvApiShortTextSize = 64; ///< every text buffer, terminating zero included
constexpr std::size_t kNvApiMaxGpus = 64;       ///< entries of a table of card handles
constexpr std::size_t kNvApiMaxDisplays = 128;  ///< entries of the program's table of displays

/// The record's size in a 32-bit process, as in its version word.
constexpr std::size_t nvApiRecordSize(quint32 versionWord)
{
    return versionWord & 0xFFFFu;
}

#pragma pack(push, 8)

// ---- memory ---------------------------------------------------------------------------------------

constexpr quint32 kMemoryInfoVersion3 = 0x30020;
constexpr quint32 kMemoryInfoVersion2 = 0x20018; ///< the first six words
constexpr quint32 kMemoryInfoVersion1 = 0x10014; ///< the first five words

struct NvApiMemoryInfo ///< all figures in KB
{
    quint32 version;
    quint32 dedicatedVideoMemory;
    quint32 availableDedicatedVideoMemory;
    quint32 systemVideoMemory;
    quint32 sharedSystemMemory;
    quint32 curAvailableDedicatedVideoMemory;
    quint32 dedicatedVideoMemoryEvictionsSize;
    quint32 dedicatedVideoMemoryEvictionCount;
};
static_assert(sizeof(NvApiMemoryInfo) == nvApiRecordSize(kMemoryInfoVersion3), "record size");
static_assert(offsetof(NvApiMemoryInfo, dedicatedVideoMemoryEvictionsSize) == nvApiRecordSize(kMemoryInfoVersion2),
              "record size");
static_assert(offsetof(NvApiMemoryInfo, curAvailableDedicatedVideoMemory) == nvApiRecordSize(kMemoryInfoVersion1),
              "record size");

// ---- clocks ---------------------------------------------------------------------------------------

constexpr quint32 kClockFrequenciesVersion3 = 0x30108;
constexpr quint32 kClockFrequenciesVersion2 = 0x20108;
constexpr quint32 kClockFrequenciesVersion1 = 0x10108;

constexpr quint32 kClockDomainGraphics = 0;
constexpr quint32 kClockDomainMemory = 4;
constexpr quint32 kClockDomainProcessor = 7;

constexpr quint32 kClockTypeCurrent = 0;
constexpr quint32 kClockTypeBase = 1;
constexpr quint32 kClockTypeBoost = 2;
constexpr quint32 kClockTypeMask = 3; ///< the two low bits of NvApiClockFrequencies::clockType

struct NvApiClockFrequencies
{
    struct Domain
    {
        quint32 present; ///< bit 0
        quint32 frequencyKHz;
    };
    quint32 version;
    quint32 clockType;
    Domain domain[32];
};
static_assert(sizeof(NvApiClockFrequencies) == nvApiRecordSize(kClockFrequenciesVersion3), "record size");
static_assert(sizeof(NvApiClockFrequencies) == nvApiRecordSize(kClockFrequenciesVersion1), "record size");

// ---- utilisation ----------------------------------------------------------------------------------

constexpr quint32 kDynamicPstatesVersion1 = 0x10048;

struct NvApiDynamicPstates
{
    struct Utilization
    {
        quint32 present; ///< bit 0
        quint32 percentage;
    };
    quint32 version;
    quint32 flags;
    Utilization utilization[8]; ///< 0 gpu, 1 frame buffer, 2 video, 3 bus
};
static_assert(sizeof(NvApiDynamicPstates) == nvApiRecordSize(kDynamicPstatesVersion1), "record size");

// ---- temperature sensors --------------------------------------------------------------------------

constexpr quint32 kThermalSettingsVersion2 = 0x20044;
constexpr quint32 kThermalSettingsVersion1 = 0x10044;
constexpr quint32 kThermalSensorCount = 3;
constexpr qint32 kThermalTargetGpu = 1;

struct NvApiThermalSettings ///< degrees Celsius
{
    struct Sensor
    {
        qint32 controller;
        qint32 defaultMinTemp;
        qint32 defaultMaxTemp;
        qint32 currentTemp;
        qint32 target; ///< 1 is the GPU itself
    };
    quint32 version;
    quint32 count;
    Sensor sensor[kThermalSensorCount];
};
static_assert(sizeof(NvApiThermalSettings) == nvApiRecordSize(kThermalSettingsVersion2), "record size");
static_assert(sizeof(NvApiThermalSettings) == nvApiRecordSize(kThermalSettingsVersion1), "record size");

// ---- chipset --------------------------------------------------------------------------------------

constexpr quint32 kChipsetInfoVersion4 = 0x400E8;
constexpr quint32 kChipsetInfoVersion3 = 0x300D8; ///< the first 216 bytes
constexpr quint32 kChipsetInfoVersion2 = 0x20090; ///< the first 144 bytes

struct NvApiChipsetInfo
{
    quint32 version;
    quint32 vendorId;
    quint32 deviceId;
    char szVendorName[kNvApiShortTextSize];
    char szChipsetName[kNvApiShortTextSize];
    quint32 flags;
    quint32 subSysVendorId;
    quint32 subSysDeviceId;
    char szSubSysVendorName[kNvApiShortTextSize];
    quint32 hostBridgeVendorId;
    quint32 hostBridgeDeviceId;
    quint32 hostBridgeSubSysVendorId;
    quint32 hostBridgeSubSysDeviceId;
};
static_assert(sizeof(NvApiChipsetInfo) == nvApiRecordSize(kChipsetInfoVersion4), "record size");
static_assert(offsetof(NvApiChipsetInfo, hostBridgeVendorId) == nvApiRecordSize(kChipsetInfoVersion3), "record size");
static_assert(offsetof(NvApiChipsetInfo, subSysVendorId) == nvApiRecordSize(kChipsetInfoVersion2), "record size");

// ---- performance states ---------------------------------------------------------------------------

constexpr quint32 kPstates20Version3 = 0x31CF8;
constexpr quint32 kPstates20Version2 = 0x21CF8;
constexpr quint32 kPstates20Version1 = 0x11C94; ///< without `ov`

constexpr quint32 kPstateClockTypeSingle = 0;
constexpr quint32 kPstateClockTypeRange = 1;
constexpr quint32 kVoltageDomainCore = 0;

/// A signed offset with the range that the driver allows for it, in kHz or microvolts.
struct NvApiPstateDelta
{
    struct Range
    {
        qint32 min;
        qint32 max;
    };
    qint32 value;
    Range valueRange;
};

struct NV_GPU_PERF_PSTATES20_INFO
{
    struct Clock
    {
        struct Single
        {
            quint32 freq_kHz;
        };
        struct Range
        {
            quint32 minFreq_kHz;
            quint32 maxFreq_kHz;
            quint32 domainId;
            quint32 minVoltage_uV;
            quint32 maxVoltage_uV;
        };
        union Data
        {
            Single single;
            Range range;
        };
        quint32 domainId;
        quint32 typeId;
        quint32 bIsEditable; ///< bit 0
        NvApiPstateDelta freqDelta_kHz;
        Data data;
    };
    struct Voltage
    {
        quint32 domainId;
        quint32 bIsEditable; ///< bit 0
        quint32 volt_uV;
        NvApiPstateDelta voltDelta_uV;
    };
    struct Pstate
    {
        quint32 pstateId;
        quint32 bIsEditable; ///< bit 0
        Clock clocks[8];
        Voltage baseVoltages[4];
    };
    struct OverVoltage
    {
        quint32 numVoltages;
        Voltage voltages[4];
    };
    quint32 version;
    quint32 bIsEditable; ///< bit 0
    quint32 numPstates;
    quint32 numClocks;
    quint32 numBaseVoltages;
    Pstate pstates[16];
    OverVoltage ov;
};
static_assert(sizeof(NV_GPU_PERF_PSTATES20_INFO::Clock) == 44, "entry size");
static_assert(sizeof(NV_GPU_PERF_PSTATES20_INFO::Voltage) == 24, "entry size");
static_assert(sizeof(NV_GPU_PERF_PSTATES20_INFO::Pstate) == 456, "entry size");
static_assert(sizeof(NV_GPU_PERF_PSTATES20_INFO) == nvApiRecordSize(kPstates20Version3), "record size");
static_assert(sizeof(NV_GPU_PERF_PSTATES20_INFO) == nvApiRecordSize(kPstates20Version2), "record size");
static_assert(offsetof(NV_GPU_PERF_PSTATES20_INFO, ov) == nvApiRecordSize(kPstates20Version1), "record size");

// ---- I2C ------------------------------------------------------------------------------------------

constexpr quint32 kI2cInfoVersion3 = 0x3002C;
constexpr quint32 kI2cInfoVersion2 = 0x20024; ///< up to `i2cSpeedKhz`
constexpr quint32 kI2cInfoVersion1 = 0x10020; ///< up to `i2cSpeed`

constexpr quint32 kI2cSpeedDeprecated = 0xFFFF; ///< `i2cSpeedKhz` has the speed instead
constexpr quint32 NVAPI_I2C_SPEED_400KHZ = 6;   ///< an enumeration, not a number of kHz

/// Holds pointers, so a 64-bit process has a larger record than the version words say. The pointer is a parameter so
/// that the layouts of both kinds of process can be checked in every build.
template <typename BytePointer>
struct NvApiI2cInfo
{
    quint32 version;
    quint32 displayMask;
    quint8 bIsDDCPort;
    quint8 i2cDevAddress; ///< 8-bit form, direction bit included
    BytePointer pbI2cRegAddress;
    quint32 regAddrSize;
    BytePointer pbData;
    quint32 cbSize;
    quint32 i2cSpeed;
    quint32 i2cSpeedKhz;
    quint8 portId;
    quint32 bIsPortIdSet;
};
using NV_I2C_INFO = NvApiI2cInfo<quint8 *>;

constexpr std::size_t kI2cInfoSize3 = sizeof(void *) == 4 ? nvApiRecordSize(kI2cInfoVersion3) : 64;
constexpr std::size_t kI2cInfoSize2 = sizeof(void *) == 4 ? nvApiRecordSize(kI2cInfoVersion2) : 56;
constexpr std::size_t kI2cInfoSize1 = sizeof(void *) == 4 ? nvApiRecordSize(kI2cInfoVersion1) : 48;
static_assert(sizeof(NV_I2C_INFO) == kI2cInfoSize3, "record size");

// ---- coolers --------------------------------------------------------------------------------------

constexpr quint32 kCoolerSettingsVersion4 = 0x40558;
constexpr quint32 kCoolerSettingsVersion3 = 0x30508;      ///< entries of 64 bytes
constexpr quint32 kCoolerSettingsVersion2 = 0x203C8;      ///< entries of 48 bytes, no tachometer block
constexpr quint32 kCoolerSettingsVersion1Large = 0x103C8; ///< entries of 48 bytes
constexpr quint32 kCoolerSettingsVersion1Small = 0x10098; ///< three entries of 48 bytes

constexpr quint32 kAllCoolers = 7; ///< cooler index of every call

constexpr std::size_t kCoolerEntrySize4 = 68;
constexpr std::size_t kCoolerEntrySize3 = 64;
constexpr std::size_t kCoolerEntrySize2 = 48;

struct NvApiCoolerSettings ///< levels in percent
{
    struct Cooler
    {
        qint32 type;
        qint32 controller;
        qint32 defaultMin;
        qint32 defaultMax;
        qint32 currentMin;
        qint32 currentMax;
        qint32 currentLevel;
        qint32 defaultPolicy;
        qint32 currentPolicy;
        qint32 target;
        qint32 controlType;
        qint32 active;
        quint32 tachSpeedRpm;
        quint8 tachPresent;
        qint32 tachMinRpm;
        qint32 tachMaxRpm;
        quint32 reserved;
    };
    quint32 version;
    quint32 count;
    Cooler cooler[20];
};
static_assert(sizeof(NvApiCoolerSettings::Cooler) == kCoolerEntrySize4, "entry size");
static_assert(sizeof(NvApiCoolerSettings) == nvApiRecordSize(kCoolerSettingsVersion4), "record size");
static_assert(8 + 20 * kCoolerEntrySize3 == nvApiRecordSize(kCoolerSettingsVersion3), "record size");
static_assert(8 + 20 * kCoolerEntrySize2 == nvApiRecordSize(kCoolerSettingsVersion2), "record size");
static_assert(8 + 20 * kCoolerEntrySize2 == nvApiRecordSize(kCoolerSettingsVersion1Large), "record size");
static_assert(8 + 3 * kCoolerEntrySize2 == nvApiRecordSize(kCoolerSettingsVersion1Small), "record size");

constexpr quint32 kCoolerLevelsVersion1 = 0x100A4;
constexpr quint32 kCoolerLevelsVersion1Small = 0x1001C; ///< three entries

struct NvApiCoolerLevels
{
    struct Level
    {
        qint32 level; ///< percent
        qint32 policy;
    };
    quint32 version;
    Level levels[20];
};
static_assert(sizeof(NvApiCoolerLevels) == nvApiRecordSize(kCoolerLevelsVersion1), "record size");
static_assert(4 + 3 * sizeof(NvApiCoolerLevels::Level) == nvApiRecordSize(kCoolerLevelsVersion1Small), "record size");

// ---- power --------------------------------------------------------------------------------------

constexpr std::size_t kPolicyEntries = 4; ///< entries of every power and thermal policy record

constexpr quint32 kPowerTopologyInfoVersion1 = 0x10018;
struct NvApiPowerTopologyInfo
{
    quint32 version;
    quint8 valid;
    quint8 count;
    quint32 channelId[kPolicyEntries];
};
static_assert(sizeof(NvApiPowerTopologyInfo) == nvApiRecordSize(kPowerTopologyInfoVersion1), "record size");

constexpr quint32 kPowerTopologyStatusVersion1 = 0x10048;
struct NvApiPowerTopologyStatus
{
    struct Entry
    {
        quint32 channelId;
        quint32 reserved1;
        quint32 power; ///< thousandths of a percent
        quint32 reserved2;
    };
    quint32 version;
    quint8 count;
    Entry entries[kPolicyEntries];
};
static_assert(sizeof(NvApiPowerTopologyStatus) == nvApiRecordSize(kPowerTopologyStatusVersion1), "record size");

constexpr quint32 kPowerPoliciesInfoVersion1 = 0x100B8;
struct NvApiPowerPoliciesInfo ///< powers in thousandths of a percent
{
    struct Entry
    {
        quint32 policyId;
        quint32 domainId;
        quint32 reserved1;
        quint32 minPower;
        quint32 reserved2[2];
        quint32 defaultPower;
        quint32 reserved3[2];
        quint32 maxPower;
        quint32 reserved4;
    };
    quint32 version;
    quint8 valid;
    quint8 count;
    Entry entries[kPolicyEntries];
};
static_assert(sizeof(NvApiPowerPoliciesInfo::Entry) == 44, "entry size");
static_assert(sizeof(NvApiPowerPoliciesInfo) == nvApiRecordSize(kPowerPoliciesInfoVersion1), "record size");

constexpr quint32 kPowerPoliciesStatusVersion1 = 0x10048;
struct NvApiPowerPoliciesStatus
{
    struct Entry
    {
        quint32 policyId;
        quint32 flags;
        quint32 power; ///< thousandths of a percent
        quint32 reserved;
    };
    quint32 version;
    quint8 count;
    Entry entries[kPolicyEntries];
};
static_assert(sizeof(NvApiPowerPoliciesStatus) == nvApiRecordSize(kPowerPoliciesStatusVersion1), "record size");

// ---- thermal policies -----------------------------------------------------------------------------

constexpr quint32 kThermalPoliciesInfoVersion2 = 0x20068;
constexpr quint32 kThermalPoliciesInfoVersion1 = 0x10058; ///< entries of 20 bytes
struct NvApiThermalPoliciesInfo                           ///< temperatures in 1/256 of a degree
{
    struct Entry
    {
        quint32 policyId;
        quint32 reserved1;
        qint32 minTemp;
        qint32 defaultTemp;
        qint32 maxTemp;
        quint32 reserved2;
    };
    quint32 version;
    quint8 flags; ///< bit 0: the record is valid
    quint8 count;
    Entry entries[kPolicyEntries];
};
static_assert(sizeof(NvApiThermalPoliciesInfo) == nvApiRecordSize(kThermalPoliciesInfoVersion2), "record size");
static_assert(8 + kPolicyEntries * 20 == nvApiRecordSize(kThermalPoliciesInfoVersion1), "record size");

constexpr quint32 kThermalPoliciesStatusVersion2 = 0x20038;
constexpr quint32 kThermalPoliciesStatusVersion1 = 0x10028; ///< entries of 8 bytes
struct NvApiThermalPoliciesStatus
{
    struct Entry
    {
        quint32 policyId;
        qint32 temperature; ///< 1/256 of a degree
        quint32 flags;      ///< bit 0: priority
    };
    quint32 version;
    quint8 count;
    Entry entries[kPolicyEntries];
};
static_assert(sizeof(NvApiThermalPoliciesStatus) == nvApiRecordSize(kThermalPoliciesStatusVersion2), "record size");
static_assert(8 + kPolicyEntries * 8 == nvApiRecordSize(kThermalPoliciesStatusVersion1), "record size");

#pragma pack(pop)
